// The files subsystem.
#pragma once

#include <kestrel/files/PeruseDir.h>
