// TCTTable: record locks of an edit and of Lock against another open of the same table, over real
// engine files.
#include "TField.h"
#include "TableTestSupport.h"

namespace CTTables::testing {
namespace {

using Locks = TableTest;

constexpr int32_t kLockedByAnother = 42;

// Whether `other` can edit record `id` now (the edit is cancelled again); false when the record
// is locked against it.
bool CanEdit(TCTTable& other, int32_t id) {
  EXPECT_TRUE(other.FindKey({V(id)}));
  const int32_t error = ErrorOf([&] { other.Edit(); });
  if (error == -1) {
    other.Cancel();
    return true;
  }
  EXPECT_EQ(error, kLockedByAnother);
  return false;
}

TEST_F(Locks, TwoUsersIncrementingTheSameRecordLoseNothing) {
  TCTTable* first = OpenPeople(false);
  TCTTable* second = NewTable(false);
  second->Open();
  ASSERT_TRUE(first->FindKey({V(1)}));
  ASSERT_TRUE(second->FindKey({V(1)}));  // both have read 10
  first->Edit();
  EXPECT_EQ(ErrorOf([&] { second->Edit(); }), kLockedByAnother);
  EXPECT_EQ(second->State(), fw::dsBrowse);
  first->FieldByName("AMOUNT")->SetAsFloat(first->FieldByName("AMOUNT")->AsFloat() + 1);
  first->Post();
  second->Edit();  // locks, then reads what the first one stored
  EXPECT_EQ(second->FieldByName("AMOUNT")->AsFloat(), 11);
  second->FieldByName("AMOUNT")->SetAsFloat(second->FieldByName("AMOUNT")->AsFloat() + 1);
  second->Post();
  first->Close();
  first->Open();
  ASSERT_TRUE(first->FindKey({V(1)}));
  EXPECT_EQ(first->FieldByName("AMOUNT")->AsFloat(), 12);
}

TEST_F(Locks, ALockHoldsTheRecordAgainstOtherOpensUntilUnlockedOrClosed) {
  TCTTable* holder = OpenPeople(false);
  TCTTable* other = NewTable(false);
  other->Open();
  ASSERT_TRUE(holder->FindKey({V(3)}));
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
  ASSERT_TRUE(holder->FindKey({V(1)}));
  holder->Lock();
  holder->FreeLocks();
  EXPECT_EQ(holder->LockCount(), 0);
  EXPECT_FALSE(CanEdit(*other, 1));
  holder->Close();
  EXPECT_TRUE(CanEdit(*other, 1));
}

}  // namespace
}  // namespace CTTables::testing
