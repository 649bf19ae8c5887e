// TranslateFamiliarSyntax: what translations find, what is refused, and
// classes with complements against the character database.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include <kestrel/search/UREFamiliarSyntax.h>
#include <kestrel/search/URELongestMatch.h>
#include <kestrel/search/URESearch.h>
#include <kestrel/search/WordBounds.h>
#include <kestrel/unicode/Unicode.h>

#include "URETestHelpers.h"

namespace kestrel {
namespace {

using test::Pairs;

Pairs Find(const std::u16string &familiar, const std::u16string &text, bool fold) {
  return test::LongestMatches(TranslateFamiliarSyntax(familiar, fold), text,
                              fold ? TSearchFlags{} : TSearchFlags{TSearchFlag::sfCaseSensitive});
}

struct Found {
  const char16_t *pattern;
  bool fold;
  const char16_t *text;
  Pairs expected;
};

class FamiliarSyntaxFinds : public ::testing::TestWithParam<Found> {};

TEST_P(FamiliarSyntaxFinds, WhatItSays) {
  const Found &c = GetParam();
  EXPECT_EQ(Find(c.pattern, c.text, c.fold), c.expected);
  // The one-pass engine takes every translation too.
  TURESearch onePass;
  EXPECT_NO_THROW(onePass.FindPrepare(TranslateFamiliarSyntax(c.pattern, c.fold), {}));
}

// clang-format off
INSTANTIATE_TEST_SUITE_P(Syntax, FamiliarSyntaxFinds, ::testing::Values(
    Found{u"[[:alpha:]]+ness", false, u"kindness 4ness d\u00e9ness", {{0, 8}, {15, 21}}},
    Found{u"[[:digit:][:space:]]+", false, u"a1 2\t3b", {{1, 6}}},
    Found{u"[[:punct:]]+", false, u"a+b_c$d!?", {{1, 2}, {3, 4}, {5, 6}, {7, 9}}},
    Found{u"[[:upper:]]", false, u"aB\u00c9", {{1, 2}, {2, 3}}},
    Found{u"[[:upper:]]", true, u"aB", {{0, 1}, {1, 2}}},
    Found{u"\\d+", false, u"a12 \u0663\u0664", {{1, 3}, {4, 6}}},
    Found{u"\\D+", false, u"a12b", {{0, 1}, {3, 4}}},
    Found{u"\\s+", false, u"a \t\u00a0\u2028b\u0085", {{1, 5}, {6, 7}}},
    Found{u"\\w+", false, u"na\u00efve e\u0301t\u00e9 x_1-y", {{0, 5}, {6, 10}, {11, 14}, {15, 16}}},
    Found{u"[^\\W\\d_]+", false, u"ab_12cd\u203f", {{0, 2}, {5, 8}}},
    // Written as ranges, the members of a class with a complement are folded
    // first: the engine would fold the range U+0130-U+0131 into i-U+0131.
    Found{u"[\\x{130}\\x{131}\\W]", true, u"kiIx\u0130\u0131", {{1, 2}, {2, 3}, {4, 5}, {5, 6}}},
    Found{u"[\\w-]+", false, u"well-known fact", {{0, 10}, {11, 15}}},
    Found{u"[\\d-z]+", false, u"1-z a", {{0, 3}}},
    Found{u"\\p{Lu}\\p{Ll}+", false, u"The Kestrel sat", {{0, 3}, {4, 11}}},
    Found{u"\\p{Lu}\\p{Ll}+", true, u"The Kestrel sat", {{0, 3}, {4, 11}, {12, 15}}},
    Found{u"\\pL+", false, u"\u03b1\u03b2 1", {{0, 2}}},
    Found{u"\\P{L}+", false, u"ab12cd", {{2, 4}}},
    Found{u"\\p{^L}+", false, u"ab12cd", {{2, 4}}},
    Found{u"\\p{Pi}\\w+\\p{Pf}", false, u"\u00abmot\u00bb", {{0, 5}}},
    Found{u"\\p{Cn}", false, u"a\u0378", {{1, 2}}},
    Found{u"[\\p{Pc}\\p{Nd}]+", false, u"a_1\u203fb", {{1, 4}}},
    Found{u"\\x{10400}\\x{41}", false, u"\U00010400A", {{0, 3}}},
    Found{u"[\\x{10400}-\\x{10410}]", false, u"\U00010405", {{0, 2}}},
    Found{u"[\\xD801\\xDC00]", false, u"\U00010400", {{0, 2}}},
    Found{u"(?:ab)+c", false, u"ababc", {{0, 5}}},
    Found{u"(?<word>ab)|(?P<n>cd)", false, u"abcd", {{0, 2}, {2, 4}}},
    Found{u"\\Q.*+\\E", false, u"a.*+", {{1, 4}}},
    Found{u"[\\e\\t]", false, u"\x1b\t", {{0, 1}, {1, 2}}},
    Found{u"a{10}", false, u"aaaaaaaaaaa", {{0, 10}}}, // bounds of more than one digit
    Found{u"a{2,12}", false, u"aaa", {{0, 3}}},
    Found{u"\\d\\d5", false, u"125", {{0, 3}}},
    // The engine's own forms stay as they were.
    Found{u"\\p10\\p11+", false, u"The", {{0, 3}}},
    Found{u"[:digit:a]+", false, u"a1b", {{0, 2}}},
    Found{u"\\x0041\\u0042", false, u"AB", {{0, 2}}},
    Found{u"[\\p3x]+", false, u"x1y", {{0, 2}}}));
// clang-format on

struct Refused {
  const char16_t *pattern;
  const char *message;
};

class FamiliarSyntaxRefuses : public ::testing::TestWithParam<Refused> {};

TEST_P(FamiliarSyntaxRefuses, NamingTheConstructAndItsPlace) {
  try {
    TranslateFamiliarSyntax(GetParam().pattern, false);
    FAIL() << "no error";
  } catch (const ERegexSyntax &e) {
    EXPECT_EQ(e.Message(), GetParam().message);
  }
}

// clang-format off
INSTANTIATE_TEST_SUITE_P(Syntax, FamiliarSyntaxRefuses, ::testing::Values(
    Refused{u"\\bthe\\b", "the word boundary \\b at character 1 is not supported"},
    Refused{u"\u00e9\U00010400\\B", "the word non-boundary \\B at character 3 is not supported"},
    Refused{u"\\Aa", "the text anchor \\A at character 1 is not supported"},
    Refused{u"a(?=b)", "the look-ahead (?= at character 2 is not supported"},
    Refused{u"a(?!b)", "the negative look-ahead (?! at character 2 is not supported"},
    Refused{u"(?<=a)b", "the look-behind (?<= at character 1 is not supported"},
    Refused{u"(?<!a)b", "the negative look-behind (?<! at character 1 is not supported"},
    Refused{u"(a)\\12", "the back-reference \\12 at character 4 is not supported"},
    Refused{u"(?P<x>a)(?P=x)", "the back-reference (?P= at character 9 is not supported"},
    Refused{u"\\k<x>", "the back-reference \\k at character 1 is not supported"},
    Refused{u"a*?", "the lazy quantifier *? at character 2 is not supported"},
    Refused{u"a??", "the lazy quantifier ?? at character 2 is not supported"},
    Refused{u"a{2,3}?", "the lazy quantifier {2,3}? at character 2 is not supported"},
    Refused{u"a++", "the possessive quantifier ++ at character 2 is not supported"},
    Refused{u"(?>a)", "the atomic group (?> at character 1 is not supported"},
    Refused{u"(?i)a", "the inline option (?i) at character 1 is not supported"},
    Refused{u"a|", "the empty alternative | at character 2 is not supported"},
    Refused{u"(|a)", "the empty alternative | at character 2 is not supported"},
    Refused{u"a||b", "the empty alternative | at character 2 is not supported"},
    Refused{u"a()", "the empty group () at character 2 is not supported"},
    Refused{u"(?:)", "the empty group (?:) at character 1 is not supported"},
    Refused{u"a{0}", "the repetition {0} at character 2 is not supported"},
    Refused{u"a{2,0}", "the repetition {2,0} at character 2 is not supported"},
    Refused{u"[[=e=]]", "the equivalence class [= at character 2 is not supported"},
    Refused{u"[[.a.]]", "the collating element [. at character 2 is not supported"},
    Refused{u"[[:alfa:]]", "the unknown class name [:alfa:] at character 2 is not supported"},
    Refused{u"\\p{Letter}", "the unknown property \\p{Letter} at character 1 is not supported"},
    Refused{u"[\\p33]", "the property number \\p33 at character 2 is not supported"},
    Refused{u"\\h", "the escape \\h at character 1 is not supported"},
    Refused{u"[\\q]", "the escape \\q at character 2 is not supported"},
    Refused{u"[ab", "the unclosed class [ab at character 1 is not supported"},
    Refused{u"\\x{110000}", "the code point \\x{110000} at character 1 is not supported"}));
// clang-format on

// A brace that opens no bound goes on as it stands, for the engine to judge.
TEST(FamiliarSyntax, ABraceThatOpensNoBoundIsPassedOn) {
  for (const std::u16string p : {u"a{0x}", u"a{2x?"})
    EXPECT_EQ(TranslateFamiliarSyntax(p, false), p) << test::Show(p);
}

// The matches of a one-character class over every code point of the basic
// plane but the surrogates, against a predicate.
void ExpectClassIs(const std::u16string &pattern, bool fold,
                   const std::function<bool(UCS4)> &member) {
  std::u16string text;
  for (UCS4 c = 0; c < 0x10000; ++c)
    if (c < 0xD800 || c > 0xDFFF) text += char16_t(c);
  TURELongestMatch engine;
  engine.FindPrepare(TranslateFamiliarSyntax(pattern, fold),
                     fold ? TSearchFlags{} : TSearchFlags{TSearchFlag::sfCaseSensitive});
  engine.FindAll(text);
  std::vector<bool> matched(text.size(), false);
  for (const auto &m : engine.Matches())
    matched[m.Start] = true;
  int wrong = 0;
  for (size_t i = 0; i < text.size() && wrong < 5; ++i)
    if (matched[i] != member(text[i])) {
      ADD_FAILURE() << "U+" << std::hex << unsigned(text[i]) << " in " << WideStringToUTF8(pattern)
                    << " fold " << fold;
      ++wrong;
    }
}

// Zs, Zl and Zp of the character database.
constexpr uint32_t Separators = (1u << 6) | (1u << 7) | (1u << 8);

TEST(FamiliarSyntax, ClassesWithComplementsAreExact) {
  for (bool fold : {false, true}) {
    ExpectClassIs(u"[^\\W\\d_]", fold,
                  [](UCS4 c) { return IsWordCharacter(c) && !UnicodeIsDigit(c) && c != u'_'; });
    ExpectClassIs(u"[\\D\\p{Lu}]", fold, [&](UCS4 c) { return !UnicodeIsDigit(c); });
    ExpectClassIs(u"[^\\S\\n]", fold, [](UCS4 c) {
      return c != 0x0A &&
             (UnicodeTestProperties(c, Separators, 0) || c == 0x85 || (c >= 0x09 && c <= 0x0D));
    });
  }
  // Case folded, Ll stands for all cased letters: [^\W\p{Ll}] is the word
  // characters that have no case.
  ExpectClassIs(u"[^\\W\\p{Ll}]", true, [](UCS4 c) {
    return IsWordCharacter(c) && !UnicodeIsLower(c) && !UnicodeIsUpper(c) && !UnicodeIsTitle(c);
  });
  ExpectClassIs(u"[^\\W\\p{Ll}]", false,
                [](UCS4 c) { return IsWordCharacter(c) && !UnicodeIsLower(c); });
}

} // namespace
} // namespace kestrel
