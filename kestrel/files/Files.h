// The files subsystem.
#pragma once

#include <kestrel/files/myFileStreamU.h>
