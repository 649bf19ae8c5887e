// Unit SortableLists: its start-up and finalisation do no work.
#include <kestrel/frame/Units.h>

KESTREL_DEFINE_UNIT(SortableLists, ::kestrel::NoUnitWork, ::kestrel::NoUnitWork)
