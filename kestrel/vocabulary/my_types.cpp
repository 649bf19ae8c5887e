// Unit my_types: its start-up and finalisation do no work.
#include <kestrel/frame/Units.h>

KESTREL_DEFINE_UNIT(my_types, ::kestrel::NoUnitWork, ::kestrel::NoUnitWork)
