// The Boyer-Moore search: the table of its rules, surrogate pairs, the compile, and
// randomized searches against a naive search and against a compare at every start.
#include <gtest/gtest.h>

#include <random>
#include <vector>

#include <kestrel/search/Search.h>

#include "URETestHelpers.h"

using namespace kestrel;

namespace {

using Pairs = test::Matches;
using test::MakeText;

constexpr uint8_t CS = 1, NS = 2, SC = 4, LB = 8, RB = 16;

TSearchFlags Fl(uint8_t raw) {
  return TSearchFlags::FromRaw(raw);
}

Pairs FindAll(const std::u16string &pattern, uint8_t flags, const std::u16string &text) {
  TUTBMSearch e(nullptr);
  e.FindPrepare(pattern, Fl(flags));
  e.FindAll(text);
  return test::ResultsOf(e);
}

// Leftmost non-overlapping occurrences, unit for unit: what an exact search
// without flags must give.
Pairs Naive(const std::u16string &pattern, const std::u16string &text) {
  Pairs out;
  for (size_t at = text.find(pattern); at != std::u16string::npos;
       at = text.find(pattern, at + pattern.size()))
    out.emplace_back(int32_t(at), int32_t(at + pattern.size()));
  return out;
}

const std::u16string kPair = u"\xD801\xDC00";  // U+10400
const std::u16string kPair2 = u"\xD800\xDF00"; // U+10300

} // namespace

struct FindCase {
  const char *what;
  std::u16string pattern;
  uint8_t flags;
  std::u16string text;
  Pairs expected;
};

TEST(UTBMSearch, FindAllTable) {
  const FindCase cases[] = {
      {"one entry ignores both bounds", u"a", LB | RB, u"bab", {{1, 2}}},
      {"right bound before blank", u"ab", RB, u"ab c", {{0, 2}}},
      {"right bound fails before a letter", u"ab", RB, u"abc", {}},
      {"left bound needs white space before", u"ab", LB, u"xab", {}},
      {"left bound after a match counts as start", u"ab", LB, u"abab", {{0, 2}, {2, 4}}},
      {"left bound after blank", u"ab", LB, u"x ab", {{2, 4}}},
      {"right bound at the end of the text", u"ab", RB, u"xab", {{1, 3}}},
      {"case folded", u"ab", 0, u"AB aB Ab ab", {{0, 2}, {3, 5}, {6, 8}, {9, 11}}},
      {"case sensitive", u"ab", CS, u"AB aB ab", {{6, 8}}},
      {"compressed run of three", u"a  b", SC, u"a   b", {{0, 5}}},
      {"compressed tab", u"a  b", SC, u"a\tb", {{0, 3}}},
      {"probe on a tab is compared in place", u"a  b", SC, u"a \t b", {{0, 5}}},
      {"leading blank takes the run", u" b", SC, u"a  b", {{1, 4}}},
      {"run at the start of the text", u" b", SC, u"  b", {{1, 3}}},
      {"probe on a mark is compared in place", u"ab", NS, u"a\u0301b", {{0, 3}}},
      {"a mark after the match is not taken", u"ab", NS, u"ab\u0301", {{0, 2}}},
      {"marks between all letters", u"ab", NS, u"a\u0301b\u0301c\u0301d", {{0, 3}}},
      {"blanks and a tab in the run", u"a b", SC, u"za  \t bc", {{1, 7}}},
      {"control run after the end", u"ab", SC | RB, u"ab\x01 ", {{0, 3}}},
      {"mark after a bounded end", u"bab", NS | RB, u"bab\u0301 ", {{0, 4}}},
      {"k equals the Kelvin sign's entry too", u"Ak\u212A", 0, u"Akk", {{0, 3}}},
      {"shift bounded by the Kelvin sign", u"k\u212AK", 0, u"zkkk", {{1, 4}}},
      {"long s shares only the upper case", u"s\u017F", 0, u"s\u017F", {{0, 2}}},
      {"pattern longer than the text", u"abcd", 0, u"abc", {}},
      {"lone high half in the pattern", u"\xD800x", CS, u"a\xD800x", {{1, 3}}},
      {"lone high half does not match a pair", u"\xD800x", CS, u"\xD800\xDC00x", {}},
      // The first character of the text is compared once.
      {"first character not compared twice", u"aab", CS | NS, u"a\u0301b", {}},
      {"first character then the rest", u"aab", CS | NS, u"a\u0301ab", {{0, 4}}},
      {"first blank not compared twice", u"x  b", CS | SC, u"  b", {}},
  };
  for (const auto &c : cases)
    EXPECT_EQ(FindAll(c.pattern, c.flags, c.text), c.expected) << c.what;
}

