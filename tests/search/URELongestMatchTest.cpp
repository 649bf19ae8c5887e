// TURELongestMatch: every leftmost-longest match, the zero-width tests, word
// bounds, case folding, FindFirst, the cache of states and linear time.
#include <gtest/gtest.h>

#include <chrono>
#include <ctime>
#include <string>
#include <vector>

#include <kestrel/frame/host/Exceptions.h>
#include <kestrel/search/URELongestMatch.h>
#include <kestrel/search/URESearch.h>

#include "URETestHelpers.h"

namespace kestrel {
namespace {

using test::LongestMatches;
using test::Pairs;
using test::PairsOf;

const TSearchFlags Exact{TSearchFlag::sfCaseSensitive};
const TSearchFlags Folded{};
const TSearchFlags Words{TSearchFlag::sfCaseSensitive, TSearchFlag::sfLeftBounded,
                         TSearchFlag::sfRightBounded};

struct Case {
  const char16_t *pattern;
  const char16_t *text;
  TSearchFlags flags;
  Pairs expected;
};

class LongestMatchCases : public ::testing::TestWithParam<Case> {};

TEST_P(LongestMatchCases, FindsEveryMatch) {
  const Case &c = GetParam();
  EXPECT_EQ(LongestMatches(c.pattern, c.text, c.flags), c.expected);
}

// clang-format off
// (The generated patterns of URELongestMatchRandomTest check the rest.)
INSTANTIATE_TEST_SUITE_P(Matches, LongestMatchCases, ::testing::Values(
    // A failed attempt is retried from every later start.
    Case{u"[a-z]+ing", u"the driving fishing beginning", Exact, {{4, 11}, {12, 19}, {20, 29}}},
    // Leftmost first, then longest; the next match begins at the end.
    Case{u"abcd|bcdef", u"abcdef", Exact, {{0, 4}}},
    Case{u"a|a*b", u"aaab", Exact, {{0, 4}}},
    Case{u"(a|ab)(c|bcd)(d*)", u"abcd", Exact, {{0, 4}}},
    // Empty matches only where no match ends.
    Case{u"a*", u"bab", Exact, {{0, 0}, {1, 2}, {3, 3}}},
    Case{u"a?", u"", Exact, {{0, 0}}},
    // Anchors test positions; CR LF is one break.
    Case{u"^a", u"b\na\r\na\u2028a\ra", Exact, {{2, 3}, {5, 6}, {7, 8}, {9, 10}}},
    Case{u"a$", u"a\nba\r\nba", Exact, {{0, 1}, {3, 4}, {7, 8}}},
    Case{u"^$", u"\r\n\r\n", Exact, {{0, 0}, {2, 2}, {4, 4}}},
    Case{u"a^b", u"ab", Exact, {}},
    Case{u"(^|x)a", u"aa xa", Exact, {{0, 1}, {3, 5}}},
    // One character for a surrogate pair; the dot stops at line breaks.
    Case{u".", u"\U00010400\u2028", Exact, {{0, 2}}},
    Case{u"[\U00010400-\U00010410]+", u"a\U00010400\U00010401b", Exact, {{1, 5}}},
    // Case folding of pattern and text, as the one-pass engine folds.
    Case{u"KES", u"kes KES", Folded, {{0, 3}, {4, 7}}},
    Case{u"\u00c9T\u00c9", u"\u00e9t\u00e9", Folded, {{0, 3}}},
    // Properties by number, as the pattern language has them.
    Case{u"\\p10\\p11+", u"The Kestrel", Exact, {{0, 3}, {4, 11}}},
    // Word bounds: letters, digits, marks and connectors are inside words.
    Case{u"love", u"love glove loves love.", Words, {{0, 4}, {17, 21}}},
    Case{u"a.|a", u"a-b", Words, {{0, 1}}},
    Case{u"e", u"e\u0301 e_ e1 (e)", Words, {{10, 11}}},
    Case{u"[a-z]+", u"ab\u0301c de", Words, {{5, 7}}},
    // (U+10400 is no letter in the character database, which predates it.)
    Case{u"\\p10", u"\U00010400A", Words, {{2, 3}}}));
// clang-format on

TEST(LongestMatch, ResultsGoToTheResultListToo) {
  TURELongestMatch engine;
  engine.FindPrepare(u"b+", Exact);
  ASSERT_TRUE(engine.FindAll(u"abbcb"));
  ASSERT_EQ(engine.GetCount(), 2u);
  int32_t s = 0, e = 0;
  engine.GetResult(1, s, e);
  EXPECT_EQ(s, 4);
  EXPECT_EQ(e, 5);
  EXPECT_FALSE(engine.FindAll(u"aaa"));
  EXPECT_EQ(engine.GetCount(), 0u);
}

TEST(LongestMatch, FindFirstGivesTheSettledFirstMatch) {
  TURELongestMatch engine;
  engine.FindPrepare(u"b+|ab*c", Exact);
  uint32_t start = 99, stop = 99;
  // The attempt from 0 may still become "abbbc": the first match is only
  // settled when it dies.
  ASSERT_TRUE(engine.FindFirst(u"abbbdbb", start, stop));
  EXPECT_EQ(std::make_pair(start, stop), std::make_pair(1u, 4u));
  ASSERT_TRUE(engine.FindFirst(u"abbbcbb", start, stop));
  EXPECT_EQ(std::make_pair(start, stop), std::make_pair(0u, 5u));
  EXPECT_EQ(engine.GetCount(), 1u);
  start = stop = 99;
  EXPECT_FALSE(engine.FindFirst(u"xyz", start, stop));
  EXPECT_EQ(start, 99u);
  // A zero unit is a character like any other.
  const char16_t text[] = {u'x', 0, u'b'};
  ASSERT_TRUE(engine.FindFirst(text, 3, start, stop));
  EXPECT_EQ(start, 2u);
}

TEST(LongestMatch, PreparingAndClearing) {
  TURELongestMatch engine;
  EXPECT_FALSE(engine.FindAll(u"abc")); // no pattern yet
  engine.FindPrepare(u"b", Exact);
  engine.FindPrepare(u"", Exact); // an empty pattern changes nothing
  EXPECT_TRUE(engine.FindAll(u"abc"));
  EXPECT_FALSE(engine.FindAll(nullptr, 3));
  EXPECT_THROW(engine.FindPrepare(u"(ab", Exact), Exception);
  EXPECT_FALSE(engine.Prepared()); // a failed compile leaves none
  engine.FindPrepare(u"c", Exact);
  engine.Clear();
  EXPECT_FALSE(engine.FindAll(u"abc"));
}

TEST(LongestMatch, BadPatternsRaiseTheParsersTexts) {
  TURELongestMatch engine;
  try {
    engine.FindPrepare(u"a{3,2}", Exact);
    FAIL();
  } catch (const Exception &e) {
    EXPECT_EQ(e.Message(), "Error in regular expression: a{3,2}\rInvalid repeation range.");
  }
  EXPECT_THROW(engine.FindPrepare(u"()", Exact), Exception);
}

// Stacked bounds keep the terms few but make the linear forms grow with the
// square of the positions (23^4 of them); a bound on an operand that can be
// empty does the same to the one-pass engine's state lists; the last pattern
// made the every-match engine build millions of terms. Both engines refuse
// such patterns, and quickly.
TEST(LongestMatch, HugeBoundsAreRefusedQuicklyByBothEngines) {
  for (const char16_t *pattern : {u"a{,23}{,23}{,23}{,23}", u"[a-z}]{,23}{,23}{,23}{,23}",
                                  u"xyz?{5231}a", u"(ab|{613}Ob)+c|{613}Ob)+d"}) {
    const std::string shown(pattern, pattern + std::char_traits<char16_t>::length(pattern));
    const std::clock_t start = std::clock(); // processor time: the machine may be busy
    for (bool longest : {true, false}) {
      try {
        TURELongestMatch every;
        TURESearch onePass;
        if (longest)
          every.FindPrepare(pattern, Exact);
        else
          onePass.FindPrepare(pattern, Exact);
        ADD_FAILURE() << shown << " compiled";
      } catch (const Exception &e) {
        EXPECT_NE(e.Message().find("Expression too large"), std::string::npos) << e.Message();
      }
    }
    EXPECT_LT(double(std::clock() - start) / CLOCKS_PER_SEC, 20.0) << shown;
  }
}

TEST(LongestMatch, PatternsTooLargeForTheOnePassAutomatonWork) {
  // About two million states for a full determinization: the lazy one makes
  // only those the text needs.
  const std::u16string pattern = u"(a|b)*a(a|b){20}";
  TURESearch onePass;
  EXPECT_THROW(onePass.FindPrepare(pattern, Exact), Exception);
  std::u16string text;
  for (int i = 0; i < 3000; ++i)
    text += (i * 7919 % 13) < 6 ? u'a' : u'b';
  text += u"c";
  text += std::u16string(25, u'a');
  // The greedy loop eats everything up to 21 before the c, then 21 at the end.
  EXPECT_EQ(LongestMatches(pattern, text, Exact), (Pairs{{0, 3000}, {3001, 3026}}));
}

TEST(LongestMatch, AnEmptiedCacheGivesTheSameAnswers) {
  std::u16string text;
  uint32_t x = 12345;
  for (int i = 0; i < 20000; ++i) {
    x = x * 1103515245 + 12345;
    text += u"abcd \n"[(x >> 16) % 6];
  }
  for (const char16_t *pattern : {u"(a|b)*c(a|b|c){3}", u"^[ab]+$", u"(ab|ba|c)+d?"}) {
    TURELongestMatch big, small;
    big.FindPrepare(pattern, Exact);
    small.FindPrepare(pattern, Exact);
    small.SetCacheLimit(256);
    big.FindAll(text);
    small.FindAll(text);
    EXPECT_EQ(PairsOf(small), PairsOf(big)) << std::string(pattern, pattern + 4);
    EXPECT_GT(small.CacheFlushes(), 0u);
    EXPECT_EQ(big.CacheFlushes(), 0u);
  }
}

double SecondsFor(const std::u16string &pattern, const std::u16string &text, size_t &count) {
  TURELongestMatch engine;
  engine.FindPrepare(pattern, Exact);
  auto t0 = std::chrono::steady_clock::now();
  engine.FindAll(text);
  count = engine.Matches().size();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
}

TEST(LongestMatch, TimeGrowsLinearlyWithTheText) {
  // Patterns that make a backtracking matcher, or a naive retry of every
  // start, quadratic: each needs about as long per unit on 1 MB as on 64 KB.
  struct Timed {
    const char16_t *pattern;
    char16_t fill;
    size_t perMegabyte;
  };
  for (const Timed &c : {Timed{u"a*b", u'a', 0}, Timed{u"a|a*b", u'a', 1u << 20},
                         Timed{u"(a|aa)*c", u'a', 0}, Timed{u"(a*)*b", u'a', 0}}) {
    size_t smallCount = 0, bigCount = 0;
    const std::u16string small(1u << 16, c.fill), big(1u << 20, c.fill);
    SecondsFor(c.pattern, small, smallCount); // warm the cache of states
    const double smallTime = SecondsFor(c.pattern, small, smallCount);
    const double bigTime = SecondsFor(c.pattern, big, bigCount);
    EXPECT_EQ(bigCount, c.perMegabyte);
    // 16 times the text: a quadratic scan would take 256 times as long.
    EXPECT_LT(bigTime, 16 * 6 * smallTime + 0.1) << std::string(c.pattern, c.pattern + 3);
  }
}

} // namespace
} // namespace kestrel
