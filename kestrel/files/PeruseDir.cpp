// Unit PeruseDir: its start-up and finalisation do no work.
#include <kestrel/frame/Units.h>

KESTREL_DEFINE_UNIT(PeruseDir, ::kestrel::NoUnitWork, ::kestrel::NoUnitWork)
