// National-language operations of the platform layer: locale identifiers and
// locale data, code-page conversion and locale-aware comparison, built on ICU.
//
// Locale numbers are Windows locale identifiers (LCIDs); code-page numbers are
// Windows code-page numbers. Every operation keeps the Windows contract its
// callers rely on: a failure gives 0 (and no exception).
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace kestrel {

using LCID = uint32_t;
using LANGID = uint16_t;
using LCTYPE = uint32_t;
using HKL = uintptr_t;

// ---- Locale identifiers ---------------------------------------------------
inline constexpr LCID LOCALE_NEUTRAL = 0x0000;
inline constexpr LCID LOCALE_INVARIANT = 0x007F;
inline constexpr LCID LOCALE_USER_DEFAULT = 0x0400;
inline constexpr LCID LOCALE_SYSTEM_DEFAULT = 0x0800;

// The user's locale, from the POSIX locale of the process environment
// (LC_ALL, then LC_COLLATE, then LANG); en-US (0x0409) when none is set, for
// "C" and "POSIX", and for a locale that has no Windows identifier.
LCID GetUserDefaultLCID();
LCID GetSystemDefaultLCID(); // the same source: Linux has one user locale
LANGID GetUserDefaultLangID();

// The identifier of a POSIX locale name such as "de_DE.UTF-8" or
// "sr_RS@latin"; the fallback rules of GetUserDefaultLCID apply.
LCID LCIDFromPosixLocale(const std::string &name);

// The ICU locale name of an identifier ("de_DE", "zh_Hant_TW"; the invariant
// locale gives ""), or false when the identifier is unknown. The defaults
// 0x0000, 0x0400 and 0x0800 stand for the user's locale.
bool LocaleNameFromLCID(LCID locale, std::string &name);
bool IsKnownLCID(LCID locale);

// ---- The system's locales ---------------------------------------------------
inline constexpr uint32_t LCID_INSTALLED = 0x01;
inline constexpr uint32_t LCID_SUPPORTED = 0x02;
inline constexpr uint32_t LCID_ALTERNATE_SORTS = 0x04;

// Called with a locale identifier as eight upper-case hexadecimal digits
// ("00000409"); returning 0 ends the enumeration.
using LOCALE_ENUMPROCA = int32_t (*)(char *localeString);

// Calls the callback for each locale of the system, in ascending order of
// identifier. The locales are those of ICU's locale data that have a Windows
// identifier of a language in a country (no neutral ones); LCID_SUPPORTED
// gives all of them, LCID_INSTALLED those that IsValidLocale finds installed,
// LCID_ALTERNATE_SORTS their alternative sort orders (0x00010407, German
// phone-book order, say). False for a null callback or flags other than one
// of the first two, alone or with the third.
bool EnumSystemLocalesA(LOCALE_ENUMPROCA proc, uint32_t flags);

// LCID_SUPPORTED: the identifier is known (LocaleNameFromLCID). LCID_INSTALLED:
// it is known and ICU carries data for that locale itself, not only for its
// language. Any other flag gives false.
bool IsValidLocale(LCID locale, uint32_t flags);

// ---- Locale data ----------------------------------------------------------
inline constexpr LCTYPE LOCALE_SABBREVLANGNAME = 0x0003;
inline constexpr LCTYPE LOCALE_IDEFAULTCODEPAGE = 0x000B;
inline constexpr LCTYPE LOCALE_SCURRENCY = 0x0014;
inline constexpr LCTYPE LOCALE_SENGLANGUAGE = 0x1001;
inline constexpr LCTYPE LOCALE_SENGCOUNTRY = 0x1002;
inline constexpr LCTYPE LOCALE_IDEFAULTANSICODEPAGE = 0x1004;
inline constexpr LCTYPE LOCALE_NOUSEROVERRIDE = 0x80000000;
inline constexpr LCTYPE LOCALE_USE_CP_ACP = 0x40000000;
inline constexpr LCTYPE LOCALE_RETURN_NUMBER = 0x20000000;

// Writes the item's text and a terminator into the buffer and gives the
// number of characters written, terminator included. With capacity 0 it
// gives the size needed and writes nothing. It gives 0 for an unknown locale
// or item, or a buffer too small. The 8-bit form writes in the system code
// page (GetACP). LOCALE_RETURN_NUMBER with a numeric item writes the number
// as a 32-bit value (2 wide characters, or 4 bytes).
int32_t GetLocaleInfoW(LCID locale, LCTYPE type, char16_t *data, int32_t capacity);
int32_t GetLocaleInfoA(LCID locale, LCTYPE type, char *data, int32_t capacity);

// The code page of the library's byte strings: 65001 (UTF-8), the encoding
// of Linux file names, arguments and terminals. GetOEMCP gives the same.
uint32_t GetACP();
uint32_t GetOEMCP();

// The current keyboard layout: the user's language identifier in both
// halves, as Windows forms a default layout. The thread argument is ignored.
HKL GetKeyboardLayout(uint32_t threadId);

// ---- Code pages -------------------------------------------------------------
inline constexpr uint32_t CP_ACP = 0;
inline constexpr uint32_t CP_OEMCP = 1;
inline constexpr uint32_t CP_MACCP = 2;
inline constexpr uint32_t CP_THREAD_ACP = 3;
inline constexpr uint32_t CP_SYMBOL = 42;
inline constexpr uint32_t CP_UTF7 = 65000;
inline constexpr uint32_t CP_UTF8 = 65001;

inline constexpr uint32_t MB_PRECOMPOSED = 0x01;
inline constexpr uint32_t MB_COMPOSITE = 0x02;
inline constexpr uint32_t MB_USEGLYPHCHARS = 0x04;
inline constexpr uint32_t MB_ERR_INVALID_CHARS = 0x08;
inline constexpr uint32_t WC_NO_BEST_FIT_CHARS = 0x400;
inline constexpr uint32_t WC_ERR_INVALID_CHARS = 0x80;

// Whether conversions know the code page.
bool IsValidCodePage(uint32_t codePage);

// Converts bytes to UTF-16. A byte count of -1 takes the text up to and with
// its 0 byte. With capacity 0 it gives the units needed. It gives 0 for an
// unknown code page, bad flags, a count of 0, a buffer too small, and with
// MB_ERR_INVALID_CHARS for a byte sequence the code page does not define;
// without that flag such bytes become the converter's substitute.
int32_t MultiByteToWideChar(uint32_t codePage, uint32_t flags, const char *bytes, int32_t byteCount,
                            char16_t *wide, int32_t capacity);

// Converts UTF-16 to bytes; a unit count of -1 takes the text with its 0
// unit. A character the code page lacks takes its nearest form where the code
// page has one, else the default character ("?" unless one is given), and
// sets *usedDefaultChar. For UTF-8 and UTF-7 both must be null; lone
// surrogate halves become U+FFFD there.
int32_t WideCharToMultiByte(uint32_t codePage, uint32_t flags, const char16_t *wide,
                            int32_t unitCount, char *bytes, int32_t capacity,
                            const char *defaultChar, bool *usedDefaultChar);

// The code page an encoding name stands for: a number ("1252", "cp1252",
// "windows-1252", "ibm-850"), or any name or alias that ICU's converters know
// ("latin1", "koi8-r", "shift_jis", "utf-16be"). A name that no Windows code
// page converts alike gets a number of its own, from 0x10000 up, which the
// conversions above take for the life of the process. 1200 and 1201 stand for
// UTF-16LE and UTF-16BE (no byte code pages: the conversions above refuse
// them). 0 for a name nobody knows.
uint32_t CodePageFromName(std::string_view name);
// A name for a code page ("windows-1252", "ISO-8859-2", "UTF-8",
// "UTF-16LE"); "" for one the conversions do not know.
std::string CodePageName(uint32_t codePage);

// ---- Comparison -------------------------------------------------------------
inline constexpr uint32_t NORM_IGNORECASE = 0x00000001;
inline constexpr uint32_t NORM_IGNORENONSPACE = 0x00000002;
inline constexpr uint32_t NORM_IGNORESYMBOLS = 0x00000004;
inline constexpr uint32_t SORT_DIGITSASNUMBERS = 0x00000008;
inline constexpr uint32_t SORT_STRINGSORT = 0x00001000;

inline constexpr int32_t CSTR_LESS_THAN = 1;
inline constexpr int32_t CSTR_EQUAL = 2;
inline constexpr int32_t CSTR_GREATER_THAN = 3;

// Compares two counted texts (a negative count: up to the 0 unit) by the collation
// of the locale, through one ICU collator per locale and flag set, kept for
// the life of the process. Gives 1, 2 or 3 for less, equal, greater, and 0
// for an unknown locale, unknown flags or a null text with a nonzero count.
// NORM_IGNORECASE ignores case but not accents, NORM_IGNORENONSPACE ignores
// accents, NORM_IGNORESYMBOLS ignores blanks and punctuation,
// SORT_DIGITSASNUMBERS orders digit runs by value; SORT_STRINGSORT is the
// only order there is here.
int32_t CompareStringW(LCID locale, uint32_t flags, const char16_t *text1, int32_t count1,
                       const char16_t *text2, int32_t count2);

// The same for byte texts in the locale's default code page (or the system
// code page, for locales without one).
int32_t CompareStringA(LCID locale, uint32_t flags, const char *text1, int32_t count1,
                       const char *text2, int32_t count2);

// LCMAP_SORTKEY: writes the sort key of a counted text (a negative count: up
// to the 0 unit) under the locale and the compare flags given with it, and
// gives its size in bytes, its closing 0 byte included. Keys compare with
// memcmp as CompareStringW compares their texts with the same locale and
// flags: the same collator makes both. With capacity 0 it gives the size
// needed and writes nothing; it gives 0 for a buffer too small, an unknown
// locale or flags, or a map flag other than LCMAP_SORTKEY.
inline constexpr uint32_t LCMAP_SORTKEY = 0x00000400;
int32_t LCMapStringW(LCID locale, uint32_t flags, const char16_t *text, int32_t count, void *key,
                     int32_t capacity);

} // namespace kestrel
