// TDateTime and TTimeStamp conversions, calendar encoding and the current time.
#include "DateTime.h"

#include <chrono>
#include <cmath>
#include <ctime>

#include "Exception.h"

namespace fw {

namespace {

constexpr int64_t kMSecsPerDay = MSecsPerDay;
// TTimeStamp.Date of 1970-01-01; day numbers are shifted by it to use the civil-day algorithm.
constexpr int64_t kUnixDayNumber = 719163;

// Days since 1970-01-01 of a proleptic Gregorian date (H. Hinnant's days_from_civil).
int64_t DaysFromCivil(int64_t y, unsigned m, unsigned d) {
  y -= m <= 2;
  const int64_t era = (y >= 0 ? y : y - 399) / 400;
  const unsigned yoe = static_cast<unsigned>(y - era * 400);
  const unsigned doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
  const unsigned doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
  return era * 146097 + static_cast<int64_t>(doe) - 719468;
}

void CivilFromDays(int64_t z, int& year, int& month, int& day) {
  z += 719468;
  const int64_t era = (z >= 0 ? z : z - 146096) / 146097;
  const unsigned doe = static_cast<unsigned>(z - era * 146097);
  const unsigned yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
  const unsigned doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
  const unsigned mp = (5 * doy + 2) / 153;
  day = static_cast<int>(doy - (153 * mp + 2) / 5 + 1);
  month = static_cast<int>(mp < 10 ? mp + 3 : mp - 9);
  year = static_cast<int>(static_cast<int64_t>(yoe) + era * 400 + (month <= 2));
}

}  // namespace

TTimeStamp DateTimeToTimeStamp(TDateTime dt) {
  const double ms = std::nearbyint(dt * static_cast<double>(kMSecsPerDay));
  if (!std::isfinite(ms) || std::fabs(ms) > 9.0e18)
    throw EConvertError("Invalid date/time value for a timestamp");
  const int64_t total = static_cast<int64_t>(ms);
  const int64_t date = DateDelta + total / kMSecsPerDay;
  if (date < INT32_MIN || date > INT32_MAX) throw EConvertError("Invalid date/time value for a timestamp");
  TTimeStamp ts;
  ts.Time = static_cast<int32_t>((total < 0 ? -total : total) % kMSecsPerDay);
  ts.Date = static_cast<int32_t>(date);
  return ts;
}

TDateTime TimeStampToDateTime(const TTimeStamp& ts) {
  if (ts.Date <= 0 || ts.Time < 0)
    throw EConvertError("'" + std::to_string(ts.Date) + "." + std::to_string(ts.Time) + "' is not a valid timestamp");
  const double days = static_cast<double>(ts.Date) - DateDelta;
  const double frac = static_cast<double>(ts.Time) / kMSecsPerDay;
  return days >= 0 ? days + frac : days - frac;
}

double TimeStampToMSecs(const TTimeStamp& ts) {
  return static_cast<double>(static_cast<int64_t>(ts.Date) * kMSecsPerDay + ts.Time);
}

TTimeStamp MSecsToTimeStamp(double ms) {
  const double whole = std::nearbyint(ms);
  // The quotient must fit 32 bits unsigned: ms < 86400000 x 2^32.
  if (!std::isfinite(whole) || whole < 0 || whole >= 86400000.0 * 4294967296.0)
    throw EConvertError("Invalid millisecond count for a timestamp");
  const int64_t n = static_cast<int64_t>(whole);
  TTimeStamp ts;
  ts.Date = static_cast<int32_t>(static_cast<uint32_t>(n / kMSecsPerDay));
  ts.Time = static_cast<int32_t>(n % kMSecsPerDay);
  return ts;
}

bool IsLeapYear(int year) { return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0); }

int DaysInAMonth(int year, int month) {
  static const int kDays[12] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  if (month < 1 || month > 12) return 0;
  return month == 2 && IsLeapYear(year) ? 29 : kDays[month - 1];
}

bool TryEncodeDate(int year, int month, int day, TDateTime& dt) {
  if (year < 1 || year > 9999 || month < 1 || month > 12 || day < 1 || day > DaysInAMonth(year, month)) return false;
  dt = static_cast<double>(DaysFromCivil(year, static_cast<unsigned>(month), static_cast<unsigned>(day)) + UnixDateDelta);
  return true;
}

TDateTime EncodeDate(int year, int month, int day) {
  TDateTime dt;
  if (!TryEncodeDate(year, month, day, dt))
    throw EConvertError("Invalid argument to date encode: " + std::to_string(year) + "-" + std::to_string(month) +
                        "-" + std::to_string(day));
  return dt;
}

bool TryEncodeTime(int hour, int min, int sec, int msec, TDateTime& dt) {
  if (hour < 0 || hour >= 24 || min < 0 || min >= 60 || sec < 0 || sec >= 60 || msec < 0 || msec >= 1000) return false;
  dt = static_cast<double>(((hour * 60 + min) * 60 + sec) * 1000 + msec) / kMSecsPerDay;
  return true;
}

TDateTime EncodeTime(int hour, int min, int sec, int msec) {
  TDateTime dt;
  if (!TryEncodeTime(hour, min, sec, msec, dt))
    throw EConvertError("Invalid argument to time encode: " + std::to_string(hour) + ":" + std::to_string(min) + ":" +
                        std::to_string(sec) + "." + std::to_string(msec));
  return dt;
}

void DecodeDate(TDateTime dt, int& year, int& month, int& day) {
  year = month = day = 0;
  if (!std::isfinite(dt) || dt < MinDateTime || dt > MaxDateTime + 1) return;
  const TTimeStamp ts = DateTimeToTimeStamp(dt);
  if (ts.Date <= 0) return;
  CivilFromDays(ts.Date - kUnixDayNumber, year, month, day);
}

void DecodeTime(TDateTime dt, int& hour, int& min, int& sec, int& msec) {
  hour = min = sec = msec = 0;
  if (!std::isfinite(dt) || std::fabs(dt) > 1.0e12) return;
  int32_t t = DateTimeToTimeStamp(dt).Time;
  msec = t % 1000;
  t /= 1000;
  sec = t % 60;
  t /= 60;
  min = t % 60;
  hour = t / 60;
}

int DayOfWeek(TDateTime dt) { return DateTimeToTimeStamp(dt).Date % 7 + 1; }

TDateTime Now() {
  const auto now = std::chrono::system_clock::now();
  const std::time_t secs = std::chrono::system_clock::to_time_t(now);
  const auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(now.time_since_epoch()).count() % 1000;
  std::tm local{};
  localtime_r(&secs, &local);
  return EncodeDate(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday) +
         EncodeTime(local.tm_hour, local.tm_min, local.tm_sec, static_cast<int>(ms));
}

TDateTime Date() { return std::trunc(Now()); }

TDateTime Time() {
  const TDateTime now = Now();
  return now - std::trunc(now);
}

}  // namespace fw
