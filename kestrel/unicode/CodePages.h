// Code pages, UTF-8, code blocks and the locale-aware compare.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include <kestrel/frame/host/Types.h>

namespace kestrel {

inline constexpr UCS4 ReplacementCharacter = 0xFFFD;
inline constexpr UCS4 MaximumUCS2 = 0xFFFF;
inline constexpr UCS4 MaximumUTF16 = 0x10FFFF;
inline constexpr UCS4 MaximumUCS4 = 0x7FFFFFFF;
inline constexpr UCS4 SurrogateHighStart = 0xD800;
inline constexpr UCS4 SurrogateHighEnd = 0xDBFF;
inline constexpr UCS4 SurrogateLowStart = 0xDC00;
inline constexpr UCS4 SurrogateLowEnd = 0xDFFF;

// U+000D U+000A; filled at the unit's start-up, cleared at its finalisation.
extern std::u16string CRLF;

// ---- Code pages ---------------------------------------------------------------

// The default 8-bit code page of a locale (Windows locale identifier); the
// system code page (GetACP) when the locale is unknown or names none.
uint32_t CodePageFromLocale(uint32_t Language);
// The code page of the current keyboard layout's language.
uint16_t KeyboardCodePage();
// One byte typed on the keyboard, as a wide character.
char16_t KeyUnicode(char C);
// Bytes in a code page to wide text: exactly the units the conversion gives;
// empty when the platform refuses the conversion.
std::u16string CodePageToWideString(std::string_view A, uint16_t CodePage);

// ---- UTF-8 ----------------------------------------------------------------------

// Each unit on its own, in 1 to 3 bytes: a surrogate half becomes a sequence
// of its own, so a code above U+FFFF takes 6 bytes, which read back unit for
// unit through UTF8ToWideString.
std::string WideStringToUTF8(std::u16string_view S);

// Decodes without validation: a stray continuation byte comes out as the unit
// of its value, whatever follows a lead byte counts as its continuation,
// overlong and 5- or 6-byte forms decode to their value, codes above
// U+10FFFF give ReplacementCharacter. A sequence that the end of the text
// cuts off gives one ReplacementCharacter and ends the text.
std::u16string UTF8ToWideString(std::string_view S);

// ---- Code blocks ----------------------------------------------------------------

// The number of the Unicode block holding the unit, 0 to 66; 67 for a unit in
// none of them.
inline constexpr uint32_t NoCodeBlock = 67;
uint32_t CodeBlockFromChar(char16_t C);
// The block's name ("Basic Latin"), "" for NoCodeBlock or above.
const char *CodeBlockName(uint32_t Block);

// ---- Locale-aware compare ---------------------------------------------------------

// Case-insensitive compare in the order of a locale: negative, 0 or positive.
using TWideCompareText = int32_t (*)(std::u16string_view S1, std::u16string_view S2,
                                     uint32_t Locale);

// Set at the unit's start-up (ChooseWideCompareText) and only called through.
extern TWideCompareText WideCompareText;

// CompareStringW with NORM_IGNORECASE, less 2: -1, 0, 1, or -2 when the
// platform fails (an unknown locale), which callers take for less than.
int32_t WideCompareTextNT(std::u16string_view S1, std::u16string_view S2, uint32_t Locale);
// The same through byte strings in the locale's code page and CompareStringA.
int32_t WideCompareTextWin9x(std::u16string_view S1, std::u16string_view S2, uint32_t Locale);

// Chooses the WideCompareText routine for the platform (the unit's start-up).
void ChooseWideCompareText();

} // namespace kestrel
