#include <kestrel/frame/host/TFileStream.h>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <map>
#include <mutex>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include <kestrel/frame/host/Consts.h>
#include <kestrel/frame/host/DateUtils.h>
#include <kestrel/frame/host/Exceptions.h>
#include <kestrel/frame/host/FindFile.h>
#include <kestrel/frame/host/SysUtils.h>
#include <kestrel/frame/platform/Platform.h>

namespace kestrel {

namespace {

// ---- Sharing among this process's handles ---------------------------------

constexpr uint8_t kRead = 1, kWrite = 2;

struct OpenFile {
  THandle handle;
  uint8_t access; // what this handle does
  uint8_t share;  // what it lets others do
};

struct FileId {
  dev_t dev;
  ino_t ino;
  bool operator<(const FileId &o) const { return dev != o.dev ? dev < o.dev : ino < o.ino; }
};

std::mutex gShareMutex;
std::map<FileId, std::vector<OpenFile>> gOpenFiles;
std::map<THandle, FileId> gHandleFile;

bool Conflicts(const FileId &id, uint8_t access, uint8_t share) {
  auto it = gOpenFiles.find(id);
  if (it == gOpenFiles.end()) return false;
  for (const OpenFile &f : it->second)
    if ((access & ~f.share) || (f.access & ~share)) return true;
  return false;
}

void Register(THandle h, const FileId &id, uint8_t access, uint8_t share) {
  gOpenFiles[id].push_back({h, access, share});
  gHandleFile[h] = id;
}

void Unregister(THandle h) {
  auto it = gHandleFile.find(h);
  if (it == gHandleFile.end()) return;
  auto &list = gOpenFiles[it->second];
  for (size_t i = 0; i < list.size(); ++i)
    if (list[i].handle == h) {
      list.erase(list.begin() + static_cast<ptrdiff_t>(i));
      break;
    }
  if (list.empty()) gOpenFiles.erase(it->second);
  gHandleFile.erase(it);
}

uint8_t ShareOf(uint32_t mode) {
  switch ((mode & 0xF0) >> 4) {
  case 2: // deny write
    return kRead;
  case 3: // deny read
    return kWrite;
  case 4: // deny none
    return kRead | kWrite;
  default: // compatibility and exclusive share nothing
    return 0;
  }
}

THandle Fail(int error) {
  errno = error;
  return INVALID_HANDLE_VALUE;
}

std::string OpenFailureReason(int error, const std::string &fileName) {
  if (error == ERROR_SHARING_VIOLATION_ERRNO) return Consts::SSharingViolation;
  TFileKind kind;
  TFileIdentity id;
  if (error == ENXIO && FileKindOf(fileName, kind, id) &&
      (kind == TFileKind::Fifo || kind == TFileKind::Socket))
    return std::string("It is ") + FileKindText(kind) + ", not a file.";
  return SysErrorMessage(error);
}

} // namespace

THandle FileOpen(const std::string &fileName, uint32_t mode) {
  uint32_t accessMode = mode & 3;
  if (accessMode == 3 || (mode & 0xF0) > fmShareDenyNone) return Fail(EINVAL);
  int flags = accessMode == fmOpenRead ? O_RDONLY : accessMode == fmOpenWrite ? O_WRONLY : O_RDWR;
  uint8_t access = accessMode == fmOpenRead    ? kRead
                   : accessMode == fmOpenWrite ? kWrite
                                               : kRead | kWrite;
  std::lock_guard<std::mutex> lock(gShareMutex);
  // Opened without waiting, so that a FIFO with no writer can't block; a
  // FIFO or socket is no file to open, nor, as on the host, is a folder.
  int fd = ::open(NativePath(fileName).c_str(), flags | O_CLOEXEC | O_NONBLOCK);
  if (fd < 0) return INVALID_HANDLE_VALUE;
  struct stat st;
  int error = ::fstat(fd, &st) != 0                                           ? errno
              : S_ISDIR(st.st_mode)                                           ? EISDIR
              : S_ISFIFO(st.st_mode) || S_ISSOCK(st.st_mode)                  ? ENXIO
              : ::fcntl(fd, F_SETFL, ::fcntl(fd, F_GETFL) & ~O_NONBLOCK) != 0 ? errno
                                                                              : 0;
  if (error) {
    ::close(fd);
    return Fail(error);
  }
  FileId id{st.st_dev, st.st_ino};
  if (Conflicts(id, access, ShareOf(mode))) {
    ::close(fd);
    return Fail(ERROR_SHARING_VIOLATION_ERRNO);
  }
  Register(fd, id, access, ShareOf(mode));
  return fd;
}

THandle FileCreate(const std::string &fileName) {
  std::string path = NativePath(fileName);
  std::lock_guard<std::mutex> lock(gShareMutex);
  // An open file that does not share writing must not be truncated under its
  // holder, so look before opening.
  struct stat st;
  if (::stat(path.c_str(), &st) == 0) {
    if (S_ISDIR(st.st_mode)) return Fail(EISDIR);
    if (Conflicts({st.st_dev, st.st_ino}, kRead | kWrite, 0))
      return Fail(ERROR_SHARING_VIOLATION_ERRNO);
  }
  int fd = ::open(path.c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
  if (fd < 0) return INVALID_HANDLE_VALUE;
  if (::fstat(fd, &st) != 0) {
    int error = errno;
    ::close(fd);
    return Fail(error);
  }
  Register(fd, {st.st_dev, st.st_ino}, kRead | kWrite, 0);
  return fd;
}

int32_t FileRead(THandle handle, void *buffer, int32_t count) {
  if (count <= 0) return 0;
  int32_t done = 0;
  while (done < count) {
    ssize_t n = ::read(static_cast<int>(handle), static_cast<char *>(buffer) + done,
                       static_cast<size_t>(count - done));
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) return done > 0 || n == 0 ? done : -1;
    done += static_cast<int32_t>(n);
  }
  return done;
}

int32_t FileWrite(THandle handle, const void *buffer, int32_t count) {
  if (count <= 0) return 0;
  int32_t done = 0;
  while (done < count) {
    ssize_t n = ::write(static_cast<int>(handle), static_cast<const char *>(buffer) + done,
                        static_cast<size_t>(count - done));
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) return done > 0 ? done : -1;
    done += static_cast<int32_t>(n);
  }
  return done;
}

