// Helpers for the tests of the regular-expression engine.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include <kestrel/frame/host/Exceptions.h>
#include <kestrel/search/URESearch.h>

namespace kestrel::test {

using Matches = std::vector<std::pair<int32_t, int32_t>>;

inline Matches ResultsOf(TURESearch &engine) {
  Matches out;
  for (uint32_t i = 0; i < engine.GetCount(); ++i) {
    int32_t s = 0, e = 0;
    engine.GetResult(i, s, e);
    out.emplace_back(s, e);
  }
  return out;
}

inline TSearchFlags CaseSensitive() {
  return TSearchFlags{TSearchFlag::sfCaseSensitive};
}

// FindAll of a pattern over a text (case-sensitive unless fold).
inline Matches FindAllOf(const std::u16string &pattern, const std::u16string &text,
                         bool fold = false) {
  TURESearch engine;
  engine.FindPrepare(pattern, fold ? TSearchFlags{} : CaseSensitive());
  engine.FindAll(text);
  return ResultsOf(engine);
}

// The message a pattern raises, or "" when it compiles.
inline std::string CompileError(const std::u16string &pattern, bool fold = false) {
  TURESearch engine;
  try {
    engine.FindPrepare(pattern, fold ? TSearchFlags{} : CaseSensitive());
  } catch (const Exception &e) {
    return e.Message();
  }
  return "";
}

} // namespace kestrel::test
