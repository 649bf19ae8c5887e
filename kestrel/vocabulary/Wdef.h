// Unit Wdef: the suite's shared vocabulary.
#pragma once

#include <kestrel/vocabulary/WdefDisplayTypes.h>
#include <kestrel/vocabulary/WdefListTypes.h>
#include <kestrel/vocabulary/WdefStoredFiles.h>
