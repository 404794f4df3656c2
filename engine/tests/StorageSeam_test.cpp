// StorageSeam_test: the contract of the storage seam (Env, Txn, Cursor) as the call layer relies
// on it, run against the backend built in. A second backend has to pass the same cases.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "Env.h"
#include "KeptCursor.h"
#include "ReadCursor.h"
#include "StorageFiles.h"
#include "UndoLog.h"
#include "WriteTxn.h"
#include "ctisam.h"

namespace {

using cte::Bytes;
using cte::Db;
using cte::Env;
using cte::PutMode;
using cte::Seek;
using cte::Txn;

std::string Str(Bytes b) { return std::string(static_cast<const char*>(b.data), b.size); }

class StorageSeamTest : public ::testing::Test {
 protected:
  void SetUp() override {
    char tmpl[] = "/tmp/ctseam-XXXXXX";
    ASSERT_NE(mkdtemp(tmpl), nullptr);
    dir_ = tmpl;
    path_ = dir_ + "/store.dat";
    std::ofstream(path_).close();  // Acquire with create initialises an empty existing file
    env_ = Env::Acquire(path_, true);
    cte::WriteTxn w(*env_);
    db_ = env_->Dbi(w.Get(), "names", true);
    ints_ = env_->Dbi(w.Get(), "ints", true, cte::kIntegerKeys);
    w.Commit(false);
  }
  void TearDown() override {
    env_.reset();
    std::filesystem::remove_all(dir_);
  }
  // Writes key=value pairs in one committed transaction.
  void Fill(const std::vector<std::pair<std::string, std::string>>& pairs) {
    cte::WriteTxn w(*env_);
    for (const auto& [k, v] : pairs) w.Get()->Put(db_, cte::BytesOf(k), cte::BytesOf(v));
    w.Commit(false);
  }
  // The value of key in the current snapshot, "-" when absent.
  std::string Read(const std::string& key) {
    Bytes v;
    return env_->Snapshot()->Get(db_, cte::BytesOf(key), v) ? Str(v) : "-";
  }
  std::string dir_, path_;
  std::shared_ptr<Env> env_;
  Db db_ = 0, ints_ = 0;
};

// Put refuses what its mode refuses without writing; Get and Del tell a missing key by false.
TEST_F(StorageSeamTest, PutModesGetAndDelReportRefusedAndMissingKeys) {
  Fill({{"b", "1"}});
  cte::WriteTxn w(*env_);
  Txn* t = w.Get();
  EXPECT_FALSE(t->Put(db_, cte::BytesOf("b"), cte::BytesOf("2"), PutMode::kNew));
  EXPECT_FALSE(t->Put(db_, cte::BytesOf("a"), cte::BytesOf("2"), PutMode::kAppend));
  EXPECT_TRUE(t->Put(db_, cte::BytesOf("c"), cte::BytesOf("3"), PutMode::kAppend));
  EXPECT_TRUE(t->Put(db_, cte::BytesOf("b"), cte::BytesOf("4")));
  Bytes v;
  EXPECT_FALSE(t->Get(db_, cte::BytesOf("a"), v));
  ASSERT_TRUE(t->Get(db_, cte::BytesOf("b"), v));
  EXPECT_EQ(Str(v), "4");
  EXPECT_FALSE(t->Del(db_, cte::BytesOf("zz")));
  EXPECT_TRUE(t->Del(db_, cte::BytesOf("c")));
  EXPECT_EQ(t->Count(db_), 1u);
  w.Commit(false);
  EXPECT_EQ(Read("b"), "4");
  EXPECT_EQ(Read("c"), "-");
}

// Cursors walk keys in byte order, at-or-after lands on the next key, and a move past either
// end reports none; integer keys order by value, not by their bytes.
TEST_F(StorageSeamTest, CursorMovesInKeyOrderAndIntegerKeysByValue) {
  Fill({{"apple", "1"}, {"cherry", "3"}, {"banana", "2"}});
  cte::ReadCursor c(env_->Snapshot(), db_);
  Bytes k, v;
  ASSERT_TRUE(c.Move(Seek::kFirst, k, v));
  EXPECT_EQ(Str(k), "apple");
  ASSERT_TRUE(c.Move(Seek::kNext, k, v));
  EXPECT_EQ(Str(k), "banana");
  k = cte::BytesOf("bz");
  ASSERT_TRUE(c.Move(Seek::kAtOrAfter, k, v));
  EXPECT_EQ(Str(k), "cherry");
  EXPECT_EQ(Str(v), "3");
  EXPECT_FALSE(c.Move(Seek::kNext, k, v));
  ASSERT_TRUE(c.Move(Seek::kLast, k, v));
  EXPECT_EQ(Str(k), "cherry");
  ASSERT_TRUE(c.Move(Seek::kPrev, k, v));
  EXPECT_EQ(Str(k), "banana");
  k = cte::BytesOf("d");
  EXPECT_FALSE(c.Move(Seek::kAtOrAfter, k, v));

  {
    cte::WriteTxn w(*env_);
    for (uint32_t n : {256u, 1u, 65536u, 2u}) {
      ASSERT_TRUE(w.Get()->Put(ints_, Bytes{sizeof n, &n}, Bytes{sizeof n, &n}, PutMode::kNew));
    }
    w.Commit(false);
  }
  cte::ReadCursor ic(env_->Snapshot(), ints_);
  std::vector<uint32_t> order;
  for (bool at = ic.Move(Seek::kFirst, k, v); at; at = ic.Move(Seek::kNext, k, v)) {
    uint32_t n;
    ASSERT_EQ(k.size, sizeof n);
    std::memcpy(&n, k.data, sizeof n);
    order.push_back(n);
  }
  EXPECT_EQ(order, (std::vector<uint32_t>{1, 2, 256, 65536}));
}

// Inside a held transaction each call is a scope: aborting one undoes its puts, deletes and
// drops alone, the calls before it stay, and the top commits what is left.
TEST_F(StorageSeamTest, HeldTransactionUndoesOneCallAloneAndCommitsTheRest) {
  Fill({{"keep", "0"}, {"gone", "0"}});
  Db extra = 0;
  {
    cte::WriteTxn w(*env_);
    extra = env_->Dbi(w.Get(), "extra", true);
    w.Get()->Put(extra, cte::BytesOf("x"), cte::BytesOf("1"));
    w.Commit(false);
  }
  env_->Hold();
  ASSERT_TRUE(env_->Holding());
  {
    cte::WriteTxn first(*env_);
    first.Get()->Put(db_, cte::BytesOf("keep"), cte::BytesOf("1"));
    first.Get()->Put(db_, cte::BytesOf("new"), cte::BytesOf("1"), PutMode::kNew);
    first.Commit(false);
  }
  {
    cte::WriteTxn second(*env_);  // not committed: undone when it goes out of scope
    second.Get()->Put(db_, cte::BytesOf("keep"), cte::BytesOf("2"));
    second.Get()->Put(db_, cte::BytesOf("other"), cte::BytesOf("2"), PutMode::kNew);
    EXPECT_TRUE(second.Get()->Del(db_, cte::BytesOf("gone")));
    second.Get()->Drop(extra, false);
    EXPECT_EQ(Read("gone"), "-");
  }
  EXPECT_EQ(Read("keep"), "1");
  EXPECT_EQ(Read("new"), "1");
  EXPECT_EQ(Read("other"), "-");
  EXPECT_EQ(Read("gone"), "0");
  Bytes v;
  ASSERT_TRUE(env_->Snapshot()->Get(extra, cte::BytesOf("x"), v));
  EXPECT_EQ(Str(v), "1");

  env_->CommitTop(false);
  EXPECT_FALSE(env_->Holding());
  EXPECT_EQ(Read("keep"), "1");
  EXPECT_EQ(Read("new"), "1");
  EXPECT_EQ(Read("gone"), "0");
}

// A save point aborted undoes what was written above it only.
TEST_F(StorageSeamTest, AbortedSavePointKeepsTheLevelBelow) {
  env_->Hold();
  {
    cte::WriteTxn w(*env_);
    w.Get()->Put(db_, cte::BytesOf("base"), cte::BytesOf("1"));
    w.Commit(false);
  }
  env_->Hold();
  EXPECT_EQ(env_->HeldDepth(), 2u);
  {
    cte::WriteTxn w(*env_);
    w.Get()->Put(db_, cte::BytesOf("above"), cte::BytesOf("1"));
    w.Commit(false);
  }
  env_->AbortTop();
  env_->CommitTop(false);
  EXPECT_EQ(Read("base"), "1");
  EXPECT_EQ(Read("above"), "-");
}

// Undo entries applied backwards through Env::Restore put every key and database back as the
// entries describe, in a plain write transaction.
TEST_F(StorageSeamTest, UndoEntriesRestoreKeysAndDatabases) {
  Fill({{"a", "new"}, {"b", "x"}});
  cte::UndoLog log;
  log.Add(cte::UndoLog::kExisted, "names", 0, cte::BytesOf("a"), cte::BytesOf("old"));
  log.Add(cte::UndoLog::kAbsent, "names", 0, cte::BytesOf("b"), Bytes{});
  log.Add(cte::UndoLog::kDropped, "gone", cte::kIntegerKeys, Bytes{}, Bytes{});
  uint32_t pos = 128;
  log.Add(cte::UndoLog::kExisted, "gone", cte::kIntegerKeys, Bytes{sizeof pos, &pos}, cte::BytesOf("rec"));
  {
    cte::WriteTxn w(*env_);
    cte::UndoLog::ApplyBackwards(*env_, w.Get(), log.Data(), log.Size());
    w.Commit(false);
  }
  EXPECT_EQ(Read("a"), "old");
  EXPECT_EQ(Read("b"), "-");
  Db gone = 0;
  env_->ReadOnce([&](Txn* t) { gone = env_->Dbi(t, "gone", false); });
  Bytes v;
  ASSERT_TRUE(env_->Snapshot()->Get(gone, Bytes{sizeof pos, &pos}, v));
  EXPECT_EQ(Str(v), "rec");

  cte::UndoLog created;
  created.Add(cte::UndoLog::kCreated, "gone", 0, Bytes{}, Bytes{});
  {
    cte::WriteTxn w(*env_);
    cte::UndoLog::ApplyBackwards(*env_, w.Get(), created.Data(), created.Size());
    w.Commit(false);
  }
  EXPECT_TRUE(env_->DbNames(env_->Snapshot(), "go").empty());
  std::string bytes(created.Data(), created.Size());
  bytes[0] = 9;  // no such kind
  cte::WriteTxn w(*env_);
  try {
    cte::UndoLog::ApplyBackwards(*env_, w.Get(), bytes.data(), bytes.size());
    ADD_FAILURE() << "a malformed entry was applied";
  } catch (const cte::Fail& e) {
    EXPECT_EQ(e.code, CT_EDAMAGED);
  }
}

// A kept cursor stays positioned while nothing changes and reports itself fresh once another
// commit renewed the snapshot, so that its owner re-seeks.
TEST_F(StorageSeamTest, KeptCursorIsFreshAfterTheSnapshotChanged) {
  Fill({{"a", "1"}, {"b", "2"}});
  cte::KeptCursor kept;
  bool fresh = false;
  Bytes k, v;
  ASSERT_TRUE(kept.Get(*env_, db_, fresh).Move(Seek::kFirst, k, v));
  EXPECT_TRUE(fresh);
  const uint64_t gen = env_->Gen();
  cte::Cursor& same = kept.Get(*env_, db_, fresh);
  EXPECT_FALSE(fresh);
  ASSERT_TRUE(same.Move(Seek::kNext, k, v));
  EXPECT_EQ(Str(k), "b");
  Fill({{"c", "3"}});
  cte::Cursor& renewed = kept.Get(*env_, db_, fresh);
  EXPECT_TRUE(fresh);
  EXPECT_NE(env_->Gen(), gen);
  ASSERT_TRUE(renewed.Move(Seek::kLast, k, v));
  EXPECT_EQ(Str(k), "c");
}

// Database names are listed by prefix; a missing database is damage unless it is created.
TEST_F(StorageSeamTest, DatabaseNamesByPrefixAndMissingDatabaseIsDamage) {
  {
    cte::WriteTxn w(*env_);
    env_->Dbi(w.Get(), "m1.meta", true);
    env_->Dbi(w.Get(), "m1.rec", true);
    env_->Dbi(w.Get(), "m2.meta", true);
    w.Commit(false);
  }
  EXPECT_EQ(env_->DbNames(env_->Snapshot(), "m1."), (std::vector<std::string>{"m1.meta", "m1.rec"}));
  try {
    env_->ReadOnce([&](Txn* t) { env_->Dbi(t, "absent", false); });
    ADD_FAILURE() << "a missing database was opened";
  } catch (const cte::Fail& e) {
    EXPECT_EQ(e.code, CT_EDAMAGED);
  }
}

// Whole-file operations carry the companions along, and the verify tells a sound file from one
// whose pages were overwritten.
TEST_F(StorageSeamTest, FilesMoveWithTheirCompanionsAndVerifyFindsDamage) {
  Fill({{"a", std::string(3000, 'a')}, {"b", std::string(3000, 'b')}});
  env_.reset();
  EXPECT_NO_THROW(cte::VerifyFile(path_));
  const std::string moved = dir_ + "/moved.dat";
  cte::RenameFile(path_, moved);
  EXPECT_EQ(cte::FileSize(path_), -1);
  EXPECT_GT(cte::FileSize(moved), 0);
  std::ofstream(dir_ + "/taken.dat").close();
  try {
    cte::RenameFile(moved, dir_ + "/taken.dat");
    ADD_FAILURE() << "a rename replaced an existing file";
  } catch (const cte::Fail& e) {
    EXPECT_EQ(e.code, DCRAT_ERR);
  }
  EXPECT_TRUE(std::filesystem::exists(moved + "-lock"));
  EXPECT_FALSE(std::filesystem::exists(path_ + "-lock"));
  {
    // The first bytes after the header of every page past the two meta pages.
    const long long size = cte::FileSize(moved);
    const long page = sysconf(_SC_PAGESIZE);
    std::fstream f(moved, std::ios::in | std::ios::out | std::ios::binary);
    const std::string junk(48, '\xA5');
    for (long long at = 2 * page; at < size; at += page) {
      f.seekp(at + 16);
      f.write(junk.data(), static_cast<std::streamsize>(junk.size()));
    }
  }
  try {
    cte::VerifyFile(moved);
    ADD_FAILURE() << "an overwritten page passed the verify";
  } catch (const cte::Fail& e) {
    EXPECT_EQ(e.code, CT_EDAMAGED);
  }
  EXPECT_TRUE(cte::RemoveFile(moved));
  EXPECT_FALSE(std::filesystem::exists(moved + "-lock"));
  EXPECT_FALSE(cte::RemoveFile(moved));
}

}  // namespace
