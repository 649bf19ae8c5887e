// The table of drive letters and the native form of a path.
#include <kestrel/frame/platform/Platform.h>

#include <cctype>
#include <map>
#include <mutex>

namespace kestrel {

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
      if (root.back() != '/') root += '/';
      return root + std::string(rest);
    }
  }
  return std::string(path);
}

} // namespace kestrel
