// The host's text forms of numbers, dates and Booleans, and DiskFree.
#include <gtest/gtest.h>

#include <cmath>

#include <kestrel/frame/host/Host.h>

using namespace kestrel;

TEST(FloatToStr, FifteenDigitsAndAnExponentOnlyAtTheEnds) {
  const std::pair<double, const char *> cases[] = {
      {0, "0"},
      {-2.25, "-2.25"},
      {0.1, "0.1"},
      {100, "100"},
      {1.0 / 3, "0.333333333333333"},
      {123456789012345, "123456789012345"},
      {1e15, "1E15"},
      {-1.5e20, "-1.5E20"},
      {1e-5, "0.00001"},
      {1.5e-6, "1.5E-6"},
      {std::nan(""), "NAN"},
      {-HUGE_VAL, "-INF"},
  };
  for (const auto &[value, text] : cases)
    EXPECT_EQ(FloatToStr(value), text) << text;
}

TEST(StrToFloat, TakesDecimalTextOnly) {
  const std::pair<const char *, double> good[] = {{" 1.5 ", 1.5}, {"-2", -2},  {"+3.25", 3.25},
                                                  {"1e3", 1000},  {".5", 0.5}, {"5.", 5}};
  for (const auto &[text, value] : good)
    EXPECT_DOUBLE_EQ(StrToFloat(text), value) << text;
  for (const char *bad : {"", " ", "abc", "1,5", "inf", "nan", "1e", "--1", "0x10", "1.5x", "."})
    EXPECT_THROW(StrToFloat(bad), EConvertError) << bad;
  for (double v : {0.1, -2.25e-7, 1e300})
    EXPECT_EQ(StrToFloat(FloatToStr(v)), v);
}

TEST(FormatFloat, PutsDigitsInThePicturesPlaces) {
  struct Case {
    const char *format;
    double value;
    const char *text;
  };
  const Case cases[] = {
      {"####,.00", 1234567.891, "1,234,567.89"},
      {"####,.00", -1234.5, "-1,234.50"},
      {"####,.00", 0.5, ".50"},
      {"#,##0", 1234567, "1,234,567"},
      {"0.00", 3.14159, "3.14"},
      {"0.00", -0.001, "0.00"},
      {"0.##", 2, "2"},
      {"0.0#", 2, "2.0"},
      {"000", 7, "007"},
      {"0.00E+00", 12345, "1.23E+04"},
      {"0.0E-0", 0.00012, "1.2E-4"},
      {"0.0E-0", 1200, "1.2E3"},
      {"0;(0);zero", -5, "(5)"},
      {"0;(0);zero", 0, "zero"},
      {"0.0;;nil", 0.01, "nil"},
      {"\"$\"0.00", 3, "$3.00"},
      {"0 'kg'", 12, "12 kg"},
      {"", 1.5, "1.5"},
  };
  for (const Case &c : cases)
    EXPECT_EQ(FormatFloat(c.format, c.value), c.text) << c.format << " " << c.value;
}

TEST(DateTimeText, IsoFormsBothWays) {
  const TDateTime day = EncodeDate(2024, 2, 29);
  const TDateTime when = EncodeDateTime(2024, 2, 29, 13, 5, 9, 0);
  EXPECT_EQ(DateToStr(day), "2024-02-29");
  EXPECT_EQ(DateTimeToStr(day), "2024-02-29"); // midnight shows no time
  EXPECT_EQ(DateTimeToStr(when), "2024-02-29 13:05:09");
  EXPECT_EQ(TimeToStr(when), "13:05:09");
  const TDateTime beforeDayZero = EncodeDateTime(1899, 12, 29, 6, 0, 0, 0);
  EXPECT_DOUBLE_EQ(beforeDayZero, -1.25); // the fraction counts away from day zero
  EXPECT_EQ(DateTimeToStr(beforeDayZero), "1899-12-29 06:00:00");
  EXPECT_DOUBLE_EQ(StrToDate(" 2024/2/9 "), EncodeDate(2024, 2, 9));
  EXPECT_NEAR(StrToDateTime("2024-02-29 13:05:09"), when, 1e-9);
  EXPECT_NEAR(StrToDateTime("1899-12-29 06:00"), beforeDayZero, 1e-9);
  EXPECT_NEAR(StrToTime("13:05:09.5"), EncodeTime(13, 5, 9, 500), 1e-12);
  EXPECT_NEAR(StrToTime("7:30"), EncodeTime(7, 30, 0, 0), 1e-12);
  for (const char *bad :
       {"", "2023-02-29", "24-02", "2024-13-01", "29.02.2024", "2024-02-29x", "2024-02/29"})
    EXPECT_THROW(StrToDate(bad), EConvertError) << bad;
  for (const char *bad : {"", "24:00", "12:60", "12", "12:00:00:00", "1:2:3.x"})
    EXPECT_THROW(StrToTime(bad), EConvertError) << bad;
  EXPECT_THROW(StrToDateTime("2024-02-29 25:00"), EConvertError);
}

TEST(StrToBool, NumbersAndTheWordLists) {
  const std::vector<std::string> savedTrue = TrueBoolStrs, savedFalse = FalseBoolStrs;
  TrueBoolStrs.clear(); // empty lists stand for True and False
  FalseBoolStrs.clear();
  EXPECT_TRUE(StrToBool("true") && StrToBool("2.5") && !StrToBool("FALSE") && !StrToBool("0"));
  EXPECT_THROW(StrToBool("yes"), EConvertError);
  EXPECT_EQ(BoolToStr(true) + BoolToStr(false, true), "-1False");
  TrueBoolStrs = {"Yes", "True"};
  FalseBoolStrs = {"No", "False"};
  EXPECT_TRUE(StrToBool("yes") && StrToBool("TRUE") && !StrToBool("no"));
  EXPECT_THROW(StrToBool("maybe"), EConvertError);
  EXPECT_EQ(BoolToStr(true, true), "Yes");
  TrueBoolStrs = savedTrue;
  FalseBoolStrs = savedFalse;
}

TEST(DiskFree, CountsTheMappedDrivesOnly) {
  EXPECT_GT(DiskFree(0), 0);
  EXPECT_GT(DiskFree(3), 0); // C: is the root folder
  EXPECT_EQ(DiskFree(26), -1);
  EXPECT_EQ(DiskFree(27), -1);
}
