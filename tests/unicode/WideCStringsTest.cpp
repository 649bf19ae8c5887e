// The Str*W family over wide C strings and allocated buffers.
#include <gtest/gtest.h>

#include <cstring>

#include <kestrel/frame/host/Exceptions.h>
#include <kestrel/unicode/WideCStrings.h>

namespace kestrel {
namespace {

// A buffer of units filled from a text, with guard units after it so that a
// write beyond the expected end shows.
struct Buffer {
  explicit Buffer(std::u16string_view text = u"", size_t size = 32) : units(size, 0xBEEF) {
    std::copy(text.begin(), text.end(), units.begin());
    units[text.size()] = 0;
  }
  char16_t *p() { return units.data(); }
  std::u16string str() const { return std::u16string(units.data()); }
  std::u16string units;
};

TEST(WideCStrings, LengthAndEnd) {
  Buffer b(u"abc");
  EXPECT_EQ(StrLenW(b.p()), 3u);
  EXPECT_EQ(StrEndW(b.p()), b.p() + 3);
  EXPECT_EQ(StrLenW(u""), 0u);
}

TEST(WideCStrings, MoveHandlesOverlapBothWays) {
  Buffer up(u"0123456789");
  StrMoveW(up.p() + 2, up.p(), 5); // destination above source
  EXPECT_EQ(up.str(), u"0101234789");
  Buffer down(u"0123456789");
  StrMoveW(down.p(), down.p() + 2, 5); // destination below source
  EXPECT_EQ(down.str(), u"2345656789");
  Buffer same(u"abc");
  EXPECT_EQ(StrMoveW(same.p(), same.p(), 3), same.p());
  EXPECT_EQ(same.str(), u"abc");
}

TEST(WideCStrings, MoveWritesNoTerminator) {
  Buffer b(u"xxxxxx");
  StrMoveW(b.p(), u"ab", 2);
  EXPECT_EQ(b.str(), u"abxxxx");
  StrMoveW(b.p(), u"ab", 3); // the count includes the source's terminator
  EXPECT_EQ(b.str(), u"ab");
}

TEST(WideCStrings, Copies) {
  Buffer b;
  EXPECT_EQ(StrCopyW(b.p(), u"hello"), b.p());
  EXPECT_EQ(b.str(), u"hello");
  char16_t *end = StrECopyW(b.p(), u"hi");
  EXPECT_EQ(end, b.p() + 2);
  EXPECT_EQ(*end, 0);
}

TEST(WideCStrings, LimitedCopy) {
  Buffer b(u"zzzzzzzz");
  StrLCopyW(b.p(), u"abcdef", 0);
  EXPECT_EQ(b.units[0], 0);
  EXPECT_EQ(b.units[1], u'z'); // one terminator and nothing else
  StrLCopyW(b.p(), u"abcdef", 3);
  EXPECT_EQ(b.str(), u"abc");
  Buffer c(u"zzzzzzzz");
  StrLCopyW(c.p(), u"ab", 5); // stops at the source's end
  EXPECT_EQ(c.str(), u"ab");
  EXPECT_EQ(c.units[3], u'z');
}

TEST(WideCStrings, ByteCopiesUseNoCodePage) {
  Buffer b(u"zzzz");
  StrPCopyW(b.p(), "");
  EXPECT_EQ(b.units[0], 0);
  EXPECT_EQ(b.units[1], u'z');
  StrPCopyW(b.p(), "a\xE9");
  EXPECT_EQ(b.str(), u"a\u00E9");
  Buffer c(u"zzzz");
  StrPLCopyW(c.p(), "abc", 2);
  EXPECT_EQ(c.str(), u"abzz"); // no terminator
  StrPLCopyW(c.p(), "abc", 0);
  EXPECT_EQ(c.str(), u"abzz");
  StrPLCopyW(c.p(), "q", 9); // never more than the source holds
  EXPECT_EQ(c.str(), u"qbzz");
}

TEST(WideCStrings, Concatenation) {
  Buffer b(u"ab");
  StrCatW(b.p(), u"cd");
  EXPECT_EQ(b.str(), u"abcd");
  StrLCatW(b.p(), u"efgh", 6);
  EXPECT_EQ(b.str(), u"abcdef");
  StrLCatW(b.p(), u"xyz", 6); // already at MaxLen
  EXPECT_EQ(b.str(), u"abcdef");
  StrLCatW(b.p(), u"xyz", 4); // beyond MaxLen already: left alone
  EXPECT_EQ(b.str(), u"abcdef");
}

TEST(WideCStrings, Compare) {
  EXPECT_EQ(StrCompW(u"abc", u"abc"), 0);
  EXPECT_EQ(StrCompW(u"abcd", u"abc"), u'd');
  EXPECT_EQ(StrCompW(u"abc", u"abcd"), -int32_t(u'd'));
  EXPECT_EQ(StrCompW(u"\uFFFF", u"a"), 0xFFFF - 0x61); // unsigned units
  EXPECT_EQ(StrCompW(u"", u""), 0);
}

TEST(WideCStrings, CompareIgnoringAsciiCase) {
  EXPECT_EQ(StrICompW(u"a", u"A"), 0);
  EXPECT_EQ(StrICompW(u"Hello", u"hELLO"), 0);
  EXPECT_NE(StrICompW(u"\u00E9", u"\u00C9"), 0);
  EXPECT_EQ(StrICompW(u"a", u"["), int32_t(u'A') - int32_t(u'[')); // folded before the difference
  EXPECT_EQ(StrICompW(u"ab", u"A"), u'B');
}

TEST(WideCStrings, LimitedCompare) {
  EXPECT_EQ(StrLCompW(u"abcx", u"abcy", 3), 0);
  EXPECT_LT(StrLCompW(u"abcx", u"abcy", 4), 0);
  EXPECT_EQ(StrLCompW(u"a", u"b", 0), 0);
  EXPECT_EQ(StrLCompW(u"ab", u"ab", 10), 0); // stops at the terminator
  EXPECT_EQ(StrLICompW(u"ABcx", u"abCy", 3), 0);
  EXPECT_GT(StrLICompW(u"ABcz", u"abCy", 4), 0);
  EXPECT_EQ(StrLICompW(u"x", u"y", 0), 0);
}

TEST(WideCStrings, SpanScans) {
  EXPECT_EQ(StrNScanW(u"abc", u"a"), 0);
  EXPECT_EQ(StrNScanW(u"abc", u"xc"), 2);
  EXPECT_EQ(StrNScanW(u"abc", u"xyz"), 3);
  EXPECT_EQ(StrNScanW(u"", u"abc"), 0);
  EXPECT_EQ(StrNScanW(nullptr, u"a"), -1);
  EXPECT_EQ(StrNScanW(u"a", nullptr), -1);

  const char16_t text[] = u"\0ab,cd";
  EXPECT_EQ(StrRNScanW(text + 5, u","), 2); // d, c, stop at ','
  EXPECT_EQ(StrRNScanW(text + 3, u","), 0); // S1 itself is examined first
  EXPECT_EQ(StrRNScanW(text + 2, u","), 2); // b, a, stop at the 0 unit
  EXPECT_EQ(StrRNScanW(nullptr, u","), -1);
}

TEST(WideCStrings, CharacterScans) {
  const char16_t *s = u"abcabc";
  EXPECT_EQ(StrScanW(s, u'b'), s + 1);
  EXPECT_EQ(StrScanW(s, u'z'), nullptr);
  EXPECT_EQ(StrScanW(s, u'\0'), s + 6);
  EXPECT_EQ(StrRScanW(s, u'b'), s + 4);
  EXPECT_EQ(StrRScanW(s, u'z'), nullptr);
  EXPECT_EQ(StrRScanW(s, u'\0'), s + 6);
}

TEST(WideCStrings, CountedScan) {
  const char16_t s[] = {u'a', u'b', 0, u'c', u'd'};
  EXPECT_EQ(StrScanW(s, u'c', 4), s + 3); // looks at no terminator
  EXPECT_EQ(StrScanW(s, u'd', 5), s + 4); // the last of the units
  EXPECT_EQ(StrScanW(s, u'd', 4), nullptr);
  EXPECT_EQ(StrScanW(nullptr, u'a', 3), nullptr);
  EXPECT_EQ(StrScanW(s, u'z', 0), s);
}

TEST(WideCStrings, Position) {
  const char16_t *s = u"hello world";
  EXPECT_EQ(StrPosW(s, u"o w"), s + 4);
  EXPECT_EQ(StrPosW(s, u"hello world"), s);
  EXPECT_EQ(StrPosW(s, u""), nullptr);
  EXPECT_EQ(StrPosW(s, u"world!"), nullptr);
  EXPECT_EQ(StrPosW(s, u"hello world and more"), nullptr);
  EXPECT_EQ(StrPosW(nullptr, u"a"), nullptr);
  EXPECT_EQ(StrPosW(s, nullptr), nullptr);
  EXPECT_EQ(StrPosW(u"aaab", u"aab"), StrPosW(u"aaab", u"aab")); // a restart after a near miss
  const char16_t *t = u"aaab";
  EXPECT_EQ(StrPosW(t, u"aab"), t + 1);
}

TEST(WideCStrings, AllocatedBufferLayout) {
  char16_t *p = StrAllocW(5);
  uint32_t prefix;
  std::memcpy(&prefix, reinterpret_cast<char *>(p) - 4, 4);
  EXPECT_EQ(prefix, 2u * 5 + 4);
  EXPECT_EQ(StrBufSizeW(p), 5u);
  for (int i = 0; i < 5; ++i)
    EXPECT_EQ(p[i], 0);
  StrDisposeW(p);
  StrDisposeW(nullptr);
}

TEST(WideCStrings, NewBuffers) {
  char16_t *p = StrNewW(u"abc");
  EXPECT_EQ(StrBufSizeW(p), 4u);
  EXPECT_EQ(std::u16string(p), u"abc");
  StrDisposeW(p);
  char16_t *e = StrNewW(u"");
  EXPECT_EQ(StrBufSizeW(e), 1u);
  EXPECT_EQ(e[0], 0);
  StrDisposeW(e);
  EXPECT_EQ(StrNewW(nullptr), nullptr);
}

TEST(WideCStrings, AllocationBeyondTheAddressableRaises) {
  EXPECT_THROW(StrAllocW(0xFFFFFFFFu), EOutOfMemory);
}

TEST(WideCStrings, SwapByteOrderStopsAtTheFirstZero) {
  char16_t s[] = {0x1234, 0x00FF, 0, 0x1234};
  StrSwapByteOrder(s);
  EXPECT_EQ(s[0], 0x3412);
  EXPECT_EQ(s[1], 0xFF00);
  EXPECT_EQ(s[3], 0x1234);
  char16_t t[] = {0xFF00, 0x1234, 0}; // 0xFF00 turns into 0x00FF, no stop
  StrSwapByteOrder(t);
  EXPECT_EQ(t[1], 0x3412);
}

} // namespace
} // namespace kestrel
