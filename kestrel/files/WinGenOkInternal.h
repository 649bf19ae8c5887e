// WinGenOk's start-up rule, apart so that it can be tried on any version.
#pragma once

#include <kestrel/frame/platform/SystemInfo.h>

namespace kestrel {

// Major version above 5, or 5 with minor version 1 or more.
inline bool IsXPOrBetter(const OSVERSIONINFOA &version) {
  return version.dwMajorVersion > 5 || (version.dwMajorVersion == 5 && version.dwMinorVersion >= 1);
}

} // namespace kestrel
