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

bool CopyBytes(int from, int to) {
  char buf[65536];
  for (;;) {
    ssize_t n = ::read(from, buf, sizeof buf);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) return false;
    if (n == 0) return true;
    if (!WriteAll(to, buf, static_cast<size_t>(n))) return false;
  }
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

bool CopyFileA(const char *existingFileName, const char *newFileName, bool failIfExists) {
  if (!existingFileName || !newFileName || !*existingFileName || !*newFileName) {
    errno = EINVAL;
    return false;
  }
  const std::string source = NativePath(existingFileName), target = NativePath(newFileName);
  Fd in;
  in.fd = ::open(source.c_str(), O_RDONLY | O_CLOEXEC);
  struct stat st;
  if (in.fd < 0 || ::fstat(in.fd, &st) != 0) return false;
  if (S_ISDIR(st.st_mode)) {
    errno = EISDIR;
    return false;
  }
  if (failIfExists && ::access(target.c_str(), F_OK) == 0) {
    errno = EEXIST;
    return false;
  }
  const std::string temp = TemporaryNameBeside(target);
  Fd out;
  out.fd = ::open(temp.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, st.st_mode & 07777);
  if (out.fd < 0) return false;
  const struct timespec times[2] = {st.st_atim, st.st_mtim};
  bool ok = CopyBytes(in.fd, out.fd) && ::fchmod(out.fd, st.st_mode & 07777) == 0 &&
            ::futimens(out.fd, times) == 0;
  int closed = ::close(out.fd);
  out.fd = -1;
  ok = ok && closed == 0;
  if (ok) {
    // Without replacing, link the copy in: that fails if a target appeared meanwhile.
    ok = failIfExists ? ::link(temp.c_str(), target.c_str()) == 0
                      : ::rename(temp.c_str(), target.c_str()) == 0;
  }
  int err = errno;
  if (!ok || failIfExists) ::unlink(temp.c_str());
  errno = err;
  return ok;
}

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
