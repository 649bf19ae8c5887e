// The unit Unicode: character database, case mapping, decomposition,
// wide-string primitives, code pages, UTF-8 and code blocks, wide string lists.
#pragma once

#include <kestrel/unicode/CaseMapping.h>
#include <kestrel/unicode/CharDatabase.h>
#include <kestrel/unicode/CodeBlocks.h>
#include <kestrel/unicode/CodePages.h>
#include <kestrel/unicode/Decomposition.h>
#include <kestrel/unicode/Utf8.h>
#include <kestrel/unicode/WideCStrings.h>
#include <kestrel/unicode/WideStrUtils.h>
#include <kestrel/unicode/WideStrings.h>
