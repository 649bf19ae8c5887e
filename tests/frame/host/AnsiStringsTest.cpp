// The host's byte-string functions: case, comparison, C-string buffers.
#include <gtest/gtest.h>

#include <cstring>

#include <kestrel/frame/host/AnsiStrings.h>

using namespace kestrel;

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
