// Tests of the date/time encoding, timestamps and date text.
#include "DateTime.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <tuple>

#include "Exception.h"
#include "FormatSettings.h"
#include "Raises.h"

using namespace fw;

namespace {

// The date part as yyyymmdd, and the time part as hhnnsszzz.
int Ymd(TDateTime dt) {
  int y, m, d;
  DecodeDate(dt, y, m, d);
  return y * 10000 + m * 100 + d;
}
int Hnsz(TDateTime dt) {
  int h, n, s, ms;
  DecodeTime(dt, h, n, s, ms);
  return h * 10000000 + n * 100000 + s * 1000 + ms;
}

}  // namespace

TEST(DateTime, KnownDayNumbersAndTheirTimeStampDays) {
  const struct { int y, m, d, day; } days[] = {{1899, 12, 30, 0}, {1900, 1, 1, 2}, {1970, 1, 1, UnixDateDelta},
                                               {2000, 1, 1, 36526}, {1, 1, 1, -693593}, {9999, 12, 31, 2958465}};
  for (const auto& c : days) EXPECT_EQ(EncodeDate(c.y, c.m, c.d), c.day) << c.y;
  const std::pair<TDateTime, int> stamps[] = {{0, 693594}, {2, 693596}, {25569, 719163}, {36526, 730120},
                                              {-693593, 1}};
  for (const auto& [dt, date] : stamps) EXPECT_EQ(DateTimeToTimeStamp(dt).Date, date) << dt;
}

TEST(DateTime, TwentyNinthOfFebruary1900DoesNotExist) {
  for (int year : {1900, 2000, 1996}) EXPECT_EQ(IsLeapYear(year), year != 1900) << year;
  EXPECT_EQ(EncodeDate(1900, 2, 28), 60);
  EXPECT_EQ(EncodeDate(1900, 3, 1), 61);
  EXPECT_THROW(EncodeDate(1900, 2, 29), EConvertError);
  EXPECT_EQ(EncodeDate(2000, 2, 29), 36585);
  EXPECT_EQ(Ymd(60), 19000228);
  EXPECT_EQ(Ymd(61), 19000301);
}

TEST(DateTime, EncodeRejectsOutOfRangeParts) {
  TDateTime dt;
  for (auto [y, m, d] : {std::tuple{0, 1, 1}, {10000, 1, 1}, {2001, 13, 1}, {2001, 4, 31}, {2001, 1, 0}})
    EXPECT_FALSE(TryEncodeDate(y, m, d, dt)) << y << "-" << m << "-" << d;
  for (auto [h, n, s, ms] : {std::tuple{24, 0, 0, 0}, {0, 60, 0, 0}, {0, 0, 0, 1000}, {-1, 0, 0, 0}})
    EXPECT_THROW(EncodeTime(h, n, s, ms), EConvertError) << h << ":" << n << ":" << s << "." << ms;
  EXPECT_DOUBLE_EQ(EncodeTime(12, 0, 0, 0), 0.5);
}

TEST(DateTime, DecodeRoundTripsAcrossTheRange) {
  for (int year : {1, 4, 100, 1582, 1899, 1900, 1969, 2000, 2024, 9999})
    for (int month = 1; month <= 12; ++month) {
      const int day = DaysInAMonth(year, month);
      ASSERT_EQ(Ymd(EncodeDate(year, month, day)), year * 10000 + month * 100 + day);
    }
  EXPECT_EQ(Ymd(-693594), 0);  // before 0001-01-01
  EXPECT_EQ(Hnsz(EncodeTime(23, 59, 59, 999)), 235959999);
  // -1.25 is 29 December 1899, 06:00.
  EXPECT_EQ(Ymd(-1.25), 18991229);
  EXPECT_EQ(Hnsz(-1.25), 60000000);
  EXPECT_EQ(DayOfWeek(EncodeDate(2000, 1, 1)), 7);  // a Saturday
}

