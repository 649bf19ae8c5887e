// The host's string, file and folder functions that the library relies on.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <kestrel/frame/host/Exceptions.h>
#include <kestrel/frame/host/Types.h>

namespace kestrel {

inline constexpr char PathDelim = '/';
inline constexpr char DriveDelim = ':';

// printf-style formatting into a byte string.
std::string Format(const char *fmt, ...) __attribute__((format(printf, 1, 2)));

// Numbers and ASCII text. StrToIntDef gives the fallback and TryStrToInt false
// where StrToInt raises; CompareText is below 0, 0 or above 0, without case.
std::string IntToStr(int64_t value);
int32_t StrToInt(std::string_view text); // raises EConvertError
int32_t StrToIntDef(std::string_view text, int32_t fallback);
bool TryStrToInt(std::string_view text, int32_t &value);
std::string UpperCase(std::string_view s); // ASCII only, like the host's
std::string LowerCase(std::string_view s);
std::string Trim(std::string_view s);
bool SameText(std::string_view a, std::string_view b);
int CompareText(std::string_view a, std::string_view b);

// Path parts. ExtractFilePath keeps the trailing delimiter.
std::string ExtractFilePath(std::string_view path);
std::string ExtractFileDir(std::string_view path);
std::string ExtractFileName(std::string_view path);
std::string ExtractFileExt(std::string_view path);
std::string ChangeFileExt(std::string_view path, std::string_view ext);
std::string IncludeTrailingPathDelimiter(std::string_view path);
std::string ExcludeTrailingPathDelimiter(std::string_view path);

// Files and folders by name: true on success, false on failure (nothing raises).
// ForceDirectories makes every missing folder of the path.
bool FileExists(std::string_view path);
bool DirectoryExists(std::string_view path);
bool DeleteFile(std::string_view path);
bool RemoveDir(std::string_view path);
bool CreateDir(std::string_view path);
bool ForceDirectories(std::string_view path);
std::string GetCurrentDir();
bool SetCurrentDir(std::string_view path);

// The host's I/O-checked folder operations, used with the error state turned
// off: they raise nothing, and IOResult gives the last error (0 after success)
// and clears it.
void ChDir(std::string_view path);
void MkDir(std::string_view path);
int32_t IOResult();

// The system's last error code (errno on this platform).
int32_t GetLastOSError();
// Raises EOSError for the system's last error: its code and the system's text.
[[noreturn]] void RaiseLastOSError();
[[noreturn]] void RaiseLastOSError(int32_t lastError);

// The running program's full file name.
std::string ParamStr0();

// Free bytes on a drive: 0 is the current folder's, 1 is A:, 2 is B: and so
// on through the platform's drive table; -1 for a letter with no mapping or a
// volume that cannot be asked.
int64_t DiskFree(uint8_t drive);

// A wide string in the system code page (the host's implicit conversion).
std::string AnsiStringFromWide(std::u16string_view text);

// ---- The module's string table ----------------------------------------------

// A string resource of the module, named by its identifier.
struct TResStringRec {
  uint16_t Identifier;
};
// The text of an identifier in the module's string table; empty for an unknown one.
std::string LoadResString(uint16_t ident);
std::string LoadResString(const TResStringRec *rec);

// ---- Text forms of numbers, dates and Booleans ------------------------------
//
// The host's default forms on this platform, the same for every user: "." is
// the decimal separator and "," the thousands separator; a date reads
// "yyyy-mm-dd", a time "hh:nn:ss" (24 hours), a date-time the two with a blank
// between.

// 15 significant digits, without trailing zeros; an exponent ("1.5E20",
// "1E-7") when the number has more than 15 integer digits or is below 1E-5.
std::string FloatToStr(double value);
// Decimal text with an optional sign, fraction and exponent, blanks around it
// allowed; raises EConvertError for anything else (including INF and NAN).
double StrToFloat(std::string_view text);
bool TryStrToFloat(std::string_view text, double &value);
// The host's picture format: "0" and "#" digit places, "." the decimal point,
// "," anywhere turns on thousands separators, "E+"/"E-" an exponent, quoted
// text as it stands; up to three sections for positive, negative and zero
// values, separated by ";". An empty format gives FloatToStr.
std::string FormatFloat(std::string_view format, double value);

std::string DateToStr(TDateTime date);
std::string TimeToStr(TDateTime time);
// The date, then the time unless it is exactly midnight.
std::string DateTimeToStr(TDateTime dateTime);
// The forms above; a date also with "/" and a time without seconds or with
// milliseconds. Raise EConvertError for anything else.
TDateTime StrToDate(std::string_view text);
TDateTime StrToTime(std::string_view text);
TDateTime StrToDateTime(std::string_view text);
bool TryStrToDate(std::string_view text, TDateTime &date);
bool TryStrToTime(std::string_view text, TDateTime &time);
bool TryStrToDateTime(std::string_view text, TDateTime &dateTime);

// The word lists of the Boolean conversions; empty lists stand for "True" and
// "False". Compared without regard to case; a number is true when it is not 0.
extern std::vector<std::string> TrueBoolStrs;
extern std::vector<std::string> FalseBoolStrs;
bool TryStrToBool(std::string_view text, bool &value);
bool StrToBool(std::string_view text); // raises EConvertError
// "-1" and "0", or the first words of the lists.
std::string BoolToStr(bool value, bool useBoolStrs = false);

} // namespace kestrel
