// TCTCalcFields: values by name, first match, blank values, clearing and removal.
#include <gtest/gtest.h>

#include <cstring>
#include <stdexcept>

#include "TCTCalcFields.h"

namespace CTTables::testing {
namespace {

int32_t ValueOf(const TCTCalcFields& store, const std::string& name, bool& blank) {
  int32_t value = -1;
  store.GetData(name, &value, blank);
  return value;
}

TEST(TCTCalcFields, ValuesAreFoundByNameIgnoringCaseAndBlankUntilSet) {
  TCTCalcFields store;
  store.AddField("Total", 0, nullptr);
  const int32_t seven = 7;
  store.AddField("Tax", 4, &seven);
  bool blank = false;
  ValueOf(store, "TOTAL", blank);
  EXPECT_TRUE(blank);
  EXPECT_EQ(ValueOf(store, "tax", blank), 7);
  EXPECT_FALSE(blank);

  const int32_t fortyTwo = 42;
  store.SetData("total", 4, &fortyTwo);
  EXPECT_EQ(ValueOf(store, "Total", blank), 42);
  EXPECT_FALSE(blank);
  store.SetData("Total", 0, &fortyTwo);  // size 0 blanks the value and copies nothing
  EXPECT_EQ(ValueOf(store, "Total", blank), -1);
  EXPECT_TRUE(blank);
}

TEST(TCTCalcFields, UnknownNamesAreIgnored) {
  TCTCalcFields store;
  store.AddField("A", 0, nullptr);
  const int32_t one = 1;
  store.SetData("B", 4, &one);  // adds nothing
  EXPECT_EQ(store.Count(), 1);
  bool blank = false;
  EXPECT_EQ(ValueOf(store, "B", blank), -1);
  EXPECT_FALSE(blank);  // left as the caller set it
  store.RemoveField("B");
  EXPECT_EQ(store.Count(), 1);
}

TEST(TCTCalcFields, DuplicateNamesReadAndWriteTheFirstAndRemoveTheLast) {
  TCTCalcFields store;
  const int32_t first = 1, second = 2, third = 3;
  store.AddField("dup", 4, &first);
  store.AddField("DUP", 4, &second);
  bool blank = true;
  EXPECT_EQ(ValueOf(store, "Dup", blank), 1);
  store.SetData("dup", 4, &third);
  TCTCalcField entry;
  store.GetField(1, entry);
  EXPECT_EQ(entry.Name, "DUP");
  ASSERT_EQ(entry.Size, 4);
  EXPECT_EQ(std::memcmp(entry.Data.data(), &second, 4), 0);

  store.RemoveField("dup");
  ASSERT_EQ(store.Count(), 1);
  store.GetField(0, entry);
  EXPECT_EQ(entry.Name, "dup");
  EXPECT_EQ(ValueOf(store, "dup", blank), 3);
}

TEST(TCTCalcFields, ClearKeepsTheEntriesAndDeleteDropsThem) {
  TCTCalcFields store;
  const int32_t five = 5;
  store.AddField("X", 4, &five);
  store.ClearFields();
  bool blank = false;
  ValueOf(store, "X", blank);
  EXPECT_TRUE(blank);
  store.SetData("X", 4, &five);
  EXPECT_EQ(ValueOf(store, "X", blank), 5);

  store.DeleteFields();
  EXPECT_EQ(store.Count(), 0);
  store.SetData("X", 4, &five);
  blank = false;
  EXPECT_EQ(ValueOf(store, "X", blank), -1);
  EXPECT_FALSE(blank);
}

TEST(TCTCalcFields, EntriesByIndexIgnoreIndexesPastTheEnd) {
  TCTCalcFields store;
  store.AddField("A", 0, nullptr);
  TCTCalcField value{"B", 6, {'a', 'b'}};  // shorter data is zero-filled to its size
  store.SetField(0, value);
  store.SetField(1, value);
  EXPECT_EQ(store.Count(), 1);
  TCTCalcField entry{"untouched", 0, {}};
  store.GetField(1, entry);
  EXPECT_EQ(entry.Name, "untouched");
  store.GetField(0, entry);
  EXPECT_EQ(entry.Name, "B");
  EXPECT_EQ(entry.Data, (std::vector<uint8_t>{'a', 'b', 0, 0, 0, 0}));
  EXPECT_THROW(store.GetField(-1, entry), std::out_of_range);
}

}  // namespace
}  // namespace CTTables::testing
