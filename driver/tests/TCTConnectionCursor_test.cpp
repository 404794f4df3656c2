// TCTConnection cursors: opening, walking in physical and index order within ranges, counts,
// bookmarks, key seeks, contexts and the numbers returned for bad input.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "ChildExit.h"
#include "TableFixture.h"

namespace Ctdb::testing {
namespace {

using Ids = std::vector<int32_t>;

// Inserted in this order: physical order differs from key order, and the duplicates of group
// 20 (ids 3, 2, 4) and 40 (7, 6) come in position order.
const std::vector<std::pair<int32_t, int32_t>> kRows = {{5, 30}, {3, 20}, {9, 60}, {1, 10}, {7, 40},
                                                        {2, 20}, {8, 50}, {4, 20}, {6, 40}};

class CursorTest : public TableTest {
 protected:
  void SetUp() override {
    TableTest::SetUp();
    Open();
    Insert(kRows);
  }
};

TEST_F(CursorTest, OpensDescribingTheTableAndWalksBothWaysInPhysicalOrder) {
  EXPECT_EQ(Cursor->DataFileNo, Cursor->KeyNo);
  EXPECT_EQ(Cursor->FieldCount(), 3);
  EXPECT_EQ(Cursor->IndexCount, 2);
  EXPECT_EQ(Cursor->FixedRecLength, kRecordLength);
  EXPECT_EQ(Cursor->TableName, Path);
  EXPECT_EQ(Cursor->Position, cpNone);
  int32_t last = 0;
  EXPECT_EQ(Walk(true, &last), (Ids{5, 3, 9, 1, 7, 2, 8, 4, 6}));
  EXPECT_EQ(last, INOT_ERR);
  EXPECT_EQ(Cursor->Position, cpEof);
  EXPECT_EQ(Cursor->SeqNo, 9);
  EXPECT_EQ(Walk(false, &last), (Ids{6, 4, 8, 2, 7, 1, 9, 3, 5}));
  EXPECT_EQ(Cursor->Position, cpBof);
  EXPECT_EQ(Cursor->SeqNo, -1);
}

TEST_F(CursorTest, WalksBothWaysInIndexOrderWithDuplicatesInPositionOrder) {
  for (const auto& [index, ids] : {std::pair<std::string, Ids>{"ById", {1, 2, 3, 4, 5, 6, 7, 8, 9}},
                                   {"ByGroup", {1, 3, 2, 4, 5, 7, 6, 8, 9}}}) {
    UseIndex(index);
    EXPECT_EQ(Walk(true), ids);
    EXPECT_EQ(Walk(false), Ids(ids.rbegin(), ids.rend()));
  }
}

TEST_F(CursorTest, ReadingPastAnEndFailsAtOnceAndStays) {
  UseIndex("ById");
  ASSERT_EQ(Conn->SetToEnd(Cursor.get()), 0);
  EXPECT_EQ(Conn->GetNextRecord(Cursor.get(), dbiNOLOCK, nullptr), INOT_ERR);
  EXPECT_EQ(Cursor->Position, cpEof);
  ASSERT_EQ(Conn->SetToBegin(Cursor.get()), 0);
  EXPECT_EQ(Conn->GetPriorRecord(Cursor.get(), dbiNOLOCK, nullptr), INOT_ERR);
  EXPECT_EQ(Cursor->Position, cpBof);
  // Turning round at an end gives the record at that end.
  EXPECT_EQ(Next(), 1);
  EXPECT_EQ(Next(), 2);
  EXPECT_EQ(Prior(), 1);
}

// An inclusive end takes every duplicate of its value, an exclusive one leaves them all out;
// walked backwards, a range gives the same records in reverse.
TEST_F(CursorTest, RangeEndsTakeOrLeaveEveryDuplicateOfTheirValue) {
  UseIndex("ByGroup");
  const struct { bool lowIn, highIn; Ids ids; } cases[] = {
      {true, true, {3, 2, 4, 5, 7, 6}}, {false, false, {5}}, {true, false, {3, 2, 4, 5}}, {false, true, {5, 7, 6}}};
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.lowIn ? "[20" : "(20") + ", 40" + (c.highIn ? "]" : ")"));
    SetGroupRange(20, c.lowIn, 40, c.highIn);
    EXPECT_EQ(Walk(true), c.ids);
    EXPECT_EQ(Cursor->SeqNo, static_cast<int32_t>(c.ids.size()));
    EXPECT_EQ(Walk(false), Ids(c.ids.rbegin(), c.ids.rend()));
  }
}

