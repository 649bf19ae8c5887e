// Ini files: any bytes read as an ini file, every value answers each typed
// read, and the file written back reads as the same sections, keys and values
// and writes the same bytes again. A value written by name reads back as it
// was written, in memory and from the file, or is refused with the ini
// file's error.
#include "FuzzSupport.h"

using namespace kestrel;
using namespace kestrel::fuzz;

namespace {

std::string Saved(const TMemIniFile &ini) {
  TStringList lines;
  ini.GetStrings(&lines);
  return lines.Text();
}

// Every section with its values, as the reads give them.
std::string Contents(TMemIniFile &ini) {
  std::string all;
  TStringList sections, values;
  ini.ReadSections(&sections);
  for (int32_t s = 0; s < sections.Count(); ++s) {
    ini.ReadSectionValues(sections.Strings(s), &values);
    all += "[" + sections.Strings(s) + "]\n" + values.Text();
  }
  return all;
}

void ReadEveryForm(TMyMemIniFile &ini) {
  TStringList sections, keys;
  ini.ReadSections(&sections);
  for (int32_t s = 0; s < sections.Count(); ++s) {
    const std::string section = sections.Strings(s);
    if (!ini.SectionExists(section)) Finding("a section listed does not exist");
    ini.ReadSection(section, &keys);
    for (int32_t k = 0; k < keys.Count(); ++k) {
      const std::string key = keys.Strings(k);
      if (!ini.ValueExists(section, key)) Finding("a key listed does not exist");
      ini.ReadInteger(section, key, 7);
      ini.ReadBool(section, key, true);
      ini.ReadBool(section, key, false);
      ini.ReadFloat(section, key, 0.5);
      ini.ReadDate(section, key, 1.0);
      ini.ReadDateTime(section, key, 1.0);
      ini.ReadTime(section, key, 1.0);
      TMemoryStream bytes;
      if (ini.ReadBinaryStream(section, key, &bytes) != bytes.GetSize())
        Finding("ReadBinaryStream gave another count than it wrote");
    }
  }
}

// Any bytes as a file: read, written back, read again.
void ReadAndWriteBack(const std::string &bytes, const std::string &file, const std::string &copy) {
  WriteFile(file, bytes);
  TMyMemIniFile ini(file);
  ReadEveryForm(ini);
  const std::string text = Saved(ini);
  TMemIniFile to(copy);
  TStringList lines;
  ini.GetStrings(&lines);
  to.SetStrings(&lines);
  to.UpdateFile();
  TMemIniFile back(copy);
  if (Contents(back) != Contents(ini)) Finding("an ini file written back reads otherwise");
  if (Saved(back) != text) Finding("an ini file written back writes other bytes");
}

// One value written over any file: it reads back as written.
void WriteOne(const std::string &section, const std::string &key, const std::string &value,
              const std::string &bytes, const std::string &file) {
  WriteFile(file, bytes);
  TMyMemIniFile ini(file);
  try {
    ini.WriteString(section, key, value);
  } catch (const EIniFileException &) {
    return;
  }
  if (ini.ReadString(section, key, "\x01") != value) Finding("a value written reads otherwise");
  ini.UpdateFile();
  TMyMemIniFile back(file);
  if (back.ReadString(section, key, "\x01") != value)
    Finding("a value written to the file reads otherwise");
  if (Contents(back) != Contents(ini)) Finding("an ini file written reads otherwise");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  Input in(data, size);
  const std::string file = PrivateFolder() + "/a.ini", copy = PrivateFolder() + "/b.ini";
  if (in.Byte() & 1) {
    ReadAndWriteBack(in.Rest(), file, copy);
  } else {
    const std::string section = in.Part(), key = in.Part(), value = in.Part();
    WriteOne(section, key, value, in.Rest(), file);
  }
  return 0;
}
