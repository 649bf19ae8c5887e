// UTF-8 to and from wide strings: the fixed forms, the undecided corners and
// a bounded random round trip.
#include <gtest/gtest.h>

#include <chrono>
#include <random>

#include <kestrel/unicode/Utf8.h>

namespace kestrel {
namespace {

std::string Bytes(std::initializer_list<int> values) {
  std::string s;
  for (int v : values)
    s.push_back(static_cast<char>(v));
  return s;
}

struct EncodeCase {
  std::u16string units;
  std::string bytes;
};

TEST(Utf8, EncodesEachUnitByItself) {
  const EncodeCase cases[] = {
      {u"\u007F\u0080\u07FF\u0800\uFFFF",
       Bytes({0x7F, 0xC2, 0x80, 0xDF, 0xBF, 0xE0, 0xA0, 0x80, 0xEF, 0xBF, 0xBF})},
      {std::u16string{0xD800, 0xDC00}, Bytes({0xED, 0xA0, 0x80, 0xED, 0xB0, 0x80})},
      {std::u16string(1, u'\0'), std::string(1, '\0')},
      {u"", ""},
  };
  for (const auto &c : cases)
    EXPECT_EQ(WideStringToUTF8(c.units), c.bytes);
}

struct DecodeCase {
  std::string bytes;
  std::u16string units;
  const char *what;
};

TEST(Utf8, DecodesWithoutValidation) {
  const DecodeCase cases[] = {
      {Bytes({0xF0, 0x90, 0x80, 0x80}), {0xD800, 0xDC00}, "four-byte form makes a pair"},
      {Bytes({0xED, 0xA0, 0x80, 0xED, 0xB0, 0x80}), {0xD800, 0xDC00}, "encoded halves"},
      {Bytes({0x80}), {0x0080}, "stray continuation byte"},
      {Bytes({0xBF, 0x41}), {0x00BF, 0x0041}, "stray byte then ASCII"},
      {Bytes({0xC0, 0x80}), std::u16string(1, u'\0'), "overlong zero"},
      {Bytes({0xF4, 0x90, 0x80, 0x80}), {0xFFFD}, "above U+10FFFF"},
      {Bytes({0xF4, 0x8F, 0xBF, 0xBF}), {0xDBFF, 0xDFFF}, "U+10FFFF"},
      {Bytes({0xC3, 0x41}), {0x0081}, "a non-continuation byte counts anyway"},
      {Bytes({0xC0, 0x00}), {0xFFFD}, "a sum below the offset wraps round"},
      {Bytes({0xE0, 0x00, 0x00}), {0xFFFD}, "three bytes that wrap round"},
      {Bytes({0xEF, 0xFF, 0xFF}), {0xD804, 0xDC3F}, "three bytes beyond U+FFFF make a pair"},
      {Bytes({0xF8, 0x88, 0x80, 0x80, 0x80}), {0xFFFD}, "five-byte form of 0x200000"},
      {Bytes({0xF8, 0x80, 0x80, 0x81, 0x81}), {0x0041}, "overlong five-byte form"},
      {Bytes({0xFC, 0x80, 0x80, 0x80, 0x81, 0x81}), {0x0041}, "overlong six-byte form"},
      {Bytes({0xFC, 0x84, 0x80, 0x80, 0x80, 0x80}), {0xFFFD}, "six-byte form of 0x4000000"},
      {"", u"", "empty"},
      // A sequence cut short gives one replacement and ends the text, taking
      // along what should have been its continuation bytes.
      {Bytes({0x61, 0xE2, 0x82}), u"a\uFFFD", "three bytes cut"},
      {Bytes({0xC3}), u"\uFFFD", "two bytes cut"},
      {Bytes({0xFC, 0x80, 0x80, 0x80, 0x80}), u"\uFFFD", "six bytes cut"},
      {Bytes({0xF0, 0x90, 0x80}), u"\uFFFD", "four bytes cut"},
      {"abc" + Bytes({0xE2}) + "x", u"abc\uFFFD", "ASCII taken into a cut form"},
  };
  for (const auto &c : cases)
    EXPECT_EQ(UTF8ToWideString(c.bytes), c.units) << c.what;
}

TEST(Utf8, LongTextsBeyondSixteenBitCounts) {
  // More than 65,535 units and bytes, with every length of form at the end.
  std::u16string s;
  for (int i = 0; i < 70000; ++i)
    s.push_back(static_cast<char16_t>(i % 3 == 0 ? u'a' : i % 3 == 1 ? u'\u00E9' : u'\u4E2D'));
  s += u"\U0001F600z";
  std::string utf8 = WideStringToUTF8(s);
  EXPECT_EQ(utf8.size(), 23334u + 23333u * 2 + 23333u * 3 + 6 + 1);
  EXPECT_EQ(UTF8ToWideString(utf8), s);
}

// Random units round-trip unit for unit (surrogate halves included), and
// random bytes decode within bounds and re-decode to the same text once
// encoded again. Bounded in time so that it stays fast under the sanitizers.
TEST(Utf8, RandomRoundTrips) {
  std::mt19937 rng(20240601);
  auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(2);
  int rounds = 0;
  while (std::chrono::steady_clock::now() < deadline || rounds < 100) {
    ++rounds;
    std::uniform_int_distribution<int> lengths(0, 64), kinds(0, 9);
    std::u16string units(lengths(rng), u'\0');
    for (char16_t &u : units) {
      int kind = kinds(rng);
      u = static_cast<char16_t>(kind < 4   ? rng() % 0x80
                                : kind < 6 ? rng() % 0x800
                                : kind < 8 ? 0xD800 + rng() % 0x800
                                           : rng() % 0x10000);
    }
    std::string utf8 = WideStringToUTF8(units);
    ASSERT_LE(utf8.size(), units.size() * 3);
    ASSERT_EQ(UTF8ToWideString(utf8), units);

    std::string bytes(lengths(rng), '\0');
    for (char &b : bytes)
      b = static_cast<char>(kinds(rng) < 5 ? 0x80 + rng() % 0x80 : rng() % 0x100);
    std::u16string decoded = UTF8ToWideString(bytes);
    ASSERT_LE(decoded.size(), bytes.size());
    ASSERT_EQ(UTF8ToWideString(WideStringToUTF8(decoded)), decoded);
  }
}

} // namespace
} // namespace kestrel
