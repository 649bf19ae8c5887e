// Unit inifileU2: TMyMemIniFile. Its start-up and finalisation do no work.
#include <kestrel/files/inifileU2.h>

#include <kestrel/frame/Units.h>
#include <kestrel/frame/platform/Resources.h>
#include <kestrel/frame/platform/SafeFiles.h>

namespace kestrel {

const TResStringRec _ident_YES = {65528};
const TResStringRec _ident_NO = {65529};

namespace {
const StringTableRegistration kBooleanWords({{65528, "YES"}, {65529, "NO"}});

bool StartsLike(const std::string &value, const std::string &word) {
  return !value.empty() && !word.empty() && value[0] == word[0];
}
} // namespace

bool TMyMemIniFile::ReadBool(const std::string &section, const std::string &ident,
                             bool defaultValue) {
  const std::string word = LoadResString(defaultValue ? &_ident_YES : &_ident_NO);
  const bool found = StartsLike(ReadString(section, ident, word), word);
  return defaultValue ? found : !found;
}

void TMyMemIniFile::WriteBool(const std::string &section, const std::string &ident, bool value) {
  WriteString(section, ident, LoadResString(value ? &_ident_YES : &_ident_NO));
}

bool TMyMemIniFile::SaveABackup() {
  if (FileName().empty() || !FileExists(FileName())) return false;
  CopyFileA(FileName().c_str(), ChangeFileExt(FileName(), ".BAK").c_str(), false);
  return true;
}

} // namespace kestrel

KESTREL_DEFINE_UNIT(inifileU2, ::kestrel::NoUnitWork, ::kestrel::NoUnitWork)
