// Code pages and the locale-aware compare (UTF-8 and code blocks have headers of
// their own, included here for the code that names this one).
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include <kestrel/frame/host/Types.h>
#include <kestrel/unicode/CodeBlocks.h>
#include <kestrel/unicode/Utf8.h>

namespace kestrel {

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
