// Unit logging_utilities: its start-up and finalisation do no work.
#include <kestrel/frame/Units.h>

KESTREL_DEFINE_UNIT(logging_utilities, ::kestrel::NoUnitWork, ::kestrel::NoUnitWork)
