// Helpers for the tests of the regular-expression engine.
#pragma once

#include <algorithm>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <kestrel/frame/host/Exceptions.h>
#include <kestrel/search/URELongestMatch.h>
#include <kestrel/search/URESearch.h>

#include "support/TestSupport.h"

namespace kestrel::test {

inline TSearchFlags CaseSensitive() {
  return TSearchFlags{TSearchFlag::sfCaseSensitive};
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

// Whether two states of an automaton behave alike: the same acceptance, the
// same symbols in the same order, and targets that behave alike in turn
// (the pairwise walk, independent of the way the engine merges states).
inline bool Alike(const TDFA &dfa, uint32_t i, uint32_t j) {
  std::vector<std::pair<uint32_t, uint32_t>> list{{i, j}};
  for (size_t p = 0; p < list.size(); ++p) {
    const TDFAState &a = dfa.StateList.States[list[p].first];
    const TDFAState &b = dfa.StateList.States[list[p].second];
    if (a.Accepting != b.Accepting || a.NumberTransitions != b.NumberTransitions) return false;
    for (uint32_t t = 0; t < a.NumberTransitions; ++t) {
      const TTransition &ta = dfa.TransitionList.Transitions[a.StartTransition + t];
      const TTransition &tb = dfa.TransitionList.Transitions[b.StartTransition + t];
      if (ta.Symbol != tb.Symbol) return false;
      std::pair<uint32_t, uint32_t> next{std::min(ta.NextState, tb.NextState),
                                         std::max(ta.NextState, tb.NextState)};
      if (next.first != next.second && std::find(list.begin(), list.end(), next) == list.end())
        list.push_back(next);
    }
  }
  return true;
}

// Every match as FindAll takes them, by the accelerated scan or the plain one:
// after an empty match the next scan starts a character further on.
inline Matches ScanAll(TURESearch &engine, const std::u16string &text, bool plain) {
  Matches out;
  const uint32_t len = uint32_t(text.size());
  uint32_t run = 0, s = 0, e = 0;
  while (plain ? engine.ExecuteUREPlain(0, text.data() + run, len - run, s, e)
               : engine.ExecuteURE(0, text.data() + run, len - run, s, e)) {
    out.emplace_back(run + s, run + e);
    run += e;
    if (e > 0) continue;
    if (run == len) break;
    const bool pair =
        run + 1 < len && IsHighSurrogateUnit(text[run]) && IsLowSurrogateUnit(text[run + 1]);
    run += pair ? 2 : 1;
  }
  return out;
}

// Up to `max` pieces drawn at random.
inline std::u16string MakeText(std::mt19937 &rng, const std::vector<std::u16string> &pieces,
                               int max) {
  std::u16string t;
  for (int n = std::uniform_int_distribution<int>(0, max)(rng); n > 0; --n)
    t += pieces[std::uniform_int_distribution<size_t>(0, pieces.size() - 1)(rng)];
  return t;
}

// The leftmost-longest engine's matches as start and stop pairs.
using Pairs = std::vector<std::pair<uint32_t, uint32_t>>;

inline Pairs PairsOf(const TURELongestMatch &engine) {
  Pairs out;
  for (const auto &m : engine.Matches())
    out.emplace_back(m.Start, m.Stop);
  return out;
}

inline Pairs LongestMatches(const std::u16string &pattern, const std::u16string &text,
                            TSearchFlags flags, size_t cacheLimit = 8u << 20) {
  TURELongestMatch engine;
  engine.SetCacheLimit(cacheLimit);
  engine.FindPrepare(pattern, flags);
  engine.FindAll(text);
  return PairsOf(engine);
}

} // namespace kestrel::test
