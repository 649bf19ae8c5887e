// The small string routines of the settings and the decimal form.
#include <gtest/gtest.h>

#include <cfloat>
#include <string>

#include <kestrel/frame/platform/NumberFormat.h>
#include <kestrel/vocabulary/Vocabulary.h>

namespace kestrel {
namespace {

TEST(SettingsStrings, ClearingCharactersAndSubstrings) {
  EXPECT_EQ(ChrClearedFromString('a', "banana"), "bnn");
  struct Case {
    const char *sub, *text, *expected;
  };
  const Case cases[] = {
      {"ab", "xabyab", "xy"},
      // A removal that makes a new occurrence removes that too.
      {"ab", "aabb", ""},
      {"", "abc", "abc"},
      {"abc", "ab", "ab"},
  };
  for (const Case &c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_EQ(SubStrClearedFromString(c.sub, c.text), c.expected);
  }
}

TEST(SettingsStrings, CorrectedPathnameAndCutOutsideQuotes) {
  struct Case {
    std::string (*function)(std::string_view);
    const char *text, *expected;
  };
  const Case cases[] = {
      {CorrectedPathname, "C:", "C:/"},
      {CorrectedPathname, " \tD:\r\n", "D:/"},
      {CorrectedPathname, "C:texts", "C:/texts"},
      {CorrectedPathname, "C:/texts", "C:/texts"},
      {CorrectedPathname, "ab", "ab"},
      {CorrectedPathname, "x", "x"},
      {CutOutsideQuotes, "\"abc\"", "abc"},
      {CutOutsideQuotes, "\"\"", ""},
      {CutOutsideQuotes, "\"", ""},
      {CutOutsideQuotes, "\"abc", "\"abc"},
      {CutOutsideQuotes, "abc\"", "abc\""},
      {CutOutsideQuotes, "", ""},
  };
  for (const Case &c : cases)
    EXPECT_EQ(c.function(c.text), c.expected) << c.text;
}

TEST(SettingsStrings, DecimalFormattedKeepsThreeCharactersAtLeast) {
  const std::string sep = LocaleDecimalSeparator(LOCALE_USER_DEFAULT);
  struct Case {
    long double x;
    std::string expected;
  };
  const Case cases[] = {
      {2, "2" + sep + "0"},        {10, "10" + sep},
      {1.5L, "1" + sep + "5"},     {0, "0" + sep + "0"},
      {-2.25L, "-2" + sep + "25"}, {1.0L / 3, "0" + sep + "3333333333333333"},
      {1e-17L, "0" + sep + "0"},   {123456789.125L, "123456789" + sep + "125"},
  };
  for (const Case &c : cases) {
    SCOPED_TRACE(c.expected);
    EXPECT_EQ(DecimalFormatted(c.x), c.expected);
  }
  // The largest value is written out in full.
  const std::string largest = DecimalFormatted(LDBL_MAX);
  EXPECT_EQ(largest.size(), size_t(LDBL_MAX_10_EXP + 1) + sep.size());
  EXPECT_EQ(largest.substr(largest.size() - sep.size()), sep);
}

TEST(SettingsStrings, DecimalSeparatorFollowsTheLocale) {
  EXPECT_EQ(LocaleDecimalSeparator(0x0409), "."); // en-US
  EXPECT_EQ(LocaleDecimalSeparator(0x0407), ","); // de-DE
  EXPECT_EQ(LocaleDecimalSeparator(0x040C), ","); // fr-FR
  EXPECT_EQ(LocaleDecimalSeparator(0x7C09), "."); // unknown
  EXPECT_EQ(LocaleDecimalSeparator(LOCALE_USER_DEFAULT),
            LocaleDecimalSeparator(GetUserDefaultLCID()));
}

} // namespace
} // namespace kestrel
