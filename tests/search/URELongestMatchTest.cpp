// TURELongestMatch: results, FindFirst, errors, the cache of states and linear time.
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

// The generated patterns of URELongestMatchRandomTest check the rest: these
// are anchors alone, and an anchor between characters outside a group.
TEST(LongestMatch, AnchorsTheGeneratedPatternsNeverHold) {
  EXPECT_EQ(LongestMatches(u"^$", u"\r\n\r\n", Exact), (Pairs{{0, 0}, {2, 2}, {4, 4}}));
  EXPECT_EQ(LongestMatches(u"a^b", u"ab", Exact), Pairs{});
}

TEST(LongestMatch, ResultsGoToTheResultListToo) {
  TURELongestMatch engine;
  engine.FindPrepare(u"b+", Exact);
  ASSERT_TRUE(engine.FindAll(u"abbcb"));
  ASSERT_EQ(engine.GetCount(), 2u);
  int32_t s = 0, e = 0;
  engine.GetResult(1, s, e);
  EXPECT_EQ(std::make_pair(s, e), std::make_pair(4, 5));
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

// Stacked bounds, bounds on operands that can be empty, and a pattern that once
// built millions of terms: both engines refuse them, and quickly.
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
