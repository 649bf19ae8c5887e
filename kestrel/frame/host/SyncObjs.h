// The host's critical section: a lock that the owning thread may re-enter.
#pragma once

#include <mutex>

#include <kestrel/frame/host/TObject.h>

namespace kestrel {

// Enter and Leave (or std::lock_guard) around the guarded work.
class TCriticalSection : public TObject {
public:
  void Enter() { FMutex.lock(); }
  void Leave() { FMutex.unlock(); }
  void Acquire() { Enter(); }
  void Release() { Leave(); }
  // For std::lock_guard.
  void lock() { Enter(); }
  void unlock() { Leave(); }

private:
  std::recursive_mutex FMutex;
};

} // namespace kestrel