int64_t FileSeek(THandle handle, int64_t offset, int32_t origin) {
  int whence = origin == 1 ? SEEK_CUR : origin == 2 ? SEEK_END : SEEK_SET;
  return ::lseek(static_cast<int>(handle), static_cast<off_t>(offset), whence);
}

void FileClose(THandle handle) {
  if (handle < 0) return;
  {
    std::lock_guard<std::mutex> lock(gShareMutex);
    Unregister(handle);
  }
  ::close(static_cast<int>(handle));
}

int32_t FileGetDate(THandle handle) {
  struct stat st;
  if (::fstat(static_cast<int>(handle), &st) != 0) return -1;
  return UnixTimeToFileDate(st.st_mtime);
}

int32_t FileSetDate(THandle handle, int32_t age) {
  std::time_t t = FileDateToUnixTime(age);
  if (t == -1) return EINVAL;
  struct timespec times[2];
  times[0].tv_sec = 0;
  times[0].tv_nsec = UTIME_OMIT; // the access time stays
  times[1].tv_sec = t;
  times[1].tv_nsec = 0;
  return ::futimens(static_cast<int>(handle), times) == 0 ? 0 : errno;
}

std::string SysErrorMessage(int32_t errorCode) {
  char buf[256];
  const char *text = strerror_r(errorCode, buf, sizeof buf); // the GNU form
  return text ? text : "Unknown error " + std::to_string(errorCode);
}

// ---- THandleStream ---------------------------------------------------------

int64_t THandleStream::GetSize() {
  struct stat st;
  if (::fstat(static_cast<int>(FHandle), &st) != 0) return TStream::GetSize();
  return st.st_size;
}

void THandleStream::SetSize(int64_t newSize) {
  if (newSize < 0 || ::ftruncate(static_cast<int>(FHandle), static_cast<off_t>(newSize)) != 0)
    throw EStreamError(SysErrorMessage(newSize < 0 ? EINVAL : errno));
  if (Position() > newSize) Seek(newSize, TSeekOrigin::soBeginning);
}

int32_t THandleStream::Read(void *buffer, int32_t count) {
  int32_t n = FileRead(FHandle, buffer, count);
  return n < 0 ? 0 : n;
}

int32_t THandleStream::Write(const void *buffer, int32_t count) {
  int32_t n = FileWrite(FHandle, buffer, count);
  return n < 0 ? 0 : n;
}

int64_t THandleStream::Seek(int64_t offset, TSeekOrigin origin) {
  return FileSeek(FHandle, offset, static_cast<int32_t>(origin));
}

// ---- TFileStream -----------------------------------------------------------

TFileStream::TFileStream(const std::string &fileName, uint16_t mode)
    : THandleStream(INVALID_HANDLE_VALUE), FFileName(fileName) {
  if (mode == fmCreate) {
    FHandle = FileCreate(fileName);
    if (FHandle < 0) {
      int error = errno;
      EFCreateError e(Format(Consts::SFCreateErrorEx, ExpandFileName(fileName).c_str(),
                             OpenFailureReason(error, fileName).c_str()));
      errno = error; // for RaiseLastOSError
      throw e;
    }
  } else {
    FHandle = FileOpen(fileName, mode);
    if (FHandle < 0) {
      int error = errno;
      EFOpenError e(Format(Consts::SFOpenErrorEx, ExpandFileName(fileName).c_str(),
                           OpenFailureReason(error, fileName).c_str()));
      errno = error; // for RaiseLastOSError
      throw e;
    }
  }
}

TFileStream::~TFileStream() {
  FileClose(FHandle);
}

} // namespace kestrel
