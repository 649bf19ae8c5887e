// The platform family the host reports. The operations themselves are in files
// named for their concern: MessageBoxes, Modules, Drives, Resources, TempPath
// and the national-language ones (Nls*).
#include <kestrel/frame/platform/Platform.h>

namespace kestrel {

int32_t Win32Platform = VER_PLATFORM_WIN32_NT;

} // namespace kestrel
