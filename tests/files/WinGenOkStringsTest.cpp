// The string functions of WinGenOk.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <string>

#include <kestrel/files/WinGenOk.h>

using namespace kestrel;

namespace {

int32_t Pos(const std::string &pattern, const std::string &text) {
  return PosBM(pattern, text.data(), static_cast<int32_t>(text.size()));
}

TEST(WinGenOkStrings, PosBM) {
  struct Case {
    const char *pattern, *text;
    int32_t at;
  } cases[] = {
      {"", "abc", 0},                  // an empty pattern ...
      {"a", "", 0},                    // ... and an empty text give 0 too
      {"\xE9t\xE9", "l'\xE9t\xE9", 2}, // bytes above 127 in the skip table
  };
  for (const Case &c : cases)
    EXPECT_EQ(Pos(c.pattern, c.text), c.at) << c.pattern << " in " << c.text;
}

TEST(WinGenOkStrings, PosBMAgreesWithFind) {
  std::mt19937 rng(66);
  for (int round = 0; round < 5000; ++round) {
    std::string text(rng() % 30, 'a'), pattern(1 + rng() % 5, 'a');
    for (char &c : text)
      c = "abc"[rng() % 3];
    for (char &c : pattern)
      c = "abc"[rng() % 3];
    size_t found = text.find(pattern);
    int32_t expected = text.empty() ? 0 : found == std::string::npos ? -1 : int32_t(found);
    ASSERT_EQ(Pos(pattern, text), expected) << pattern << " in " << text;
  }
}

TEST(WinGenOkStrings, ShortMonthNameToNumberStr) {
  struct Case {
    const char *text, *result;
  } cases[] = {
      {"12-Mar-2004", "12-03-2004"},
      {"12 jan 99", "12 01 99"},
      {"3-JUL-2020", "3-07-2020"},
      {"3-jun-2020", "3-06-2020"},
      {"May 5", "05 5"},
      {"aug 1", "08 1"},
      {"apr 1", "04 1"},
      {"1 feb 2", "1 02 2"},
      {"1 sep 2", "1 09 2"},
      {"1 oct 2", "1 10 2"},
      {"1 nov 2", "1 11 2"},
      {"1 dec 2", "1 12 2"},
      {"12 Jan", "12 Jan"}, // the last character is not looked at
      {"1 xyz 2", "1  2"},
      {"1 sept 2", "1 sept 2"},
      {"dec", "dec"},
      {"", ""},
      {"12 M\xC3\xA4r 2004", "12 M\xC3\xA4r 2004"},
  };
  for (const Case &c : cases)
    EXPECT_EQ(ShortMonthNameToNumberStr(c.text), c.result) << c.text;
}

TEST(WinGenOkStrings, DoubleAnyAmpersands) {
  struct Case {
    const char *text, *result;
  } cases[] = {{"a&b", "a&&b"}, {"a&", "a&&"},       {"a&&", "a&&"}, {"a&&b", "a&&&b"},
               {"&", "&&"},     {"x&&&y", "x&&&&y"}, {"", ""}};
  for (const Case &c : cases)
    EXPECT_EQ(DoubleAnyAmpersands(c.text), c.result) << c.text;
  // Longer texts than 16 bits can count are served whole.
  std::string longText(70000, 'x');
  longText += '&';
  EXPECT_EQ(DoubleAnyAmpersands(longText), longText + '&');
}

TEST(WinGenOkStrings, CStrings) {
  char padded[] = " \t ab c \r\n";
  StrTrim(padded);
  EXPECT_STREQ(padded, "ab c");
  char blanks[] = "   ", empty[] = "";
  StrTrim(blanks);
  StrTrim(empty);
  StrTrim(nullptr);
  EXPECT_STREQ(blanks, "");

  char buf[9] = "abcd";
  EXPECT_EQ(StrLInsert(buf, "XY", 1), nullptr);
  EXPECT_STREQ(buf, "abcd");
  EXPECT_EQ(StrLInsert(buf, "XY", 2), buf);
  EXPECT_STREQ(buf, "XYab"); // no terminator of its own: buf[4] was one
  char buf2[9] = "abcd";
  StrLInsert(buf2, "XY", 4);
  EXPECT_STREQ(buf2, "XYabcd");
  char16_t wide[9] = u"abcd";
  EXPECT_EQ(StrLInsertW(wide, u"XYZ", 2), nullptr);
  EXPECT_EQ(StrLInsertW(wide, u"XYZ", 4), wide);
  EXPECT_EQ(std::u16string(wide), u"XYZabcd");

  const char *text = "hello world";
  EXPECT_EQ(StrNearer(text, 'o', 'w'), text + 4);
  EXPECT_EQ(StrNearer(text, 'z', 'w'), text + 6);
  EXPECT_EQ(StrNearer(text, 'z', 'q'), nullptr);
  EXPECT_EQ(StrNearer(nullptr, 'a', 'b'), nullptr);
}

TEST(WinGenOkStrings, SmallConversions) {
  EXPECT_EQ(Rightstr("abcdef", 2), "ef");
  EXPECT_EQ(Rightstr("abcdef", 10), "abcdef");
  EXPECT_EQ(Rightstr("abcdef", 0), "");

  EXPECT_EQ(BooleanToStr(true), "true");
  EXPECT_EQ(BooleanToStr(false), "false");
  EXPECT_TRUE(StrToBoolean("TRUE"));
  EXPECT_FALSE(StrToBoolean("True "));
  EXPECT_FALSE(StrToBoolean("yes"));

  struct Attr {
    uint16_t bits;
    const char *letters;
  } attrs[] = {{0, ""}, {0x3F, "rashdv"}, {0x21, "ra"}, {0x12, "hd"}, {0x0C, "sv"}};
  for (const Attr &a : attrs)
    EXPECT_EQ(AttributesToStr(a.bits), a.letters) << a.bits;
}

TEST(WinGenOkStrings, NumbersAsText) {
  struct Real {
    double value;
    const char *text;
  } reals[] = {{1234.567, "1,234.57"},
               {0.5, ".50"},
               {0, ".00"},
               {-1234567.891, "-1,234,567.89"},
               {-0.25, "-.25"},
               {999.999, "1,000.00"},
               {std::numeric_limits<double>::quiet_NaN(), "*"},
               {std::numeric_limits<double>::infinity(), "*"}};
  for (const Real &r : reals)
    EXPECT_EQ(RealToDecStr(r.value), r.text) << r.value;
  EXPECT_EQ(RealToDecStr(1e20), "100,000,000,000,000,000,000.00");

  struct Int {
    int32_t value;
    const char *text;
  } ints[] = {{999, "999"}, {1000, "1,000"}, {INT32_MIN, "-2,147,483,648"}, {-5, "-5"}};
  for (const Int &i : ints)
    EXPECT_EQ(IntToDecStr(i.value), i.text) << i.value;
}

} // namespace
