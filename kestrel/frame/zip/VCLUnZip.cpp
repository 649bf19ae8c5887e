#include <kestrel/frame/zip/VCLUnZip.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>
#include <fcntl.h>
#include <random>
#include <sys/stat.h>
#include <unistd.h>
#include <zip.h>

#include <kestrel/frame/host/Consts.h>
#include <kestrel/frame/host/DateUtils.h>
#include <kestrel/frame/host/SysUtils.h>
#include <kestrel/frame/host/TFileStream.h>
#include <kestrel/frame/host/TList.h>
#include <kestrel/frame/platform/Platform.h>

namespace kestrel {

namespace {

// Closes a descriptor on every way out.
class Fd {
public:
  explicit Fd(int fd = -1) : fd_(fd) {}
  ~Fd() {
    if (fd_ >= 0) ::close(fd_);
  }
  Fd(const Fd &) = delete;
  Fd &operator=(const Fd &) = delete;
  int get() const { return fd_; }
  void reset(int fd) {
    if (fd_ >= 0) ::close(fd_);
    fd_ = fd;
  }

private:
  int fd_;
};

std::string ZipErrorText(int code) {
  zip_error_t error;
  zip_error_init_with_code(&error, code);
  std::string text = zip_error_strerror(&error);
  zip_error_fini(&error);
  return text;
}

[[noreturn]] void CannotRead(const std::string &name, const std::string &why) {
  throw EZipError("Cannot read ZIP archive \"" + name + "\": " + why, why);
}

[[noreturn]] void CannotUnpack(const std::string &member, const std::string &why) {
  throw EZipError("Cannot unpack \"" + member + "\": " + why, why);
}

// The parts of a stored folder that may be recreated: no empty, ".", ".."
// or drive ("C:") parts, so that the result stays below the destination.
std::vector<std::string> SafeParts(const std::string &pathname) {
  std::vector<std::string> parts;
  size_t i = 0;
  while (i < pathname.size()) {
    size_t j = pathname.find('/', i);
    if (j == std::string::npos) j = pathname.size();
    std::string part = pathname.substr(i, j - i);
    bool drive = part.size() == 2 && part[1] == ':';
    if (!part.empty() && part != "." && part != ".." && !drive) parts.push_back(part);
    i = j + 1;
  }
  return parts;
}

// Enters (making it when missing) one folder below dirfd, refusing links.
int EnterFolder(int dirfd, const std::string &name, const std::string &member) {
  int fd = ::openat(dirfd, name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
  if (fd < 0 && errno == ENOENT) {
    if (::mkdirat(dirfd, name.c_str(), 0777) != 0 && errno != EEXIST)
      CannotUnpack(member, SysErrorMessage(errno));
    fd = ::openat(dirfd, name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
  }
  if (fd < 0) CannotUnpack(member, "\"" + name + "\" is not a folder that can be entered");
  return fd;
}

std::string TempName() {
  static thread_local std::mt19937_64 rng{std::random_device{}()};
  static const char kDigits[] = "0123456789abcdefghijklmnopqrstuvwxyz";
  std::string name = ".kestrel-unzip-";
  for (int i = 0; i < 12; ++i)
    name += kDigits[rng() % 36];
  return name;
}

} // namespace

TVCLUnZip::TVCLUnZip(TComponent *owner) : TComponent(owner) {}

TVCLUnZip::~TVCLUnZip() {
  CloseArchive();
}

void TVCLUnZip::CloseArchive() {
  if (FArchive) zip_discard(FArchive);
  FArchive = nullptr;
  FConsistencyChecked = false;
  FInconsistency.clear();
  FMembers.clear();
  FComment.clear();
}

void TVCLUnZip::SetZipName(const std::string &name) {
  CloseArchive();
  FZipName = name;
}

void TVCLUnZip::ReadZip() {
  CloseArchive();
  if (FZipName.empty()) CannotRead(FZipName, "no archive named");
  std::string path = NativePath(FZipName);
  struct stat st;
  if (::stat(path.c_str(), &st) != 0) CannotRead(FZipName, SysErrorMessage(errno));
  if (!S_ISREG(st.st_mode) || st.st_size == 0) // libzip would take an empty file as an archive
    CannotRead(FZipName, ZipErrorText(ZIP_ER_NOZIP));
  int code = 0;
  zip *archive = zip_open(path.c_str(), ZIP_RDONLY, &code);
  if (!archive) CannotRead(FZipName, ZipErrorText(code));
  FArchive = archive;
  try {
    zip_int64_t n = zip_get_num_entries(archive, 0);
    if (n < 0 || n > INT32_MAX) CannotRead(FZipName, "too many entries");
    int length = 0;
    const char *comment = zip_get_archive_comment(archive, &length, ZIP_FL_ENC_RAW);
    std::string text =
        comment && length > 0 ? std::string(comment, static_cast<size_t>(length)) : std::string();
    std::vector<Member> members;
    members.reserve(static_cast<size_t>(n));
    for (zip_int64_t i = 0; i < n; ++i) {
      zip_stat_t zs;
      zip_stat_init(&zs);
      if (zip_stat_index(archive, static_cast<zip_uint64_t>(i), 0, &zs) != 0)
        CannotRead(FZipName, zip_strerror(archive));
      Member m;
      std::string stored = (zs.valid & ZIP_STAT_NAME) && zs.name ? zs.name : "";
      for (char &c : stored)
        if (c == '\\') c = '/';
      size_t cut = stored.rfind('/');
      m.pathname = cut == std::string::npos ? std::string() : stored.substr(0, cut + 1);
      m.filename = cut == std::string::npos ? stored : stored.substr(cut + 1);
      m.mtime = (zs.valid & ZIP_STAT_MTIME) ? static_cast<int64_t>(zs.mtime) : 0;
      m.dateTime = UnixTimeToLocalDateTime(static_cast<std::time_t>(m.mtime));
      m.size = (zs.valid & ZIP_STAT_SIZE) ? static_cast<int64_t>(zs.size) : 0;
      m.compressedSize = (zs.valid & ZIP_STAT_COMP_SIZE) ? static_cast<int64_t>(zs.comp_size) : 0;
      m.encrypted = (zs.valid & ZIP_STAT_ENCRYPTION_METHOD) && zs.encryption_method != ZIP_EM_NONE;
      zip_uint8_t opsys = 0;
      zip_uint32_t attributes = 0;
      if (zip_file_get_external_attributes(archive, static_cast<zip_uint64_t>(i), 0, &opsys,
                                           &attributes) == 0)
        m.attributes = static_cast<int32_t>(attributes);
      members.push_back(std::move(m));
      if (OnEntryRead) OnEntryRead(this, static_cast<int32_t>(i), static_cast<int32_t>(n));
    }
    FMembers = std::move(members);
    FComment = std::move(text);
  } catch (...) {
    CloseArchive();
    throw;
  }
}

const TVCLUnZip::Member &TVCLUnZip::At(int32_t index) const {
  if (index < 0 || index >= GetCount()) TList::RaiseListError(Consts::SListIndexError, index);
  return FMembers[static_cast<size_t>(index)];
}

std::string TVCLUnZip::GetFilename(int32_t index) const {
  return At(index).filename;
}
std::string TVCLUnZip::GetPathname(int32_t index) const {
  return At(index).pathname;
}
TDateTime TVCLUnZip::GetDateTime(int32_t index) const {
  return At(index).dateTime;
}
int64_t TVCLUnZip::GetUnCompressedSize(int32_t index) const {
  return At(index).size;
}
int64_t TVCLUnZip::GetCompressedSize(int32_t index) const {
  return At(index).compressedSize;
}
int32_t TVCLUnZip::GetExternalFileAttributes(int32_t index) const {
  return At(index).attributes;
}
bool TVCLUnZip::GetIsEncrypted(int32_t index) const {
  return At(index).encrypted;
}

void TVCLUnZip::ClearSelected() {
  for (Member &m : FMembers)
    m.selected = false;
}

void TVCLUnZip::SetSelected(int32_t index, bool selected) {
  At(index);
  FMembers[static_cast<size_t>(index)].selected = selected;
}

bool TVCLUnZip::GetSelected(int32_t index) const {
  return At(index).selected;
}

int32_t TVCLUnZip::NumSelected() const {
  int32_t n = 0;
  for (const Member &m : FMembers)
    n += m.selected ? 1 : 0;
  return n;
}

int32_t TVCLUnZip::UnZipSelected() {
  if (!FArchive) throw EZipError("No ZIP archive has been read");
  if (FDestDir.empty()) throw EZipError("No destination folder to unpack into");
  std::string dest = NativePath(FDestDir);
  if (!ForceDirectories(dest))
    throw EZipError("Cannot create the destination folder \"" + FDestDir +
                    "\": " + SysErrorMessage(errno));
  Fd dirfd(::open(dest.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (dirfd.get() < 0)
    throw EZipError("Cannot open the destination folder \"" + FDestDir +
                    "\": " + SysErrorMessage(errno));
  int32_t count = 0;
  for (int32_t i = 0; i < GetCount(); ++i)
    if (FMembers[static_cast<size_t>(i)].selected && UnZipOne(dirfd.get(), i)) ++count;
  return count;
}

// Unpacks one member below dirfd; false when there was nothing to write or
// the overwrite rule kept an existing file.
bool TVCLUnZip::UnZipOne(int dirfd, int32_t index) {
  const Member &m = FMembers[static_cast<size_t>(index)];
  std::string stored = MemberName(index);
  std::vector<std::string> parts =
      RecreateDirs ? SafeParts(m.pathname) : std::vector<std::string>();
  bool folderEntry = m.filename.empty();
  if (folderEntry && parts.empty()) return false;
  if (!folderEntry && (m.filename == "." || m.filename == "..")) return false;
  Fd here(::dup(dirfd));
  std::string relative;
  for (const std::string &part : parts) {
    here.reset(EnterFolder(here.get(), part, stored));
    relative += part + PathDelim;
  }
  if (folderEntry) return true;
  relative += m.filename;

  struct stat st;
  if (::fstatat(here.get(), m.filename.c_str(), &st, AT_SYMLINK_NOFOLLOW) == 0) {
    if (S_ISDIR(st.st_mode)) CannotUnpack(MemberName(index), "a folder of that name is in the way");
    bool overwrite = OverwriteMode == TUZOverwriteMode::Always;
    if (OverwriteMode == TUZOverwriteMode::Prompt && OnPromptForOverwrite)
      OnPromptForOverwrite(this, overwrite, relative);
    if (!overwrite) return false;
  }
  Extract(here.get(), m.filename, index);
  return true;
}

// Hands the member's data to write in pieces; the failure's text, or empty.
// Never reads more than the directory entry announces, so that a member
// that inflates past its stated size costs no more than that size.
std::string TVCLUnZip::ReadMember(int32_t index,
                                  const std::function<bool(const char *, size_t)> &write) {
  const Member &m = FMembers[static_cast<size_t>(index)];
  if (m.encrypted) return "the member is encrypted";
  if (!CheckConsistency()) return FInconsistency;
  zip_file_t *in = zip_fopen_index(FArchive, static_cast<zip_uint64_t>(index), 0);
  if (!in) return zip_strerror(FArchive);
  std::string failure;
  std::vector<char> buffer(static_cast<size_t>(std::min<int64_t>(m.size + 1, 1 << 16)));
  int64_t total = 0;
  for (;;) {
    const auto want = static_cast<zip_uint64_t>(
        std::min<int64_t>(static_cast<int64_t>(buffer.size()), m.size - total + 1));
    zip_int64_t n = zip_fread(in, buffer.data(), want);
    if (n < 0) {
      failure = zip_file_strerror(in);
      break;
    }
    if (n == 0) break;
    total += n;
    if (total > m.size) {
      failure = "the member's data is longer than its directory entry says";
      break;
    }
    if (!write(buffer.data(), static_cast<size_t>(n))) {
      failure = SysErrorMessage(errno);
      break;
    }
  }
  zip_fclose(in);
  if (failure.empty() && total != m.size)
    failure = "the member's data is shorter than its directory entry says";
  return failure;
}

// Every local header against the central directory (libzip's check), once:
// a listing needs only the directory, a reader needs the members' data to be
// where the directory says.
bool TVCLUnZip::CheckConsistency() {
  if (!FConsistencyChecked) {
    int code = 0;
    zip *checked = zip_open(NativePath(FZipName).c_str(), ZIP_RDONLY | ZIP_CHECKCONS, &code);
    if (checked)
      zip_discard(checked);
    else
      FInconsistency = ZipErrorText(code);
    FConsistencyChecked = true;
  }
  return FInconsistency.empty();
}

std::string TVCLUnZip::MemberName(int32_t index) const {
  const Member &m = FMembers[static_cast<size_t>(index)];
  return IncludeTrailingPathDelimiter(FZipName) + m.pathname + m.filename;
}

// Writes the member to a temporary file beside the target, then renames it
// over the target (a link there is replaced, not followed).
void TVCLUnZip::Extract(int dirfd, const std::string &name, int32_t index) {
  const Member &m = FMembers[static_cast<size_t>(index)];
  std::string temp;
  int out = -1;
  for (int attempt = 0; attempt < 100 && out < 0; ++attempt) {
    temp = TempName();
    out = ::openat(dirfd, temp.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666);
    if (out < 0 && errno != EEXIST) break;
  }
  if (out < 0) CannotUnpack(MemberName(index), SysErrorMessage(errno));
  std::string failure = ReadMember(index, [out](const char *data, size_t n) {
    return FileWrite(out, data, static_cast<int32_t>(n)) == static_cast<int32_t>(n);
  });
  if (failure.empty()) {
    struct timespec times[2] = {{0, UTIME_OMIT}, {static_cast<time_t>(m.mtime), 0}};
    ::futimens(out, times);
  }
  if (::close(out) != 0 && failure.empty()) failure = SysErrorMessage(errno);
  if (failure.empty() && ::renameat(dirfd, temp.c_str(), dirfd, name.c_str()) != 0)
    failure = SysErrorMessage(errno);
  if (!failure.empty()) {
    ::unlinkat(dirfd, temp.c_str(), 0);
    CannotUnpack(MemberName(index), failure);
  }
}

int64_t TVCLUnZip::UnZipToStream(TStream *stream, int32_t index) {
  if (!FArchive) throw EZipError("No ZIP archive has been read");
  const Member &m = At(index);
  if (m.filename.empty()) CannotUnpack(MemberName(index), "it is a folder entry");
  std::string streamFailure;
  std::string failure = ReadMember(index, [&](const char *data, size_t n) {
    try {
      stream->WriteBuffer(data, static_cast<int32_t>(n));
      return true;
    } catch (const std::exception &e) {
      streamFailure = e.what();
      return false;
    }
  });
  if (!streamFailure.empty()) failure = streamFailure;
  if (!failure.empty()) CannotUnpack(MemberName(index), failure);
  return m.size;
}

int32_t Kpsmall::PMsgDlg(const std::string &Text, const std::string &Caption, uint32_t Flags) {
  return MessageBoxA(nullptr, Text.c_str(), Caption.c_str(), Flags);
}

} // namespace kestrel
