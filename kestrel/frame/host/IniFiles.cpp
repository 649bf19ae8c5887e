#include <kestrel/frame/host/IniFiles.h>

#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

#include <kestrel/frame/host/Consts.h>
#include <kestrel/frame/host/SysUtils.h>
#include <kestrel/frame/host/TStream.h>
#include <kestrel/frame/host/TStringList.h>
#include <kestrel/frame/platform/Platform.h>
#include <kestrel/frame/platform/SafeFiles.h>

namespace kestrel {

namespace {

// Fills a list between BeginUpdate and EndUpdate, also when filling raises.
class ListFill {
public:
  explicit ListFill(TStrings *list) : list_(list) {
    list_->BeginUpdate();
    list_->Clear();
  }
  ~ListFill() { list_->EndUpdate(); }
  ListFill(const ListFill &) = delete;
  ListFill &operator=(const ListFill &) = delete;

private:
  TStrings *list_;
};

constexpr const char *kUtf8Mark = "\xEF\xBB\xBF";

bool HasLineBreak(const std::string &s) {
  return s.find_first_of("\r\n") != std::string::npos;
}

bool IsEnclosed(std::string_view s) {
  return s.size() >= 2 && s.front() == '"' && s.back() == '"';
}

std::string Unquoted(std::string value) {
  return IsEnclosed(value) ? value.substr(1, value.size() - 2) : value;
}

// Quotes exactly the values that reading would change.
std::string Quoted(const std::string &value) {
  return Trim(value) != value || IsEnclosed(value) ? "\"" + value + "\"" : value;
}

[[noreturn]] void BadName(const char *what, const std::string &name) {
  throw EIniFileException(Format("Invalid ini file %s '%s'", what, name.c_str()));
}

void CheckSectionName(const std::string &section) {
  if (HasLineBreak(section) || Trim(section) != section) BadName("section name", section);
}

void CheckKey(const std::string &key) {
  bool bad = HasLineBreak(key) || Trim(key) != key || key.find('=') != std::string::npos ||
             (!key.empty() && (key[0] == ';' || key[0] == '#' || key[0] == '['));
  if (bad) BadName("key", key);
}

// The whole file, or nothing when it cannot be read.
std::string ReadWholeFile(const std::string &fileName) {
  std::string bytes;
  if (fileName.empty()) return bytes;
  int fd = ::open(NativePath(fileName).c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return bytes;
  char buf[65536];
  for (;;) {
    ssize_t n = ::read(fd, buf, sizeof buf);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) {
      bytes.clear(); // unreadable (a folder, say): an empty file
      break;
    }
    if (n == 0) break;
    bytes.append(buf, static_cast<size_t>(n));
  }
  ::close(fd);
  return bytes;
}

int HexValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return -1;
}

} // namespace

// ---- TCustomIniFile: the typed forms over ReadString and WriteString ---------

bool TCustomIniFile::HasSection(const std::string &section) {
  TStringList sections;
  ReadSections(&sections);
  return sections.IndexOf(section) >= 0;
}

bool TCustomIniFile::ValueExists(const std::string &section, const std::string &ident) {
  TStringList keys;
  ReadSection(section, &keys);
  return keys.IndexOf(ident) >= 0;
}

int32_t TCustomIniFile::ReadInteger(const std::string &section, const std::string &ident,
                                    int32_t defaultValue) {
  return StrToIntDef(ReadString(section, ident, ""), defaultValue);
}

void TCustomIniFile::WriteInteger(const std::string &section, const std::string &ident,
                                  int32_t value) {
  WriteString(section, ident, IntToStr(value));
}

bool TCustomIniFile::ReadBool(const std::string &section, const std::string &ident,
                              bool defaultValue) {
  return ReadInteger(section, ident, defaultValue ? 1 : 0) != 0;
}

void TCustomIniFile::WriteBool(const std::string &section, const std::string &ident, bool value) {
  WriteString(section, ident, value ? "1" : "0");
}

int32_t TCustomIniFile::ReadBinaryStream(const std::string &section, const std::string &name,
                                         TStream *value) {
  const std::string text = ReadString(section, name, "");
  std::string bytes;
  for (size_t i = 0; i + 1 < text.size(); i += 2) {
    int hi = HexValue(text[i]), lo = HexValue(text[i + 1]);
    if (hi < 0 || lo < 0) break; // the bytes up to the first that is no pair of digits
    bytes += static_cast<char>(hi * 16 + lo);
  }
  const int32_t count = static_cast<int32_t>(bytes.size());
  if (value && count > 0) value->WriteBuffer(bytes.data(), count);
  return value ? count : 0;
}

