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

// "*" and "?" over code points, letters without case; brackets are plain.
bool Glob(std::u32string_view name, std::u32string_view mask) {
  return WildcardPattern::StarsAndQuestionMarks(mask).Matches(name);
}

int32_t AttributesOf(const std::string &name, const struct stat &st) {
  int32_t attr = 0;
  if (S_ISDIR(st.st_mode))
    attr |= faDirectory;
  else if (S_ISREG(st.st_mode))
    attr |= faArchive;
  else
    attr |= faSysFile;
  if (!(st.st_mode & S_IWUSR)) attr |= faReadOnly;
  if (!name.empty() && name[0] == '.' && name != "." && name != "..") attr |= faHidden;
  return attr;
}

TSearchRec RecordOf(const std::string &name, const struct stat &st, int32_t attr) {
  TSearchRec r;
  r.Time = UnixTimeToFileDate(st.st_mtime);
  r.Size = S_ISDIR(st.st_mode) ? 0 : static_cast<int64_t>(st.st_size);
  r.Attr = attr;
  r.Name = name;
  return r;
}

void Deliver(TSearchRec &F) {
  TSearchState &state = *F.FindHandle;
  const TSearchRec &m = state.matches[state.next++];
  F.Time = m.Time;
  F.Size = m.Size;
  F.Attr = m.Attr;
  F.Name = m.Name;
}

} // namespace

bool MatchesFileMask(std::string_view name, std::string_view mask) {
  if (mask.empty()) return false;
  if (mask == "*" || mask == "*.*") return true;
  std::u32string n = CodePointsOf(name), m = CodePointsOf(mask);
  if (Glob(n, m)) return true;
  bool dotless = n.find(U'.') == std::u32string::npos;
  if (m.size() > 2 && m.compare(m.size() - 2, 2, U".*") == 0)
    return Glob(n, std::u32string_view(m).substr(0, m.size() - 2));
  if (m.size() > 1 && m.back() == U'.' && dotless)
    return Glob(n, std::u32string_view(m).substr(0, m.size() - 1));
  return false;
}

int32_t FindFirst(const std::string &path, int32_t attr, TSearchRec &F) {
  FindClose(F);
  std::string folder = ExtractFilePath(path);
  std::string mask = ExtractFileName(path);
  std::string native = folder.empty() ? std::string(".") : NativePath(folder);
  int dirfd = ::open(native.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (dirfd < 0) return ERROR_PATH_NOT_FOUND;
  DIR *dir = ::fdopendir(dirfd);
  if (!dir) {
    ::close(dirfd);
    return ERROR_PATH_NOT_FOUND;
  }
  F.ExcludeAttr = ~attr & (faHidden | faSysFile | faDirectory);
  auto state = std::make_shared<TSearchState>();
  while (dirent *e = ::readdir(dir)) {
    std::string name = e->d_name;
    if (!MatchesFileMask(name, mask)) continue;
    struct stat st;
    if (::fstatat(dirfd, e->d_name, &st, 0) != 0) continue; // gone meanwhile, or a broken link
    int32_t a = AttributesOf(name, st);
    if (a & F.ExcludeAttr) continue;
    state->matches.push_back(RecordOf(name, st, a));
  }
  ::closedir(dir);
  if (state->matches.empty()) return ERROR_FILE_NOT_FOUND;
  std::sort(state->matches.begin(), state->matches.end(),
            [](const TSearchRec &a, const TSearchRec &b) { return a.Name < b.Name; });
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
  return AttributesOf(ExtractFileName(native), st);
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
