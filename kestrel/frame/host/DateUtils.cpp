#include <kestrel/frame/host/DateUtils.h>

#include <algorithm>
#include <cmath>

#include <kestrel/frame/host/Consts.h>
#include <kestrel/frame/host/Exceptions.h>

namespace kestrel {

namespace {

// Days from 0001-01-01 to 1899-12-30, the host's day zero.
constexpr int32_t kDateDelta = 693593;

// Days since 0001-01-01 (day 0) for a valid date.
int64_t DaysFromCivil(int y, int m, int d) {
  static const int kCumulative[12] = {0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334};
  int64_t yy = y - 1;
  int64_t days = yy * 365 + yy / 4 - yy / 100 + yy / 400;
  days += kCumulative[m - 1] + (m > 2 && IsLeapYear(static_cast<uint16_t>(y)) ? 1 : 0);
  return days + d - 1;
}

struct DateFields {
  int year, month, day;
};

DateFields CivilFromDays(int64_t n) { // n: days since 0001-01-01
  // Work in 400-year cycles of 146097 days, then centuries, 4-year groups, years.
  int64_t y400 = n / 146097;
  int64_t r = n % 146097;
  int64_t y100 = std::min<int64_t>(r / 36524, 3);
  r -= y100 * 36524;
  int64_t y4 = r / 1461;
  r %= 1461;
  int64_t y1 = std::min<int64_t>(r / 365, 3);
  r -= y1 * 365;
  int year = static_cast<int>(y400 * 400 + y100 * 100 + y4 * 4 + y1 + 1);
  int month = 1;
  while (true) {
    int dim = DaysInAMonth(static_cast<uint16_t>(year), static_cast<uint16_t>(month));
    if (r < dim) break;
    r -= dim;
    ++month;
  }
  return {year, month, static_cast<int>(r) + 1};
}

int32_t PackFileDate(const std::tm &tm) {
  int year = tm.tm_year + 1900;
  if (year < 1980 || year > 2107) return 0;
  uint32_t hi = static_cast<uint32_t>(((year - 1980) << 9) | ((tm.tm_mon + 1) << 5) | tm.tm_mday);
  uint32_t lo = static_cast<uint32_t>((tm.tm_hour << 11) | (tm.tm_min << 5) | (tm.tm_sec / 2));
  return static_cast<int32_t>((hi << 16) | lo);
}

} // namespace

bool IsLeapYear(uint16_t year) {
  return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
}

uint16_t DaysInAMonth(uint16_t year, uint16_t month) {
  static const uint8_t kDays[12] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  if (month < 1 || month > 12) return 0;
  return static_cast<uint16_t>(kDays[month - 1] + (month == 2 && IsLeapYear(year) ? 1 : 0));
}

bool TryEncodeDate(uint16_t year, uint16_t month, uint16_t day, TDateTime &date) {
  if (year < 1 || year > 9999 || day < 1 || day > DaysInAMonth(year, month)) return false;
  date = static_cast<TDateTime>(DaysFromCivil(year, month, day) - kDateDelta);
  return true;
}

bool TryEncodeTime(uint16_t hour, uint16_t min, uint16_t sec, uint16_t msec, TDateTime &time) {
  if (hour >= 24 || min >= 60 || sec >= 60 || msec >= 1000) return false;
  time = (((hour * 60.0 + min) * 60.0 + sec) * 1000.0 + msec) / MSecsPerDay;
  return true;
}

TDateTime EncodeDate(uint16_t year, uint16_t month, uint16_t day) {
  TDateTime d = 0;
  if (!TryEncodeDate(year, month, day, d)) throw EConvertError(Consts::SDateEncodeError);
  return d;
}

TDateTime EncodeTime(uint16_t hour, uint16_t min, uint16_t sec, uint16_t msec) {
  TDateTime t = 0;
  if (!TryEncodeTime(hour, min, sec, msec, t)) throw EConvertError(Consts::STimeEncodeError);
  return t;
}

TDateTime EncodeDateDay(uint16_t year, uint16_t dayOfYear) {
  uint16_t days = IsLeapYear(year) ? 366 : 365;
  if (dayOfYear < 1 || dayOfYear > days) throw EConvertError(Consts::SDateEncodeError);
  return EncodeDate(year, 1, 1) + (dayOfYear - 1);
}

TDateTime EncodeDateTime(uint16_t year, uint16_t month, uint16_t day, uint16_t hour, uint16_t min,
                         uint16_t sec, uint16_t msec) {
  TDateTime d = EncodeDate(year, month, day);
  TDateTime t = EncodeTime(hour, min, sec, msec);
  return d >= 0 ? d + t : d - t; // the fraction counts away from day zero
}

void DecodeDate(TDateTime date, uint16_t &year, uint16_t &month, uint16_t &day) {
  double whole = std::trunc(date);
  if (!std::isfinite(whole) || whole + kDateDelta < 0 || whole + kDateDelta > 3652058) {
    year = month = day = 0;
    return;
  }
  DateFields f = CivilFromDays(static_cast<int64_t>(whole) + kDateDelta);
  year = static_cast<uint16_t>(f.year);
  month = static_cast<uint16_t>(f.month);
  day = static_cast<uint16_t>(f.day);
}

void DecodeTime(TDateTime time, uint16_t &hour, uint16_t &min, uint16_t &sec, uint16_t &msec) {
  double frac = std::fabs(time - std::trunc(time));
  if (!std::isfinite(frac)) frac = 0;
  int64_t ms = std::llround(frac * MSecsPerDay);
  if (ms >= static_cast<int64_t>(MSecsPerDay)) ms = static_cast<int64_t>(MSecsPerDay) - 1;
  hour = static_cast<uint16_t>(ms / 3600000);
  min = static_cast<uint16_t>(ms / 60000 % 60);
  sec = static_cast<uint16_t>(ms / 1000 % 60);
  msec = static_cast<uint16_t>(ms % 1000);
}

TDateTime FileDateToDateTime(int32_t fileDate) {
  uint32_t v = static_cast<uint32_t>(fileDate);
  uint16_t hi = static_cast<uint16_t>(v >> 16), lo = static_cast<uint16_t>(v & 0xFFFF);
  TDateTime date = EncodeDate(static_cast<uint16_t>((hi >> 9) + 1980),
                              static_cast<uint16_t>((hi >> 5) & 15), hi & 31);
  TDateTime time = EncodeTime(lo >> 11, (lo >> 5) & 63, static_cast<uint16_t>((lo & 31) * 2), 0);
  return date + time;
}

int32_t DateTimeToFileDate(TDateTime dateTime) {
  uint16_t y, mo, d, h, mi, s, ms;
  DecodeDate(dateTime, y, mo, d);
  if (y < 1980 || y > 2107) return 0;
  DecodeTime(dateTime, h, mi, s, ms);
  std::tm tm{};
  tm.tm_year = y - 1900;
  tm.tm_mon = mo - 1;
  tm.tm_mday = d;
  tm.tm_hour = h;
  tm.tm_min = mi;
  tm.tm_sec = s;
  return PackFileDate(tm);
}

TDateTime UnixTimeToLocalDateTime(std::time_t t) {
  std::tm tm{};
  if (!localtime_r(&t, &tm)) return UnixDateDelta;
  TDateTime d = 0, time = 0;
  if (!TryEncodeDate(static_cast<uint16_t>(tm.tm_year + 1900), static_cast<uint16_t>(tm.tm_mon + 1),
                     static_cast<uint16_t>(tm.tm_mday), d))
    return UnixDateDelta;
  int sec = tm.tm_sec > 59 ? 59 : tm.tm_sec; // a leap second stays in its minute
  TryEncodeTime(static_cast<uint16_t>(tm.tm_hour), static_cast<uint16_t>(tm.tm_min),
                static_cast<uint16_t>(sec), 0, time);
  return d >= 0 ? d + time : d - time;
}

int32_t UnixTimeToFileDate(std::time_t t) {
  std::tm tm{};
  if (!localtime_r(&t, &tm)) return 0;
  if (tm.tm_sec > 59) tm.tm_sec = 59;
  return PackFileDate(tm);
}

std::time_t FileDateToUnixTime(int32_t fileDate) {
  uint32_t v = static_cast<uint32_t>(fileDate);
  uint16_t hi = static_cast<uint16_t>(v >> 16), lo = static_cast<uint16_t>(v & 0xFFFF);
  TDateTime probe;
  uint16_t year = static_cast<uint16_t>((hi >> 9) + 1980), month = (hi >> 5) & 15;
  if (!TryEncodeDate(year, month, hi & 31, probe) ||
      !TryEncodeTime(lo >> 11, (lo >> 5) & 63, static_cast<uint16_t>((lo & 31) * 2), 0, probe))
    return -1;
  std::tm tm{};
  tm.tm_year = year - 1900;
  tm.tm_mon = month - 1;
  tm.tm_mday = hi & 31;
  tm.tm_hour = lo >> 11;
  tm.tm_min = (lo >> 5) & 63;
  tm.tm_sec = (lo & 31) * 2;
  tm.tm_isdst = -1;
  return std::mktime(&tm);
}

TDateTime Now() {
  return UnixTimeToLocalDateTime(std::time(nullptr));
}

TDateTime Date() {
  return std::trunc(Now());
}

} // namespace kestrel