namespace {

template <typename Parse>
TDateTime ReadDateForm(TCustomIniFile &ini, const std::string &section, const std::string &name,
                       TDateTime defaultValue, Parse parse) {
  TDateTime value;
  return parse(ini.ReadString(section, name, ""), value) ? value : defaultValue;
}

} // namespace

TDateTime TCustomIniFile::ReadDate(const std::string &section, const std::string &name,
                                   TDateTime defaultValue) {
  return ReadDateForm(*this, section, name, defaultValue,
                      [](std::string_view t, TDateTime &v) { return TryStrToDate(t, v); });
}

TDateTime TCustomIniFile::ReadDateTime(const std::string &section, const std::string &name,
                                       TDateTime defaultValue) {
  return ReadDateForm(*this, section, name, defaultValue,
                      [](std::string_view t, TDateTime &v) { return TryStrToDateTime(t, v); });
}

double TCustomIniFile::ReadFloat(const std::string &section, const std::string &name,
                                 double defaultValue) {
  double value;
  return TryStrToFloat(ReadString(section, name, ""), value) ? value : defaultValue;
}

TDateTime TCustomIniFile::ReadTime(const std::string &section, const std::string &name,
                                   TDateTime defaultValue) {
  return ReadDateForm(*this, section, name, defaultValue,
                      [](std::string_view t, TDateTime &v) { return TryStrToTime(t, v); });
}

void TCustomIniFile::WriteBinaryStream(const std::string &section, const std::string &name,
                                       TStream *value) {
  static const char kDigits[] = "0123456789ABCDEF";
  std::string text;
  if (value) {
    int64_t left = value->Remaining();
    unsigned char buf[4096];
    while (left > 0) {
      int32_t n = static_cast<int32_t>(std::min<int64_t>(left, sizeof buf));
      value->ReadBuffer(buf, n);
      for (int32_t i = 0; i < n; ++i) {
        text += kDigits[buf[i] >> 4];
        text += kDigits[buf[i] & 15];
      }
      left -= n;
    }
  }
  WriteString(section, name, text);
}

void TCustomIniFile::WriteDate(const std::string &section, const std::string &name,
                               TDateTime value) {
  WriteString(section, name, DateToStr(value));
}

void TCustomIniFile::WriteDateTime(const std::string &section, const std::string &name,
                                   TDateTime value) {
  WriteString(section, name, DateTimeToStr(value));
}

// The host's 15 digits where they hold the number exactly, else all it needs,
// so that ReadFloat gives back the same number.
void TCustomIniFile::WriteFloat(const std::string &section, const std::string &name, double value) {
  std::string text = FloatToStr(value);
  double back;
  if (std::isfinite(value) && (!TryStrToFloat(text, back) || back != value)) {
    char buf[32];
    auto [end, ec] = std::to_chars(buf, buf + sizeof buf, value);
    if (ec == std::errc()) text.assign(buf, end);
  }
  WriteString(section, name, text);
}

void TCustomIniFile::WriteTime(const std::string &section, const std::string &name,
                               TDateTime value) {
  WriteString(section, name, TimeToStr(value));
}

// ---- TMemIniFile ---------------------------------------------------------------

TMemIniFile::TMemIniFile(const std::string &fileName) : TCustomIniFile(fileName) {
  Parse(ReadWholeFile(fileName));
}

TMemIniFile::~TMemIniFile() = default;

void TMemIniFile::Section::Reindex() {
  index.clear();
  for (size_t i = 0; i < lines.size(); ++i)
    if (lines[i].isValue) index.emplace(lines[i].key, i);
}

TMemIniFile::Section *TMemIniFile::Find(const std::string &section) const {
  auto it = FIndex.find(section);
  return it == FIndex.end() ? nullptr : it->second;
}

TMemIniFile::Section &TMemIniFile::FindOrAdd(const std::string &section) {
  if (Section *found = Find(section)) return *found;
  FSections.push_back(std::make_unique<Section>());
  Section &added = *FSections.back();
  added.name = section;
  FIndex.emplace(section, &added);
  return added;
}

void TMemIniFile::Clear() {
  FPreamble.clear();
  FIndex.clear();
  FSections.clear();
}

