// Unit language_detailsU: its start-up and finalisation do no work.
#include <kestrel/frame/Units.h>

KESTREL_DEFINE_UNIT(language_detailsU, ::kestrel::NoUnitWork, ::kestrel::NoUnitWork)
