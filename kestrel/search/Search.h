// The search subsystem.
#pragma once

#include <kestrel/search/MarkFreeText.h>
#include <kestrel/search/SearchEngine.h>
#include <kestrel/search/SortableLists.h>
#include <kestrel/search/UREFamiliarSyntax.h>
#include <kestrel/search/URELongestMatch.h>
#include <kestrel/search/URESearch.h>
#include <kestrel/search/UTBMSearch.h>
#include <kestrel/search/WordBounds.h>
#include <kestrel/search/myMasks.h>
