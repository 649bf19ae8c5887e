// The Str*W family over wide C strings and allocated buffers.
#include <gtest/gtest.h>

#include <cstring>

#include <kestrel/frame/host/Exceptions.h>
#include <kestrel/unicode/WideCStrings.h>

#include "support/TestSupport.h"

namespace kestrel {
namespace {

// Units filled from a text, with guard units after it so that a write beyond
// the expected end shows.
struct Buffer {
  explicit Buffer(std::u16string_view text = u"") : units(32, u'z') {
    std::copy(text.begin(), text.end(), units.begin());
    units[text.size()] = 0;
  }
  char16_t *p() { return units.data(); }
  std::u16string str() const { return std::u16string(units.data()); }
  std::u16string units;
};

TEST(WideCStrings, LengthMoveAndCopies) {
  EXPECT_EQ(StrLenW(u"abc"), 3u);
  EXPECT_EQ(StrLenW(u""), 0u);
  Buffer up(u"0123456789"), down(u"0123456789");
  StrMoveW(up.p() + 2, up.p(), 5); // overlapping either way; no terminator written
  StrMoveW(down.p(), down.p() + 2, 5);
  EXPECT_EQ(up.str(), u"0101234789");
  EXPECT_EQ(down.str(), u"2345656789");
  Buffer b;
  EXPECT_EQ(StrECopyW(b.p(), u"hi"), b.p() + 2);
  EXPECT_EQ(StrEndW(b.p()), b.p() + 2);
  EXPECT_EQ(StrCopyW(b.p(), u"hello"), b.p());
  EXPECT_EQ(b.str(), u"hello");
  StrLCopyW(b.p(), u"abcdef", 0); // one terminator and nothing else
  EXPECT_EQ(b.units.substr(0, 2), std::u16string(u"\0e", 2));
  StrLCopyW(b.p(), u"ab", 5); // stops at the source's end
  EXPECT_EQ(b.units.substr(0, 4), std::u16string(u"ab\0l", 4));
  StrLCopyW(b.p(), u"abcdef", 3);
  EXPECT_EQ(b.str(), u"abc");
}

TEST(WideCStrings, ByteCopiesUseNoCodePage) {
  Buffer b(u"zzzz");
  StrPCopyW(b.p(), "a\xE9");
  EXPECT_EQ(b.str(), u"a\u00E9");
  StrPLCopyW(b.p(), "xyz", 2); // no terminator, never more than the source holds
  StrPLCopyW(b.p(), "q", 9);
  EXPECT_EQ(b.str(), u"qy");
}

TEST(WideCStrings, Concatenation) {
  Buffer b(u"ab");
  StrCatW(b.p(), u"cd");
  StrLCatW(b.p(), u"efgh", 6);
  EXPECT_EQ(b.str(), u"abcdef");
  StrLCatW(b.p(), u"xyz", 6); // at MaxLen already, or beyond: left alone
  StrLCatW(b.p(), u"xyz", 4);
  EXPECT_EQ(b.str(), u"abcdef");
}

TEST(WideCStrings, Compares) {
  EXPECT_EQ(StrCompW(u"abc", u"abc"), 0);
  EXPECT_EQ(StrCompW(u"abcd", u"abc"), u'd');
  EXPECT_EQ(StrCompW(u"abc", u"abcd"), -int32_t(u'd'));
  EXPECT_EQ(StrCompW(u"\uFFFF", u"a"), 0xFFFF - 0x61); // unsigned units
  EXPECT_EQ(StrICompW(u"Hello", u"hELLO"), 0);
  EXPECT_EQ(StrICompW(u"\u00E9", u"\u00C9"), 0xE9 - 0xC9);         // only a to z fold
  EXPECT_EQ(StrICompW(u"a", u"["), int32_t(u'A') - int32_t(u'[')); // folded first
  EXPECT_EQ(StrLCompW(u"abcx", u"abcy", 3), 0);
  EXPECT_LT(StrLCompW(u"abcx", u"abcy", 4), 0);
  EXPECT_EQ(StrLCompW(u"ab", u"ab", 10), 0); // stops at the terminator
  EXPECT_EQ(StrLICompW(u"ABcx", u"abCy", 3), 0);
  EXPECT_GT(StrLICompW(u"ABcz", u"abCy", 4), 0);
  EXPECT_EQ(StrLICompW(u"x", u"y", 0), 0);
}

TEST(WideCStrings, Scans) {
  EXPECT_EQ(StrNScanW(u"abc", u"xc"), 2);
  EXPECT_EQ(StrNScanW(u"abc", u"xyz"), 3);
  EXPECT_EQ(StrNScanW(nullptr, u"a"), -1);
  EXPECT_EQ(StrNScanW(u"a", nullptr), -1);
  const char16_t text[] = u"\0ab,cd";
  EXPECT_EQ(StrRNScanW(text + 5, u","), 2); // d, c, stop at ','
  EXPECT_EQ(StrRNScanW(text + 3, u","), 0); // S1 itself is examined first
  EXPECT_EQ(StrRNScanW(text + 2, u","), 2); // b, a, stop at the 0 unit
  EXPECT_EQ(StrRNScanW(nullptr, u","), -1);

  const char16_t *s = u"abcabc";
  EXPECT_EQ(StrScanW(s, u'b'), s + 1);
  EXPECT_EQ(StrScanW(s, u'z'), nullptr);
  EXPECT_EQ(StrScanW(s, u'\0'), s + 6);
  EXPECT_EQ(StrRScanW(s, u'b'), s + 4);
  EXPECT_EQ(StrRScanW(s, u'z'), nullptr);
  EXPECT_EQ(StrRScanW(s, u'\0'), s + 6);
  const char16_t counted[] = {u'a', u'b', 0, u'c', u'd'};
  EXPECT_EQ(StrScanW(counted, u'c', 4), counted + 3); // looks at no terminator
  EXPECT_EQ(StrScanW(counted, u'd', 5), counted + 4);
  EXPECT_EQ(StrScanW(counted, u'd', 4), nullptr);
  EXPECT_EQ(StrScanW(nullptr, u'a', 3), nullptr);
  EXPECT_EQ(StrScanW(counted, u'z', 0), counted);
}

TEST(WideCStrings, Position) {
  const char16_t *s = u"hello world", *t = u"aaab";
  EXPECT_EQ(StrPosW(s, u"o w"), s + 4);
  EXPECT_EQ(StrPosW(s, u"hello world"), s);
  EXPECT_EQ(StrPosW(t, u"aab"), t + 1); // a restart after a near miss
  for (const char16_t *none : {u"", u"world!", u"hello world and more"})
    EXPECT_EQ(StrPosW(s, none), nullptr);
  EXPECT_EQ(StrPosW(nullptr, u"a"), nullptr);
  EXPECT_EQ(StrPosW(s, nullptr), nullptr);
}

TEST(WideCStrings, AllocatedBuffers) {
  char16_t *p = StrAllocW(5);
  uint32_t prefix;
  std::memcpy(&prefix, reinterpret_cast<char *>(p) - 4, 4);
  EXPECT_EQ(prefix, 2u * 5 + 4);
  EXPECT_EQ(StrBufSizeW(p), 5u);
  EXPECT_EQ(std::u16string(p, 5), std::u16string(5, u'\0'));
  StrDisposeW(p);
  StrDisposeW(nullptr);
  char16_t *q = StrNewW(u"abc");
  EXPECT_EQ(StrBufSizeW(q), 4u);
  EXPECT_EQ(std::u16string(q), u"abc");
  StrDisposeW(q);
  EXPECT_EQ(StrNewW(nullptr), nullptr);
  EXPECT_THROW(StrAllocW(0xFFFFFFFFu), EOutOfMemory);
}

TEST(WideCStrings, SwapByteOrderStopsAtTheFirstZero) {
  char16_t s[] = {0xFF00, 0x1234, 0, 0x1234}; // 0xFF00 turns into 0x00FF: no stop
  StrSwapByteOrder(s);
  EXPECT_EQ(std::u16string(s, 4), (std::u16string{0x00FF, 0x3412, 0, 0x1234}));
}

} // namespace
} // namespace kestrel
