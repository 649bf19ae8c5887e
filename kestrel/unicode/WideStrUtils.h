// The Wide* family over wide strings. A unit is a unit: nothing here looks at
// surrogates or combining sequences. (The Str*W family over wide C strings has
// its own header, included here for the code that names this one.)
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include <kestrel/unicode/WideCStrings.h>

namespace kestrel {

// CR LF, a lone CR and a lone LF each become U+2028.
std::u16string WideAdjustLineBreaks(std::u16string_view S);
// Quote, S with every Quote doubled, Quote.
std::u16string WideQuotedStr(std::u16string_view S, char16_t Quote);
// The text of a quoted string at Src, doubled quotes written once; moves Src
// behind the consumed text (to the terminator when no quote closes it, the
// last unit then being dropped). Empty, with Src unchanged, when Src is null
// or does not point at Quote.
std::u16string WideExtractQuotedStr(const char16_t *&Src, char16_t Quote);
std::u16string WideExtractQuotedStr(char16_t *&Src, char16_t Quote);
std::u16string WideStringOfChar(char16_t C, uint32_t Count);
// S without leading and/or trailing trim units: those that are white space
// or control characters (UnicodeIsWhiteSpace, UnicodeIsControl).
std::u16string WideTrim(std::u16string_view S);
std::u16string WideTrimLeft(std::u16string_view S);
std::u16string WideTrimRight(std::u16string_view S);
// 1-based position of the first Ch at or after position Index, or 0.
int32_t WideCharPos(std::u16string_view S, char16_t Ch, int32_t Index);

} // namespace kestrel
