// Unit logging_utilities: the start-up pair and its count. The unit's state is set up here
// as its parts are built.
#include <kestrel/frame/Units.h>

KESTREL_DEFINE_UNIT(logging_utilities, ::kestrel::NoUnitWork, ::kestrel::NoUnitWork)
