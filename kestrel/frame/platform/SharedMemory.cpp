#include <kestrel/frame/platform/SharedMemory.h>

#include <algorithm>
#include <climits>
#include <fcntl.h>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <kestrel/frame/host/TFileStream.h>

namespace kestrel {

namespace {

// The folder behind shm_open on Linux; new regions are made in it directly so
// that they can be published complete (see the header).
constexpr const char *kShmFolder = "/dev/shm";

// A region's name as shm_open takes it ("/name"), or empty with errno set
// for a name the system refuses.
std::string SystemName(const char *name) {
  if (name == nullptr || *name == '\0') {
    errno = EINVAL;
    return {};
  }
  std::string n = name;
  if (n.find('/') != std::string::npos || n == "." || n == "..") {
    errno = EINVAL;
    return {};
  }
  if (n.size() > NAME_MAX) {
    errno = ENAMETOOLONG;
    return {};
  }
  return "/" + n;
}

// True when the name still means the region open at fd.
bool StillNamed(int fd, const std::string &systemName) {
  int probe = ::shm_open(systemName.c_str(), O_RDONLY | O_CLOEXEC, 0);
  if (probe < 0) return false;
  struct stat a, b;
  bool same = ::fstat(fd, &a) == 0 && ::fstat(probe, &b) == 0 && a.st_dev == b.st_dev &&
              a.st_ino == b.st_ino;
  ::close(probe);
  return same;
}

// One process's hold on a region: an open of it with a shared lock. The
// handle and each of its views share it; the last of them releases it.
struct Hold {
  int fd;
  std::string systemName;
  pid_t owner = ::getpid();

  Hold(int f, std::string n) : fd(f), systemName(std::move(n)) {}
  Hold(const Hold &) = delete;
  Hold &operator=(const Hold &) = delete;
  ~Hold() {
    int saved = errno;
    // Only the last holder gets the lock exclusively. A forked child's copy
    // shares its lock with the parent, so it must not try.
    if (owner == ::getpid() && ::flock(fd, LOCK_EX | LOCK_NB) == 0 && StillNamed(fd, systemName))
      ::shm_unlink(systemName.c_str());
    ::close(fd);
    errno = saved;
  }
};

struct View {
  std::shared_ptr<Hold> hold;
  size_t length;
};

// Handles and views of this process. Made at first use and destroyed at exit
// after every static object made before it, so regions that are still open
// at exit go the way they go when their handles close.
struct Registry {
  std::mutex mutex;
  std::map<THandle, std::shared_ptr<Hold>> handles;
  std::map<uintptr_t, View> views; // by start address
  THandle next = 0x5000;
};

bool gRegistryGone = false;

struct RegistryOwner {
  Registry registry;
  ~RegistryOwner() { gRegistryGone = true; }
};

Registry *TheRegistry() {
  static RegistryOwner owner;
  return gRegistryGone ? nullptr : &owner.registry;
}

// Opens a named region and takes a shared hold on it: the descriptor, or -1
// with errno (ENOENT when there is no region, or only a leftover of crashed
// holders, which is removed).
int OpenHeld(const std::string &systemName) {
  for (;;) {
    int fd = ::shm_open(systemName.c_str(), O_RDWR | O_CLOEXEC, 0);
    if (fd < 0) return -1;
    if (::flock(fd, LOCK_EX | LOCK_NB) == 0) {
      // No process holds it: a leftover of crashed holders, or one that its
      // last holder has just removed (and someone may have made anew).
      bool leftover = StillNamed(fd, systemName);
      if (leftover) ::shm_unlink(systemName.c_str());
      ::close(fd);
      if (!leftover) continue;
      errno = ENOENT;
      return -1;
    }
    // Held: wait out a last holder that is removing it right now, then make
    // sure the name still means what we hold.
    if (::flock(fd, LOCK_SH) == 0 && StillNamed(fd, systemName)) return fd;
    ::close(fd);
  }
}

// Makes a region of size bytes and publishes it under the name, held: the
// descriptor, or -1 with errno (EEXIST when the name is taken).
int CreateHeld(const std::string &systemName, uint64_t size) {
  int fd = ::open(kShmFolder, O_TMPFILE | O_RDWR | O_CLOEXEC, 0600);
  if (fd < 0) return -1;
  int error = ::posix_fallocate(fd, 0, static_cast<off_t>(size));
  if (error == 0 && ::flock(fd, LOCK_SH) != 0) error = errno;
  if (error == 0) {
    std::string self = "/proc/self/fd/" + std::to_string(fd);
    std::string path = std::string(kShmFolder) + systemName;
    if (::linkat(AT_FDCWD, self.c_str(), AT_FDCWD, path.c_str(), AT_SYMLINK_FOLLOW) == 0) return fd;
    error = errno;
  }
  ::close(fd); // unnamed, so nothing stays behind
  errno = error;
  return -1;
}

THandle Register(int fd, const std::string &systemName) {
  Registry *r = TheRegistry();
  if (r == nullptr) {
    ::close(fd);
    errno = ESHUTDOWN;
    return 0;
  }
  auto hold = std::make_shared<Hold>(fd, systemName);
  std::lock_guard<std::mutex> lock(r->mutex);
  THandle h = r->next++;
  r->handles.emplace(h, std::move(hold));
  return h;
}

} // namespace

THandle OpenFileMappingA(uint32_t, bool, const char *name) {
  std::string systemName = SystemName(name);
  if (systemName.empty()) return 0;
  int fd = OpenHeld(systemName);
  return fd < 0 ? 0 : Register(fd, systemName);
}

THandle CreateFileMappingA(THandle file, void *, uint32_t protect, uint32_t sizeHigh,
                           uint32_t sizeLow, const char *name) {
  uint64_t size = uint64_t(sizeHigh) << 32 | sizeLow;
  if (file != INVALID_HANDLE_VALUE || protect != PAGE_READWRITE || size == 0) {
    errno = EINVAL;
    return 0;
  }
  std::string systemName = SystemName(name);
  if (systemName.empty()) return 0;
  for (;;) {
    int fd = OpenHeld(systemName);
    if (fd >= 0) {
      THandle h = Register(fd, systemName);
      if (h != 0) errno = static_cast<int>(ERROR_ALREADY_EXISTS);
      return h;
    }
    if (errno != ENOENT) return 0;
    fd = CreateHeld(systemName, size);
    if (fd >= 0) {
      THandle h = Register(fd, systemName);
      if (h != 0) errno = 0;
      return h;
    }
    if (errno != EEXIST) // taken meanwhile: open that one
      return 0;
  }
}

void *MapViewOfFile(THandle mapping, uint32_t, uint32_t offsetHigh, uint32_t offsetLow,
                    size_t bytes) {
  Registry *r = TheRegistry();
  if (r == nullptr || offsetHigh != 0 || offsetLow != 0) {
    errno = EINVAL;
    return nullptr;
  }
  std::lock_guard<std::mutex> lock(r->mutex);
  auto it = r->handles.find(mapping);
  if (it == r->handles.end()) {
    errno = EBADF;
    return nullptr;
  }
  struct stat st;
  if (::fstat(it->second->fd, &st) != 0) return nullptr;
  size_t size = static_cast<size_t>(st.st_size);
  if (bytes == 0) bytes = size;
  if (bytes == 0 || bytes > size) {
    errno = EINVAL;
    return nullptr;
  }
  void *p = ::mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_SHARED, it->second->fd, 0);
  if (p == MAP_FAILED) return nullptr;
  r->views.emplace(reinterpret_cast<uintptr_t>(p), View{it->second, bytes});
  return p;
}

