// Unit file_utils: its start-up and finalisation do no work.
#include <kestrel/frame/Units.h>

KESTREL_DEFINE_UNIT(file_utils, ::kestrel::NoUnitWork, ::kestrel::NoUnitWork)
