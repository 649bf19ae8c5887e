#include <kestrel/frame/platform/SafeFiles.h>

#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

#include <kestrel/frame/platform/Platform.h>

namespace kestrel {

namespace {

// Closes a descriptor on every way out.
struct Fd {
  int fd = -1;
  ~Fd() {
    if (fd >= 0) ::close(fd);
  }
};

bool WriteAll(int fd, const char *data, size_t size) {
  while (size > 0) {
    ssize_t n = ::write(fd, data, size);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) return false;
    data += n;
    size -= static_cast<size_t>(n);
  }
  return true;
}

std::string TemporaryNameBeside(const std::string &target) {
  static std::atomic<unsigned> counter{0};
  size_t slash = target.rfind('/');
  std::string folder = slash == std::string::npos ? std::string() : target.substr(0, slash + 1);
  std::string name = slash == std::string::npos ? target : target.substr(slash + 1);
  return folder + "." + name + "." + std::to_string(::getpid()) + "." +
         std::to_string(counter.fetch_add(1)) + ".tmp";
}

} // namespace

bool ReplaceFileWhole(const std::string &fileName, std::string_view bytes) {
  if (fileName.empty()) {
    errno = ENOENT;
    return false;
  }
  std::string target = NativePath(fileName);
  struct stat st;
  const bool exists = ::stat(target.c_str(), &st) == 0;
  if (exists) {
    char resolved[PATH_MAX];
    if (::realpath(target.c_str(), resolved)) target = resolved;
  }
  const std::string temp = TemporaryNameBeside(target);
  Fd out;
  out.fd = ::open(temp.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC,
                  exists ? (st.st_mode & 07777) : 0666);
  if (out.fd < 0) return false;
  bool ok = WriteAll(out.fd, bytes.data(), bytes.size()) &&
            (!exists || ::fchmod(out.fd, st.st_mode & 07777) == 0) && ::fsync(out.fd) == 0;
  int closed = ::close(out.fd);
  out.fd = -1;
  ok = ok && closed == 0 && ::rename(temp.c_str(), target.c_str()) == 0;
  if (!ok) {
    int err = errno;
    ::unlink(temp.c_str());
    errno = err;
  }
  return ok;
}

} // namespace kestrel
