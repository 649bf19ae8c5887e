// Unit Wdef: its start-up and finalisation do no work.
#include <kestrel/frame/Units.h>

KESTREL_DEFINE_UNIT(Wdef, ::kestrel::NoUnitWork, ::kestrel::NoUnitWork)
