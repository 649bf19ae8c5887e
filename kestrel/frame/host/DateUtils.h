// The host's date functions: dates and times as TDateTime (days since
// 1899-12-30, the fraction being the time of day) and the packed 32-bit file
// date stamp.
//
// Date stamp layout (local time, two-second resolution):
//   bits 31..25 year - 1980, 24..21 month, 20..16 day,
//   bits 15..11 hour, 10..5 minute, 4..0 second / 2.
#pragma once

#include <cstdint>
#include <ctime>

#include <kestrel/frame/host/Types.h>

namespace kestrel {

inline constexpr double HoursPerDay = 24;
inline constexpr double MSecsPerDay = 24.0 * 60 * 60 * 1000;
// 1970-01-01 as a TDateTime.
inline constexpr TDateTime UnixDateDelta = 25569;

// Gregorian calendar rules.
bool IsLeapYear(uint16_t year);
uint16_t DaysInAMonth(uint16_t year, uint16_t month); // 0 for a month outside 1..12

// Encoding raises EConvertError on a field outside its range; the Try forms
// give false instead. Years run from 1 to 9999.
bool TryEncodeDate(uint16_t year, uint16_t month, uint16_t day, TDateTime &date);
bool TryEncodeTime(uint16_t hour, uint16_t min, uint16_t sec, uint16_t msec, TDateTime &time);
TDateTime EncodeDate(uint16_t year, uint16_t month, uint16_t day);
TDateTime EncodeTime(uint16_t hour, uint16_t min, uint16_t sec, uint16_t msec);
// The day of a year, counted from 1 on January 1st.
TDateTime EncodeDateDay(uint16_t year, uint16_t dayOfYear);
TDateTime EncodeDateTime(uint16_t year, uint16_t month, uint16_t day, uint16_t hour, uint16_t min,
                         uint16_t sec, uint16_t msec);

// The parts of a date-time (the time parts of its fraction, to the millisecond).
void DecodeDate(TDateTime date, uint16_t &year, uint16_t &month, uint16_t &day);
void DecodeTime(TDateTime time, uint16_t &hour, uint16_t &min, uint16_t &sec, uint16_t &msec);

// The stamp's date and time; raises EConvertError on a stamp that names no
// real date or time (a month of 0, February 30th, minute 60, stamp 0 ...).
TDateTime FileDateToDateTime(int32_t fileDate);
// The stamp of a date-time; 0 for a year outside 1980..2107, which no stamp
// can hold. Seconds are rounded down to an even number.
int32_t DateTimeToFileDate(TDateTime dateTime);

// Conversions between the system's clock and the host's local date-time.
TDateTime UnixTimeToLocalDateTime(std::time_t t);
int32_t UnixTimeToFileDate(std::time_t t);        // 0 when the year can't be stamped
std::time_t FileDateToUnixTime(int32_t fileDate); // -1 for an invalid stamp

// The local date and time of the system's clock; Date drops the time of day.
TDateTime Now();
TDateTime Date();

} // namespace kestrel
