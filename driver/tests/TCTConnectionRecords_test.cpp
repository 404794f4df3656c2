// TCTConnection record changes: appends, rewrites and deletes with their keys, unique clashes,
// records changed by another user, and indexes the package maintains through the index-key hook.
#include <gtest/gtest.h>

#include "TableFixture.h"

namespace Ctdb::testing {
namespace {

using Ids = std::vector<int32_t>;

class RecordTest : public TableTest {
 protected:
  void SetUp() override {
    TableTest::SetUp();
    if (!LockSetsSupported()) GTEST_SKIP() << "the engine has no lock sets yet";
    Open();
  }
  // Stands on record `id` (making index ById current when it is not) and returns a buffer
  // holding it.
  TCTCustomRecordBuffer* Fetch(int32_t id) {
    if (Cursor->KeyNo != Cursor->DataFileNo + 1) UseIndex("ById");
    EXPECT_EQ(Conn->GotoKey(Cursor.get(), BufferOf(id, 0)), 0);
    TCTCustomRecordBuffer* buffer = NewBuffer();
    EXPECT_EQ(Conn->GetCurrentRecord(Cursor.get(), dbiNOLOCK, buffer), 0);
    return buffer;
  }
  // A copy of `from` with its group changed.
  TCTCustomRecordBuffer* WithGroup(const TCTCustomRecordBuffer* from, int32_t grp) {
    TCTCustomRecordBuffer* buffer = NewBuffer();
    buffer->SetRecord(from->RecordPtr(), from->RecordSize());
    std::memcpy(buffer->RecordPtr() + 4, &grp, 4);
    return buffer;
  }
  int32_t GroupOf(int32_t id) {
    int32_t grp = 0;
    std::memcpy(&grp, Fetch(id)->RecordPtr() + 4, 4);
    return grp;
  }
};

TEST_F(RecordTest, AppendsAddKeysAndUniqueClashesWriteNothing) {
  ASSERT_EQ(Append(2, 20), 0);
  ASSERT_EQ(Append(1, 20), 0);
  EXPECT_EQ(Append(2, 99), KDUP_ERR);
  EXPECT_EQ(Count(), 2);
  UseIndex("ById");
  EXPECT_EQ(Walk(true), (Ids{1, 2}));
  UseIndex("ByGroup");
  EXPECT_EQ(Walk(true), (Ids{2, 1}));
  EXPECT_EQ(Count(), 2);
}

TEST_F(RecordTest, ModifyRewritesTheRecordAndMovesItsKeys) {
  for (int32_t id = 1; id <= 4; ++id) ASSERT_EQ(Append(id, id * 10), 0);
  TCTCustomRecordBuffer* old = Fetch(2);
  ASSERT_EQ(Conn->ModifyRecord(Cursor.get(), WithGroup(old, 99), old, true), 0);
  EXPECT_EQ(GroupOf(2), 99);
  UseIndex("ByGroup");
  EXPECT_EQ(Walk(true), (Ids{1, 3, 4, 2}));
  // A rewrite that would clash on the unique index changes nothing and says so.
  TCTCustomRecordBuffer* three = Fetch(3);
  TCTCustomRecordBuffer* clash = WithGroup(three, 5);
  const int32_t one = 1;
  std::memcpy(clash->RecordPtr(), &one, 4);
  EXPECT_EQ(Conn->ModifyRecord(Cursor.get(), clash, three, true), KDUP_ERR);
  EXPECT_EQ(GroupOf(3), 30);
  EXPECT_EQ(Count(), 4);
}

TEST_F(RecordTest, ARecordChangedByAnotherUserIsLeftAsThatUserWroteIt) {
  for (int32_t id = 1; id <= 3; ++id) ASSERT_EQ(Append(id, 10), 0);
  TCTCustomRecordBuffer* mine = Fetch(2);

  std::unique_ptr<TCTCursorDesc> other;  // another user changes record 2 (second in the file)
  ASSERT_EQ(Conn->OpenCursor(other, "people.dat", Dir.Path(), SHARED), 0);
  {
    TCTCustomRecordBuffer theirs(other.get()), changed(other.get());
    ASSERT_EQ(Conn->SetToBegin(other.get()), 0);
    for (int i = 0; i < 2; ++i) ASSERT_EQ(Conn->GetNextRecord(other.get(), dbiNOLOCK, &theirs), 0);
    changed.SetRecord(theirs.RecordPtr(), theirs.RecordSize());
    const int32_t grp = 77;
    std::memcpy(changed.RecordPtr() + 4, &grp, 4);
    ASSERT_EQ(Conn->ModifyRecord(other.get(), &changed, &theirs, true), 0);
  }
  ASSERT_EQ(Conn->CloseCursor(other), 0);

  EXPECT_EQ(Conn->CheckRecord(Cursor.get(), mine), kCtRecordChanged);
  EXPECT_EQ(Conn->ModifyRecord(Cursor.get(), WithGroup(mine, 55), mine, true), kCtRecordChanged);
  EXPECT_EQ(GroupOf(2), 77);
  UseIndex("ByGroup");
  EXPECT_EQ(Walk(true), (Ids{1, 3, 2}));
}

TEST_F(RecordTest, RemoveDeletesTheRecordWithItsKeysAndChangesAtAnEndAreRefused) {
  for (int32_t id = 1; id <= 3; ++id) ASSERT_EQ(Append(id, 10), 0);
  TCTCustomRecordBuffer* two = Fetch(2);
  ASSERT_EQ(Conn->RemoveRecord(Cursor.get(), two), 0);
  EXPECT_EQ(Count(), 2);
  EXPECT_EQ(Conn->GotoKey(Cursor.get(), BufferOf(2, 0)), INOT_ERR);
  UseIndex("ByGroup");
  EXPECT_EQ(Walk(true), (Ids{1, 3}));

  // Changes at either end are refused and return to no position.
  TCTCustomRecordBuffer* one = Fetch(1);
  ASSERT_EQ(Conn->SetToEnd(Cursor.get()), 0);
  EXPECT_EQ(Conn->ModifyRecord(Cursor.get(), one, one, true), kCtEndOfTable);
  EXPECT_EQ(Cursor->Position, cpNone);
  ASSERT_EQ(Conn->SetToEnd(Cursor.get()), 0);
  EXPECT_EQ(Conn->RemoveRecord(Cursor.get(), one), kCtEndOfTable);
  EXPECT_EQ(Cursor->Position, cpNone);
  ASSERT_EQ(Conn->SetToBegin(Cursor.get()), 0);
  EXPECT_EQ(Conn->RemoveRecord(Cursor.get(), one), kCtBeginOfTable);
  EXPECT_EQ(Count(), 2);
  EXPECT_EQ(Conn->AppendRecord(nullptr, one), kCtInvalidCursor);
}

// A package-maintained index: the index of a second table with the same layout, entered in the
// cursor's list with its Maintained word 0, so that only the driver writes its keys.
class PackageIndexTest : public RecordTest {
 protected:
  void SetUp() override {
    RecordTest::SetUp();
    if (IsSkipped()) return;
    MakeTable("side", {{"id", CT_INT4, 4}, {"grp", CT_INT4, 4}, {"name", CT_FSTRING, 12}},
              {{{{1, 4, SCHSEG}}, false, std::string("SideGroup")}});
    ASSERT_EQ(Conn->OpenCursor(Side, "side.dat", Dir.Path(), SHARED), 0);
    UseIndex("ById");  // before the package index joins the list, which InitIndexes would clear
    CTIdxDesc package;
    package.Name = "Package";
    package.IndexId = static_cast<int16_t>(Side->DataFileNo + 1);
    package.Maintained = kWordFalse;
    Cursor->AddIndexToList(package);
    Conn->OnIndexKey = [this](TCTCursorDesc* sender, CTIdxDesc* index, const void* rec, int32_t, bool& accept) {
      EXPECT_EQ(sender, Cursor.get());
      EXPECT_EQ(index->Name, "Package");
      int32_t grp = 0;
      std::memcpy(&grp, static_cast<const uint8_t*>(rec) + 4, 4);
      accept = grp != 20;
    };
  }
  void TearDown() override {
    Conn->OnIndexKey = nullptr;
    if (Side) {
      EXPECT_EQ(Conn->CloseCursor(Side), 0);
    }
    RecordTest::TearDown();
  }
  int32_t PackageKeys() { return CTDbIntf::NbrOfKeyEntries(Conn->Alignment(), static_cast<int16_t>(Side->DataFileNo + 1)); }

