// The unit Unicode: character database, case mapping, decomposition,
// wide-string primitives, code pages and UTF-8, wide string lists.
#pragma once

#include <kestrel/unicode/CaseMapping.h>
#include <kestrel/unicode/CharDatabase.h>
#include <kestrel/unicode/CodePages.h>
#include <kestrel/unicode/Decomposition.h>
#include <kestrel/unicode/WideStrUtils.h>
#include <kestrel/unicode/WideStrings.h>
