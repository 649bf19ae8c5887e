// Unit language_detailsU: the start-up pair and its count. The unit's state is set up here
// as its parts are built.
#include <kestrel/frame/Units.h>

KESTREL_DEFINE_UNIT(language_detailsU, ::kestrel::NoUnitWork, ::kestrel::NoUnitWork)
