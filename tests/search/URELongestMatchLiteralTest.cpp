// The required-literal jump of TURELongestMatch: which patterns have one, and
// that the scan with it finds exactly the matches of the scan without.
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include <kestrel/search/URELongestMatch.h>

#include "support/TestSupport.h"

namespace kestrel {
namespace {

using Matches = std::vector<TURELongestMatch::TMatch>;

const TSearchFlags Exact{TSearchFlag::sfCaseSensitive};

Matches Find(const std::u16string &pattern, const std::u16string &text, TSearchFlags flags,
             bool literal, bool *used = nullptr) {
  TURELongestMatch engine;
  engine.SetLiteralFilter(literal);
  engine.FindPrepare(pattern, flags);
  engine.FindAll(text);
  if (used != nullptr) *used = engine.UsesLiteralFilter();
  return engine.Matches();
}

TEST(URELongestMatchLiteral, PatternsWithALiteralOfTwoPlainCharacters) {
  struct Row {
    std::u16string pattern;
    TSearchFlags flags;
    bool used;
  } rows[] = {
      {u"language", Exact, true},
      {u"[a-z]+ing", Exact, true},
      {u"river", {}, true},               // folded: both cases are looked for
      {u"(ab)*cdx+", Exact, true},        // the literal is "cd", after a repetition
      {u"a", Exact, false},               // one character: the idle skip does it
      {u"ab|cd", Exact, false},           // no literal common to the alternatives
      {u"a?b", Exact, false},             // no run of two
      {u"^ab", Exact, false},             // a zero-width test
      {u"ab$", Exact, false},             // a zero-width test
      {u"\\uD83D\\uDE00x", Exact, false}, // a pair is no plain unit
      {u"kk", {}, false},                 // folded k is also the Kelvin sign: no probe
      {u"kkz", {}, true},                 // but z is one
      {u"language", {TSearchFlag::sfCaseSensitive, TSearchFlag::sfLeftBounded}, false},
  };
  for (const Row &r : rows) {
    TURELongestMatch engine;
    engine.FindPrepare(r.pattern, r.flags);
    EXPECT_EQ(engine.UsesLiteralFilter(), r.used) << test::Show(r.pattern);
  }
  TURELongestMatch off;
  off.SetLiteralFilter(false);
  off.FindPrepare(u"language", Exact);
  EXPECT_FALSE(off.UsesLiteralFilter());
}

// Patterns of a part, a literal and a part: the jump changes no match.
TEST(URELongestMatchLiteral, RandomPatternsAndTextsAgreeWithThePlainScan) {
  std::mt19937 rng(18);
  auto pick = [&](size_t n) {
    return size_t(std::uniform_int_distribution<size_t>(0, n - 1)(rng));
  };
  const std::u16string parts[] = {u"",       u"[a-c]*", u"[^ ]+",  u"x?",     u"(ab|c)+",
                                  u".*",     u"b",      u"[ak]+",  u"(a|xy)", u"[\u00e9a]*",
                                  u"c{1,3}", u"[a-z]",  u"\\p11*", u"y*",     u"(b|)"};
  const std::u16string literals[] = {u"ab", u"kz", u"abc", u"ca", u"xyx", u"\u00e9a", u"aa"};
  const std::u16string units[] = {u"a",  u"b",          u"c",  u"x",      u"y",      u"z",
                                  u"k",  u"A",          u"K",  u"\u212A", u"\u00e9", u" ",
                                  u"\n", u"\U0001F600", u"ab", u"kz",     u"ca",     u"\u00c9a"};
  int used = 0, cases = 0;
  for (int i = 0; i < 400; ++i) {
    const std::u16string pattern = parts[pick(std::size(parts))] +
                                   literals[pick(std::size(literals))] +
                                   parts[pick(std::size(parts))];
    const TSearchFlags flags = pick(2) ? Exact : TSearchFlags{};
    for (int t = 0; t < 4; ++t) {
      std::u16string text;
      for (size_t n = pick(120); n > 0; --n)
        text += units[pick(std::size(units))];
      bool on = false;
      const Matches with = Find(pattern, text, flags, true, &on);
      ASSERT_EQ(with, Find(pattern, text, flags, false))
          << test::Show(pattern) << " on " << test::Show(text);
      used += on;
      ++cases;
    }
  }
  EXPECT_GT(used, cases / 2); // the jump was taken in most of them
}

} // namespace
} // namespace kestrel
