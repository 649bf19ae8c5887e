#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include <kestrel/search/bare_assemb.h>

using namespace kestrel;

namespace {

// A buffer with one spare byte behind its text, filled with a marker so that
// a terminator written there shows.
std::string Spare(const std::string &text) {
  return text + '#';
}

int32_t Len(const std::string &s) {
  return static_cast<int32_t>(s.size());
}

// Offset of a found pointer, -1 for null.
template <typename T> long At(const T *found, const T *text) {
  return found ? static_cast<long>(found - text) : -1;
}

TEST(BareAssemb, ByteOrderMarks) {
  struct Case {
    unsigned char b0, b1;
    bool reversed, isSigned;
  } cases[] = {{0xFF, 0xFE, false, true},
               {0xFE, 0xFF, true, true},
               {0xFF, 0xFF, false, false},
               {0xFE, 0xFE, false, false}};
  for (const Case &c : cases) {
    unsigned char b[2] = {c.b0, c.b1};
    EXPECT_EQ(UnicodeByteReversed(b), c.reversed) << int(c.b0) << " " << int(c.b1);
    EXPECT_EQ(UnicodeSigned(b), c.isSigned) << int(c.b0) << " " << int(c.b1);
  }
}

TEST(BareAssemb, FastStrPosLeavesTheLastStartUntried) {
  struct Case {
    const char *text, *sub;
    int32_t len;
    long at;
  } cases[] = {// The terminator may end a match; the randomized test below covers the rest.
               {"abc", "c", 4, 2},     {"abc", "abc", 4, 0}, {"abc", "", 4, -1},
               {"abc", "abcd", 4, -1}, {"abc", "b", -5, -1}, {"aaab", "aab", 5, 1}};
  for (const Case &c : cases)
    EXPECT_EQ(At(FastStrPos(c.text, c.sub, c.len), c.text), c.at) << c.text << " / " << c.sub;
  EXPECT_EQ(FastStrPos(static_cast<const char *>(nullptr), "a", 5), nullptr);
  EXPECT_EQ(FastStrPos("abc", nullptr, 5), nullptr);
  // Zero units in the text are searched like any other.
  const char zeros[] = {'a', 0, 'b', 'c', 'd'};
  EXPECT_EQ(At(FastStrPos(zeros, "bc", 5), zeros), 2);
}

TEST(BareAssemb, FastStrIPosTakesEitherForm) {
  struct Case {
    const char *text, *form1, *form2;
    int32_t len;
    long at;
  } cases[] = {{"The cAT sat", "cat", "CAT", 12, 4},
               {"cat", "cat", "CA", 10, -1},
               {"cat", "", "", 10, -1},
               {"cxt", "cat", "CAT", 4, -1}};
  for (const Case &c : cases)
    EXPECT_EQ(At(FastStrIPos(c.text, c.form1, c.form2, c.len), c.text), c.at) << c.text;
  // Forms of different lengths are refused before the text is looked at.
  EXPECT_EQ(FastStrIPos(reinterpret_cast<const char *>(1), "ab", "a", 100), nullptr);
  EXPECT_EQ(FastStrIPos(nullptr, "a", "A", 5), nullptr);
}

TEST(BareAssemb, FastStrScan) {
  const char text[] = "abcabc";
  EXPECT_EQ(At(FastStrScan(text, 'c', 6), text), 2);
  EXPECT_EQ(At(FastStrScan(text, 'c', 2), text), -1);
  EXPECT_EQ(FastStrScan(text, 'a', 0), nullptr);
  const char16_t wide[] = u"\u4e00\u4e01\u4e02";
  EXPECT_EQ(At(FastStrScanW(wide, u'\u4e02', 3), wide), 2);
  EXPECT_EQ(FastStrScanW(wide, u'\u4e02', 2), nullptr);
  // Bytes above 0x7F are plain values.
  const char high[] = "ab\xE9";
  EXPECT_EQ(At(FastStrScan(high, '\xE9', 3), high), 2);
}

TEST(BareAssemb, SearchAndReplaceFast) {
  struct Case {
    std::string buffer, search, replace, expected;
  } cases[] = {// The last byte is never replaced, and only SearchLen bytes of Replace are
               // used; the randomized test below covers the rest.
               {"abc", "abc", "xyz", "abc"},
               {"xabcab", "abc", "XYZ!", "xXYZab"}};
  for (const Case &c : cases) {
    std::string b = c.buffer;
    SearchAndReplaceFast(b.data(), c.search.data(), c.replace.data(), Len(b), Len(c.search));
    EXPECT_EQ(b, c.expected) << c.buffer;
  }
}

TEST(BareAssemb, UnitReplacements) {
  std::string b = "a\tb\r\nc\rd\n\r\r\ne\x01\x1F";
  std::string cr = b;
  ReplaceCarriageReturnsBySpaceA(cr.data(), Len(cr));
  EXPECT_EQ(cr, "a\tb  c d\n   e\x01\x1F");
  std::string ctl = b;
  ReplaceControlCharsBySpaceA(ctl.data(), Len(ctl));
  EXPECT_EQ(ctl, "a b  c d    e  ");
  std::string tabs = b;
  ReplaceTabsBySpace(tabs.data(), Len(tabs));
  EXPECT_EQ(tabs, "a b\r\nc\rd\n\r\r\ne\x01\x1F");
  std::string pair = "abcabc";
  ReplaceCharacter1ByCharacter2(pair.data(), uint16_t('Z' << 8 | 'b'), 5);
  EXPECT_EQ(pair, "aZcaZc");
  std::string one = "x.y.z";
  ReplaceCharacterBySpace(one.data(), '.', 3);
  EXPECT_EQ(one, "x y.z");

  // The wide forms share this code but for the reading of a unit's value.
  std::u16string w = u"a\tb\r\n\u0001\u0100";
  ReplaceControlCharsBySpaceW(w.data(), static_cast<int32_t>(w.size()));
  EXPECT_EQ(w, u"a b   \u0100");

  std::string blank = "abcd";
  BlankOutSomeBytesA(blank.data(), -1);
  BlankOutSomeBytesA(blank.data(), 0);
  EXPECT_EQ(blank, "abcd");
  BlankOutSomeBytesA(blank.data(), 3);
  EXPECT_EQ(blank, "   d");
}

TEST(BareAssemb, CaseOfWords) {
  ANSILower_or_upperStr_type lowers("\xE9\xE0"), uppers("\xC9\xC0");
  struct Case {
    std::string text, cut, capitalised;
  } cases[] = {
      {"the Cat sAt", "    Cat  At", "THE CAT SAT"},
      {"\xE9t\xE9 \xC9t\xE9", "    \xC9t\xE9", "\xC9T\xC9 \xC9T\xC9"},
      {"x1y [a] 9Ab", " 1  [ ] 9Ab", "X1Y [A] 9AB"}, // digits and brackets stay
      {"\xFFz A_b", "\xFF  A_b", "\xFFZ A_B"},       // unlisted high bytes stay
  };
  for (const Case &c : cases) {
    std::string cut = c.text, cap = c.text;
    CutLowercaseWords(cut.data(), lowers, uppers, Len(cut));
    CapitaliseABuffer(cap.data(), lowers, uppers, Len(cap));
    EXPECT_EQ(cut, c.cut) << c.text;
    EXPECT_EQ(cap, c.capitalised) << c.text;
  }
  // Only the shorter list's length of pairs counts.
  std::string cap = "\xE9\xE0";
  CapitaliseABuffer(cap.data(), lowers, ANSILower_or_upperStr_type("\xC9"), Len(cap));
  EXPECT_EQ(cap, "\xC9\xE0");
}

TEST(BareAssemb, BetweenChars) {
  struct Case {
    std::string text;
    char open, close;
    int32_t maxSpan; // 0: ClearBetweenChars
    bool remove;
    std::string expected; // with the terminator and what lies behind it
  } cases[] = {
      {"a<b>c", '<', '>', 0, true, std::string("ac\0>c#", 6)},
      {"a<bc", '<', '>', 0, true, std::string("abc\0#", 5)},
      {"abc", '<', '>', 0, true, std::string("abc\0", 4)}, // terminator at Len
      {"a<<b>c<d", '<', '>', 0, true, std::string("acd\0>c<d#", 9)},
      {"a|b|c", '|', '|', 0, true, std::string("abc\0c#", 6)}, // a lone byte when alike
      {"<a<b>", '<', '>', 0, true, std::string("\0a<b>#", 6)},
      {"a<b>c", '<', '>', 2, true, std::string("ab>c\0#", 6)},
      {"a<b>c", '<', '>', 3, false, std::string("a   c\0", 6)},
      {"a<b>c", '<', '>', 3, true, std::string("ac\0>c#", 6)},
      {"<<x>", '<', '>', 3, true, std::string("\0<x>#", 5)},
      {"", '<', '>', 0, true, std::string("\0", 1)},
  };
  for (const Case &c : cases) {
    std::string b = Spare(c.text);
    if (c.maxSpan == 0)
      ClearBetweenChars(b.data(), c.open, c.close, Len(c.text));
    else
      CleanBetweenChars(b.data(), c.open, c.close, Len(c.text), c.maxSpan, c.remove);
    EXPECT_EQ(b, c.expected) << c.text << " span " << c.maxSpan;
  }
}

TEST(BareAssemb, CompactingLengths) {
  std::string unix = "\r\na\n\nb\r";
  EXPECT_EQ(LengthConvertedToUnix(unix.data(), Len(unix)), 4);
  EXPECT_EQ(unix.substr(0, 4), "\rab\r");
  std::string crlfa = "\r\nab";
  EXPECT_EQ(LengthConvertedToUnix(crlfa.data(), 4), 3);
  EXPECT_EQ(crlfa, "\rabb"); // no terminator written

  struct Case {
    std::string text, squeezed;
  } cases[] = {
      {"", ""}, {"a\t\tb", "a\t\tb"}, {"a \t b", "a \t b"}}; // tabs: not in the random texts
  for (const Case &c : cases) {
    std::string b = Spare(c.text);
    int32_t n = RemoveRedundantSpaceA(b.data(), Len(c.text));
    EXPECT_EQ(n, Len(c.squeezed)) << c.text;
    EXPECT_EQ(b.substr(0, static_cast<size_t>(n) + 1), c.squeezed + '\0') << c.text;
  }
}

TEST(BareAssemb, ComparingAndSumming) {
  struct Case {
    std::string a, b;
    int32_t len;
    bool equal;
    int32_t behind;
  } cases[] = {{"abcd", "abxd", 4, false, 1}, {"abcd", "abcx", 4, false, 0},
               {"abcd", "abcd", 4, true, 0},  {"xbcd", "abcd", 4, false, 3},
               {"ab", "xy", 0, true, 0},      {"abcd", "abxd", 2, true, 0}};
  for (const Case &c : cases) {
    EXPECT_EQ(EqualContents(c.a.data(), c.b.data(), c.len), c.equal) << c.a << c.b << c.len;
    EXPECT_EQ(HowFarEqualContents(c.a.data(), c.b.data(), c.len), c.behind) << c.a << c.b;
  }
  const unsigned char five[] = {1, 0, 0, 0, 0xFF};
  EXPECT_EQ(My4Checksum(five, 5), 1u);
  EXPECT_EQ(My4Checksum(five, 3), 0u);
  const unsigned char eight[] = {0xFF, 0xFF, 0xFF, 0xFF, 2, 1, 0, 0};
  EXPECT_EQ(My4Checksum(eight, 8), 0x0101u); // wraps modulo 2^32
}

// The vector paths against plain loops written from the rules, over texts
// whose lengths and matches fall on every side of a block boundary.
std::u16string RandomText(std::mt19937 &rng, size_t n, const char16_t *alphabet, size_t size) {
  std::u16string s(n, u' ');
  for (char16_t &c : s)
    c = alphabet[rng() % size];
  return s;
}

template <typename T>
long PlainPos(const std::basic_string<T> &text, const std::basic_string<T> &f1,
              const std::basic_string<T> &f2, size_t len) {
  size_t n = f1.size();
  if (n == 0 || len <= n) return -1;
  for (size_t i = 0; i + n < len; ++i) {
    size_t k = 0;
    while (k < n && (text[i + k] == f1[k] || text[i + k] == f2[k]))
      ++k;
    if (k == n) return static_cast<long>(i);
  }
  return -1;
}

TEST(BareAssemb, VectorPathsAgreeWithPlainLoops) {
  std::mt19937 rng(13);
  const char16_t alphabet[] = u"ab \u00e9A";
  for (int round = 0; round < 3000; ++round) {
    size_t len = rng() % 70;
    std::u16string text = RandomText(rng, len, alphabet, 5);
    std::u16string sub = RandomText(rng, 1 + rng() % 4, alphabet, 3);
    std::u16string upper = sub;
    for (char16_t &c : upper)
      c = c == u'a' ? u'A' : c;
    int32_t l = static_cast<int32_t>(len);
    ASSERT_EQ(At(FastStrPosW(text.c_str(), sub.c_str(), l), text.c_str()),
              PlainPos(text, sub, sub, len));
    ASSERT_EQ(At(FastStrIPosW(text.c_str(), sub.c_str(), upper.c_str(), l), text.c_str()),
              PlainPos(text, sub, upper, len));
    std::string bytes(text.begin(), text.end()), bsub(sub.begin(), sub.end());
    std::string bupper(upper.begin(), upper.end());
    ASSERT_EQ(At(FastStrPos(bytes.c_str(), bsub.c_str(), l), bytes.c_str()),
              PlainPos(bytes, bsub, bsub, len));
    ASSERT_EQ(At(FastStrIPos(bytes.c_str(), bsub.c_str(), bupper.c_str(), l), bytes.c_str()),
              PlainPos(bytes, bsub, bupper, len));

    // Replace left to right, each hit leaving a byte behind it.
    std::string expected = bytes;
    for (size_t i = 0; i + bsub.size() < len;)
      if (expected.compare(i, bsub.size(), bsub) == 0) {
        expected.replace(i, bsub.size(), std::string(bsub.size(), '*'));
        i += bsub.size();
      } else {
        ++i;
      }
    std::string replaced = bytes, stars(bsub.size(), '*');
    SearchAndReplaceFast(replaced.data(), bsub.data(), stars.data(), l, Len(bsub));
    ASSERT_EQ(replaced, expected) << bytes << " / " << bsub;

    std::u16string squeezed;
    for (size_t i = 0; i < len; ++i)
      if (!(text[i] == u' ' && i > 0 && text[i - 1] == u' ')) squeezed += text[i];
    std::u16string w = text + u'#';
    int32_t n = RemoveRedundantSpaceW(w.data(), l);
    ASSERT_EQ(w.substr(0, static_cast<size_t>(n)), squeezed);
    ASSERT_EQ(w[static_cast<size_t>(n)], u'\0');
    std::string a = bytes + '#';
    n = RemoveRedundantSpaceA(a.data(), l);
    ASSERT_EQ(a.substr(0, static_cast<size_t>(n)), std::string(squeezed.begin(), squeezed.end()));
  }
}

} // namespace
