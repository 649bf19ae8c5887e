// Case mapping: one code point to one code point, from the "CASE" table,
// routed by the character's category. No special casing, no context, no
// locale: U+00DF stays itself and a string keeps its length.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include <kestrel/frame/host/Types.h>

namespace kestrel {

// The mappings. A code without a row, or above U+10FFFF, comes back as it is.
// Which rows can be reached follows the category of Code: UnicodeToUpper and
// UnicodeToLower leave alone what is neither Lu nor Ll (but for the title
// digraphs); UnicodeToTitle maps through the lower rows whatever is neither
// Lt nor Lu.
UCS4 UnicodeToUpper(UCS4 Code);
UCS4 UnicodeToLower(UCS4 Code);
UCS4 UnicodeToTitle(UCS4 Code);

// The same for one unit, cut to 16 bits.
char16_t WideUpCase(char16_t C);
char16_t WideLoCase(char16_t C);
char16_t WideTitleCaseChar(char16_t C);

// Every unit mapped by itself: a surrogate half stays, and every letter of
// the title form takes its title case, not only the first of a word.
std::u16string WideUpperCase(std::u16string_view S);
std::u16string WideLowerCase(std::u16string_view S);
std::u16string WideTitleCaseString(std::u16string_view S);

// The columns of the rows and the lookup of one section, for the unit's own
// use: the value in Column of the row of Code between the row starts First and
// Last (indexes into the table), or Code when it has no row there.
UCS4 UnicodeLookupCase(UCS4 Code, int32_t First, int32_t Last, int32_t Column);

} // namespace kestrel
