// Tests of the date/time encoding, timestamps and date text.
#include "DateTime.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "Exception.h"
#include "FormatSettings.h"

using namespace fw;

TEST(DateTime, KnownDayNumbers) {
  EXPECT_EQ(EncodeDate(1899, 12, 30), 0);
  EXPECT_EQ(EncodeDate(1900, 1, 1), 2);
  EXPECT_EQ(EncodeDate(1970, 1, 1), UnixDateDelta);
  EXPECT_EQ(EncodeDate(2000, 1, 1), 36526);
  EXPECT_EQ(EncodeDate(1, 1, 1), -693593);
  EXPECT_EQ(EncodeDate(9999, 12, 31), 2958465);
  EXPECT_EQ(DateTimeToTimeStamp(0).Date, 693594);
  EXPECT_EQ(DateTimeToTimeStamp(2).Date, 693596);
  EXPECT_EQ(DateTimeToTimeStamp(25569).Date, 719163);
  EXPECT_EQ(DateTimeToTimeStamp(36526).Date, 730120);
  EXPECT_EQ(DateTimeToTimeStamp(-693593).Date, 1);
}

TEST(DateTime, TwentyNinthOfFebruary1900DoesNotExist) {
  EXPECT_FALSE(IsLeapYear(1900));
  EXPECT_TRUE(IsLeapYear(2000));
  EXPECT_TRUE(IsLeapYear(1996));
  EXPECT_EQ(EncodeDate(1900, 2, 28), 60);
  EXPECT_EQ(EncodeDate(1900, 3, 1), 61);
  EXPECT_THROW(EncodeDate(1900, 2, 29), EConvertError);
  EXPECT_EQ(EncodeDate(2000, 2, 29), 36585);
  int y, m, d;
  DecodeDate(60, y, m, d);
  EXPECT_EQ(y * 10000 + m * 100 + d, 19000228);
  DecodeDate(61, y, m, d);
  EXPECT_EQ(y * 10000 + m * 100 + d, 19000301);
}

TEST(DateTime, EncodeRejectsOutOfRangeParts) {
  TDateTime dt;
  EXPECT_FALSE(TryEncodeDate(0, 1, 1, dt));
  EXPECT_FALSE(TryEncodeDate(10000, 1, 1, dt));
  EXPECT_FALSE(TryEncodeDate(2001, 13, 1, dt));
  EXPECT_FALSE(TryEncodeDate(2001, 4, 31, dt));
  EXPECT_FALSE(TryEncodeDate(2001, 1, 0, dt));
  EXPECT_THROW(EncodeTime(24, 0, 0, 0), EConvertError);
  EXPECT_THROW(EncodeTime(0, 60, 0, 0), EConvertError);
  EXPECT_THROW(EncodeTime(0, 0, 0, 1000), EConvertError);
  EXPECT_THROW(EncodeTime(-1, 0, 0, 0), EConvertError);
  EXPECT_DOUBLE_EQ(EncodeTime(12, 0, 0, 0), 0.5);
}

TEST(DateTime, DecodeRoundTripsAcrossTheRange) {
  for (int year : {1, 4, 100, 1582, 1899, 1900, 1969, 2000, 2024, 9999})
    for (int month = 1; month <= 12; ++month) {
      const int day = DaysInAMonth(year, month);
      int y, m, d;
      DecodeDate(EncodeDate(year, month, day), y, m, d);
      ASSERT_EQ(y * 10000 + m * 100 + d, year * 10000 + month * 100 + day);
    }
  int y, m, d;
  DecodeDate(-693594, y, m, d);  // before 0001-01-01
  EXPECT_EQ(y + m + d, 0);
  int h, n, s, ms;
  DecodeTime(EncodeTime(23, 59, 59, 999), h, n, s, ms);
  EXPECT_EQ(h * 10000000 + n * 100000 + s * 1000 + ms, 235959999);
  // -1.25 is 29 December 1899, 06:00.
  DecodeDate(-1.25, y, m, d);
  EXPECT_EQ(y * 10000 + m * 100 + d, 18991229);
  DecodeTime(-1.25, h, n, s, ms);
  EXPECT_EQ(h, 6);
  EXPECT_EQ(DayOfWeek(EncodeDate(2000, 1, 1)), 7);  // a Saturday
}

