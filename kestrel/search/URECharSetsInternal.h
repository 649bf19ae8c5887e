// Sets of characters for the translation of familiar pattern syntax: what a
// class, an escape or a property name stands for, and how a set is written
// in the pattern language of TURESearch. Not part of the public interface.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <kestrel/frame/host/Types.h>

namespace kestrel::charsets {

struct TCodeRange {
  UCS4 Low;
  UCS4 High;
};
using TRanges = std::vector<TCodeRange>; // sorted and disjoint once normalized

// A set: explicit ranges, general categories (bit n for property n of the
// character database) and other properties by their pattern number (bit
// n - 1 for \pn).
struct TCodeSet {
  TRanges Ranges;
  uint64_t Categories = 0;
  uint32_t Numbers = 0;
  bool Empty() const { return Ranges.empty() && Categories == 0 && Numbers == 0; }
  void Add(const TCodeSet &Other);
};

// The sets of the familiar names: "alpha", "digit", ... (POSIX), "d", "s",
// "w" (escapes); false for an unknown name.
bool NamedSet(const std::string &Name, TCodeSet &Set);
// A general category or group: "Lu", "L", "L&", ...; false if unknown.
bool CategorySet(const std::string &Name, TCodeSet &Set);
// Pattern property numbers ("3,10"); false when one passes 32.
bool NumberSet(const std::string &Numbers, TCodeSet &Set);

// The set in the pattern language: a class, or a property list when the set
// has no ranges. CaseFold: without case sensitivity Lu, Ll and Lt stand for
// one another.
std::u16string Write(const TCodeSet &Set, bool Negated, bool CaseFold);

// A union of positive sets and complements of sets, negated as a whole or
// not, written as explicit ranges. Folded: as the engine will test it, the
// folded form of every member.
std::u16string WriteExact(const TCodeSet &Positive, const std::vector<TCodeSet> &Complemented,
                          bool Negated, bool CaseFold);

// One code point as an escape of the pattern language (a pair of escapes
// above U+FFFF).
std::u16string CodeEscape(UCS4 Code);

} // namespace kestrel::charsets
