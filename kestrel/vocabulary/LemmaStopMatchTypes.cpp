// Unit LemmaStopMatchTypes: its start-up and finalisation do no work.
#include <kestrel/frame/Units.h>

KESTREL_DEFINE_UNIT(LemmaStopMatchTypes, ::kestrel::NoUnitWork, ::kestrel::NoUnitWork)