// The record read past the range's end is not left current: the range's last record is.
TEST_F(CursorTest, SteppingPastTheRangeLeavesItsLastRecordCurrent) {
  UseIndex("ByGroup");
  SetGroupRange(20, true, 40, true);
  for (bool forward : {true, false}) {
    Walk(forward);
    int32_t bookmark = 0;
    ASSERT_EQ(Conn->GetBookMark(Cursor.get(), bookmark), 0);
    ASSERT_EQ(Conn->SetToBookMark(Cursor.get(), bookmark), 0);
    EXPECT_EQ(Current(), forward ? 6 : 3);
  }
}

// An appended record becomes current without being read back, with the index on it, so that
// the walk goes on from it; outside the range it does not, and the cursor is marked past it.
TEST_F(CursorTest, AnAppendedRecordBecomesCurrentUnlessItLiesOutsideTheRange) {
  UseIndex("ByGroup");
  ASSERT_EQ(Conn->SetToEnd(Cursor.get()), 0);
  ASSERT_EQ(Append(10, 20), 0);
  ASSERT_EQ(Conn->SetToAppended(Cursor.get()), 0);
  EXPECT_EQ(Cursor->Position, cpNone);
  EXPECT_EQ(Current(), 10);
  EXPECT_EQ(Next(), 5);
  EXPECT_EQ(Prior(), 10);
  EXPECT_EQ(Prior(), 4);

  SetGroupRange(20, true, 40, true);
  ASSERT_EQ(Append(11, 30), 0);
  ASSERT_EQ(Conn->SetToAppended(Cursor.get()), 0);
  EXPECT_EQ(Next(), 7);
  ASSERT_EQ(Append(12, 50), 0);
  EXPECT_EQ(Conn->SetToAppended(Cursor.get()), INOT_ERR);
  EXPECT_EQ(Cursor->Position, cpEof);
}

TEST_F(CursorTest, EmptyAndReversedRangesGiveNoRecordAndIsInRangeMarksTheSide) {
  UseIndex("ByGroup");
  int32_t last = 0;
  for (auto [low, high] : {std::pair{35, 38}, {50, 20}}) {
    SetGroupRange(low, true, high, true);
    for (bool forward : {true, false}) {
      EXPECT_TRUE(Walk(forward, &last).empty()) << low << ".." << high;
      EXPECT_EQ(last, INOT_ERR);
    }
  }
  EXPECT_EQ(Count(), 0);

  // IsInRange marks where a key lies.
  SetGroupRange(20, true, 40, false);
  for (auto [grp, result, position] : {std::tuple{10, INOT_ERR, cpBof}, {20, 0, cpNone}, {40, INOT_ERR, cpEof}}) {
    const std::vector<uint8_t> key = GroupKey(grp);
    EXPECT_EQ(Conn->IsInRange(Cursor.get(), key.data(), static_cast<int32_t>(key.size())), result) << grp;
    EXPECT_EQ(Cursor->Position, position) << grp;
  }
}

TEST_F(CursorTest, CountsAreExactAndLeaveThePositionAlone) {
  EXPECT_EQ(Count(), 9);
  UseIndex("ByGroup");
  ASSERT_EQ(NthFromStart(3), 2);
  EXPECT_EQ(Count(), 9);
  EXPECT_EQ(Next(), 4);

  SetGroupRange(20, true, 40, true);
  EXPECT_EQ(Count(), 6);
  EXPECT_EQ(Next(), 5);
  int32_t number = 0;
  ASSERT_EQ(Conn->GetAlmostRecordNumber(Cursor.get(), Scratch(), number), 0);
  EXPECT_EQ(number, 4);
  int32_t seqNo = 0;
  ASSERT_EQ(Conn->GetSeqNo(Cursor.get(), seqNo), 0);
  EXPECT_EQ(seqNo, 4);
  EXPECT_EQ(Next(), 7);
  ASSERT_EQ(Conn->SetToEnd(Cursor.get()), 0);
  ASSERT_EQ(Conn->GetSeqNo(Cursor.get(), seqNo), 0);
  EXPECT_EQ(seqNo, 6);
}

TEST_F(CursorTest, BookmarksReturnToTheirRecordInTheCurrentOrder) {
  UseIndex("ById");
  ASSERT_EQ(NthFromStart(4), 4);
  int32_t bookmark = 0;
  ASSERT_EQ(Conn->GetBookMark(Cursor.get(), bookmark), 0);
  int32_t stored = 0;
  std::memcpy(&stored, Scratch()->GetBookmark(), 4);
  EXPECT_EQ(bookmark, stored);
  ASSERT_EQ(Walk(true).size(), 9u);
  ASSERT_EQ(Conn->SetToBookMark(Cursor.get(), bookmark), 0);
  EXPECT_EQ(Current(), 4);
  EXPECT_EQ(Next(), 5);
  EXPECT_EQ(Prior(), 4);
  EXPECT_EQ(Prior(), 3);

  // A bookmark outside the range fails and marks the side it lies on.
  UseIndex("ByGroup");
  SetGroupRange(30, true, 60, true);
  EXPECT_EQ(Conn->SetToBookMark(Cursor.get(), bookmark), INOT_ERR);  // id 4 is in group 20
  EXPECT_EQ(Cursor->Position, cpBof);
  EXPECT_NE(Conn->SetToBookMark(Cursor.get(), 0x7FFFFF00), 0);
}

