// The files subsystem.
#pragma once

#include <kestrel/files/PeruseDir.h>
#include <kestrel/files/TextFiles.h>
#include <kestrel/files/myFileStreamU.h>
