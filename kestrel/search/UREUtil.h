// Small helpers shared by the parts of TURESearch.
#pragma once

#include <cstdint>
#include <vector>

#include <kestrel/frame/host/Types.h>
#include <kestrel/search/SearchEngine.h>

namespace kestrel {

// The growing tables of the engine get 8 more entries when they are full.
template <typename T, typename N> inline void GrowBy8(std::vector<T> &table, N used) {
  if (static_cast<size_t>(used) >= table.size()) table.resize(table.size() + 8);
}

inline int HexValue(char16_t c) {
  if (c >= u'0' && c <= u'9') return c - u'0';
  if (c >= u'A' && c <= u'F') return c - u'A' + 10;
  if (c >= u'a' && c <= u'f') return c - u'a' + 10;
  return -1;
}

// The index in the character database of each property number (bit n - 1
// of a symbol's Props stands for property number n).
inline constexpr int UREPropertyIndex[32] = {0,  1,  3,  5,  6,  7,  8,  9,  12, 14, 15,
                                             16, 17, 18, 20, 21, 22, 23, 24, 25, 26, 27,
                                             28, 29, 30, 32, 33, 34, 35, 36, 37, 38};

struct TSymbolTableEntry;

// Whether a code point has one of the properties of a symbol's bit set.
bool UREMatchesProperties(uint32_t Props, UCS4 C);
// Whether a symbol that is no anchor accepts a code point (folded already, as
// the automaton was); Flags: DotMatchesAll. The one symbol test of the engine.
bool URESymbolAccepts(const TSymbolTableEntry &Sym, uint32_t Flags, UCS4 C);

// A line separator: CR, LF, U+2028, U+2029.
inline bool IsLineSeparator(UCS4 c) {
  return c == 0x0D || c == 0x0A || c == 0x2028 || c == 0x2029;
}

} // namespace kestrel
