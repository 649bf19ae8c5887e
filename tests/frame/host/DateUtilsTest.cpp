#include <gtest/gtest.h>

#include <kestrel/frame/host/Host.h>

#include "support/ZipWriter.h"

using namespace kestrel;

namespace {
int32_t Stamp(int year, int month, int day, int hour, int min, int sec2) {
  uint32_t hi = static_cast<uint32_t>(((year - 1980) << 9) | (month << 5) | day);
  uint32_t lo = static_cast<uint32_t>((hour << 11) | (min << 5) | sec2);
  return static_cast<int32_t>((hi << 16) | lo);
}
} // namespace

TEST(DateUtils, EncodeDateCountsFromTheHostsDayZero) {
  struct Row {
    uint16_t y, m, d;
    double expected;
  } rows[] = {{1899, 12, 30, 0},   {1900, 1, 1, 2},    {2000, 2, 29, 36585},
              {2000, 3, 1, 36586}, {1, 1, 1, -693593}, {9999, 12, 31, 2958465},
              {1899, 12, 29, -1}};
  for (const Row &r : rows) {
    SCOPED_TRACE(r.expected);
    EXPECT_DOUBLE_EQ(EncodeDate(r.y, r.m, r.d), r.expected);
    uint16_t y, m, d;
    DecodeDate(r.expected, y, m, d);
    EXPECT_EQ(y, r.y);
    EXPECT_EQ(m, r.m);
    EXPECT_EQ(d, r.d);
  }
}

TEST(DateUtils, BadFieldsRaise) {
  EXPECT_THROW(EncodeDate(1900, 2, 29), EConvertError); // 1900 is no leap year
  EXPECT_THROW(EncodeDate(2001, 13, 1), EConvertError);
  EXPECT_THROW(EncodeDate(2001, 0, 1), EConvertError);
  EXPECT_THROW(EncodeDate(0, 1, 1), EConvertError);
  EXPECT_THROW(EncodeTime(24, 0, 0, 0), EConvertError);
  EXPECT_THROW(EncodeTime(0, 60, 0, 0), EConvertError);
  EXPECT_THROW(EncodeDateDay(2001, 366), EConvertError);
  EXPECT_NO_THROW(EncodeDateDay(2000, 366));
  EXPECT_DOUBLE_EQ(EncodeDateDay(1970, 1), 25569);
  EXPECT_DOUBLE_EQ(EncodeDateDay(2000, 60), EncodeDate(2000, 2, 29));
}

TEST(DateUtils, TimeRoundTrips) {
  double t = EncodeTime(13, 45, 30, 250);
  EXPECT_DOUBLE_EQ(t, (13 * 3600 + 45 * 60 + 30.25) / 86400.0);
  uint16_t h, m, s, ms;
  DecodeTime(EncodeDate(2020, 5, 17) + t, h, m, s, ms);
  EXPECT_EQ(h, 13);
  EXPECT_EQ(m, 45);
  EXPECT_EQ(s, 30);
  EXPECT_EQ(ms, 250);
  DecodeTime(-1.25, h, m, s, ms); // before day zero the fraction still counts the time
  EXPECT_EQ(h, 6);
}

TEST(DateUtils, FileDatesDecodeTheStampAndRefuseInvalidOnes) {
  EXPECT_DOUBLE_EQ(FileDateToDateTime(Stamp(2004, 7, 15, 13, 45, 15)),
                   EncodeDate(2004, 7, 15) + EncodeTime(13, 45, 30, 0));
  EXPECT_DOUBLE_EQ(FileDateToDateTime(Stamp(1980, 1, 1, 0, 0, 0)), EncodeDate(1980, 1, 1));
  EXPECT_DOUBLE_EQ(FileDateToDateTime(Stamp(2107, 12, 31, 23, 59, 29)),
                   EncodeDate(2107, 12, 31) + EncodeTime(23, 59, 58, 0));
  int32_t bad[] = {0,                           // month 0, day 0
                   Stamp(2001, 2, 29, 0, 0, 0), // no such day
                   Stamp(2001, 13, 1, 0, 0, 0), // month 13
                   Stamp(2001, 4, 31, 0, 0, 0), // April 31st
                   Stamp(2001, 1, 1, 24, 0, 0), // hour 24
                   Stamp(2001, 1, 1, 0, 60, 0), // minute 60
                   Stamp(2001, 1, 1, 0, 0, 30), // second 60
                   static_cast<int32_t>(0xFFFFFFFF)};
  for (int32_t s : bad) {
    SCOPED_TRACE(s);
    EXPECT_THROW(FileDateToDateTime(s), EConvertError);
    EXPECT_EQ(FileDateToUnixTime(s), -1);
  }
}

TEST(DateUtils, DateTimeToFileDatePacksAndRefusesYearsItCantHold) {
  EXPECT_EQ(DateTimeToFileDate(EncodeDateTime(2004, 7, 15, 13, 45, 31, 0)),
            Stamp(2004, 7, 15, 13, 45, 15)); // odd seconds round down
  EXPECT_EQ(DateTimeToFileDate(EncodeDate(1979, 12, 31)), 0);
  EXPECT_EQ(DateTimeToFileDate(EncodeDate(2108, 1, 1)), 0);
  int32_t s = Stamp(2031, 10, 9, 8, 7, 6);
  EXPECT_EQ(DateTimeToFileDate(FileDateToDateTime(s)), s);
}

TEST(DateUtils, UnixTimesGoThroughLocalTime) {
  const std::time_t t = test::LocalTime(2010, 6, 1, 12, 30, 10);
  EXPECT_DOUBLE_EQ(UnixTimeToLocalDateTime(t), EncodeDateTime(2010, 6, 1, 12, 30, 10, 0));
  int32_t stamp = UnixTimeToFileDate(t);
  EXPECT_EQ(stamp, Stamp(2010, 6, 1, 12, 30, 5));
  EXPECT_EQ(FileDateToUnixTime(stamp), t);
}
