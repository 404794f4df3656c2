// TCTTable across processes: several programs incrementing one counter through FindKey, Edit and
// Post lose no increment; a record held with Lock stops another program's Edit (labelled slow).
#include <sys/wait.h>
#include <unistd.h>

#include <thread>

#include "TField.h"
#include "TableTestSupport.h"

namespace CTTables::testing {
namespace {

using Processes = TableTest;

constexpr int kIncrements = 100;
constexpr int32_t kLockedByAnother = 42;
constexpr int32_t kChangedSinceRead = 1135;

// In a child: a connection of its own on another byte-packed library variant (a separate engine
// instance, like another program) adds 1 to AMOUNT of person 1 kIncrements times, trying again
// while the other holds the record. Exits 0, or with the number that stopped it.
[[noreturn]] void IncrementInChild(const std::string& dir, CTDbIntf::TLoadAlignment alignment) {
  int status = 0;
  try {
    fw::TComponentPtr<fw::TComponent> owner(new fw::TComponent(nullptr));
    auto* conn = new Ctdb::TCTConnection(owner.get());
    conn->SetLoadAlignment(alignment);
    auto* table = new TCTTable(owner.get());
    table->SetConnection(conn);
    table->SetDatabase(dir);
    table->SetTableName("people");
    table->Open();
    for (int done = 0; done < kIncrements;) {
      if (!table->FindKey({fw::Variant(int32_t{1})})) _exit(3);
      std::this_thread::yield();  // let the other program in between reading and editing
      try {
        table->Edit();
        table->FieldByName("AMOUNT")->SetAsFloat(table->FieldByName("AMOUNT")->AsFloat() + 1);
        table->Post();
        ++done;
      } catch (const CTDbIntf::ECtreeException& e) {
        if (e.ErrorCode != kLockedByAnother && e.ErrorCode != kChangedSinceRead) throw;
        table->Cancel();
      }
    }
  } catch (const CTDbIntf::ECtreeException& e) {
    status = e.ErrorCode > 0 && e.ErrorCode < 256 ? e.ErrorCode : 4;
  } catch (...) {
    status = 5;
  }
  _exit(status);
}

TEST_F(Processes, ProgramsIncrementingOneCounterLoseNoIncrement) {
  FillPeople();
  std::vector<pid_t> children;
  for (CTDbIntf::TLoadAlignment alignment : {CTDbIntf::laByteMon, CTDbIntf::laByteRed}) {
    const pid_t pid = fork();
    ASSERT_GE(pid, 0);
    if (pid == 0) IncrementInChild(Dir.string(), alignment);
    children.push_back(pid);
  }
  for (pid_t pid : children) {
    int status = 0;
    ASSERT_EQ(waitpid(pid, &status, 0), pid);
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 0);
  }
  TCTTable* table = NewTable(false);
  table->Open();
  ASSERT_TRUE(table->FindKey({fw::Variant(int32_t{1})}));
  EXPECT_EQ(table->FieldByName("AMOUNT")->AsFloat(), 10 + 2 * kIncrements);
}

// In a child: another program (its own engine instance) tries to edit person 1, tells the parent
// what the try gave on `report` (0 done, else the error number), waits for a byte on `go`, then
// edits the record again and posts. Exits 0, or with what failed.
[[noreturn]] void EditTwiceInChild(const std::string& dir, int report, int go) {
  int status = 0;
  try {
    fw::TComponentPtr<fw::TComponent> owner(new fw::TComponent(nullptr));
    auto* conn = new Ctdb::TCTConnection(owner.get());
    conn->SetLoadAlignment(CTDbIntf::laByteMon);
    auto* table = new TCTTable(owner.get());
    table->SetConnection(conn);
    table->SetDatabase(dir);
    table->SetTableName("people");
    table->Open();
    if (!table->FindKey({fw::Variant(int32_t{1})})) _exit(3);
    const int32_t first = ErrorOf([&] { table->Edit(); });
    if (first == -1) table->Cancel();
    const int32_t said = first == -1 ? 0 : first;
    if (write(report, &said, sizeof said) != sizeof said) _exit(6);
    char byte = 0;
    if (read(go, &byte, 1) != 1) _exit(7);
    table->Edit();
    table->FieldByName("AMOUNT")->SetAsFloat(111);
    table->Post();
  } catch (const CTDbIntf::ECtreeException& e) {
    status = e.ErrorCode > 0 && e.ErrorCode < 256 ? e.ErrorCode : 4;
  } catch (...) {
    status = 5;
  }
  _exit(status);
}

TEST_F(Processes, ARecordHeldWithLockStopsAnotherProgramsEditUntilUnlocked) {
  FillPeople();
  TCTTable* table = NewTable(false);
  table->Open();
  ASSERT_TRUE(table->FindKey({fw::Variant(int32_t{1})}));
  int32_t* handle = table->Lock();
  int report[2], go[2];
  ASSERT_EQ(pipe(report), 0);
  ASSERT_EQ(pipe(go), 0);
  const pid_t pid = fork();
  ASSERT_GE(pid, 0);
  if (pid == 0) EditTwiceInChild(Dir.string(), report[1], go[0]);
  int32_t said = -1;
  ASSERT_EQ(read(report[0], &said, sizeof said), static_cast<ssize_t>(sizeof said));
  EXPECT_EQ(said, kLockedByAnother);
  table->Unlock(handle);
  ASSERT_EQ(write(go[1], "x", 1), 1);
  int status = 0;
  ASSERT_EQ(waitpid(pid, &status, 0), pid);
  EXPECT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 0);
  for (int fd : {report[0], report[1], go[0], go[1]}) close(fd);
  table->Refresh();
  EXPECT_DOUBLE_EQ(table->FieldByName("AMOUNT")->AsFloat(), 111);
}

}  // namespace
}  // namespace CTTables::testing
