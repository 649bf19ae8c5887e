// Unit bare_assemb_types: a type only; its start-up and finalisation do no work.
#include <kestrel/frame/Units.h>
#include <kestrel/search/bare_assemb_types.h>

KESTREL_DEFINE_UNIT(bare_assemb_types, ::kestrel::NoUnitWork, ::kestrel::NoUnitWork)
