// Running the automaton: the one-pass rules, anchors, classes, properties,
// case folding, surrogate pairs, FindAll and FindFirst.
#include <gtest/gtest.h>

#include <kestrel/search/URESearch.h>

#include "URETestHelpers.h"

namespace kestrel::test {
namespace {

struct MatchCase {
  std::u16string pattern;
  std::u16string text;
  Matches expected;
  bool fold = false;
};

TEST(UREMatcher, FindAll) {
  const MatchCase cases[] = {
      // One pass without rewinding.
      {u"ab", u"aab", {}}, // the second a fails behind the first and is not tried again
      {u"ab", u"abab", {{0, 2}, {2, 4}}},
      {u"a*", u"bbb", {{0, 1}, {1, 2}, {2, 3}}},
      {u"a*", u"aab", {{0, 2}, {2, 3}}},
      {u"ab(cd)?", u"abx", {{0, 2}}},
      {u"ab(cd)?", u"abcx", {}}, // an accepting state passed through is forgotten
      {u"ab(cd)?", u"abcd", {{0, 4}}},
      {u"a{2}", u"aaaaa", {{0, 2}, {2, 4}}},
      // The later symbol wins where two overlap.
      {u"ab|.c", u"ab", {}},
      {u".b|ab", u"ab", {{0, 2}}},
      {u"[a-z]x|q", u"qx", {{0, 1}}}, // q stands later in the table and is taken
      // Line anchors; CR LF is one break.
      {u"^a", u"aaa", {{0, 1}, {1, 2}, {2, 3}}},
      {u"^a", u"b\na", {{2, 3}}},
      {u"^a", u"\na", {}},
      {u"^a", u"b\r\na", {{3, 4}}},
      {u"^a", u"b\u2028a", {{2, 3}}},
      {u"a$", u"a\nb", {{0, 1}}},
      {u"a$", u"a\n", {{0, 2}}},
      {u"a$", u"a\r\nb", {{0, 1}}},
      {u"a$", u"a\r\n", {{0, 3}}},
      {u"a$", u"a\u2029", {{0, 2}}},
      {u"b$", u"ab", {{1, 2}}},
      {u"$", u"ab", {}},
      {u"a$b", u"a\nb", {{0, 3}}},
      // The dot, classes, properties and surrogate pairs.
      {u".", u"\u2028", {}},
      {u".", u"\n\r", {}},
      {u".", u"\U0001D400", {{0, 2}}},
      {u".", u"\xD800x", {{0, 1}, {1, 2}}}, // a lone half is a character like any other
      {u"\\uD835\\uDC00+", u"\U0001D400\U0001D400x", {{0, 4}}},
      {u"[\U0001D400-\U0001D402]", u"\U0001D401\U0001D403", {{0, 2}}},
      {u"[^a]", u"a\U0001D400b", {{1, 3}, {3, 4}}},
      {u"[[:digit:]]", u"x[]5]]", {{1, 3}, {3, 5}}}, // a class of [ and digits, then ]
      {u"\\x00415", u"xA5A", {{1, 3}}},              // hex escapes read four digits at most
      {u"[:space:]", u"a\t b\uFEFF", {{1, 2}, {2, 3}, {4, 5}}},
      {u"\\p3+", u"a12b\u0663", {{1, 3}, {4, 5}}},
      {u"\\p0", u"abc", {}},
      {u"\\P1", u"a\u0301", {{0, 1}}},   // Mn does not match the negated class
      {u"[a\\P1]", u"\u0301", {{0, 1}}}, // but it matches the bidirectional bit
      // Case folding.
      {u"[A-C]x", u"bX", {{0, 2}}, true},
      {u"[a-c]X", u"bX", {{0, 2}}, true},
      {u"[A-C]x", u"bX", {}, false},
      {u"\u00c9t\u00c9", u"\u00e9T\u00c9", {{0, 3}}, true},
      // The text is lower-cased before a property test: Lu holds only for
      // capitals without a small form.
      {u"\\p10", u"Aa\u03d2", {{2, 3}}, true},
      {u"\\p10", u"Aa\u03d2", {{0, 1}, {2, 3}}, false},
      // An empty match is kept and stepped over, where the rules leave a choice.
      {u"^", u"ab", {{0, 0}, {1, 1}, {2, 2}}},
      {u"^$", u"", {{0, 0}}},
      {u"^$", u"a", {}},
      {u"$", u"a\n", {{1, 2}, {2, 2}}},        // the empty rest still holds a blank line
      {u"^", u"\U0001D400", {{0, 0}, {2, 2}}}, // a pair is stepped over whole
      {u"a*", u"", {}},
      // An empty match further in moves the search only to its end.
      {u"^|ab", u"ac\nab", {{3, 3}, {3, 5}}},
      // A start anchor looping on itself ends.
      {u"(^)*", u"ab", {{0, 1}, {1, 2}, {2, 2}}},
      {u"(^|a)+", u"ab", {{0, 1}, {1, 1}}},
      {u"(^|a)+", u"b", {{0, 0}}},
      {u"^^a", u"a", {{0, 1}}}, // a chain of anchors is no loop
      {u"(^a|b)+", u"abab", {{0, 2}, {2, 4}}},
  };
  for (const MatchCase &c : cases) {
    TURESearch engine;
    engine.FindPrepare(c.pattern, c.fold ? TSearchFlags{} : CaseSensitive());
    const bool any = engine.FindAll(c.text);
    const std::string name = Show(c.pattern) + " on " + Show(c.text);
    EXPECT_EQ(ResultsOf(engine), c.expected) << name;
    EXPECT_EQ(any, !c.expected.empty()) << name;
  }
}

TEST(UREMatcher, FindFirst) {
  TURESearch engine;
  uint32_t s = 99, e = 99;
  engine.FindPrepare(u"^$", CaseSensitive());
  EXPECT_TRUE(engine.FindFirst(u"", s, e));
  EXPECT_EQ(std::make_pair(s, e), std::make_pair(0u, 0u));
  engine.FindPrepare(u"a", CaseSensitive());
  s = e = 99;
  EXPECT_FALSE(engine.FindFirst(u"", s, e));
  EXPECT_EQ(s, 99u); // written only on success
  EXPECT_EQ(engine.GetCount(), 0u);

  // The text ends at its first zero unit; FindAll sees all of it.
  const std::u16string withZero(u"xy\0a", 4);
  EXPECT_FALSE(engine.FindFirst(withZero, s, e));
  EXPECT_TRUE(engine.FindAll(withZero));
  EXPECT_EQ(ResultsOf(engine), (Matches{{3, 4}}));
  EXPECT_TRUE(engine.FindFirst(u"bab", s, e));
  EXPECT_EQ(ResultsOf(engine), (Matches{{1, 2}})); // results replaced
  // A buffer without a terminator is not read past its length.
  std::vector<char16_t> unterminated(3, u'b');
  EXPECT_FALSE(engine.FindFirst(unterminated.data(), 3, s, e));
}

TEST(UREMatcher, ExecuteUREFlags) {
  TURESearch engine;
  uint32_t s = 0, e = 0;
  engine.FindPrepare(u".", CaseSensitive());
  EXPECT_FALSE(engine.ExecuteURE(0, u"\n", 1, s, e));
  EXPECT_TRUE(engine.ExecuteURE(DotMatchesAll, u"\n", 1, s, e));
  EXPECT_EQ(e, 1u);
  engine.FindPrepare(u"ab", CaseSensitive());
  EXPECT_FALSE(engine.ExecuteURE(0, u"a\u0301b", 3, s, e));
  EXPECT_TRUE(engine.ExecuteURE(IgnoreNonSpacingMarks, u"a\u0301b", 3, s, e));
  EXPECT_EQ(std::make_pair(s, e), std::make_pair(0u, 3u));
  EXPECT_FALSE(engine.ExecuteURE(0, nullptr, 3, s, e));
  TURESearch empty;
  EXPECT_FALSE(empty.ExecuteURE(0, u"a", 1, s, e));
  EXPECT_FALSE(empty.FindAll(u"a"));
}

TEST(UREMatcher, MatchesPropertiesReadsEachBitsCategory) {
  TURESearch engine;
  EXPECT_TRUE(engine.MatchesProperties(0x1, 0x0301));      // Mn
  EXPECT_TRUE(engine.MatchesProperties(0x4, u'7'));        // Nd
  EXPECT_TRUE(engine.MatchesProperties(0x10, u' '));       // Zs
  EXPECT_TRUE(engine.MatchesProperties(0x200, u'Q'));      // Lu
  EXPECT_TRUE(engine.MatchesProperties(0x400, u'q'));      // Ll
  EXPECT_TRUE(engine.MatchesProperties(0x400000, u'q'));   // bidirectional L
  EXPECT_TRUE(engine.MatchesProperties(0x800000, 0x05D0)); // bidirectional R
  EXPECT_FALSE(engine.MatchesProperties(0x400, u'Q'));
  EXPECT_FALSE(engine.MatchesProperties(0, u'Q'));
  EXPECT_TRUE(engine.MatchesProperties(0xFFFFFFFF, u'Q'));
}

TEST(UREMatcher, TheParseAndTheResultsLastUntilTheNextCompileOrClear) {
  TURESearch engine;
  engine.FindPrepare(u"b", CaseSensitive());
  const TUREBuffer &b = engine.GetUREBuffer();
  EXPECT_GT(b.ExpressionList.ExpressionsUsed, 0u);
  EXPECT_FALSE(b.Reducing);
  EXPECT_EQ(b.Stack.ListUsed, 0);
  EXPECT_EQ(b.SymbolTable.SymbolsUsed, 0u); // moved to the automaton
  ASSERT_TRUE(engine.FindAll(u"b"));
  engine.Clear();
  EXPECT_EQ(engine.GetCount(), 0u);
  EXPECT_EQ(b.ExpressionList.ExpressionsUsed, 0u);
  EXPECT_EQ(engine.GetDFA().StateList.StatesUsed, 0u);
  EXPECT_FALSE(engine.FindAll(u"b"));
}

} // namespace
} // namespace kestrel::test
