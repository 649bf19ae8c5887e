// Unit myStreamMemLists: its start-up and finalisation do no work.
#include <kestrel/frame/Units.h>

KESTREL_DEFINE_UNIT(myStreamMemLists, ::kestrel::NoUnitWork, ::kestrel::NoUnitWork)
