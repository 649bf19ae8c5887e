#include <kestrel/frame/platform/FileSystem.h>

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

#include <kestrel/frame/platform/Platform.h>

namespace kestrel {

namespace {

// Closes a descriptor when it goes, keeping errno.
struct Fd {
  int fd = -1;
  ~Fd() {
    int saved = errno;
    if (fd >= 0) ::close(fd);
    errno = saved;
  }
};

bool CopyBytes(int from, int to) {
  char buf[65536];
  for (;;) {
    ssize_t n = ::read(from, buf, sizeof buf);
    if (n == 0) return true;
    if (n < 0) {
      if (errno == EINTR) continue;
      return false;
    }
    for (ssize_t done = 0; done < n;) {
      ssize_t w = ::write(to, buf + done, static_cast<size_t>(n - done));
      if (w > 0) {
        done += w;
        continue;
      }
      if (w < 0 && errno == EINTR) continue;
      if (w == 0) errno = EIO;
      return false;
    }
  }
}

std::string FolderOf(const std::string &path) {
  size_t slash = path.rfind('/');
  return slash == std::string::npos ? "." : slash == 0 ? "/" : path.substr(0, slash);
}

} // namespace

uint32_t GetFileAttributesA(const char *fileName) {
  if (fileName == nullptr) {
    errno = EINVAL;
    return INVALID_FILE_ATTRIBUTES;
  }
  std::string path = NativePath(fileName);
  while (path.size() > 1 && path.back() == '/')
    path.pop_back();
  struct stat self, target;
  if (::lstat(path.c_str(), &self) != 0) return INVALID_FILE_ATTRIBUTES;
  bool link = S_ISLNK(self.st_mode);
  const struct stat &st = link && ::stat(path.c_str(), &target) == 0 ? target : self;
  uint32_t attr = link ? FILE_ATTRIBUTE_REPARSE_POINT : 0;
  if (S_ISDIR(st.st_mode))
    attr |= FILE_ATTRIBUTE_DIRECTORY;
  else if (S_ISREG(st.st_mode) || S_ISLNK(st.st_mode))
    attr |= FILE_ATTRIBUTE_ARCHIVE;
  else
    attr |= FILE_ATTRIBUTE_SYSTEM;
  if (!(st.st_mode & S_IWUSR)) attr |= FILE_ATTRIBUTE_READONLY;
  size_t slash = path.rfind('/');
  std::string name = slash == std::string::npos ? path : path.substr(slash + 1);
  if (name.size() > 1 && name[0] == '.' && name != "..") attr |= FILE_ATTRIBUTE_HIDDEN;
  return attr;
}

bool CopyFileA(const char *existingFileName, const char *newFileName, bool failIfExists) {
  if (existingFileName == nullptr || newFileName == nullptr) {
    errno = EINVAL;
    return false;
  }
  std::string target = NativePath(newFileName);
  Fd source;
  source.fd = ::open(NativePath(existingFileName).c_str(), O_RDONLY | O_CLOEXEC);
  struct stat st, old;
  if (source.fd < 0 || ::fstat(source.fd, &st) != 0) return false;
  if (S_ISDIR(st.st_mode)) {
    errno = EISDIR;
    return false;
  }
  if (::stat(target.c_str(), &old) == 0) {
    errno = failIfExists ? EEXIST : S_ISDIR(old.st_mode) ? EISDIR : EACCES;
    if (failIfExists || S_ISDIR(old.st_mode) || !(old.st_mode & S_IWUSR)) return false;
  }
  std::string temp = FolderOf(target) + "/.kestrel-copy-XXXXXX";
  Fd copy;
  copy.fd = ::mkostemp(temp.data(), O_CLOEXEC);
  if (copy.fd < 0) return false;
  struct timespec times[2] = {st.st_atim, st.st_mtim};
  bool ok = CopyBytes(source.fd, copy.fd) && ::fchmod(copy.fd, st.st_mode & 07777) == 0 &&
            ::futimens(copy.fd, times) == 0;
  if (ok) {
    ok = ::close(copy.fd) == 0;
    copy.fd = -1;
  }
  // A target that appeared meanwhile is not replaced when failIfExists.
  if (ok)
    ok = failIfExists ? ::link(temp.c_str(), target.c_str()) == 0
                      : ::rename(temp.c_str(), target.c_str()) == 0;
  if (!ok || failIfExists) {
    int saved = errno;
    ::unlink(temp.c_str());
    errno = saved;
  }
  return ok;
}

bool MoveFileA(const char *existingFileName, const char *newFileName) {
  if (existingFileName == nullptr || newFileName == nullptr) {
    errno = EINVAL;
    return false;
  }
  std::string from = NativePath(existingFileName), to = NativePath(newFileName);
  if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return true;
  if (errno != EINVAL) // a file system that cannot refuse to replace: look first
    return false;
  struct stat st;
  if (::lstat(to.c_str(), &st) == 0) {
    errno = EEXIST;
    return false;
  }
  return ::rename(from.c_str(), to.c_str()) == 0;
}

} // namespace kestrel