TEST_F(CursorTest, KeySeeksFindEqualFollowingAndPrecedingKeys) {
  UseIndex("ById");
  ASSERT_EQ(Conn->GotoKey(Cursor.get(), BufferOf(7, 0)), 0);
  EXPECT_EQ(Current(), 7);
  EXPECT_EQ(Next(), 8);
  EXPECT_EQ(Conn->GotoKey(Cursor.get(), BufferOf(77, 0)), INOT_ERR);

  UseIndex("ByGroup");
  struct Case {
    int32_t grp;
    bool greater, inclusive;
    int32_t id;
  };
  for (const Case& c : {Case{20, true, true, 3}, Case{20, true, false, 5}, Case{40, false, true, 6},
                        Case{40, false, false, 5}, Case{35, true, true, 7}, Case{35, false, false, 5}}) {
    SCOPED_TRACE(std::to_string(c.grp) + (c.greater ? " >" : " <") + (c.inclusive ? "=" : ""));
    TCTCustomRecordBuffer* key = BufferOf(0, c.grp);
    ASSERT_EQ(c.greater ? Conn->GotoGTKey(Cursor.get(), key, c.inclusive)
                        : Conn->GotoLTKey(Cursor.get(), key, c.inclusive),
              0);
    EXPECT_EQ(Current(), c.id);
  }
  // The first record of a duplicated value, and the walk goes on from there.
  ASSERT_EQ(Conn->GotoKey(Cursor.get(), BufferOf(0, 40)), 0);
  EXPECT_EQ(Next(), 6);
  EXPECT_EQ(Conn->GotoGTKey(Cursor.get(), BufferOf(0, 60), false), INOT_ERR);
  // With a range the key found must lie inside it.
  SetGroupRange(20, true, 30, true);
  EXPECT_EQ(Conn->GotoKey(Cursor.get(), BufferOf(0, 40)), INOT_ERR);
  EXPECT_EQ(Cursor->Position, cpEof);
}

TEST_F(CursorTest, ContextsSaveAndRestoreThePositionAndLeaveTheTableUntouched) {
  UseIndex("ById");
  ASSERT_EQ(NthFromStart(3), 3);
  ASSERT_EQ(Conn->SetContext(Cursor.get()), 0);
  EXPECT_GE(Cursor->LastContext(), 0);
  ASSERT_EQ(Conn->GotoKey(Cursor.get(), BufferOf(8, 0)), 0);
  EXPECT_EQ(Next(), 9);
  ASSERT_EQ(Conn->RestoreContext(Cursor.get()), 0);
  EXPECT_EQ(Cursor->LastContext(), -1);
  EXPECT_EQ(Next(), 4);
  EXPECT_EQ(Cursor->FreeContext(12345), kCtInvalidCursor);
}

TEST_F(CursorTest, CurrentRecordAtTheEndsAndBadInput) {
  TCTCustomRecordBuffer* buffer = Scratch();
  ASSERT_EQ(Conn->SetToEnd(Cursor.get()), 0);
  EXPECT_EQ(Current(), -kCtEndOfTable);
  ASSERT_EQ(Conn->SetToBegin(Cursor.get()), 0);
  EXPECT_EQ(Current(), -kCtBeginOfTable);
  EXPECT_EQ(Conn->GetNextRecord(nullptr, dbiNOLOCK, buffer), kCtInvalidCursor);
  int32_t count = 0;
  EXPECT_EQ(Conn->GetRecordCount(nullptr, count), kCtInvalidCursor);
  EXPECT_EQ(Conn->GotoKey(nullptr, buffer), kCtInvalidCursor);
  std::unique_ptr<TCTCursorDesc> none;
  EXPECT_EQ(Conn->CloseCursor(none), kCtInvalidCursor);
  std::vector<uint8_t> key;
  EXPECT_EQ(Conn->AllocateKey(nullptr, key), 0);
  // Physical order has no key to build.
  EXPECT_EQ(Conn->ExtractKey(Cursor.get(), buffer, key), kCtInvalidIndexDesc);
}

