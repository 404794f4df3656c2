// TCTTable: record locks taken with Lock against another open of the same table, over real engine files.
#include "TField.h"
#include "TableTestSupport.h"

namespace CTTables::testing {
namespace {

using Locks = TableTest;

constexpr int32_t kLockedByAnother = 42;

// Whether `other` can edit record `id` now (the edit is cancelled again); false when the record
// is locked against it.
bool CanEdit(TCTTable& other, int32_t id) {
  EXPECT_TRUE(other.FindKey({fw::Variant(id)}));
  const int32_t error = ErrorOf([&] { other.Edit(); });
  if (error == -1) {
    other.Cancel();
    return true;
  }
  EXPECT_EQ(error, kLockedByAnother);
  return false;
}

TEST_F(Locks, ALockHoldsTheRecordAgainstOtherOpensUntilUnlockedOrClosed) {
  FillPeople();
  TCTTable* holder = NewTable(false);
  TCTTable* other = NewTable(false);
  holder->Open();
  other->Open();
  ASSERT_TRUE(holder->FindKey({fw::Variant(int32_t{3})}));
  int32_t* handle = holder->Lock();
  ASSERT_NE(handle, nullptr);
  EXPECT_EQ(holder->Lock(), handle);  // the same record: the same handle
  EXPECT_FALSE(CanEdit(*other, 3));
  EXPECT_TRUE(CanEdit(*other, 4));

  // The holder's own edit of the record keeps the lock: the post must not free it.
  holder->Edit();
  holder->FieldByName("AMOUNT")->SetAsFloat(33);
  holder->Post();
  EXPECT_FALSE(CanEdit(*other, 3));
  int32_t nothing = 0;
  holder->Unlock(&nothing);  // a handle holding no position is left alone
  holder->Unlock(nullptr);
  EXPECT_EQ(holder->LockCount(), 1);
  holder->Unlock(handle);
  EXPECT_EQ(holder->LockCount(), 0);
  ASSERT_TRUE(CanEdit(*other, 3));
  EXPECT_DOUBLE_EQ(other->FieldByName("AMOUNT")->AsFloat(), 33);

  // FreeLocks forgets the handles only: the storage keeps the locks until the table closes.
  ASSERT_TRUE(holder->FindKey({fw::Variant(int32_t{1})}));
  holder->Lock();
  holder->FreeLocks();
  EXPECT_EQ(holder->LockCount(), 0);
  EXPECT_FALSE(CanEdit(*other, 1));
  holder->Close();
  EXPECT_TRUE(CanEdit(*other, 1));
}

}  // namespace
}  // namespace CTTables::testing
