// The vocabulary subsystem.
#pragma once

#include <kestrel/vocabulary/LemmaStopMatchTypes.h>
#include <kestrel/vocabulary/Wdef.h>
#include <kestrel/vocabulary/my_consts.h>
#include <kestrel/vocabulary/my_types.h>
