// Kestrelcore: the runtime library of the corpus-analysis suite. This header
// brings in every public header; a subsystem header (kestrel/unicode/Unicode.h
// and the like) brings in one subsystem.
#pragma once

#if __cplusplus < 202002L
#error "Kestrelcore needs C++20: link the target kestrel::kestrelcore or pass -std=c++20"
#endif

#include <kestrel/files/Files.h>
#include <kestrel/frame/Frame.h>
#include <kestrel/frame/Units.h>
#include <kestrel/frame/host/Host.h>
#include <kestrel/frame/myKpSmall.h>
#include <kestrel/frame/platform/Nls.h>
#include <kestrel/frame/platform/Platform.h>
#include <kestrel/frame/platform/Resources.h>
#include <kestrel/frame/platform/TempPath.h>
#include <kestrel/frame/zip/VCLUnZip.h>
#include <kestrel/language/Language.h>
#include <kestrel/search/Search.h>
#include <kestrel/unicode/Unicode.h>
#include <kestrel/vocabulary/Vocabulary.h>
