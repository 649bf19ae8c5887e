// What the commands that walk many files share: the words of the progress
// line, and Ctrl-C. The first interrupt asks the
// command to stop after the file it is reading, print what it has and exit
// with 130 (128 + SIGINT), as shells expect; a second one ends it at once.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace kestrel::cli {

// "12/40 files, 3.1 MB, 845 matches, 52.0 MB/s" for the progress line.
class WalkStatus {
public:
  explicit WalkStatus(size_t files, const char *items) : files_(files), items_(items) {}
  void FileDone(uint64_t bytes, uint64_t items) {
    ++done_;
    bytes_ += bytes;
    itemCount_ += items;
  }
  std::string Text() const;

private:
  size_t files_, done_ = 0;
  const char *items_;
  uint64_t bytes_ = 0, itemCount_ = 0;
  std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

class InterruptGuard {
public:
  InterruptGuard();  // catches SIGINT
  ~InterruptGuard(); // gives it back
  InterruptGuard(const InterruptGuard &) = delete;
  InterruptGuard &operator=(const InterruptGuard &) = delete;
  static bool Requested();
};

inline constexpr int kInterruptedStatus = 130;

} // namespace kestrel::cli
