// The files subsystem.
#pragma once

#include <kestrel/files/PeruseDir.h>
#include <kestrel/files/TextFiles.h>
#include <kestrel/files/inifileU2.h>
#include <kestrel/files/logging_utilities.h>
#include <kestrel/files/myFileStreamU.h>
