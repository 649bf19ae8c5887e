// Makes writes past a size fail for the length of a scope, as a full disk
// would (the limit holds for root too).
#pragma once

#include <csignal>
#include <sys/resource.h>

namespace kestrel::test {

class FileSizeLimit {
public:
  explicit FileSizeLimit(rlim_t bytes) {
    previousHandler_ = std::signal(SIGXFSZ, SIG_IGN); // a failed write, not a killed process
    ::getrlimit(RLIMIT_FSIZE, &previous_);
    rlimit limit = previous_;
    limit.rlim_cur = bytes;
    ::setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~FileSizeLimit() {
    ::setrlimit(RLIMIT_FSIZE, &previous_);
    std::signal(SIGXFSZ, previousHandler_);
  }
  FileSizeLimit(const FileSizeLimit &) = delete;
  FileSizeLimit &operator=(const FileSizeLimit &) = delete;

private:
  rlimit previous_{};
  void (*previousHandler_)(int);
};

} // namespace kestrel::test
