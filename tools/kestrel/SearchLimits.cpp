#include "SearchLimits.h"

namespace kestrel::cli {

namespace {

bool IsPair(const std::u16string &text, uint32_t at) {
  return at + 1 < text.size() && text[at] >= 0xD800 && text[at] <= 0xDBFF &&
         text[at + 1] >= 0xDC00 && text[at + 1] <= 0xDFFF;
}

// One scan from `at`, as the engine's FindAll runs it: a relative match.
bool Next(TSearchEngine &engine, const std::u16string &text, uint32_t at, uint32_t &s,
          uint32_t &e) {
  const uint32_t left = static_cast<uint32_t>(text.size()) - at;
  if (auto *regex = dynamic_cast<TURESearch *>(&engine))
    return regex->ExecuteURE(0, text.data() + at, left, s, e);
  return engine.FindFirst(text.data() + at, left, s, e);
}

} // namespace

// The steps of TURESearch::FindAll and TUTBMSearch::FindAll: each scan
// starts at the end of the last match; an empty match at the start of the
// rest is kept once and the search goes on one character past it.
BoundedSearch FindBounded(TSearchEngine &engine, const std::u16string &text, uint64_t maxCount,
                          const std::function<bool(uint32_t, uint32_t)> &onMatch) {
  BoundedSearch out;
  uint64_t empty = 0;
  uint32_t run = 0, s = 0, e = 0;
  while (run <= text.size() && Next(engine, text, run, s, e)) {
    if (out.matches >= maxCount) {
      out.countReached = true;
      break;
    }
    if (s == e && ++empty > kMaxEmptyMatches) {
      out.emptyCapReached = true;
      break;
    }
    ++out.matches;
    if (!onMatch(run + s, run + e)) {
      out.countReached = true;
      break;
    }
    run += e;
    if (e > 0) continue;
    if (run == text.size()) break;
    run += IsPair(text, run) ? 2 : 1;
  }
  return out;
}

} // namespace kestrel::cli