TEST(UTBMSearch, CompileBuildsEntriesSkipsAndShift) {
  TUTBMSearch e(nullptr);
  e.FindPrepare(u"a  b", Fl(SC));
  EXPECT_EQ(e.GetPatternUsed(), 3u);
  EXPECT_EQ(e.GetPatternLength(), 3u);
  ASSERT_EQ(e.GetSkipsUsed(), 3u);
  EXPECT_EQ(e.GetSkipValues()[1].Entry->UpCase, 0x20u); // only the blank is known
  EXPECT_EQ(e.GetSkipValues()[0].Skip, 2u);
  EXPECT_EQ(e.GetSkipValues()[2].Skip, 0u);

  // Case forms of each entry; a later occurrence overwrites the skip.
  e.FindPrepare(u"abca", {});
  EXPECT_EQ(e.GetPattern()[0].LoCase, u'a');
  EXPECT_EQ(e.GetPattern()[0].UpCase, u'A');
  EXPECT_EQ(e.GetPattern()[0].TitleCase, u'A');
  ASSERT_EQ(e.GetSkipsUsed(), 3u);
  EXPECT_EQ(e.GetSkipValues()[0].Skip, 0u);
  EXPECT_EQ(e.GetMismatchShift(), 3u); // the earlier a is three units back

  e.FindPrepare(u"abc", Fl(CS));
  EXPECT_EQ(e.GetPattern()[0].UpCase, u'a');
  EXPECT_EQ(e.GetMismatchShift(), 1u);

  // A pair counts two units; its skip is its distance to the end, like any
  // other character's.
  e.FindPrepare(kPair + u"xy", Fl(CS));
  EXPECT_EQ(e.GetPatternUsed(), 3u);
  EXPECT_EQ(e.GetPatternLength(), 4u);
  EXPECT_EQ(e.GetSkipValues()[0].Skip, 3u);
  EXPECT_EQ(e.GetMismatchShift(), 3u);
  e.FindPrepare(u"x" + kPair, Fl(CS));
  EXPECT_EQ(e.GetSkipValues()[1].Skip, 1u); // never 0 for a final pair

  // Marks dropped; a pattern of marks alone leaves no entry and finds nothing.
  e.FindPrepare(u"\u0301\u0302", Fl(NS));
  EXPECT_EQ(e.GetPatternUsed(), 0u);
  EXPECT_FALSE(e.FindAll(u"\u0301\u0302"));
}

TEST(UTBMSearch, EmptyPatternKeepsTheOldOne) {
  TUTBMSearch e(nullptr);
  e.FindPrepare(u"ab", Fl(CS));
  e.FindPrepare(u"", Fl(0));
  e.FindPrepare(nullptr, 3, Fl(0));
  e.FindPrepare(std::u16string(u"\0x", 2), Fl(0)); // first unit 0: empty
  EXPECT_EQ(e.GetFlags(), Fl(CS));
  EXPECT_TRUE(e.FindAll(u"xab"));
  EXPECT_EQ(test::ResultsOf(e), (Pairs{{1, 3}}));
}

TEST(UTBMSearch, FindFirstFindAllAndClear) {
  auto *owner = reinterpret_cast<TWideStrings *>(0x1000); // never read by the engine
  TUTBMSearch e(owner);
  uint32_t a = 0, b = 0;
  EXPECT_FALSE(e.FindFirst(u"abc", a, b)); // no pattern yet
  e.FindPrepare(u"b", Fl(CS));
  EXPECT_TRUE(e.FindAll(u"bbb"));
  EXPECT_TRUE(e.FindFirst(u"abcb", a, b));
  EXPECT_EQ(std::make_pair(a, b), std::make_pair(1u, 2u));
  EXPECT_EQ(test::ResultsOf(e), (Pairs{{1, 2}})); // the find replaced the results
  EXPECT_FALSE(e.FindAll(u"xyz"));
  EXPECT_EQ(e.GetCount(), 0u);
  e.FindAll(u"b");
  EXPECT_FALSE(e.FindFirst(nullptr, 5, a, b));
  EXPECT_FALSE(e.FindFirst(u"", a, b));
  EXPECT_EQ(e.GetCount(), 0u);
  e.FindAll(u"b");
  e.Clear();
  EXPECT_EQ(e.GetCount(), 0u);
  EXPECT_EQ(e.GetPatternUsed(), 0u);
  EXPECT_EQ(e.GetOwner(), owner);
  EXPECT_FALSE(e.FindAll(u"b"));
}

