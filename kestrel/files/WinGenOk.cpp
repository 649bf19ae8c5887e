// Unit WinGenOk: its start-up and finalisation do no work.
#include <kestrel/frame/Units.h>

KESTREL_DEFINE_UNIT(WinGenOk, ::kestrel::NoUnitWork, ::kestrel::NoUnitWork)
