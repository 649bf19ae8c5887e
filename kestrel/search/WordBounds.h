// Word bounds as a reader sees them: a word is a run of letters, digits,
// marks and connectors, so a whole word is neither preceded nor followed by
// one of those. Line breaks, white space and punctuation are bounds.
#pragma once

#include <cstdint>

#include <kestrel/frame/host/Types.h>

namespace kestrel {

// Whether C is a letter, a decimal digit, a mark or a connector (categories
// Lu Ll Lt Lm Lo, Nd, Mn Mc Me, Pc of the character database).
bool IsWordCharacter(UCS4 C);

// Whether the units [Start, Stop) of Text (TextLen units) stand as a whole
// word: the character before Start and the one at Stop are no word
// characters, or lie outside the text. A surrogate pair counts as one
// character on either side.
bool IsWholeWord(const char16_t *Text, uint32_t TextLen, uint32_t Start, uint32_t Stop);

} // namespace kestrel