// Random exact searches give what a naive search gives: an oracle apart from
// the engine's own compare, which the test below takes as its reference.
TEST(UTBMSearch, RandomExactSearchesAgreeWithANaiveSearch) {
  std::mt19937 rng(20240607);
  const std::vector<std::u16string> letters = {u"a", u"b", kPair, kPair2};
  for (int run = 0; run < 3000; ++run) {
    const std::u16string pattern = MakeText(rng, letters, 5), text = MakeText(rng, letters, 40);
    if (pattern.empty()) continue;
    ASSERT_EQ(FindAll(pattern, CS, text), Naive(pattern, text))
        << "pattern " << test::Show(pattern) << " text " << test::Show(text);
  }
}

namespace {

// The compare of the engine, open to the test.
struct ComparingSearch : TUTBMSearch {
  ComparingSearch() : TUTBMSearch(nullptr) {}
  using TUTBMSearch::Match;
};

UCS4 CodePointAt(const char16_t *p, const char16_t *end) {
  const bool pair = p + 1 < end && IsHighSurrogateUnit(p[0]) && IsLowSurrogateUnit(p[1]);
  return pair ? CombineSurrogates(p[0], p[1]) : *p;
}

bool Equals(const TPatternEntry &e, UCS4 c) {
  return c == e.LoCase || c == e.UpCase || c == e.TitleCase;
}

// What a search that never skips finds: the compare at every start, the
// next search begun after each success, as FindAll does.
Pairs EveryStart(const ComparingSearch &e, const std::u16string &text) {
  Pairs out;
  size_t run = 0;
  while (e.GetPatternUsed() > 0 && e.GetPatternLength() <= text.size() - run && run < text.size()) {
    const char16_t *t = text.data() + run;
    const auto len = uint32_t(text.size() - run);
    uint32_t s = 0, end = 0;
    bool found = false;
    for (uint32_t p = 0; p < len && !found; ++p) {
      const bool lowHalf = p > 0 && IsLowSurrogateUnit(t[p]) && IsHighSurrogateUnit(t[p - 1]);
      if (lowHalf) continue;
      // For one entry the skip lookup is the whole compare.
      if (e.GetPatternUsed() == 1 && !Equals(e.GetPattern()[0], CodePointAt(t + p, t + len)))
        continue;
      found = e.Match(t, t + p, t + len, s, end);
    }
    if (!found) break;
    out.emplace_back(int32_t(run + s), int32_t(run + end));
    run += end;
  }
  return out;
}

} // namespace

// No skip may pass an occurrence: under every combination of flags FindAll and
// FindFirst give what the compare at every start gives.
TEST(UTBMSearch, SkipsNeverPassAnOccurrence) {
  std::mt19937 rng(9);
  // Single units first (the small alphabets), then the pairs.
  const std::u16string units(
      u"abAk\u212As\u017F\u00B5\u03BC  \t\x01\n\u0301\u0302\u2028\u01C5\u01C6"
      u"\xD800\xDC00\0",
      22);
  std::vector<std::u16string> letters(units.size());
  for (size_t i = 0; i < units.size(); ++i)
    letters[i] = units.substr(i, 1);
  letters.insert(letters.end(), {kPair, kPair2, u"\U00010428", u"\U0001D400"});
  for (int round = 0; round < 5000; ++round) {
    // Small alphabets give many occurrences, large ones every kind of unit.
    const std::vector<std::u16string> some(letters.begin(),
                                           letters.begin() + 3 + rng() % (letters.size() - 2));
    const std::u16string pattern = MakeText(rng, some, 5), text = MakeText(rng, some, 30);
    for (uint8_t flags = 0; flags < 32; ++flags) {
      ComparingSearch e;
      e.FindPrepare(pattern, Fl(flags));
      const Pairs expected = EveryStart(e, text);
      e.FindAll(text);
      ASSERT_EQ(test::ResultsOf(e), expected)
          << "flags " << int(flags) << " pattern " << test::Show(pattern) << " text "
          << test::Show(text);
      uint32_t a = 0, b = 0;
      const bool found = e.FindFirst(text, a, b);
      ASSERT_EQ(found, !expected.empty());
      if (found) {
        ASSERT_EQ((Pairs{{int32_t(a), int32_t(b)}}), Pairs{expected.front()});
      }
    }
  }
}
