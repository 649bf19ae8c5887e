// What the commands take for a word: a run of letters, digits, marks and
// connectors by the library's character database; and the walking of
// UTF-16 text by code point that finding them needs.
#pragma once

#include <cstddef>
#include <string>

#include <kestrel/search/WordBounds.h>

namespace kestrel::cli {

// The library's word character, the one --whole-word bounds words with.
inline bool IsWordChar(UCS4 c) {
  return IsWordCharacter(c);
}

inline bool IsLineBreak(char16_t c) {
  return c == u'\n' || c == u'\r' || c == 0x2028 || c == 0x2029;
}

// Whether a surrogate pair starts at i.
inline bool PairAt(std::u16string_view t, size_t i) {
  return t[i] >= 0xD800 && t[i] <= 0xDBFF && i + 1 < t.size() && t[i + 1] >= 0xDC00 &&
         t[i + 1] <= 0xDFFF;
}
// The code point at i (a lone half stands for itself) and its units.
inline UCS4 CodeAt(std::u16string_view t, size_t i) {
  return PairAt(t, i) ? 0x10000 + ((t[i] - 0xD800u) << 10) + (t[i + 1] - 0xDC00u) : t[i];
}
inline size_t UnitsAt(std::u16string_view t, size_t i) {
  return PairAt(t, i) ? 2 : 1;
}

} // namespace kestrel::cli
