// The host class framework: everything the library's units derive from or call.
#pragma once

#include <kestrel/frame/host/AnsiStrings.h>
#include <kestrel/frame/host/Consts.h>
#include <kestrel/frame/host/DateUtils.h>
#include <kestrel/frame/host/Exceptions.h>
#include <kestrel/frame/host/Filer.h>
#include <kestrel/frame/host/FindFile.h>
#include <kestrel/frame/host/Masks.h>
#include <kestrel/frame/host/SyncObjs.h>
#include <kestrel/frame/host/SysUtils.h>
#include <kestrel/frame/host/TComponent.h>
#include <kestrel/frame/host/TFileStream.h>
#include <kestrel/frame/host/TList.h>
#include <kestrel/frame/host/TObject.h>
#include <kestrel/frame/host/TStream.h>
#include <kestrel/frame/host/TStringList.h>
#include <kestrel/frame/host/Types.h>
#include <kestrel/frame/host/Wildcards.h>
