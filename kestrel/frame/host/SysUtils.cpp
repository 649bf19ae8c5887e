#include <kestrel/frame/host/SysUtils.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <charconv>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>
#include <vector>

#include <kestrel/frame/host/Consts.h>
#include <kestrel/frame/platform/Nls.h>
#include <kestrel/frame/platform/Platform.h>
#include <kestrel/frame/platform/Resources.h>

namespace kestrel {

std::string Format(const char *fmt, ...) {
  va_list args;
  va_start(args, fmt);
  va_list copy;
  va_copy(copy, args);
  int n = std::vsnprintf(nullptr, 0, fmt, copy);
  va_end(copy);
  std::string out;
  if (n > 0) {
    out.resize(static_cast<size_t>(n));
    std::vsnprintf(out.data(), out.size() + 1, fmt, args);
  }
  va_end(args);
  return out;
}

std::string IntToStr(int64_t value) { return std::to_string(value); }

bool TryStrToInt(std::string_view text, int32_t &value) {
  std::string_view t = text;
  while (!t.empty() && (t.front() == ' ' || t.front() == '\t'))
    t.remove_prefix(1);
  while (!t.empty() && (t.back() == ' ' || t.back() == '\t'))
    t.remove_suffix(1);
  bool negative = false;
  if (!t.empty() && (t.front() == '+' || t.front() == '-')) {
    negative = t.front() == '-';
    t.remove_prefix(1);
  }
  int base = 10;
  if (!t.empty() && t.front() == '$') {
    base = 16;
    t.remove_prefix(1);
  } else if (t.size() > 2 && t[0] == '0' && (t[1] == 'x' || t[1] == 'X')) {
    base = 16;
    t.remove_prefix(2);
  }
  if (t.empty())
    return false;
  int64_t v = 0;
  auto [end, ec] = std::from_chars(t.data(), t.data() + t.size(), v, base);
  if (ec != std::errc() || end != t.data() + t.size())
    return false;
  if (negative)
    v = -v;
  if (base == 10 && (v < INT32_MIN || v > INT32_MAX))
    return false;
  if (base == 16 && (v < INT32_MIN || v > UINT32_MAX))
    return false;
  value = static_cast<int32_t>(static_cast<uint32_t>(v));
  return true;
}

int32_t StrToInt(std::string_view text) {
  int32_t v = 0;
  if (!TryStrToInt(text, v))
    throw EConvertError(Format(Consts::SInvalidInteger, std::string(text).c_str()));
  return v;
}

int32_t StrToIntDef(std::string_view text, int32_t fallback) {
  int32_t v = 0;
  return TryStrToInt(text, v) ? v : fallback;
}

std::string UpperCase(std::string_view s) {
  std::string r(s);
  for (char &c : r)
    if (c >= 'a' && c <= 'z')
      c = static_cast<char>(c - 32);
  return r;
}

std::string LowerCase(std::string_view s) {
  std::string r(s);
  for (char &c : r)
    if (c >= 'A' && c <= 'Z')
      c = static_cast<char>(c + 32);
  return r;
}

std::string Trim(std::string_view s) {
  size_t b = 0, e = s.size();
  while (b < e && static_cast<unsigned char>(s[b]) <= ' ')
    ++b;
  while (e > b && static_cast<unsigned char>(s[e - 1]) <= ' ')
    --e;
  return std::string(s.substr(b, e - b));
}

int CompareText(std::string_view a, std::string_view b) {
  size_t n = std::min(a.size(), b.size());
  for (size_t i = 0; i < n; ++i) {
    int ca = static_cast<unsigned char>(a[i]), cb = static_cast<unsigned char>(b[i]);
    if (ca >= 'a' && ca <= 'z')
      ca -= 32;
    if (cb >= 'a' && cb <= 'z')
      cb -= 32;
    if (ca != cb)
      return ca - cb;
  }
  return static_cast<int>(a.size()) - static_cast<int>(b.size());
}

bool SameText(std::string_view a, std::string_view b) { return CompareText(a, b) == 0; }

static size_t LastDelimiter(std::string_view path, bool withDrive) {
  for (size_t i = path.size(); i > 0; --i) {
    char c = path[i - 1];
    if (c == PathDelim || (withDrive && c == DriveDelim && i == 2))
      return i - 1;
  }
  return std::string_view::npos;
}

std::string ExtractFilePath(std::string_view path) {
  size_t p = LastDelimiter(path, true);
  return p == std::string_view::npos ? std::string() : std::string(path.substr(0, p + 1));
}

std::string ExtractFileDir(std::string_view path) {
  size_t p = LastDelimiter(path, true);
  if (p == std::string_view::npos)
    return {};
  if (p > 0 && path[p] == PathDelim && !(p == 2 && path[1] == DriveDelim))
    return std::string(path.substr(0, p));
  return std::string(path.substr(0, p + 1));
}

std::string ExtractFileName(std::string_view path) {
  size_t p = LastDelimiter(path, true);
  return std::string(p == std::string_view::npos ? path : path.substr(p + 1));
}

std::string ExtractFileExt(std::string_view path) {
  for (size_t i = path.size(); i > 0; --i) {
    char c = path[i - 1];
    if (c == '.')
      return std::string(path.substr(i - 1));
    if (c == PathDelim || c == DriveDelim)
      break;
  }
  return {};
}

std::string ChangeFileExt(std::string_view path, std::string_view ext) {
  std::string old = ExtractFileExt(path);
  return std::string(path.substr(0, path.size() - old.size())) + std::string(ext);
}

std::string IncludeTrailingPathDelimiter(std::string_view path) {
  std::string r(path);
  if (r.empty() || r.back() != PathDelim)
    r += PathDelim;
  return r;
}

std::string ExcludeTrailingPathDelimiter(std::string_view path) {
  std::string r(path);
  if (!r.empty() && r.back() == PathDelim)
    r.pop_back();
  return r;
}

static bool StatOf(std::string_view path, struct stat &st) {
  return ::stat(NativePath(path).c_str(), &st) == 0;
}

bool FileExists(std::string_view path) {
  struct stat st;
  return StatOf(path, st) && !S_ISDIR(st.st_mode);
}

bool DirectoryExists(std::string_view path) {
  struct stat st;
  return StatOf(path, st) && S_ISDIR(st.st_mode);
}

bool DeleteFile(std::string_view path) { return ::unlink(NativePath(path).c_str()) == 0; }
bool RemoveDir(std::string_view path) { return ::rmdir(NativePath(path).c_str()) == 0; }
bool CreateDir(std::string_view path) { return ::mkdir(NativePath(path).c_str(), 0777) == 0; }

bool ForceDirectories(std::string_view path) {
  std::string dir = ExcludeTrailingPathDelimiter(path);
  if (dir.empty() || DirectoryExists(dir))
    return true;
  std::string parent = ExtractFileDir(dir);
  if (!parent.empty() && parent != dir && !ForceDirectories(parent))
    return false;
  return CreateDir(dir) || DirectoryExists(dir);
}

std::string GetCurrentDir() {
  std::vector<char> buf(4096);
  while (!::getcwd(buf.data(), buf.size())) {
    if (errno != ERANGE)
      return {};
    buf.resize(buf.size() * 2);
  }
  return buf.data();
}

bool SetCurrentDir(std::string_view path) { return ::chdir(NativePath(path).c_str()) == 0; }

namespace {
thread_local int32_t gInOutResult = 0;
}

void ChDir(std::string_view path) {
  gInOutResult = ::chdir(NativePath(path).c_str()) == 0 ? 0 : (errno ? errno : 3);
}

void MkDir(std::string_view path) {
  gInOutResult = ::mkdir(NativePath(path).c_str(), 0777) == 0 ? 0 : (errno ? errno : 5);
}

int32_t IOResult() {
  int32_t r = gInOutResult;
  gInOutResult = 0;
  return r;
}

std::string ParamStr0() { return GetModuleFileNameA(nullptr); }

int32_t GetLastOSError() { return errno; }

void RaiseLastOSError() { RaiseLastOSError(GetLastOSError()); }

void RaiseLastOSError(int32_t lastError) {
  if (lastError != 0)
    throw EOSError(Format(Consts::SOSError, lastError, std::strerror(lastError)), lastError);
  throw EOSError(Consts::SUnkOSError, 0);
}

int64_t DiskFree(uint8_t drive) {
  std::string folder;
  if (drive == 0) {
    folder = GetCurrentDir();
  } else if (drive <= 26) {
    folder = DriveRoot(static_cast<char>('A' + drive - 1));
  }
  struct statvfs vfs;
  if (folder.empty() || ::statvfs(folder.c_str(), &vfs) != 0) return -1;
  return static_cast<int64_t>(vfs.f_bavail) * static_cast<int64_t>(vfs.f_frsize);
}

std::string AnsiStringFromWide(std::u16string_view text) {
  if (text.empty()) return {};
  const int32_t units = static_cast<int32_t>(text.size());
  int32_t size = WideCharToMultiByte(CP_ACP, 0, text.data(), units, nullptr, 0, nullptr, nullptr);
  std::string bytes(static_cast<size_t>(std::max(size, 0)), '\0');
  if (size > 0)
    WideCharToMultiByte(CP_ACP, 0, text.data(), units, bytes.data(), size, nullptr, nullptr);
  return bytes;
}

std::string LoadResString(uint16_t ident) {
  std::string text;
  FindStringResource(KestrelModuleHandle(), ident, text);
  return text;
}

std::string LoadResString(const TResStringRec *rec) {
  return rec ? LoadResString(rec->Identifier) : std::string();
}

} // namespace kestrel
