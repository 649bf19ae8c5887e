// The search subsystem.
#pragma once

#include <kestrel/search/SearchEngine.h>
