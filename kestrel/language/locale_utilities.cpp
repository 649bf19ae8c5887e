// Unit locale_utilities: its start-up and finalisation do no work.
#include <kestrel/frame/Units.h>

KESTREL_DEFINE_UNIT(locale_utilities, ::kestrel::NoUnitWork, ::kestrel::NoUnitWork)