// Runs `body` in a child process with a connection of its own on another byte-packed library
// variant (a separate engine instance, like another program); returns the child's exit status.
template <typename Body>
int InChild(const std::string& dir, Body body) {
  const pid_t pid = fork();
  if (pid == 0) {
    int status = 90;
    try {
      fw::TComponentPtr<TCTConnection> conn(new TCTConnection(nullptr));
      conn->SetLoadAlignment(CTDbIntf::laByteMon);
      conn->SetActive(true);
      std::unique_ptr<TCTCursorDesc> cursor;
      if (conn->OpenCursor(cursor, "people.dat", dir, SHARED) == 0) status = body(*conn, cursor.get());
      if (cursor) (void)conn->CloseCursor(cursor);
      conn->SetActive(false);
    } catch (...) {
      status = 91;
    }
    _exit(status);
  }
  return ct::testsupport::WaitChild(pid);
}

// In the child: stands on the fifth record in physical order (id 7) and tries to lock it;
// exits with LockRecord's result (0 or 42).
int LockFifthRecord(TCTConnection& conn, TCTCursorDesc* cursor) {
  TCTCustomRecordBuffer buffer(cursor);
  if (conn.SetToBegin(cursor) != 0) return 92;
  for (int i = 0; i < 5; ++i)
    if (conn.GetNextRecord(cursor, dbiNOLOCK, &buffer) != 0) return 93;
  int32_t handle = 0;
  const int32_t r = conn.LockRecord(cursor, handle);
  if (r == 0) (void)conn.UnlockRecord(cursor, handle);
  return r;
}

TEST_F(CursorTest, RecordLocksHoldAgainstAnotherProcessAndUnlockingKeepsThePosition) {
  ASSERT_EQ(NthFromStart(5), 7);
  int32_t handle = 0;
  const int32_t locked = Conn->LockRecord(Cursor.get(), handle);
  if (locked == NSUP_ERR) GTEST_SKIP() << "the engine has no record locks yet";
  ASSERT_EQ(locked, 0);
  EXPECT_EQ(InChild(Dir.Path(), LockFifthRecord), DLOK2_ERR);
  // Unlock from elsewhere in the table: the position stays where it is.
  ASSERT_EQ(Next(), 2);
  ASSERT_EQ(Conn->UnlockRecord(Cursor.get(), handle), 0);
  EXPECT_EQ(InChild(Dir.Path(), LockFifthRecord), 0);
  EXPECT_EQ(Next(), 8);
}

using OpenCursorTest = TableTest;

TEST_F(OpenCursorTest, MissingTablesAndInactiveConnectionsAreReported) {
  std::unique_ptr<TCTCursorDesc> cursor;
  EXPECT_EQ(Conn->OpenCursor(cursor, "nothere.dat", Dir.Path(), SHARED), FNOP_ERR);
  EXPECT_FALSE(cursor);
  Conn->SetActive(false);
  EXPECT_EQ(Conn->OpenCursor(cursor, "people.dat", Dir.Path(), SHARED), kCtNotActive);
  int32_t count = 0;
  EXPECT_EQ(Conn->GetRecordCount(nullptr, count), kCtNotActive);
}

TEST_F(OpenCursorTest, ReadOnlyAndExclusiveModesReachTheEngine) {
  Open(SHARED | READFIL);
  std::vector<uint8_t> rec = Record(1, 1);
  EXPECT_NE(CTDbIntf::AddRecord(Conn->Alignment(), Cursor->DataFileNo, rec.data()), 0);
  ASSERT_EQ(Conn->CloseCursor(Cursor), 0);
  EXPECT_FALSE(Cursor);
  Open(EXCLUSIVE);
  std::unique_ptr<TCTCursorDesc> second;
  EXPECT_EQ(Conn->OpenCursor(second, "people.dat", Dir.Path(), SHARED), FNOP_ERR);
}

TEST_F(OpenCursorTest, AFileOfAnotherAlignmentGives1136) {
  Conn->SetActive(false);
  Conn->SetLoadAlignment(CTDbIntf::laWord);
  Activate();
  const std::string made = MakeTable("wordtable", {{"id", CT_INT4, 4}}, {{{{0, 4, SCHSEG}}}});
  Conn->SetActive(false);
  Conn->SetLoadAlignment(CTDbIntf::laByte);
  Activate();
  std::unique_ptr<TCTCursorDesc> cursor;
  EXPECT_EQ(Conn->OpenCursor(cursor, "wordtable.dat", Dir.Path(), SHARED), kCtAlignmentMismatch);
  EXPECT_FALSE(cursor);
  int16_t fileNo = -1;
  EXPECT_EQ(Conn->OpenTableFiles(made, SHARED, fileNo), kCtAlignmentMismatch);
  EXPECT_EQ(fileNo, -1);
  ASSERT_EQ(Conn->OpenCursor(cursor, "people.dat", Dir.Path(), SHARED), 0);
  EXPECT_EQ(Conn->CloseCursor(cursor), 0);
}

}  // namespace
}  // namespace Ctdb::testing
