// Kept for code that includes the old name; the helpers live in support/.
#pragma once
#include <zip.h>

#include "support/ZipWriter.h"
