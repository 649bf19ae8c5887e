#include <kestrel/frame/host/FindFile.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include <kestrel/frame/host/AnsiStrings.h>
#include <kestrel/frame/host/DateUtils.h>
#include <kestrel/frame/host/SysUtils.h>
#include <kestrel/frame/host/TFileStream.h>
#include <kestrel/frame/host/Wildcards.h>
#include <kestrel/frame/platform/Platform.h>

namespace kestrel {

struct TSearchState {
  std::vector<TSearchRec> matches; // sorted by name; FindHandle left empty
  size_t next = 0;
};

namespace {

TFileKind KindOf(const struct stat &st) {
  if (S_ISREG(st.st_mode)) return TFileKind::Regular;
  if (S_ISDIR(st.st_mode)) return TFileKind::Folder;
  if (S_ISFIFO(st.st_mode)) return TFileKind::Fifo;
  if (S_ISSOCK(st.st_mode)) return TFileKind::Socket;
  if (S_ISCHR(st.st_mode)) return TFileKind::CharDevice;
  if (S_ISBLK(st.st_mode)) return TFileKind::BlockDevice;
  return TFileKind::Other;
}

int32_t AttributesOf(const std::string &name, const struct stat &st, TFileKind kind) {
  int32_t attr = 0;
  if (kind == TFileKind::Folder)
    attr |= faDirectory;
  else if (kind == TFileKind::Regular)
    attr |= faArchive;
  else
    attr |= faSysFile;
  if (!(st.st_mode & S_IWUSR)) attr |= faReadOnly;
  if (!name.empty() && name[0] == '.' && name != "." && name != "..") attr |= faHidden;
  return attr;
}

// One folder entry, looked at without following a link and then, for a
// link, through it. False when the entry has gone meanwhile.
bool LookAt(int dirfd, const std::string &name, TSearchRec &r) {
  struct stat st;
  if (::fstatat(dirfd, name.c_str(), &st, AT_SYMLINK_NOFOLLOW) != 0) return false;
  const bool link = S_ISLNK(st.st_mode);
  TFileKind kind = TFileKind::BrokenLink;
  if (!link || ::fstatat(dirfd, name.c_str(), &st, 0) == 0) kind = KindOf(st);
  r.Time = UnixTimeToFileDate(st.st_mtime);
  r.Size = kind == TFileKind::Regular ? static_cast<int64_t>(st.st_size) : 0;
  r.Attr = AttributesOf(name, st, kind) | (link ? faSymLink : 0);
  r.Name = name;
  r.Kind = kind;
  r.Identity = {static_cast<uint64_t>(st.st_dev), static_cast<uint64_t>(st.st_ino)};
  return true;
}

// The host's code for a folder that can't be opened; errno keeps the reason.
int32_t FolderErrorCode(int error) {
  switch (error) {
  case EACCES:
  case EPERM:
    return ERROR_ACCESS_DENIED;
  case ENAMETOOLONG:
    return ERROR_FILENAME_EXCED_RANGE;
  default:
    return ERROR_PATH_NOT_FOUND;
  }
}

void Deliver(TSearchRec &F) {
  TSearchState &state = *F.FindHandle;
  const TSearchRec &m = state.matches[state.next++];
  F.Time = m.Time;
  F.Size = m.Size;
  F.Attr = m.Attr;
  F.Name = m.Name;
  F.Kind = m.Kind;
  F.Identity = m.Identity;
}

} // namespace

// ---- File masks -------------------------------------------------------------

// "*" and "?" over code points, letters without case; brackets are plain.
// The mask as a pattern, and for a mask that ends in ".*" or "." the pattern
// without that end, which takes names the whole mask misses.
struct TFileMask::Compiled {
  enum class Tail : uint8_t { None, DotStar, Dot };
  WildcardPattern whole, shorter;
  Tail tail = Tail::None;
};

TFileMask::TFileMask(std::string_view mask) {
  if (mask.empty()) return;
  if (mask == "*" || mask == "*.*") {
    FAll = true;
    return;
  }
  const std::u32string m = CodePointsOf(mask);
  FCompiled = std::make_unique<Compiled>();
  FCompiled->whole = WildcardPattern::StarsAndQuestionMarks(m);
  const std::u32string_view v(m);
  if (m.size() > 2 && v.substr(m.size() - 2) == U".*") {
    FCompiled->tail = Compiled::Tail::DotStar;
    FCompiled->shorter = WildcardPattern::StarsAndQuestionMarks(v.substr(0, m.size() - 2));
  } else if (m.size() > 1 && m.back() == U'.') {
    FCompiled->tail = Compiled::Tail::Dot;
    FCompiled->shorter = WildcardPattern::StarsAndQuestionMarks(v.substr(0, m.size() - 1));
  }
}

TFileMask::~TFileMask() = default;
TFileMask::TFileMask(TFileMask &&) noexcept = default;
TFileMask &TFileMask::operator=(TFileMask &&) noexcept = default;

bool TFileMask::Matches(std::string_view name) const {
  if (FAll) return true;
  if (!FCompiled) return false;
  const std::u32string n = CodePointsOf(name);
  if (FCompiled->whole.Matches(n)) return true;
  switch (FCompiled->tail) {
  case Compiled::Tail::DotStar:
    return FCompiled->shorter.Matches(n);
  case Compiled::Tail::Dot:
    return n.find(U'.') == std::u32string::npos && FCompiled->shorter.Matches(n);
  case Compiled::Tail::None:
    break;
  }
  return false;
}

bool MatchesFileMask(std::string_view name, std::string_view mask) {
  return TFileMask(mask).Matches(name);
}

// ---- One reading of a folder ---------------------------------------------------

namespace {

// The kind the folder listing gives, when it gives one that needs no look:
// not for a link (what it leads to counts) nor where the file system is silent.
bool KindFromListing(uint8_t type, TFileKind &kind) {
  switch (type) {
  case DT_REG:
    kind = TFileKind::Regular;
    return true;
  case DT_DIR:
    kind = TFileKind::Folder;
    return true;
  case DT_FIFO:
    kind = TFileKind::Fifo;
    return true;
  case DT_SOCK:
    kind = TFileKind::Socket;
    return true;
  case DT_CHR:
    kind = TFileKind::CharDevice;
    return true;
  case DT_BLK:
    kind = TFileKind::BlockDevice;
    return true;
  default:
    return false;
  }
}

bool IsHiddenName(const std::string &name) {
  return !name.empty() && name[0] == '.' && name != "." && name != "..";
}

} // namespace

TFolderEntries::~TFolderEntries() {
  Close();
}

void TFolderEntries::Close() {
  if (FFolder) ::closedir(static_cast<DIR *>(FFolder));
  FFolder = nullptr;
}

int32_t TFolderEntries::Read(const std::string &folder) {
  FFolderName = folder;
  FEntries.clear();
  Close();
  const std::string native = folder.empty() ? std::string(".") : NativePath(folder);
  DIR *dir = ::opendir(native.c_str());
  if (!dir) return FolderErrorCode(errno);
  while (dirent *e = ::readdir(dir))
    FEntries.push_back({e->d_name, e->d_type});
  // Kept open: its descriptor serves the looks at entries by name.
  FFolder = dir;
  std::sort(FEntries.begin(), FEntries.end(),
            [](const Entry &a, const Entry &b) { return a.Name < b.Name; });
  return 0;
}

bool TFolderEntries::Find(const Entry &entry, const TFileMask &mask, int32_t attr,
                          TSearchRec &r) const {
  if (!FFolder || !mask.Matches(entry.Name)) return false;
  const int32_t exclude = ~attr & (faHidden | faSysFile | faDirectory);
  if ((exclude & faHidden) && IsHiddenName(entry.Name)) return false;
  TFileKind kind;
  if (KindFromListing(entry.Type, kind)) {
    if ((exclude & faDirectory) && kind == TFileKind::Folder) return false;
    const bool special = kind != TFileKind::Folder && kind != TFileKind::Regular;
    if ((exclude & faSysFile) && special) return false;
  }
  return LookAt(::dirfd(static_cast<DIR *>(FFolder)), entry.Name, r) && (r.Attr & exclude) == 0;
}

bool TFolderEntries::SurelyNoFolder(const Entry &entry) {
  TFileKind kind;
  return KindFromListing(entry.Type, kind) && kind != TFileKind::Folder;
}

// ---- The search -----------------------------------------------------------------

int32_t FindFirst(const std::string &path, int32_t attr, TSearchRec &F) {
  FindClose(F);
  TFolderEntries folder;
  const int32_t code = folder.Read(ExtractFilePath(path));
  if (code != 0) return code;
  F.ExcludeAttr = ~attr & (faHidden | faSysFile | faDirectory);
  const TFileMask mask(ExtractFileName(path));
  auto state = std::make_shared<TSearchState>();
  for (const TFolderEntries::Entry &e : folder.Entries()) {
    TSearchRec r;
    if (folder.Find(e, mask, attr, r)) state->matches.push_back(std::move(r));
  }
  if (state->matches.empty()) {
    errno = ENOENT;
    return ERROR_FILE_NOT_FOUND;
  }
  F.FindHandle = std::move(state);
  Deliver(F);
  return 0;
}

int32_t FindNext(TSearchRec &F) {
  if (!F.FindHandle || F.FindHandle->next >= F.FindHandle->matches.size())
    return ERROR_NO_MORE_FILES;
  Deliver(F);
  return 0;
}

void FindClose(TSearchRec &F) {
  F.FindHandle.reset();
}

int32_t FileGetAttr(const std::string &fileName) {
  struct stat st;
  std::string native = NativePath(ExcludeTrailingPathDelimiter(fileName));
  if (native.empty() || ::stat(native.c_str(), &st) != 0) return -1;
  return AttributesOf(ExtractFileName(native), st, KindOf(st));
}

bool FileKindOf(const std::string &fileName, TFileKind &kind, TFileIdentity &identity) {
  struct stat st;
  std::string native = NativePath(fileName);
  if (native.empty()) {
    errno = ENOENT;
    return false;
  }
  if (::stat(native.c_str(), &st) != 0) {
    int error = errno;
    if (error != ENOENT || ::lstat(native.c_str(), &st) != 0) return false;
    kind = TFileKind::BrokenLink; // the name is there, what it leads to is not
  } else {
    kind = KindOf(st);
  }
  identity = {static_cast<uint64_t>(st.st_dev), static_cast<uint64_t>(st.st_ino)};
  return true;
}

const char *FileKindText(TFileKind kind) {
  switch (kind) {
  case TFileKind::Regular:
    return "a file";
  case TFileKind::Folder:
    return "a folder";
  case TFileKind::Fifo:
    return "a FIFO (named pipe)";
  case TFileKind::Socket:
    return "a socket";
  case TFileKind::CharDevice:
  case TFileKind::BlockDevice:
    return "a device";
  case TFileKind::BrokenLink:
    return "a broken link";
  case TFileKind::Other:
    break;
  }
  return "not a file";
}

int32_t FileAge(const std::string &fileName) {
  struct stat st;
  if (::stat(NativePath(fileName).c_str(), &st) != 0 || S_ISDIR(st.st_mode)) return -1;
  return UnixTimeToFileDate(st.st_mtime);
}

int32_t FileSetDate(const std::string &fileName, int32_t age) {
  THandle h = FileOpen(fileName, fmOpenWrite | fmShareDenyNone);
  if (h < 0) return errno;
  int32_t result = FileSetDate(h, age);
  FileClose(h);
  return result;
}

std::string ExpandFileName(const std::string &fileName) {
  if (fileName.empty()) return GetCurrentDir();
  bool drive = fileName.size() >= 2 && fileName[1] == ':' &&
               std::isalpha(static_cast<unsigned char>(fileName[0]));
  std::string full = fileName;
  if (!drive && fileName[0] != PathDelim)
    full = IncludeTrailingPathDelimiter(GetCurrentDir()) + fileName;
  // Resolve "." and ".." parts; a ".." at the root stays at the root.
  std::string prefix = drive ? full.substr(0, 2) : std::string();
  std::vector<std::string> parts;
  size_t i = prefix.size();
  while (i <= full.size()) {
    size_t j = full.find(PathDelim, i);
    if (j == std::string::npos) j = full.size();
    std::string part = full.substr(i, j - i);
    if (part == "..") {
      if (!parts.empty()) parts.pop_back();
    } else if (!part.empty() && part != ".") {
      parts.push_back(part);
    }
    i = j + 1;
  }
  std::string result = prefix;
  for (const std::string &p : parts)
    result += PathDelim + p;
  if (result.size() == prefix.size() || full.back() == PathDelim)
    result += PathDelim; // the root, or a name that ended in a delimiter
  return result;
}

} // namespace kestrel
