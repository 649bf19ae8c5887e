// The files subsystem.
#pragma once

#include <kestrel/files/PeruseDir.h>
#include <kestrel/files/TextFiles.h>
#include <kestrel/files/WinGenOk.h>
#include <kestrel/files/file_utils.h>
#include <kestrel/files/inifileU2.h>
#include <kestrel/files/logging_utilities.h>
#include <kestrel/files/myFileStreamU.h>
#include <kestrel/files/myStreamMemLists.h>
#include <kestrel/frame/host/SysUtils.h>
#include <kestrel/frame/platform/Errors.h>
#include <kestrel/frame/platform/FileSystem.h>
#include <kestrel/frame/platform/SharedMemory.h>
#include <kestrel/frame/platform/Volumes.h>