// Lines end at CR LF, LF or a lone CR. A later header of a section already
// met adds to it; a key met twice counts once, the first time, as in Windows.
void TMemIniFile::Parse(const std::string &text) {
  Clear();
  size_t pos = text.compare(0, 3, kUtf8Mark) == 0 ? 3 : 0;
  Section *current = nullptr;
  while (pos < text.size()) {
    size_t end = text.find_first_of("\r\n", pos);
    if (end == std::string::npos) end = text.size();
    const std::string line = text.substr(pos, end - pos);
    pos = end + (text.compare(end, 2, "\r\n") == 0 ? 2 : 1);
    const std::string t = Trim(line);
    if (t.empty()) continue;
    if (t.size() >= 2 && t.front() == '[' && t.back() == ']') {
      current = &FindOrAdd(Trim(t.substr(1, t.size() - 2)));
      continue;
    }
    size_t eq = t.find('=');
    bool keyLine = current && eq != std::string::npos && t[0] != ';' && t[0] != '#';
    if (keyLine) {
      std::string key = Trim(t.substr(0, eq));
      if (current->index.count(key) == 0) {
        current->index.emplace(key, current->lines.size());
        current->lines.push_back({key, Unquoted(Trim(t.substr(eq + 1))), {}, true});
        continue;
      }
    }
    if (current)
      current->lines.push_back({{}, {}, line, false});
    else
      FPreamble.push_back(line);
  }
}

std::string TMemIniFile::Text() const {
  std::string out;
  for (const std::string &line : FPreamble)
    out += line + sLineBreak;
  for (size_t s = 0; s < FSections.size(); ++s) {
    if (s > 0 || !FPreamble.empty()) out += sLineBreak;
    const Section &section = *FSections[s];
    out += "[" + section.name + "]" + sLineBreak;
    for (const Line &line : section.lines)
      out += (line.isValue ? line.key + "=" + Quoted(line.value) : line.raw) + sLineBreak;
  }
  // Reading takes one mark off the front: a first line that begins with the
  // mark's bytes keeps them behind another.
  if (out.compare(0, 3, kUtf8Mark) == 0) out.insert(0, kUtf8Mark);
  return out;
}

void TMemIniFile::GetStrings(TStrings *list) const {
  list->SetText(Text());
}

void TMemIniFile::SetStrings(const TStrings *list) {
  Parse(list->Text());
}

bool TMemIniFile::HasSection(const std::string &section) {
  return Find(section) != nullptr;
}

std::string TMemIniFile::ReadString(const std::string &section, const std::string &ident,
                                    const std::string &defaultValue) {
  const Section *found = Find(section);
  if (!found) return defaultValue;
  auto it = found->index.find(ident);
  return it == found->index.end() ? defaultValue : found->lines[it->second].value;
}

void TMemIniFile::WriteString(const std::string &section, const std::string &ident,
                              const std::string &value) {
  CheckSectionName(section);
  CheckKey(ident);
  if (HasLineBreak(value)) BadName("value", value);
  Section &target = FindOrAdd(section);
  auto it = target.index.find(ident);
  if (it != target.index.end()) {
    target.lines[it->second].value = value;
    return;
  }
  target.index.emplace(ident, target.lines.size());
  target.lines.push_back({ident, value, {}, true});
}

void TMemIniFile::ReadSection(const std::string &section, TStrings *strings) {
  ListFill fill(strings);
  if (const Section *found = Find(section))
    for (const Line &line : found->lines)
      if (line.isValue) strings->Add(line.key);
}

void TMemIniFile::ReadSections(TStrings *strings) {
  ListFill fill(strings);
  for (const auto &section : FSections)
    strings->Add(section->name);
}

void TMemIniFile::ReadSectionValues(const std::string &section, TStrings *strings) {
  ListFill fill(strings);
  if (const Section *found = Find(section))
    for (const Line &line : found->lines)
      if (line.isValue) strings->Add(line.key + "=" + line.value);
}

void TMemIniFile::EraseSection(const std::string &section) {
  auto it = FIndex.find(section);
  if (it == FIndex.end()) return;
  Section *doomed = it->second;
  FIndex.erase(it);
  for (size_t i = 0; i < FSections.size(); ++i)
    if (FSections[i].get() == doomed) {
      FSections.erase(FSections.begin() + static_cast<ptrdiff_t>(i));
      break;
    }
}

void TMemIniFile::DeleteKey(const std::string &section, const std::string &ident) {
  Section *found = Find(section);
  if (!found) return;
  auto it = found->index.find(ident);
  if (it == found->index.end()) return;
  found->lines.erase(found->lines.begin() + static_cast<ptrdiff_t>(it->second));
  found->Reindex();
}

void TMemIniFile::UpdateFile() {
  if (!ReplaceFileWhole(FFileName, Text())) {
    const int err = errno;
    throw EFCreateError(Format(Consts::SFCreateErrorEx, FFileName.c_str(), std::strerror(err)));
  }
}

} // namespace kestrel
