// Unit WinGenOk: the suite's tool box. Facts about the running system,
// gathered at the unit's first start-up; short string types; a byte-string
// Boyer-Moore search; new names for output files; small functions on strings,
// paths, numbers and dates. Questions to the user go through MyPMsgDlg.
#pragma once

#include <cstdint>
#include <string>

#include <kestrel/frame/host/Types.h>
#include <kestrel/frame/platform/Display.h>
#include <kestrel/frame/platform/SystemInfo.h>

namespace kestrel {

class TStringList;

// ---- Types and constants ----------------------------------------------------

enum class case_type : uint8_t { lower, upper, firstcap };
using drive_limits = uint8_t; // 0 to 25, one for each drive letter

using string1 = ShortString<1>;
using string2 = ShortString<2>;
using string3 = ShortString<3>;
using string4 = ShortString<4>;
using string5 = ShortString<5>;
using string10 = ShortString<10>;
using string20 = ShortString<20>;
using string30 = ShortString<30>;
using string32 = ShortString<32>;
using string49 = ShortString<49>;
using string50 = ShortString<50>;
using string60 = ShortString<60>;
using string80 = ShortString<80>;
using string128 = ShortString<128>;
using string180 = ShortString<180>;

inline constexpr char16_t wide_asterisk = 0x002A;
inline constexpr char16_t wide_question = 0x003F;
inline constexpr char16_t wide_hash = 0x0023;
inline constexpr char16_t wide_angle_left = 0x003C;
inline constexpr char16_t wide_angle_right = 0x003E;
inline constexpr char16_t wide_double_quotes = 0x0022;

// ---- System facts, filled at start-up ---------------------------------------

extern OSVERSIONINFOA Windows_Version;
extern SYSTEM_INFO systeminfo;
extern bool running_XP_or_better; // major version above 5, or 5 and minor 1 or more
extern RECT Work_Area;
extern uint32_t DriveBits; // the last GetLogicalDrives, written by ValidDrive

// ---- Files and folders ------------------------------------------------------

// Paths of 3 characters or fewer as they are; others in full, without a
// trailing delimiter.
std::string NormalisedPath(const std::string &Path);
bool FileNameHasWildCards(const std::string &Name);
// Whether the letter (either case) names a drive of the drive table.
bool ValidDrive(char Letter);
bool sIsADirectory(const std::string &Path);
bool StrFileExists(const char *Name);
// Whether a root ("d:/") is a fixed drive.
bool Fixed_Drive(const std::string &Root);
// A new list, the caller's: the folder itself, then, when Recursive, every
// folder below it, depth first, each before its children. Hidden folders
// (names beginning with ".") are left out; links to folders are listed but
// not entered.
TStringList *ListOfSubFolders(const std::string &Folder, bool Recursive);
// Frees List when it is not null and makes a new one with the entries that
// match Pattern ("dir/*.txt"), folders too, each with the pattern's folder in
// front; names beginning with "." are left out.
void CreateFileList(const std::string &Pattern, TStringList *&List);
// While a file of this name exists, cuts the name at its first "." and adds
// the next batch number (3 digits at least) and the extension: "out.txt"
// becomes "out001.txt", and if that is taken "out001002.txt". A name without
// "." gets one. Always true.
bool ForcedToBeNewFile(std::string &Name);
// Gives the file name a stem of 8 characters ending in the next batch number
// ("dir/abc.txt" becomes "dir/abc00001.txt"), in lower case, and repeats
// until no file has it; so the name always changes. Capacity is the size of
// the buffer with its terminator: a result that does not fit raises
// EInvalidOperation and leaves the buffer alone. Always true.
bool StrForcedToBeNewFile(char *Name, size_t Capacity);
void SetBatchFileStartNumberTo(int32_t Number); // no less than 0
int32_t GetBatchFileStartNumber();
// The date of the running program's file.
std::string Compilation_Date();
// True when the path's drive has room for BytesNeeded, or the user says to go
// on anyway. A path that does not begin with a letter counts 0x7FFFFFFF bytes
// free. False for an empty path.
bool QueryIfNotDiskSpace(const std::string &Path, int64_t BytesNeeded);
// True when the file isn't there; otherwise asks "Overwrite <name>?", and on
// OK moves the file to the name with extension ".bak" (an older backup goes)
// before giving true.
bool OKToOverwrite(const std::string &Name);

// ---- Strings ----------------------------------------------------------------

// Zero-based offset of the first occurrence of Pattern among TextLen bytes,
// -1 when there is none; 0 for an empty pattern or text.
int32_t PosBM(const std::string &Pattern, const char *Text, int32_t TextLen);
// "12-Mar-2004" becomes "12-03-2004": three English month letters after the
// first non-letters turn into digits, the rest upper-cased. The last
// character is never looked at; without exactly three letters the text comes
// back unchanged.
std::string ShortMonthNameToNumberStr(const std::string &DateText);
// Doubles each "&" that stands alone, so that a menu shows it.
std::string DoubleAnyAmpersands(const std::string &Text);
// Removes characters of 0x20 and below from both ends, in place.
void StrTrim(char *Text);
// Moves Count characters of Target up by the length of Source and copies
// Source in front, without terminator. Null, and nothing done, when Count is
// 0 or less or below the length of Source.
char *StrLInsert(char *Target, const char *Source, int16_t Count);
char16_t *StrLInsertW(char16_t *Target, const char16_t *Source, int16_t Count);
// Whichever of the two characters comes first in Text; null when neither.
const char *StrNearer(const char *Text, char C1, char C2);
std::string Rightstr(const std::string &Text, int32_t N);
std::string BooleanToStr(bool Value);       // "true" or "false"
bool StrToBoolean(const std::string &Text); // "true" in any case
// Letters for the attribute bits set, in the order r a s h d v.
std::string AttributesToStr(uint16_t Attributes);
// "1,234.50", ".50": grouped thousands and two decimals; "*" when the value
// has no number form (infinite, not a number).
std::string RealToDecStr(double Value);
std::string IntToDecStr(int32_t Value); // "1,234"

// ---- Numbers, dates, system -------------------------------------------------

int32_t Max(int32_t A, int32_t B);
int32_t Min(int32_t A, int32_t B);
int32_t TodayAsLongint(); // whole days of today's date
// The time of day of a date-time in seconds, rounded.
int32_t TodaysTimeInSeconds(TDateTime DateTime);
// The locale's default ANSI code page, else the system's.
int32_t LCIDToCodePage(uint32_t Locale);
int32_t PixelsPerInch();
// A colour of 0 or more as it is; a negative one is a system colour, chosen
// by its low byte.
int32_t MyColourToRGB(int32_t Colour);
// The system's text for the last error, at most 255 characters.
std::string GetLastErrorString();

} // namespace kestrel
