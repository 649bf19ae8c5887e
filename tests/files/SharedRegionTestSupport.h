// Helpers for tests of named shared memory regions: names no other test run
// on the machine uses, where a region shows on Linux, and a forked child.
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

// Runs body in a forked child, which leaves with body's result and without
// running anything of the parent's at exit; the child's exit status, or -1
// when it did not exit normally.
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
