// The host's ini files: sections of key=value lines, read and written by name.
//
// TCustomIniFile fixes the interface: its virtual reads and writes, in the
// host's slot order, with the typed forms built on ReadString/WriteString.
// TMemIniFile reads the whole file at Create, keeps it in memory and writes
// it back only at UpdateFile.
//
// As in Windows ini files, section names and keys are compared without regard
// to case, and blanks around them and around values do not count. A value
// that begins or ends with a blank, or that is itself enclosed in double
// quotes, is written inside double quotes, and a value read inside double
// quotes loses them, so that every value reads back as it was written.
// Lines that are not "[section]" or "key=value" (comments, stray text, keys
// before the first section) are never read as keys, and stay in their place
// when the file is written back.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include <kestrel/frame/host/AnsiStrings.h>
#include <kestrel/frame/host/Exceptions.h>
#include <kestrel/frame/host/TObject.h>
#include <kestrel/frame/host/Types.h>

namespace kestrel {

class TStream;
class TStrings;

KESTREL_DECLARE_EXCEPTION(EIniFileException, Exception);

class TCustomIniFile : public TObject {
public:
  explicit TCustomIniFile(std::string fileName) : FFileName(std::move(fileName)) {}

  const std::string &FileName() const { return FFileName; }
  // True when the section stands in the file, with keys or without.
  bool SectionExists(const std::string &section) { return HasSection(section); }
  bool ValueExists(const std::string &section, const std::string &ident);

  virtual std::string ReadString(const std::string &section, const std::string &ident,
                                 const std::string &defaultValue) = 0;
  virtual void WriteString(const std::string &section, const std::string &ident,
                           const std::string &value) = 0;
  // Decimal, or hexadecimal after "$" or "0x"; the default for anything else.
  virtual int32_t ReadInteger(const std::string &section, const std::string &ident,
                              int32_t defaultValue);
  virtual void WriteInteger(const std::string &section, const std::string &ident, int32_t value);
  // A number: 0 is false, any other true; the default when the value is no number.
  virtual bool ReadBool(const std::string &section, const std::string &ident, bool defaultValue);
  virtual void WriteBool(const std::string &section, const std::string &ident, bool value);
  // The value's hexadecimal pairs written to the stream; the bytes written.
  virtual int32_t ReadBinaryStream(const std::string &section, const std::string &name,
                                   TStream *value);
  // Dates, times and numbers in the host's text forms (SysUtils.h); the
  // default when the value has none of them. A number that FloatToStr's 15
  // digits do not hold exactly is written with the digits it needs.
  virtual TDateTime ReadDate(const std::string &section, const std::string &name,
                             TDateTime defaultValue);
  virtual TDateTime ReadDateTime(const std::string &section, const std::string &name,
                                 TDateTime defaultValue);
  virtual double ReadFloat(const std::string &section, const std::string &name,
                           double defaultValue);
  virtual TDateTime ReadTime(const std::string &section, const std::string &name,
                             TDateTime defaultValue);
  // From the stream's position to its end, as hexadecimal pairs.
  virtual void WriteBinaryStream(const std::string &section, const std::string &name,
                                 TStream *value);
  virtual void WriteDate(const std::string &section, const std::string &name, TDateTime value);
  virtual void WriteDateTime(const std::string &section, const std::string &name, TDateTime value);
  virtual void WriteFloat(const std::string &section, const std::string &name, double value);
  virtual void WriteTime(const std::string &section, const std::string &name, TDateTime value);
  // The keys of a section; the list is cleared first.
  virtual void ReadSection(const std::string &section, TStrings *strings) = 0;
  virtual void ReadSections(TStrings *strings) = 0;
  // The section's lines as "key=value".
  virtual void ReadSectionValues(const std::string &section, TStrings *strings) = 0;
  virtual void EraseSection(const std::string &section) = 0;
  virtual void DeleteKey(const std::string &section, const std::string &ident) = 0;
  virtual void UpdateFile() = 0;

protected:
  // Behind SectionExists; this one asks ReadSections.
  virtual bool HasSection(const std::string &section);
  std::string FFileName;
};

class TMemIniFile : public TCustomIniFile {
public:
  // Reads the file; a missing or unreadable file is an empty one.
  explicit TMemIniFile(const std::string &fileName);
  ~TMemIniFile() override;

  std::string ReadString(const std::string &section, const std::string &ident,
                         const std::string &defaultValue) override;
  // Raises EIniFileException for a name or value that the file could not hold
  // as given: a line break anywhere, blanks around a section name or key, a
  // key with "=" or starting with ";", "#" or "[".
  void WriteString(const std::string &section, const std::string &ident,
                   const std::string &value) override;
  void ReadSection(const std::string &section, TStrings *strings) override;
  void ReadSections(TStrings *strings) override;
  void ReadSectionValues(const std::string &section, TStrings *strings) override;
  void EraseSection(const std::string &section) override;
  void DeleteKey(const std::string &section, const std::string &ident) override;
  // Writes the whole file: to a temporary file beside it, then renamed over
  // it, so a failure (raised as EFCreateError) leaves the old file whole.
  void UpdateFile() override;

  // Forgets every section, as for a file that does not exist.
  void Clear();
  // The file's text, line by line, as UpdateFile would write it.
  void GetStrings(TStrings *list) const;
  // Replaces the contents with lines read as from a file.
  void SetStrings(const TStrings *list);

protected:
  bool HasSection(const std::string &section) override;

private:
  struct TextLess {
    bool operator()(const std::string &a, const std::string &b) const {
      return AnsiCompareText(a, b) < 0;
    }
  };
  struct Line {
    std::string key, value; // a key=value line
    std::string raw;        // any other line, kept as it stood
    bool isValue;
  };
  struct Section {
    std::string name;
    std::vector<Line> lines;
    std::map<std::string, size_t, TextLess> index; // key -> its line
    void Reindex();
  };

  void Parse(const std::string &text);
  std::string Text() const;
  Section *Find(const std::string &section) const;
  Section &FindOrAdd(const std::string &section);

  std::vector<std::string> FPreamble; // lines before the first section
  std::vector<std::unique_ptr<Section>> FSections;
  std::map<std::string, Section *, TextLess> FIndex;
};

} // namespace kestrel
