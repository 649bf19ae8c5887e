#include <kestrel/frame/platform/TempPath.h>

#include <cstdlib>
#include <cstring>
#include <mutex>
#include <sys/stat.h>

namespace kestrel {

namespace {

std::mutex gTempMutex;
std::string gTempOverride;

bool IsFolder(const char *path) {
  struct stat st;
  return path && *path && ::stat(path, &st) == 0 && S_ISDIR(st.st_mode);
}

std::string CurrentTempPath() {
  std::string folder;
  {
    std::lock_guard<std::mutex> lock(gTempMutex);
    folder = gTempOverride;
  }
  if (folder.empty()) {
    const char *env = std::getenv("TMPDIR");
    folder = IsFolder(env) ? env : "/tmp";
  }
  if (folder.back() != '/') folder += '/';
  return folder;
}

} // namespace

uint32_t GetTempPathA(uint32_t bufferLength, char *buffer) {
  std::string folder = CurrentTempPath();
  if (folder.size() + 1 > bufferLength || !buffer) return static_cast<uint32_t>(folder.size() + 1);
  std::memcpy(buffer, folder.c_str(), folder.size() + 1);
  return static_cast<uint32_t>(folder.size());
}

void SetTempPath(const std::string &folder) {
  std::lock_guard<std::mutex> lock(gTempMutex);
  gTempOverride = folder;
}

} // namespace kestrel
