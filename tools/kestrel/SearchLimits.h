// The matches of one text, streamed and bounded: the engines' FindAll keeps
// every match of a text (one for every unit with a pattern such as q*);
// here each match is handed on as it is found, and the search of a text
// stops after maxCount matches, or after kMaxEmptyMatches empty ones.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include <kestrel/search/Search.h>

namespace kestrel::cli {

inline constexpr uint64_t kMaxEmptyMatches = 10000;

struct BoundedSearch {
  uint64_t matches = 0;
  bool countReached = false;    // maxCount matches found; the rest not searched
  bool emptyCapReached = false; // too many empty matches; the rest not searched
};

// The matches FindAll would give, in order, handed to onMatch (start, stop)
// as they are found, so that nothing grows with their number; onMatch gives
// false to stop there.
BoundedSearch FindBounded(TSearchEngine &engine, const std::u16string &text, uint64_t maxCount,
                          const std::function<bool(uint32_t, uint32_t)> &onMatch);

} // namespace kestrel::cli