bool UnmapViewOfFile(const void *view) {
  Registry *r = TheRegistry();
  if (r == nullptr) return false;
  std::shared_ptr<Hold> hold; // released after the lock
  std::lock_guard<std::mutex> lock(r->mutex);
  auto it = r->views.find(reinterpret_cast<uintptr_t>(view));
  if (it == r->views.end()) {
    errno = EINVAL;
    return false;
  }
  ::munmap(const_cast<void *>(view), it->second.length);
  hold = std::move(it->second.hold);
  r->views.erase(it);
  return true;
}

bool CloseHandle(THandle object) {
  Registry *r = TheRegistry();
  if (r == nullptr) return false;
  std::shared_ptr<Hold> hold;
  std::lock_guard<std::mutex> lock(r->mutex);
  auto it = r->handles.find(object);
  if (it == r->handles.end()) {
    errno = EBADF;
    return false;
  }
  hold = std::move(it->second);
  r->handles.erase(it);
  return true;
}

namespace {

// The view that holds an address, as (start, length); false when none does.
bool ViewOf(Registry &r, uintptr_t a, uintptr_t &start, size_t &length) {
  auto it = r.views.upper_bound(a);
  if (it == r.views.begin() || a >= (--it)->first + it->second.length) return false;
  start = it->first;
  length = it->second.length;
  return true;
}

uintptr_t PageOf(uintptr_t a) {
  return a - a % static_cast<uintptr_t>(::sysconf(_SC_PAGESIZE));
}

} // namespace

void *VirtualAlloc(void *address, size_t, uint32_t allocationType, uint32_t) {
  Registry *r = TheRegistry();
  if (r == nullptr || address == nullptr || !(allocationType & MEM_COMMIT)) {
    errno = EINVAL;
    return nullptr;
  }
  uintptr_t a = reinterpret_cast<uintptr_t>(address), start;
  size_t length;
  std::lock_guard<std::mutex> lock(r->mutex);
  if (!ViewOf(*r, a, start, length)) {
    errno = EFAULT;
    return nullptr;
  }
  return reinterpret_cast<void *>(PageOf(a));
}

size_t VirtualQuery(const void *address, MEMORY_BASIC_INFORMATION *buffer, size_t length) {
  Registry *r = TheRegistry();
  if (r == nullptr || buffer == nullptr || length < sizeof(MEMORY_BASIC_INFORMATION)) {
    errno = EINVAL;
    return 0;
  }
  uintptr_t a = reinterpret_cast<uintptr_t>(address), start;
  size_t viewLength;
  std::lock_guard<std::mutex> lock(r->mutex);
  if (!ViewOf(*r, a, start, viewLength)) {
    errno = EFAULT;
    return 0;
  }
  uintptr_t page = std::max(PageOf(a), start);
  *buffer = {reinterpret_cast<void *>(page),
             reinterpret_cast<void *>(start),
             PAGE_READWRITE,
             start + viewLength - page,
             MEM_COMMIT,
             PAGE_READWRITE,
             MEM_MAPPED};
  return sizeof(MEMORY_BASIC_INFORMATION);
}

} // namespace kestrel
