// Unit Wdef: the suite's shared vocabulary.
#pragma once

#include <kestrel/vocabulary/WdefColours.h>
#include <kestrel/vocabulary/WdefConcordance.h>
#include <kestrel/vocabulary/WdefDisplay.h>
#include <kestrel/vocabulary/WdefDisplayTypes.h>
#include <kestrel/vocabulary/WdefHolders.h>
#include <kestrel/vocabulary/WdefLemmaList.h>
#include <kestrel/vocabulary/WdefLibraries.h>
#include <kestrel/vocabulary/WdefLinkedStack.h>
#include <kestrel/vocabulary/WdefListTypes.h>
#include <kestrel/vocabulary/WdefLists.h>
#include <kestrel/vocabulary/WdefSelection.h>
#include <kestrel/vocabulary/WdefSettings.h>
#include <kestrel/vocabulary/WdefStoredFiles.h>
#include <kestrel/vocabulary/WdefStrings.h>
#include <kestrel/vocabulary/WdefTypeRecord.h>
