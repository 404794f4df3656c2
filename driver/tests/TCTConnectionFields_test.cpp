// TCTConnection field conversion: every c-tree form in both directions at its edge values, the
// blank rules, the deliberate asymmetries, and the numbers returned for bad input.
#include <gtest/gtest.h>

#include <cstring>

#include "DriverTestSupport.h"
#include "TBcd.h"

namespace Ctdb::testing {
namespace {

class FieldTest : public DriverTest {
 protected:
  void SetUp() override {
    Conn->SetName("Conn1");
    Activate();
    Cursor.Connection = Conn.get();
  }

  // Lays the fields out one after the other by their lengths and starts an empty record.
  void Define(const std::vector<DodaEntry>& fields) {
    int32_t offset = 0;
    for (const DodaEntry& field : fields) {
      Cursor.AddField(field.Name, field.Type, static_cast<int32_t>(field.Length), static_cast<int32_t>(field.Length),
                      offset, 0);
      offset += static_cast<int32_t>(field.Length);
    }
    Buffer = std::make_unique<TCTCustomRecordBuffer>(&Cursor);
    Buffer->InitRecord();
  }
  uint8_t* At(int32_t fieldNo) { return Buffer->RecordPtr() + Buffer->GetFieldOffset(fieldNo); }
  std::string Bytes(int32_t fieldNo, size_t count) { return std::string(reinterpret_cast<char*>(At(fieldNo)), count); }

  int32_t Set(int32_t fieldNo, const void* src) { return Conn->SetField(&Cursor, fieldNo, Buffer.get(), src); }
  template <typename T>
  int32_t SetValue(int32_t fieldNo, T value) {
    return Set(fieldNo, &value);
  }
  // Reads a field into a value of type T; `blank` receives the blank flag.
  template <typename T>
  T Get(int32_t fieldNo, bool& blank) {
    T value{};
    EXPECT_EQ(Conn->GetField(&Cursor, fieldNo, Buffer.get(), &value, blank), 0);
    return value;
  }
  std::string GetText(int32_t fieldNo, bool& blank) {
    char text[64];
    std::memset(text, 'z', sizeof text);
    EXPECT_EQ(Conn->GetField(&Cursor, fieldNo, Buffer.get(), text, blank), 0);
    return text;
  }

