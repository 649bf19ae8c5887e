// Kestrelcore: the runtime library of the corpus-analysis suite.
#pragma once

#include <kestrel/frame/Frame.h>
#include <kestrel/frame/host/Host.h>
#include <kestrel/frame/myKpSmall.h>
#include <kestrel/frame/platform/Platform.h>
#include <kestrel/frame/platform/Resources.h>
#include <kestrel/frame/platform/TempPath.h>
#include <kestrel/frame/zip/VCLUnZip.h>
#include <kestrel/unicode/Unicode.h>
#include <kestrel/search/Search.h>
#include <kestrel/vocabulary/Vocabulary.h>
#include <kestrel/language/Language.h>
#include <kestrel/files/Files.h>
