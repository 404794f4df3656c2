// TCTTable over damaged files: each damage the engine detects at open makes Open raise its error
// number and leaves the table closed; damaged lock files are made afresh and every row reads back.
#include <lmdb.h>

#include <functional>

#include "DamagedFiles.h"
#include "TField.h"
#include "TableTestSupport.h"

namespace CTTables::testing {
namespace {

namespace fs = std::filesystem;

using ct::testsupport::Load;
using ct::testsupport::Store;

// Changes one entry of the engine's "meta" database with LMDB directly (FORMAT.md names them).
void Rewrite(const fs::path& file, const std::string& key, const std::function<void(std::string&)>& change) {
  MDB_env* env = nullptr;
  ASSERT_EQ(mdb_env_create(&env), 0);
  mdb_env_set_maxdbs(env, 16);
  ASSERT_EQ(mdb_env_open(env, file.c_str(), MDB_NOSUBDIR, 0644), 0);
  MDB_txn* txn = nullptr;
  MDB_dbi dbi = 0;
  ASSERT_EQ(mdb_txn_begin(env, nullptr, 0, &txn), 0);
  ASSERT_EQ(mdb_dbi_open(txn, "meta", 0, &dbi), 0);
  MDB_val k{key.size(), const_cast<char*>(key.data())}, v{};
  ASSERT_EQ(mdb_get(txn, dbi, &k, &v), 0);
  std::string value(static_cast<const char*>(v.mv_data), v.mv_size);
  change(value);
  v = MDB_val{value.size(), value.data()};
  ASSERT_EQ(mdb_put(txn, dbi, &k, &v, 0), 0);
  ASSERT_EQ(mdb_txn_commit(txn), 0);
  mdb_env_close(env);
}

// Damage to the engine's own records and to the index file, beyond the shared data-file damage.
struct Damage {
  const char* name;
  int32_t error;  // what Open raises
  std::function<void(const fs::path& data, const fs::path& index)> apply;
};

const Damage kDamages[] = {
    {"header's magic changed", 803, [](const fs::path& d, const fs::path&) { Rewrite(d, "hdr", [](std::string& v) { v[0] = 'X'; }); }},
    {"definition image cut", 803, [](const fs::path& d, const fs::path&) { Rewrite(d, "ifil", [](std::string& v) { v.resize(v.size() / 2); }); }},
    {"schema image cut", 803, [](const fs::path& d, const fs::path&) { Rewrite(d, "doda", [](std::string& v) { v.pop_back(); }); }},
    {"index file garbage", 14, [](const fs::path&, const fs::path& i) { Store(i, std::string(8192, '\x5a')); }},
    {"index file missing", 12, [](const fs::path&, const fs::path& i) { fs::remove(i); }},
};

using TableDamage = TableTest;

TEST_F(TableDamage, OpenRaisesTheEnginesErrorAndLeavesTheTableClosed) {
  FillPeople();
  const fs::path data = Dir / "people", index = Dir / "people.idx";
  const std::string soundData = Load(data), soundIndex = Load(index);
  std::vector<Damage> damages(std::begin(kDamages), std::end(kDamages));
  for (const auto& kind : ct::testsupport::DataFileDamages()) {
    if (!kind.FoundAtOpen) continue;
    damages.push_back({kind.Name, 803, [&kind](const fs::path& d, const fs::path&) {
                         std::string bytes = Load(d);
                         kind.Apply(bytes);
                         Store(d, bytes);
                       }});
  }
  for (const Damage& damage : damages) {
    SCOPED_TRACE(damage.name);
    Store(data, soundData);
    Store(index, soundIndex);
    damage.apply(data, index);
    TCTTable* table = NewTable();
    EXPECT_EQ(ErrorOf([&] { table->Open(); }), damage.error);
    EXPECT_EQ(table->OpenFlag(), Ctdb::ofClosed);
    EXPECT_EQ(Conn->DataSetCount(), 0);
  }
}

// A schema whose field runs past the record still opens: the field's value is refused (1112)
// wherever it is read or written, and the other fields keep theirs.
TEST_F(TableDamage, FieldRunningPastTheRecordIsRefusedWhereverItIsUsed) {
  FillPeople();
  // The last field (AMOUNT, 8 bytes) claims 60000.
  Rewrite(Dir / "people", "doda", [](std::string& v) { v.replace(v.size() - 4, 4, std::string("\x60\xea\0\0", 4)); });
  TCTTable* table = NewTable();
  table->Open();
  EXPECT_EQ(table->FieldByName("NAME")->AsString(), "Arvid");
  EXPECT_EQ(ErrorOf([&] { table->FieldByName("AMOUNT")->AsFloat(); }), 1112);
  table->Edit();
  EXPECT_EQ(ErrorOf([&] { table->FieldByName("AMOUNT")->SetAsFloat(3.5); }), 1112);
  table->Cancel();
  EXPECT_EQ(IdsToEnd(*table), Ids({1, 2, 3, 4, 5, 6, 7, 8, 9, 10}));
}

TEST_F(TableDamage, GarbageLockFilesAreMadeAfreshAndEveryRowReadsBack) {
  FillPeople();
  for (const std::string& file : ct::testsupport::LockFiles("people")) {
    SCOPED_TRACE(file);
    Store(Dir / file, std::string(5000, '\xa5'));
    TCTTable* table = NewTable(false);
    table->Open();
    EXPECT_EQ(IdsToEnd(*table), Ids({1, 2, 3, 4, 5, 6, 7, 8, 9, 10}));
    table->Edit();
    table->FieldByName("CITY")->SetAsString("Narvik");
    table->Post();
    table->Close();
  }
}

}  // namespace
}  // namespace CTTables::testing
