// Unit inifileU2: the suite's ini file, with Booleans as the words YES and NO
// and a backup of the file on disk before it is rewritten.
#pragma once

#include <string>

#include <kestrel/frame/host/IniFiles.h>
#include <kestrel/frame/host/SysUtils.h>

namespace kestrel {

// The two words in the module's string table (identifiers 65528 and 65529),
// looked up at each use.
extern const TResStringRec _ident_YES;
extern const TResStringRec _ident_NO;

class TMyMemIniFile : public TMemIniFile {
public:
  using TMemIniFile::TMemIniFile;

  // Only the value's first character counts, case included: with default true
  // a value is true when it starts like "YES"; with default false it is false
  // when it starts like "NO". A missing key gives the default; anything else
  // gives the opposite of the default.
  bool ReadBool(const std::string &section, const std::string &ident, bool defaultValue) override;
  // "YES" or "NO".
  void WriteBool(const std::string &section, const std::string &ident, bool value) override;

  // When the file has a name and exists on disk, copies it to the same name
  // with the extension ".BAK" (over an older backup) and gives true, whether
  // the copy worked or not. The copy is of the disk file, not of what is in
  // memory.
  bool SaveABackup();
};

} // namespace kestrel