  std::unique_ptr<TCTCursorDesc> Side;
};

TEST_F(PackageIndexTest, TheHookDecidesWhichRecordsGetKeys) {
  ASSERT_EQ(Append(1, 10), 0);
  ASSERT_EQ(Append(2, 20), 0);
  ASSERT_EQ(Append(3, 30), 0);
  EXPECT_EQ(PackageKeys(), 2);
  // A clash in the package index takes the new record out again.
  EXPECT_EQ(Append(4, 30), KDUP_ERR);
  EXPECT_EQ(Count(), 3);
  // Modifying moves the key: group 20 enters the index, group 10 leaves it for 20 (refused).
  TCTCustomRecordBuffer* two = Fetch(2);
  ASSERT_EQ(Conn->ModifyRecord(Cursor.get(), WithGroup(two, 40), two, true), 0);
  EXPECT_EQ(PackageKeys(), 3);
  TCTCustomRecordBuffer* one = Fetch(1);
  ASSERT_EQ(Conn->ModifyRecord(Cursor.get(), WithGroup(one, 20), one, true), 0);
  EXPECT_EQ(PackageKeys(), 2);
  // Deleting removes the key even without a hook.
  Conn->OnIndexKey = nullptr;
  TCTCustomRecordBuffer* three = Fetch(3);
  ASSERT_EQ(Conn->RemoveRecord(Cursor.get(), three), 0);
  EXPECT_EQ(PackageKeys(), 1);
  // Without a hook appends leave the package index alone.
  ASSERT_EQ(Append(5, 50), 0);
  EXPECT_EQ(PackageKeys(), 1);
}

TEST_F(PackageIndexTest, ARefusedRewriteGivesThePackageKeysBack) {
  ASSERT_EQ(Append(1, 10), 0);
  ASSERT_EQ(Append(2, 30), 0);
  TCTCustomRecordBuffer* two = Fetch(2);
  TCTCustomRecordBuffer* clash = WithGroup(two, 50);
  const int32_t one = 1;
  std::memcpy(clash->RecordPtr(), &one, 4);
  EXPECT_EQ(Conn->ModifyRecord(Cursor.get(), clash, two, true), KDUP_ERR);
  EXPECT_EQ(PackageKeys(), 2);
  EXPECT_EQ(Append(3, 30), KDUP_ERR) << "the key of group 30 is back";
  EXPECT_EQ(Append(4, 50), 0) << "and the one of group 50 gone";
}

}  // namespace
}  // namespace Ctdb::testing
