// The accelerator of the regular-expression engine: the step table, the
// decision cache and the start search give what the plain scan gives.
#include <gtest/gtest.h>

#include <random>

#include <kestrel/search/URESearch.h>

#include "URETestHelpers.h"

namespace kestrel::test {
namespace {

TEST(UREFastScan, LongTextsTakeTheFastPathWithTheSameResults) {
  // Units beyond the first 256 take columns of the step table, 255 of them
  // (here 96 Cyrillic and 600 CJK units); the rest and states beyond the
  // step table go through the decision cache: compare with the plain scan.
  std::u16string text;
  for (int i = 0; i < 4000; ++i)
    text += char16_t(u'a' + i % 26) + std::u16string(i % 7 == 0 ? u"\u0416\u0436 " : u"") +
            char16_t(0x0400 + i % 96) + char16_t(0x4E00 + i * 7 % 600);
  // The last patterns can only begin on 1 to 5 ranges of units below 256,
  // which the scan looks for many units at a time.
  for (const char16_t *p :
       {u"[\u0400-\u04ff]+", u"\u4e07[\u4e00-\u4e3f]", u"\\p10\\p11", u"[^a-z]{2,3}", u"a.c|\u0436",
        u"ef", u"e[a-f]|t", u"(e|t|a)[^a]", u"e|t|a|o", u"(e|t|a|o|i|n)g", u"[A-Z][a-z]"}) {
    for (bool fold : {false, true}) {
      TURESearch engine;
      engine.FindPrepare(p, fold ? TSearchFlags{} : CaseSensitive());
      ASSERT_EQ(ScanAll(engine, text, false), ScanAll(engine, text, true)) << Show(p) << fold;
    }
  }
}

TEST(UREFastScan, TheLiteralJumpKeepsTheOnePassAnswers) {
  struct Row {
    std::u16string pattern, text;
    bool fold, jumps;
    Matches expected;
  } rows[] = {
      // A failed attempt is not retried: "llanguage" holds no match.
      {u"language", u"llanguage language xlanguage", false, true, {{10, 18}, {20, 28}}},
      {u"kz", u"\u212Az kz", true, true, {{0, 2}, {3, 5}}}, // k is no probe: z is
      {u"ab", std::u16string(37, u'a') + u"b", false, true, {{36, 38}}},
      // The literal inside: the scan goes back to the last blank before it.
      {u"x[a-z]*ing", u"aaaxbbing xing", false, true, {{3, 9}, {10, 14}}},
      {u"a", u"aa", false, false, {{0, 1}, {1, 2}}}, // one character: no jump
      {u"^ab", u"ab ab", false, false, {{0, 2}}},    // an anchor: no jump
      {u"ab|cd", u"cd", false, false, {{0, 2}}},
  };
  for (const Row &r : rows) {
    TURESearch engine;
    engine.FindPrepare(r.pattern, r.fold ? TSearchFlags{} : CaseSensitive());
    const std::string shown(r.pattern.begin(), r.pattern.end());
    EXPECT_EQ(engine.GetFastScan().LiteralJumps(), r.jumps) << shown;
    EXPECT_EQ(ScanAll(engine, r.text, false), r.expected) << shown;
    EXPECT_EQ(ScanAll(engine, r.text, true), r.expected) << shown;
  }
}

// Patterns that hold a literal, over texts full of its pieces.
TEST(UREFastScan, RandomLiteralPatternsAgreeWithThePlainScan) {
  std::mt19937 rng(181);
  auto pick = [&](size_t n) {
    return size_t(std::uniform_int_distribution<size_t>(0, n - 1)(rng));
  };
  const std::u16string literals[] = {u"ab", u"abc", u"kz", u"aab", u"xyx", u"\u00e9a", u"lang"};
  const std::u16string tails[] = {u"",  u"[a-c]*", u"b+",   u"(ab|c)?", u"x{1,3}",
                                  u".", u"\\p11*", u"[^ ]", u"y|z"};
  const std::u16string units[] = {
      u"a",      u"b",      u"c", u"x",  u"y",          u"z",  u"k",   u"A",   u"K",    u"\u212A",
      u"\u00e9", u"\u00c9", u" ", u"\n", u"\U0001F600", u"ab", u"aab", u"lan", u"lang", u"g"};
  int jumps = 0;
  for (int i = 0; i < 300; ++i) {
    const std::u16string pattern = tails[pick(std::size(tails))] +
                                   literals[pick(std::size(literals))] +
                                   tails[pick(std::size(tails))];
    const bool fold = pick(2) != 0;
    TURESearch engine;
    engine.FindPrepare(pattern, fold ? TSearchFlags{} : CaseSensitive());
    jumps += engine.GetFastScan().LiteralJumps();
    for (int t = 0; t < 4; ++t) {
      std::u16string text;
      for (size_t n = pick(150); n > 0; --n)
        text += units[pick(std::size(units))];
      ASSERT_EQ(ScanAll(engine, text, false), ScanAll(engine, text, true))
          << std::string(pattern.begin(), pattern.end()) << (fold ? " folded" : "");
    }
  }
  EXPECT_GT(jumps, 100);
}

} // namespace
} // namespace kestrel::test
