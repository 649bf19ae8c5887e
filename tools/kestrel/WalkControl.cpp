#include "WalkControl.h"

#include <csignal>
#include <cstdio>

namespace kestrel::cli {
namespace {

volatile std::sig_atomic_t requested = 0;
struct sigaction previous;

void OnInterrupt(int) {
  requested = 1;
  // The next Ctrl-C takes the way out there was before (which removes the
  // temporary files held).
  sigaction(SIGINT, &previous, nullptr);
}

} // namespace

InterruptGuard::InterruptGuard() {
  requested = 0;
  struct sigaction action {};
  action.sa_handler = OnInterrupt;
  sigemptyset(&action.sa_mask);
  action.sa_flags = SA_RESTART; // a read under way goes on; the loop stops after it
  sigaction(SIGINT, &action, &previous);
}

InterruptGuard::~InterruptGuard() {
  sigaction(SIGINT, &previous, nullptr);
}

bool InterruptGuard::Requested() {
  return requested != 0;
}

std::string WalkStatus::Text() const {
  const double seconds =
      std::chrono::duration<double>(std::chrono::steady_clock::now() - start_).count();
  const double mb = static_cast<double>(bytes_) / 1e6;
  char buf[160];
  std::snprintf(buf, sizeof buf, "%zu/%zu files, %.1f MB, %llu %s, %.1f MB/s", done_, files_, mb,
                static_cast<unsigned long long>(itemCount_), items_,
                seconds > 0 ? mb / seconds : 0.0);
  return buf;
}

} // namespace kestrel::cli