TEST(TimeStamp, ConversionsOfTheFirstOfJanuary2000) {
  const TTimeStamp ts = DateTimeToTimeStamp(EncodeDate(2000, 1, 1) + 0.5);
  EXPECT_EQ(ts.Date, 730120);
  EXPECT_EQ(ts.Time, 43200000);
  EXPECT_DOUBLE_EQ(TimeStampToMSecs(ts), 63082411200000.0);
  const TTimeStamp back = MSecsToTimeStamp(63082411200000.0);
  EXPECT_EQ(back.Date, 730120);
  EXPECT_EQ(back.Time, 43200000);
  EXPECT_DOUBLE_EQ(TimeStampToDateTime(back), 36526.5);
  EXPECT_DOUBLE_EQ(TimeStampToMSecs(TTimeStamp{0, 1}), 86400000.0);
}

TEST(TimeStamp, RoundingCarriesIntoTheNextDay) {
  const TTimeStamp ts = DateTimeToTimeStamp(1.0 - 0.4 / MSecsPerDay);
  EXPECT_EQ(ts.Date, DateDelta + 1);
  EXPECT_EQ(ts.Time, 0);
  const TTimeStamp neg = DateTimeToTimeStamp(-1.25);
  EXPECT_EQ(neg.Date, DateDelta - 1);
  EXPECT_EQ(neg.Time, 21600000);
  EXPECT_DOUBLE_EQ(TimeStampToDateTime(neg), -1.25);
}

TEST(TimeStamp, InvalidStampsAndMillisecondCountsRaise) {
  EXPECT_THROW(TimeStampToDateTime(TTimeStamp{0, 0}), EConvertError);
  EXPECT_THROW(TimeStampToDateTime(TTimeStamp{0, -5}), EConvertError);
  EXPECT_THROW(TimeStampToDateTime(TTimeStamp{-1, 10}), EConvertError);
  try {
    TimeStampToDateTime(TTimeStamp{0, 0});
  } catch (const EConvertError& e) {
    EXPECT_EQ(e.Message(), "'0.0' is not a valid timestamp");
  }
  EXPECT_THROW(MSecsToTimeStamp(-1), EConvertError);
  EXPECT_THROW(MSecsToTimeStamp(86400000.0 * 4294967296.0), EConvertError);
  EXPECT_THROW(MSecsToTimeStamp(std::numeric_limits<double>::quiet_NaN()), EConvertError);
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
  EXPECT_DOUBLE_EQ(StrToDate("2000-01-01"), 36526);
  EXPECT_DOUBLE_EQ(StrToDate("2000/1/1"), 36526);
  EXPECT_DOUBLE_EQ(StrToTime("12:00"), 0.5);
  EXPECT_DOUBLE_EQ(StrToTime("6:00 pm"), 0.75);
  EXPECT_DOUBLE_EQ(StrToTime("00:00:01.500"), 1.5 / SecsPerDay);
  EXPECT_DOUBLE_EQ(StrToTime("00:00:01.5"), 1.5 / SecsPerDay);  // a fraction of a second, not 5 ms
  EXPECT_DOUBLE_EQ(StrToDateTime("2000-01-01 12:00:00"), 36526.5);
  EXPECT_THROW(StrToDate("2000-02-30"), EConvertError);
  EXPECT_THROW(StrToDate("abc"), EConvertError);
  EXPECT_THROW(StrToTime("25:00"), EConvertError);
  EXPECT_THROW(StrToTime("12"), EConvertError);
  EXPECT_THROW(StrToDateTime("2000-01-01 x"), EConvertError);
  const TFormatSettings saved = FormatSettings;
  FormatSettings.ShortDateFormat = "dd/mm/yyyy";
  FormatSettings.DateSeparator = '.';
  EXPECT_DOUBLE_EQ(StrToDate("01.02.2000"), EncodeDate(2000, 2, 1));
  EXPECT_EQ(DateToStr(EncodeDate(2000, 2, 1)), "01.02.2000");
  FormatSettings = saved;
}

TEST(DateText, NowIsAReasonableLocalTime) {
  const TDateTime now = Now();
  EXPECT_GT(now, EncodeDate(2020, 1, 1));
  EXPECT_EQ(Date(), std::trunc(Date()));
  EXPECT_GE(Time(), 0);
  EXPECT_LT(Time(), 1);
}
