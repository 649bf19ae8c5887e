// The search subsystem.
#pragma once

#include <kestrel/search/SearchEngine.h>
#include <kestrel/search/UTBMSearch.h>
