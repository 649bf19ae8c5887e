// Unit inifileU2: its start-up and finalisation do no work.
#include <kestrel/frame/Units.h>

KESTREL_DEFINE_UNIT(inifileU2, ::kestrel::NoUnitWork, ::kestrel::NoUnitWork)
