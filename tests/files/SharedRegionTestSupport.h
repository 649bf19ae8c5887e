// Helpers for tests of named shared memory regions: fresh names, their regions, a child.
#pragma once

#include <atomic>
#include <filesystem>
#include <functional>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

#include <kestrel/files/myStreamMemLists.h>

namespace kestrel::test {

// A fresh name for this process and call.
inline std::string UniqueMapName(const std::string &what) {
  static std::atomic<int> counter{0};
  return "test-" + what + "-" + std::to_string(::getpid()) + "-" + std::to_string(counter++);
}

// Whether the region of a TFlexibleSizeMap name exists in the system.
inline bool RegionExists(const std::string &mapName) {
  return std::filesystem::exists("/dev/shm/" + std::string(kSharedMapPrefix) + mapName);
}

// body's result from a forked child that leaves without the parent's exit work; -1 if killed.
inline int InChild(const std::function<int()> &body) {
  pid_t pid = ::fork();
  if (pid == 0) {
    int code = 99;
    try {
      code = body();
    } catch (...) {
    }
    ::_exit(code);
  }
  int status = 0;
  ::waitpid(pid, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

} // namespace kestrel::test
