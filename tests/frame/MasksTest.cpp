#include <gtest/gtest.h>

#include <cstring>

#include <kestrel/frame/host/AnsiStrings.h>
#include <kestrel/frame/host/Exceptions.h>
#include <kestrel/frame/host/Masks.h>

using namespace kestrel;

TEST(TMask, WildcardRules) {
  struct Row {
    const char *mask, *name;
    bool match;
  } rows[] = {
      {"*.txt", "a.txt", true},
      {"*.txt", "A.TXT", true},
      {"*.txt", "a.txt.bak", false},
      {"*.txt", ".txt", true},
      {"*", "", true},
      {"*", "anything.at.all", true},
      {"*.*", "noext", false},
      {"*.*", "a.b", true},
      {"?", "a", true},
      {"?", "", false},
      {"?", "ab", false},
      {"a?c", "abc", true},
      {"a?c", "ac", false},
      {"a*b*c", "aXXbYYc", true},
      {"a*b*c", "aXXbYY", false},
      {"*ab", "aab", true},
      {"**a", "a", true},
      {"[a-c]x", "bx", true},
      {"[a-c]x", "Bx", true},
      {"[a-c]x", "dx", false},
      {"[!a-c]x", "dx", true},
      {"[!a-c]x", "ax", false},
      {"[abc]", "c", true},
      {"[a-cx-z]", "y", true},
      {"[*]", "*", true},
      {"[*]", "a", false},
      {"[?]x", "?x", true},
      {"", "", true},
      {"", "a", false},
      {"abc", "ABC", true},
      {"abc", "abcd", false},
      {"é*", "Éclair", true},
      {"*ß", "STRAß", true},
      {"[à-ä]", "Â", true},
      {"d?t", "d\xC3\xA9t", true}, // one character of two bytes
      {"a\xFF*", "A\xFFz", true},  // a byte outside UTF-8 is a character of its own
  };
  for (const Row &r : rows) {
    SCOPED_TRACE(std::string(r.mask) + " / " + r.name);
    EXPECT_EQ(TMask(r.mask).Matches(r.name), r.match);
    EXPECT_EQ(MatchesMask(r.name, r.mask), r.match);
  }
}

TEST(TMask, BadMasksRaiseWithThePosition) {
  struct Row {
    const char *mask;
    int position;
  } rows[] = {{"[abc", 5}, {"a[", 3},   {"[]", 2},     {"[!]", 3},
              {"[-a]", 2}, {"[a-]", 3}, {"x[z-a]", 5}, {"[a-", 3}};
  for (const Row &r : rows) {
    SCOPED_TRACE(r.mask);
    try {
      TMask m(r.mask);
      ADD_FAILURE() << "no exception";
    } catch (const EMaskException &e) {
      EXPECT_EQ(e.Message(), "'" + std::string(r.mask) + "' is an invalid mask at (" +
                                 std::to_string(r.position) + ")");
    }
  }
}

TEST(TMask, LongNamesDoNotTakeLong) {
  // Backtracking over stars stays bounded by steps x characters.
  std::string name(20000, 'a');
  EXPECT_FALSE(TMask("*a*a*a*a*a*b").Matches(name));
  EXPECT_TRUE(TMask("*a*a*a*a*a*").Matches(name));
}

TEST(AnsiStrings, CaseChangesKeepTheByteLength) {
  EXPECT_EQ(AnsiLowerCase("C:/Corpus/B.ZIP"), "c:/corpus/b.zip");
  EXPECT_EQ(AnsiUpperCase("straße"), "STRAßE"); // ß has no simple upper-case form
  EXPECT_EQ(AnsiLowerCase("ÉCOLE ΑΒΓ"), "école αβγ");
  EXPECT_EQ(AnsiUpperCase("école αβγ"), "ÉCOLE ΑΒΓ");
  std::string bad = "A\xFF\xC3Z"; // invalid bytes pass through
  EXPECT_EQ(AnsiLowerCase(bad), "a\xFF\xC3z");
  // U+0130 lower-cases to i plus a combining dot in full mappings; the simple
  // mapping gives i, one byte instead of two, so it stays.
  EXPECT_EQ(AnsiLowerCase("\xC4\xB0"), "\xC4\xB0");
  for (const char *s : {"Ω", "ǅ", "Ⅻ", "ﬀ"})
    EXPECT_EQ(AnsiLowerCase(s).size(), std::string(s).size());
}

TEST(AnsiStrings, ComparisonsIgnoreCaseOnlyWhenAsked) {
  EXPECT_EQ(AnsiCompareText("abc", "ABC"), 0);
  EXPECT_LT(AnsiCompareText("abc", "ABD"), 0);
  EXPECT_GT(AnsiCompareText("b", "A"), 0);
  EXPECT_LT(AnsiCompareText("ab", "ABC"), 0);
  EXPECT_EQ(AnsiCompareText("École", "éCOLE"), 0);
  EXPECT_GT(AnsiCompareStr("abc", "ABC"), 0);
  EXPECT_LT(AnsiCompareStr("z", "é"), 0);                  // by code point
  EXPECT_TRUE(AnsiSameText("Straße", "STRASSE") == false); // simple folding only
  EXPECT_EQ(AnsiPos("zip", "a.zip.zip"), 3u);
  EXPECT_EQ(AnsiPos("x", "abc"), 0u);
}

TEST(AnsiStrings, StrAllocGivesATerminatedBufferOfItsSize) {
  char *p = StrAlloc(10);
  EXPECT_EQ(StrBufSize(p), 10u);
  EXPECT_EQ(StrLen(p), 0u);
  std::memcpy(p, "123456789", 10);
  EXPECT_EQ(StrLen(p), 9u);
  StrDispose(p);
  StrDispose(nullptr);
  EXPECT_EQ(StrLen(nullptr), 0u);
}
