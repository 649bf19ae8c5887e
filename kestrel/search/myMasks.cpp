// Unit myMasks: its start-up and finalisation do no work.
#include <kestrel/frame/Units.h>

KESTREL_DEFINE_UNIT(myMasks, ::kestrel::NoUnitWork, ::kestrel::NoUnitWork)
