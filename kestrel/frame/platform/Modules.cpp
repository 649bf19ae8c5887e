// Modules: the library's own handle and file name, and loading others (dlopen).
#include <kestrel/frame/platform/Platform.h>

#include <dlfcn.h>
#include <unistd.h>
#include <vector>

namespace kestrel {

HMODULE KestrelModuleHandle() {
  static HMODULE handle = [] {
    Dl_info info{};
    if (dladdr(reinterpret_cast<void *>(&KestrelModuleHandle), &info))
      return static_cast<HMODULE>(info.dli_fbase);
    return static_cast<HMODULE>(nullptr);
  }();
  return handle;
}

std::string GetModuleFileNameA(HMODULE module) {
  if (module == nullptr) {
    std::vector<char> buf(4096);
    ssize_t n = ::readlink("/proc/self/exe", buf.data(), buf.size() - 1);
    return n > 0 ? std::string(buf.data(), static_cast<size_t>(n)) : std::string();
  }
  if (module == KestrelModuleHandle()) {
    Dl_info info{};
    if (dladdr(reinterpret_cast<void *>(&KestrelModuleHandle), &info) && info.dli_fname)
      return info.dli_fname;
  }
  return {};
}

HMODULE LoadLibraryA(const char *fileName) {
  return dlopen(fileName, RTLD_NOW | RTLD_LOCAL);
}

void *GetProcAddress(HMODULE module, const char *procName) {
  return module ? dlsym(module, procName) : nullptr;
}

bool FreeLibrary(HMODULE module) {
  return module && dlclose(module) == 0;
}

} // namespace kestrel
