#include <kestrel/frame/platform/Platform.h>

#include <cctype>
#include <cstdio>
#include <dlfcn.h>
#include <iostream>
#include <map>
#include <mutex>
#include <unistd.h>
#include <vector>

#include <kestrel/frame/platform/Resources.h>

namespace kestrel {

int32_t Win32Platform = VER_PLATFORM_WIN32_NT;

// ---- Message boxes --------------------------------------------------------

namespace {

struct Button {
  const char *label;
  int32_t id;
};

std::vector<Button> ButtonsOf(uint32_t type) {
  switch (type & 0x0F) {
  case MB_OKCANCEL:
    return {{"OK", IDOK}, {"Cancel", IDCANCEL}};
  case MB_ABORTRETRYIGNORE:
    return {{"Abort", IDABORT}, {"Retry", IDRETRY}, {"Ignore", IDIGNORE}};
  case MB_YESNOCANCEL:
    return {{"Yes", IDYES}, {"No", IDNO}, {"Cancel", IDCANCEL}};
  case MB_YESNO:
    return {{"Yes", IDYES}, {"No", IDNO}};
  case MB_RETRYCANCEL:
    return {{"Retry", IDRETRY}, {"Cancel", IDCANCEL}};
  default:
    return {{"OK", IDOK}};
  }
}

int32_t AskOnTerminal(const std::string &text, const std::string &caption, uint32_t type) {
  std::vector<Button> buttons = ButtonsOf(type);
  std::cerr << "\n[" << caption << "]\n" << text << "\n";
  for (;;) {
    for (size_t i = 0; i < buttons.size(); ++i)
      std::cerr << (i ? " / " : "") << (i + 1) << " " << buttons[i].label;
    std::cerr << "? " << std::flush;
    std::string line;
    if (!std::getline(std::cin, line))
      return SafeMessageBoxAnswer(type);
    for (size_t i = 0; i < buttons.size(); ++i) {
      std::string label = buttons[i].label;
      bool byNumber = line == std::to_string(i + 1);
      bool byLetter = !line.empty() && std::tolower(line[0]) == std::tolower(label[0]);
      if (byNumber || byLetter)
        return buttons[i].id;
    }
  }
}

int32_t DefaultMessageBox(const std::string &text, const std::string &caption, uint32_t type) {
  if (isatty(STDIN_FILENO) && isatty(STDERR_FILENO))
    return AskOnTerminal(text, caption, type);
  return SafeMessageBoxAnswer(type);
}

std::mutex gBoxMutex;
MessageBoxHandler gBoxHandler;

} // namespace

int32_t SafeMessageBoxAnswer(uint32_t type) {
  switch (type & 0x0F) {
  case MB_OK:
    return IDOK;
  case MB_ABORTRETRYIGNORE:
    return IDABORT;
  case MB_YESNO:
    return IDNO;
  default:
    return IDCANCEL;
  }
}

MessageBoxHandler SetMessageBoxHandler(MessageBoxHandler handler) {
  std::lock_guard<std::mutex> lock(gBoxMutex);
  std::swap(gBoxHandler, handler);
  return handler;
}

int32_t MessageBoxA(HWND, const char *text, const char *caption, uint32_t type) {
  MessageBoxHandler handler;
  {
    std::lock_guard<std::mutex> lock(gBoxMutex);
    handler = gBoxHandler;
  }
  std::string t = text ? text : "", c = caption ? caption : "";
  return handler ? handler(t, c, type) : DefaultMessageBox(t, c, type);
}

// ---- Modules --------------------------------------------------------------

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

HMODULE LoadLibraryA(const char *fileName) { return dlopen(fileName, RTLD_NOW | RTLD_LOCAL); }

void *GetProcAddress(HMODULE module, const char *procName) {
  return module ? dlsym(module, procName) : nullptr;
}

bool FreeLibrary(HMODULE module) { return module && dlclose(module) == 0; }

// ---- Paths ----------------------------------------------------------------

namespace {
std::mutex gDriveMutex;
std::map<char, std::string> &Drives() {
  static std::map<char, std::string> drives{{'C', "/"}};
  return drives;
}
} // namespace

void SetDriveRoot(char drive, std::string root) {
  std::lock_guard<std::mutex> lock(gDriveMutex);
  char d = static_cast<char>(std::toupper(static_cast<unsigned char>(drive)));
  if (root.empty())
    Drives().erase(d);
  else
    Drives()[d] = std::move(root);
}

std::string DriveRoot(char drive) {
  std::lock_guard<std::mutex> lock(gDriveMutex);
  auto it = Drives().find(static_cast<char>(std::toupper(static_cast<unsigned char>(drive))));
  return it == Drives().end() ? std::string() : it->second;
}

std::string NativePath(std::string_view path) {
  if (path.size() >= 2 && path[1] == ':' && std::isalpha(static_cast<unsigned char>(path[0]))) {
    std::string root = DriveRoot(path[0]);
    if (!root.empty()) {
      std::string_view rest = path.substr(2);
      while (!rest.empty() && (rest.front() == '/' || rest.front() == '\\'))
        rest.remove_prefix(1);
      if (root.back() != '/')
        root += '/';
      return root + std::string(rest);
    }
  }
  return std::string(path);
}

// ---- Resources ------------------------------------------------------------

namespace {
std::string Key(const std::string &name, const std::string &type) {
  std::string k = type + "/" + name;
  for (char &c : k)
    c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return k;
}
std::mutex &ResourceMutex() {
  static std::mutex m;
  return m;
}
std::map<std::string, ResourceBlob> &Resources() {
  static std::map<std::string, ResourceBlob> r;
  return r;
}
} // namespace

ResourceRegistration::ResourceRegistration(const char *name, const char *type,
                                           const unsigned char *data, size_t size) {
  std::lock_guard<std::mutex> lock(ResourceMutex());
  Resources()[Key(name, type)] = ResourceBlob{data, size};
}

const ResourceBlob *FindResourceBlob(HMODULE module, const std::string &name,
                                     const std::string &type) {
  if (module != KestrelModuleHandle())
    return nullptr;
  std::lock_guard<std::mutex> lock(ResourceMutex());
  auto it = Resources().find(Key(name, type));
  return it == Resources().end() || !it->second.data ? nullptr : &it->second;
}

ResourceBlob ReplaceResourceBlob(const std::string &name, const std::string &type,
                                 ResourceBlob blob) {
  std::lock_guard<std::mutex> lock(ResourceMutex());
  ResourceBlob &slot = Resources()[Key(name, type)];
  ResourceBlob old = slot;
  slot = blob;
  return old;
}

} // namespace kestrel