  TCTCursorDesc Cursor{"fields", 0, 0, SHARED, nullptr};
  std::unique_ptr<TCTCustomRecordBuffer> Buffer;
};

TEST_F(FieldTest, FixedStringsReadUpToThePadding) {
  Define({{"s", CT_FSTRING, 6}, {"t", CT_FSTRING, 4}});
  bool blank = true;
  ASSERT_EQ(Set(1, "AB"), 0);
  EXPECT_EQ(Bytes(1, 6), std::string("AB\0\0\0\0", 6));
  EXPECT_EQ(GetText(1, blank), "AB");
  EXPECT_FALSE(blank);
  ASSERT_EQ(Set(2, nullptr), 0);
  EXPECT_EQ(GetText(2, blank), "");
  EXPECT_TRUE(blank);

  ASSERT_EQ(Set(1, "ABCDEFGH"), 0);
  EXPECT_EQ(GetText(1, blank), "ABCDEF") << "cut to the field length";
  EXPECT_EQ(Bytes(2, 4), std::string(4, '\0'));

  Conn->SetEmptyChar('*');
  ASSERT_EQ(Set(1, "AB"), 0);
  EXPECT_EQ(Bytes(1, 6), "AB****");
  EXPECT_EQ(GetText(1, blank), "AB");
  ASSERT_EQ(Set(1, nullptr), 0);
  EXPECT_EQ(GetText(1, blank), "");
  EXPECT_TRUE(blank);
}

TEST_F(FieldTest, PrefixedStringsPadAndCountTheirOwnWay) {
  Define({{"p", CT_FPSTRING, 4}, {"q", CT_F2STRING, 6}, {"r", CT_F4STRING, 8}, {"tail", CT_FSTRING, 8}});
  bool blank = true;
  ASSERT_EQ(Set(1, "ab"), 0);
  EXPECT_EQ(Bytes(1, 4), "\x02" "ab ") << "the 1-byte form pads with blanks even when EmptyChar is #0";
  EXPECT_EQ(GetText(1, blank), "ab");
  EXPECT_FALSE(blank);
  ASSERT_EQ(Set(2, "xy"), 0);
  EXPECT_EQ(Bytes(2, 6), std::string("\x02\x00xy\x00\x00", 6)) << "the 2-byte form pads with EmptyChar";
  EXPECT_EQ(GetText(2, blank), "xy");

  // A prefix larger than the bytes after it marks a damaged record: nothing is copied.
  char text[8];
  std::memset(text, 'z', sizeof text);
  for (uint8_t prefix : {4, 9, 255}) {
    At(1)[0] = prefix;
    EXPECT_EQ(Conn->GetField(&Cursor, 1, Buffer.get(), text, blank), kCtRecordCorrupted) << int{prefix};
    EXPECT_EQ(text[0], 'z');
  }
  At(1)[0] = 3;
  EXPECT_EQ(GetText(1, blank), "ab ");

  ASSERT_EQ(Set(1, nullptr), 0);
  EXPECT_EQ(GetText(1, blank), "");
  EXPECT_TRUE(blank);

  // A longer text is cut to the bytes after the prefix; the next field is left alone.
  ASSERT_EQ(Set(4, "tail"), 0);
  ASSERT_EQ(Set(3, "hello"), 0);
  EXPECT_EQ(Bytes(3, 8), std::string("\x04\x00\x00\x00hell", 8));
  EXPECT_EQ(GetText(3, blank), "hell");
  EXPECT_EQ(GetText(4, blank), "tail");

  Conn->SetEmptyChar('*');
  ASSERT_EQ(Set(2, "xy"), 0);
  EXPECT_EQ(Bytes(2, 6), std::string("\x02\x00xy**", 6));
}

TEST_F(FieldTest, MoneyDatesTimesAndFloats) {
  Define({{"m", CT_MONEY, 4}, {"d", CT_DATE, 4}, {"t", CT_TIME, 4}, {"f", CT_SFLOAT, 4}, {"i", CT_INT4, 4}});
  bool blank = true;
  ASSERT_EQ(SetValue(1, 12.34), 0);
  int32_t stored = 0;
  std::memcpy(&stored, At(1), 4);
  EXPECT_EQ(stored, 1234);
  EXPECT_DOUBLE_EQ(Get<double>(1, blank), 12.34);
  EXPECT_FALSE(blank);
  ASSERT_EQ(SetValue(1, 0.125), 0);
  std::memcpy(&stored, At(1), 4);
  EXPECT_EQ(stored, 12) << "halves round to even";
  EXPECT_EQ(SetValue(1, 21474836.48), kCtValueDoesNotFit) << "not clamped to the 32-bit limit";
  std::memcpy(&stored, At(1), 4);
  EXPECT_EQ(stored, 12);
  ASSERT_EQ(Set(1, nullptr), 0);
  EXPECT_EQ(Get<double>(1, blank), 0.0);
  EXPECT_TRUE(blank) << "zero money is all EmptyChar bytes when EmptyChar is #0";

  EXPECT_EQ(Get<int32_t>(2, blank), 0) << "a blank date keeps its stored value, without the offset";
  EXPECT_TRUE(blank);
  ASSERT_EQ(SetValue<int32_t>(2, 730120), 0);  // 1 January 2000 as a framework day number
  std::memcpy(&stored, At(2), 4);
  EXPECT_EQ(stored, 109514);
  EXPECT_EQ(Get<int32_t>(2, blank), 730120);
  EXPECT_FALSE(blank);

  ASSERT_EQ(SetValue<int32_t>(3, 43200000), 0);
  EXPECT_EQ(Get<int32_t>(3, blank), 43200000);

  ASSERT_EQ(SetValue(4, 0.1), 0);
  EXPECT_EQ(Get<double>(4, blank), 0.1) << "read through its 7-digit text form";
  ASSERT_EQ(SetValue(4, -1234.567), 0);
  EXPECT_EQ(Get<double>(4, blank), -1234.567);

  EXPECT_EQ(Get<int32_t>(5, blank), 0);
  EXPECT_FALSE(blank) << "integer fields are never blank";
}

TEST_F(FieldTest, TimeStampsKeepTheStoredLayoutAndReadBackAsWritten) {
  Define({{"s", CT_TIMES, 8}});
  bool blank = true;
  const double noonOfNewYear2000 = 63082411200000.0;
  ASSERT_EQ(SetValue(1, noonOfNewYear2000 + 0.9), 0);
  int32_t words[2];
  std::memcpy(words, At(1), 8);
  EXPECT_EQ(words[0], 109514);
  EXPECT_EQ(words[1], 43200000) << "milliseconds are truncated";
  EXPECT_EQ(Get<double>(1, blank), noonOfNewYear2000);
  EXPECT_FALSE(blank);

  ASSERT_EQ(SetValue(1, -5.0), 0);
  std::memcpy(words, At(1), 8);
  EXPECT_EQ(words[0], 0) << "a value the framework cannot split stores day 0";
  EXPECT_EQ(words[1], 0);
  EXPECT_EQ(Get<double>(1, blank), 0.0);
  EXPECT_TRUE(blank);
  ASSERT_EQ(SetValue(1, 86400000.0 * 3 + 1), 0);  // day 3 lies before c-tree's day 0
  std::memcpy(words, At(1), 8);
  EXPECT_EQ(words[0], 3 - 620606);
  EXPECT_EQ(Get<double>(1, blank), 86400000.0 * 3 + 1);
}

// The framework right-aligns digits (CurrToBCD) or packs them from the first byte (StrToBCD);
// both must come back by value, up to the 16 digits the stored form holds.
TEST_F(FieldTest, BcdIsStoredNormalisedAndReadsBackByValue) {
  Define({{"b", CT_BCD, 10}});
  bool blank = true;
  const auto roundTrip = [&](const fw::TBcd& value) {
    EXPECT_EQ(Set(1, &value), 0);
    fw::TBcd back{};
    std::memset(&back, 0xEE, sizeof back);
    EXPECT_EQ(Conn->GetField(&Cursor, 1, Buffer.get(), &back, blank), 0);
    EXPECT_FALSE(blank);
    return back;
  };
  fw::TBcd value{};
  ASSERT_TRUE(fw::CurrToBCD(fw::Currency{12345600}, value, 32, 4));  // 1234.56
  fw::TBcd back = roundTrip(value);
  EXPECT_EQ(Bytes(1, 10), std::string("\x06\x02\x12\x34\x56\0\0\0\0\0", 10)) << "6 digits, 2 places";
  EXPECT_EQ(fw::BCDCompare(back, value), 0);
  for (size_t i = 8; i < sizeof back.Fraction; ++i) EXPECT_EQ(back.Fraction[i], 0) << "digit byte " << i;

  for (const char* text : {"-12345678901234.56", "0.00000000000000001", "9999999999999999", "0", "-0.05"}) {
    value = fw::StrToBCD(text);
    EXPECT_EQ(fw::BCDToStr(roundTrip(value)), fw::BCDToStr(value)) << text;
  }

  value = fw::StrToBCD("12345678901234567");  // 17 digits
  ASSERT_EQ(Set(1, &value), kCtValueDoesNotFit);
  EXPECT_EQ(fw::BCDToStr(roundTrip(fw::StrToBCD("1"))), "1") << "a refused value writes nothing";
  ASSERT_EQ(Set(1, &value), kCtValueDoesNotFit);
  EXPECT_EQ(Bytes(1, 10), std::string("\x01\0\x10\0\0\0\0\0\0\0", 10));

  ASSERT_EQ(Set(1, nullptr), 0);
  EXPECT_EQ(Bytes(1, 10), std::string(10, '\0'));
  ASSERT_EQ(Conn->GetField(&Cursor, 1, Buffer.get(), nullptr, blank), 0);
  EXPECT_TRUE(blank);
}

TEST_F(FieldTest, CharactersAndRawBytes) {
  Define({{"c", CT_CHARU, 1}, {"a", CT_ARRAY, 3}, {"b", CT_BOOL, 1}});
  bool blank = false;
  ASSERT_EQ(Set(1, nullptr), 0);
  EXPECT_EQ(Get<char>(1, blank), '\0');
  EXPECT_TRUE(blank);
  ASSERT_EQ(Set(1, "xyz"), 0);
  EXPECT_EQ(Get<char>(1, blank), 'x');
  EXPECT_FALSE(blank);

  const uint8_t bytes[3] = {1, 2, 3};
  ASSERT_EQ(Set(2, bytes), 0);
  EXPECT_EQ(Bytes(2, 3), "\x01\x02\x03");
  ASSERT_EQ(Set(2, nullptr), 0);
  EXPECT_EQ(Bytes(2, 3), std::string(3, '\0'));
  Get<std::array<uint8_t, 3>>(2, blank);
  EXPECT_TRUE(blank);

  EXPECT_EQ(Get<uint8_t>(3, blank), 0);
  EXPECT_FALSE(blank) << "booleans are never blank";


  Conn->SetEmptyChar('*');
  ASSERT_EQ(Set(1, nullptr), 0);
  EXPECT_EQ(Get<char>(1, blank), '*');
  EXPECT_TRUE(blank);
  ASSERT_EQ(Set(2, nullptr), 0);
  EXPECT_EQ(Bytes(2, 3), "***");
}

TEST_F(FieldTest, BlobFormsAreBlankByTheirPrefixAndGiveNoValue) {
  Define({{"s", CT_STRING, 8}, {"p", CT_PSTRING, 8}, {"w", CT_2STRING, 8}, {"l", CT_4STRING, 8}});
  bool blank = false;
  for (int32_t fieldNo = 1; fieldNo <= 4; ++fieldNo) {
    ASSERT_EQ(Conn->GetField(&Cursor, fieldNo, Buffer.get(), nullptr, blank), 0);
    EXPECT_TRUE(blank) << fieldNo;
  }
  At(1)[0] = 'a';
  At(2)[0] = 3;
  At(3)[1] = 1;
  At(4)[3] = 1;
  uint8_t sentinel[8];
  std::memset(sentinel, 0x5A, sizeof sentinel);
  for (int32_t fieldNo = 1; fieldNo <= 4; ++fieldNo) {
    ASSERT_EQ(Conn->GetField(&Cursor, fieldNo, Buffer.get(), sentinel, blank), 0);
    EXPECT_FALSE(blank) << fieldNo;
  }
  EXPECT_EQ(sentinel[0], 0x5A) << "blob values come through blob streams, not GetField";
}

TEST_F(FieldTest, BadInputGivesNumbersOrTheNilRecordMessage) {
  Define({{"i", CT_INT4, 4}, {"s", CT_FSTRING, 8}});
  bool blank = false;
  int32_t value = 0;
  EXPECT_EQ(Conn->GetField(nullptr, 1, Buffer.get(), &value, blank), kCtInvalidCursor);
  EXPECT_EQ(Conn->SetField(nullptr, 1, Buffer.get(), &value), kCtInvalidCursor);
  EXPECT_EQ(Conn->GetField(&Cursor, 0, Buffer.get(), &value, blank), 1125);
  EXPECT_EQ(Conn->SetField(&Cursor, 3, Buffer.get(), &value), 1125);

  // A record too short for its fields.
  Buffer->SetRecord("\x01\x02\x03\x04\x05", 5);
  EXPECT_EQ(Conn->GetField(&Cursor, 1, Buffer.get(), &value, blank), 0);
  EXPECT_EQ(Conn->GetField(&Cursor, 2, Buffer.get(), &value, blank), kCtOffsetBeyondData);
  EXPECT_EQ(Conn->SetField(&Cursor, 2, Buffer.get(), "abc"), kCtOffsetBeyondData);

  TCTCustomRecordBuffer empty(&Cursor);
  EXPECT_EQ(Conn->SetField(&Cursor, 1, &empty, &value), kCtOffsetBeyondData);
  EXPECT_EQ(Raised([&] { (void)Conn->GetField(&Cursor, 1, &empty, &value, blank); }).Message(),
            "A Call has been made to Conn1.GetField routine.  The Record Pointer is nil, and no processing can occur");

  Conn->SetActive(false);
  EXPECT_EQ(Conn->GetField(&Cursor, 1, Buffer.get(), &value, blank), kCtNotActive);
  EXPECT_EQ(Conn->SetField(&Cursor, 1, Buffer.get(), &value), kCtNotActive);
}

TEST(FieldConversionTest, DayNumbersMatchTheFrameworkCalendarFromMarch1900) {
  EXPECT_EQ(CTDateToDateTime(109514), fw::EncodeDate(2000, 1, 1));
  EXPECT_EQ(DateTimeToCtDate(fw::EncodeDate(1900, 1, 1)), 72989);
  EXPECT_EQ(CTDateToDateTime(0), 0.0);
  EXPECT_EQ(DateTimeToCtDate(0), 0);
  EXPECT_EQ(CTDateToDateTime(-1000000000), 0.0) << "before year 1";

  // The count and the calendar agree from 1 March 1900 to 28 February 2100.
  const int32_t first = DateTimeToCtDate(fw::EncodeDate(1900, 3, 1));
  const int32_t last = DateTimeToCtDate(fw::EncodeDate(2100, 2, 28));
  for (int32_t day = first; day <= last; ++day) {
    const fw::TDateTime date = CTDateToDateTime(day);
    ASSERT_NE(date, 0.0) << day;
    ASSERT_EQ(DateTimeToCtDate(date), day);
    ASSERT_EQ(DateTimeToCtDate(date + 0.75), day) << "the time of day is ignored";
  }
  EXPECT_EQ(last - first, fw::EncodeDate(2100, 2, 28) - fw::EncodeDate(1900, 3, 1));
  // Outside that span the 365.25-day year counts a 29 February the calendar does not have: the
  // count skips a day against the calendar, and the extra day reads as no date.
  EXPECT_EQ(first - DateTimeToCtDate(fw::EncodeDate(1900, 2, 28)), 2);
  EXPECT_EQ(DateTimeToCtDate(fw::EncodeDate(2100, 3, 1)) - last, 2);
  EXPECT_EQ(CTDateToDateTime(last + 1), 0.0);
}

}  // namespace
}  // namespace Ctdb::testing
