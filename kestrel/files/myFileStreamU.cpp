// Unit myFileStreamU: its start-up and finalisation do no work.
#include <kestrel/frame/Units.h>

KESTREL_DEFINE_UNIT(myFileStreamU, ::kestrel::NoUnitWork, ::kestrel::NoUnitWork)