TEST(TimeStamp, ConversionsRoundCarryIntoTheNextDayAndKeepNegativeTimes) {
  const TTimeStamp ts = DateTimeToTimeStamp(EncodeDate(2000, 1, 1) + 0.5);
  EXPECT_EQ(ts.Date, 730120);
  EXPECT_EQ(ts.Time, 43200000);
  EXPECT_DOUBLE_EQ(TimeStampToMSecs(ts), 63082411200000.0);
  const TTimeStamp back = MSecsToTimeStamp(63082411200000.0);
  EXPECT_EQ(back.Date, 730120);
  EXPECT_EQ(back.Time, 43200000);
  EXPECT_DOUBLE_EQ(TimeStampToDateTime(back), 36526.5);
  EXPECT_DOUBLE_EQ(TimeStampToMSecs(TTimeStamp{0, 1}), 86400000.0);

  const TTimeStamp carried = DateTimeToTimeStamp(1.0 - 0.4 / MSecsPerDay);
  EXPECT_EQ(carried.Date, DateDelta + 1);
  EXPECT_EQ(carried.Time, 0);
  const TTimeStamp neg = DateTimeToTimeStamp(-1.25);
  EXPECT_EQ(neg.Date, DateDelta - 1);
  EXPECT_EQ(neg.Time, 21600000);
  EXPECT_DOUBLE_EQ(TimeStampToDateTime(neg), -1.25);
}

TEST(TimeStamp, InvalidStampsAndMillisecondCountsRaise) {
  for (TTimeStamp bad : {TTimeStamp{0, 0}, TTimeStamp{0, -5}, TTimeStamp{-1, 10}})
    EXPECT_THROW(TimeStampToDateTime(bad), EConvertError) << bad.Date << "." << bad.Time;
  EXPECT_EQ(fwtest::MessageOf<EConvertError>([] { TimeStampToDateTime(TTimeStamp{0, 0}); }),
            "'0.0' is not a valid timestamp");
  for (double ms : {-1.0, 86400000.0 * 4294967296.0, std::numeric_limits<double>::quiet_NaN()})
    EXPECT_THROW(MSecsToTimeStamp(ms), EConvertError) << ms;
  EXPECT_EQ(MSecsToTimeStamp(0).Date, 0);
  EXPECT_EQ(MSecsToTimeStamp(86400000.0 * 4294967295.0).Time, 0);  // largest day number that fits
  EXPECT_THROW(DateTimeToTimeStamp(std::numeric_limits<double>::infinity()), EConvertError);
}

TEST(DateText, DefaultFormatsAreIso) {
  const TDateTime dt = EncodeDate(2000, 1, 31) + EncodeTime(13, 5, 9, 0);
  EXPECT_EQ(DateToStr(dt), "2000-01-31");
  EXPECT_EQ(TimeToStr(dt), "13:05:09");
  EXPECT_EQ(DateTimeToStr(dt), "2000-01-31 13:05:09");
  EXPECT_EQ(DateTimeToStr(EncodeDate(2000, 1, 31)), "2000-01-31");
  EXPECT_EQ(FormatDateTime("dd mmm yyyy hh:nn:ss.zzz am/pm dddd", dt + 0.0000001), "31 Jan 2000 13:05:09.009 pm Monday");
  EXPECT_EQ(FormatDateTime("h:m", dt), "13:5");
}

TEST(DateText, ParsesDatesAndTimesOrRaises) {
  const std::pair<TDateTime, double> parsed[] = {
      {StrToDate("2000-01-01"), 36526},   {StrToDate("2000/1/1"), 36526},
      {StrToTime("12:00"), 0.5},          {StrToTime("6:00 pm"), 0.75},
      {StrToTime("00:00:01.500"), 1.5 / SecsPerDay},
      {StrToTime("00:00:01.5"), 1.5 / SecsPerDay},  // a fraction of a second, not 5 ms
      {StrToDateTime("2000-01-01 12:00:00"), 36526.5}};
  for (const auto& [got, want] : parsed) EXPECT_DOUBLE_EQ(got, want);
  for (const char* bad : {"2000-02-30", "abc"}) EXPECT_THROW(StrToDate(bad), EConvertError) << bad;
  for (const char* bad : {"25:00", "12"}) EXPECT_THROW(StrToTime(bad), EConvertError) << bad;
  EXPECT_THROW(StrToDateTime("2000-01-01 x"), EConvertError);
  const TFormatSettings saved = FormatSettings;
  FormatSettings.ShortDateFormat = "dd/mm/yyyy";
  FormatSettings.DateSeparator = '.';
  EXPECT_DOUBLE_EQ(StrToDate("01.02.2000"), EncodeDate(2000, 2, 1));
  EXPECT_EQ(DateToStr(EncodeDate(2000, 2, 1)), "01.02.2000");
  FormatSettings = saved;
}

TEST(DateText, NowIsAReasonableLocalTime) {
  EXPECT_GT(Now(), EncodeDate(2020, 1, 1));
  EXPECT_EQ(Date(), std::trunc(Date()));
  EXPECT_GE(Time(), 0);
  EXPECT_LT(Time(), 1);
}
