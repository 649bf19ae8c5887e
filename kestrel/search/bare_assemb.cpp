// Unit bare_assemb: its start-up and finalisation do no work.
#include <kestrel/frame/Units.h>

KESTREL_DEFINE_UNIT(bare_assemb, ::kestrel::NoUnitWork, ::kestrel::NoUnitWork)
