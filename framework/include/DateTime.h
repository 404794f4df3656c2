// TDateTime, TTimeStamp and the date/time routines of the framework (framework layer).
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "SystemTypes.h"

namespace fw {

/// Days from 0001-01-01 to 1899-12-30 plus one: `TTimeStamp.Date = trunc(dt) + DateDelta`.
inline constexpr int32_t DateDelta = 693594;
inline constexpr int32_t MSecsPerDay = 86400000;
inline constexpr int32_t SecsPerDay = 86400;
/// TDateTime of 1970-01-01.
inline constexpr int32_t UnixDateDelta = 25569;
/// TDateTime of 0001-01-01 and of 9999-12-31.
inline constexpr double MinDateTime = -693593.0;
inline constexpr double MaxDateTime = 2958465.99999999;

/// A date as a day number and a time in milliseconds. Time comes first in memory.
struct TTimeStamp {
  int32_t Time;  // milliseconds since midnight, 0..86399999
  int32_t Date;  // days since 0001-01-01 plus one (0001-01-01 is 1)
};

/// Storage form of date/time field values: a day number (ftDate), milliseconds (ftTime) or
/// `TimeStampToMSecs` as a double (ftDateTime).
union TDateTimeRec {
  int32_t Date;
  int32_t Time;
  double DateTime;
};

/// ms = dt x 86400000 rounded half to even; Time = |ms| mod 86400000, Date = 693594 + ms div
/// 86400000 (truncating). Rounding may carry into the next day. Raises EConvertError for NaN,
/// infinities and values whose day number does not fit 32 bits.
TTimeStamp DateTimeToTimeStamp(TDateTime dt);
/// Raises EConvertError ("'0.0' is not a valid timestamp") when Date <= 0 or Time < 0.
/// Otherwise days + Time/86400000, the fraction subtracted when days is negative.
TDateTime TimeStampToDateTime(const TTimeStamp& ts);
/// Date x 86400000 + Time, as a 64-bit count (returned as double, the framework's Comp).
double TimeStampToMSecs(const TTimeStamp& ts);
/// Date = ms div 86400000, Time = ms mod 86400000. `ms` is made integral by rounding half to
/// even. Raises EConvertError when ms is negative, NaN/infinite, or the day number does not fit
/// 32 bits (ms >= 86400000 x 2^32); callers that must not fail use {0, 0} on error.
TTimeStamp MSecsToTimeStamp(double ms);

/// Divisible by 4, except centuries not divisible by 400.
bool IsLeapYear(int year);
/// 28..31; 0 for a month outside 1..12.
int DaysInAMonth(int year, int month);
/// Raises EConvertError unless 1 <= y <= 9999, 1 <= m <= 12, 1 <= d <= DaysInAMonth(y, m).
TDateTime EncodeDate(int year, int month, int day);
bool TryEncodeDate(int year, int month, int day, TDateTime& dt);
/// Raises EConvertError unless h < 24, n < 60, s < 60, ms < 1000 (all >= 0).
TDateTime EncodeTime(int hour, int min, int sec, int msec);
bool TryEncodeTime(int hour, int min, int sec, int msec, TDateTime& dt);
/// Inverse of EncodeDate on trunc(dt + half a millisecond); before 0001-01-01 (or NaN) gives
/// 0/0/0.
void DecodeDate(TDateTime dt, int& year, int& month, int& day);
/// The time part through DateTimeToTimeStamp; values it rejects give 0:0:0.0.
void DecodeTime(TDateTime dt, int& hour, int& min, int& sec, int& msec);
/// 1 = Sunday .. 7 = Saturday.
int DayOfWeek(TDateTime dt);

/// The current local date and time; Date() is today at midnight, Time() the fraction.
TDateTime Now();
TDateTime Date();
TDateTime Time();

/// Formats with a pattern of the letters described in TFormatSettings (plus "c" for short date
/// and long time, "ddd"/"dddd" and "mmm"/"mmmm" English day and month names, "am/pm").
std::string FormatDateTime(std::string_view format, TDateTime dt);
/// ShortDateFormat, LongTimeFormat, and both (the time omitted at midnight). With the default
/// settings: "2000-01-31", "13:05:09", "2000-01-31 13:05:09".
std::string DateToStr(TDateTime dt);
std::string TimeToStr(TDateTime dt);
std::string DateTimeToStr(TDateTime dt);
/// Parse a date in ShortDateFormat's field order separated by DateSeparator (or '/'), a time
/// "h:n[:s[.z]]" with optional "am"/"pm", or a date, blanks and a time. Two-digit years use the
/// century window; a missing year is the current one. Raise EConvertError ("'x' is not a valid
/// date") on anything else.
TDateTime StrToDate(std::string_view s);
TDateTime StrToTime(std::string_view s);
TDateTime StrToDateTime(std::string_view s);
bool TryStrToDate(std::string_view s, TDateTime& dt);
bool TryStrToTime(std::string_view s, TDateTime& dt);
bool TryStrToDateTime(std::string_view s, TDateTime& dt);

}  // namespace fw
