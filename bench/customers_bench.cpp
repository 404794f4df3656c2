// customers_bench: the customers workload run, in one process, through the engine calls alone,
// through TCTTable and through SQLite, on identical generated data; prints each system's rate
// per operation, its ratio to SQLite, and the final file sizes. Run from a Release build:
//   <build>/bench/customers_bench [--records=N] [--load-batch=N] [--dir=PATH]
// --records (default 1,000,000) sizes the table; --load-batch commits the load every N records
// instead of once (0, the default: one transaction); --dir is where the files go (default: a
// new folder under the temporary directory, removed at the end).
//
// Durability is the same for all three: a commit survives the death of the process but is not
// flushed to the disk (the engine's files are opened without WRITETHRU/TRNLOG; SQLite runs in
// WAL mode with synchronous=NORMAL).
#include <sqlite3.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <functional>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "CtSession.h"
#include "ctisam.h"

#include "BenchClock.h"
#include "BenchFlags.h"
#include "CustomersTable.h"
#include "ScratchDir.h"
#include "Workspace.h"

namespace {

using bench::Customer;
using bench::kCities;
using bench::CityOf;

constexpr int kSeeks = 20000;
constexpr int kUpdates = 20000;
constexpr int kDeletes = 10000;
constexpr int kSmallTransactions = 1000;

int gRecords = 1000000;
int gLoadBatch = 0;
std::vector<int32_t> gOrder;    // ids in insertion order (a permutation of 1..N)
std::vector<int32_t> gSeeks;    // ids looked up
std::vector<int32_t> gUpdates;  // ids whose name and balance change in one transaction
std::vector<int32_t> gDeletes;  // ids deleted (distinct from gUpdates and gSmall)
std::vector<int32_t> gSmall;    // ids updated one transaction each
std::string gDir;

// The name of customer `id` after `version` updates (0: as loaded).
std::string NameOf(int32_t id, int version = 0) { return bench::ScrambledName(id, version * 104729); }
Customer Make(int32_t id) { return bench::MakeCustomer(id, NameOf(id)); }
// A checksum over every field, so that the systems can be compared and no read is dropped.
double Sum(int32_t id, size_t nameLength, size_t cityLength, double balance) {
  return id + static_cast<double>(nameLength * 3 + cityLength) + balance;
}

// ---- measuring -----------------------------------------------------------------------------

enum Step { kLoad, kLoadFirst, kLoadSecond, kScanId, kScanCity, kSeek, kRanges, kUpdate, kDelete, kSmall, kSteps };
const char* const kStepNames[kSteps] = {
    "(1) add N, one transaction", "    first half", "    second half", "(2) scan in id order",
    "(3) scan in city,name order", "(4) random seeks by id", "(5) 50 cities as ranges",
    "(6) updates moving a key, 1 tx", "(7) deletes, one transaction", "(8) updates, 1 tx each"};

struct Measure {
  double wall = 0, cpu = 0;
  int64_t items = 0;
  double check = 0;
  bool done = false;
};

struct System {
  explicit System(const char* n) : name(n) {}
  const char* name;
  Measure steps[kSteps];
  uintmax_t fileBytes = 0;
  std::string error;
};

// Runs one step and records its time; `work` returns the checksum of what it read.
void Run(System& s, Step step, int64_t items, const std::function<double()>& work) {
  const double w0 = bench::WallSeconds(), c0 = bench::CpuSeconds();
  const double check = work();
  Measure& m = s.steps[step];
  m.wall = bench::WallSeconds() - w0;
  m.cpu = bench::CpuSeconds() - c0;
  m.items = items;
  m.check = check;
  m.done = true;
}

// The load, timed as a whole and by halves (a linear load does both halves at the same rate).
void RunLoad(System& s, const std::function<void(int32_t)>& add, const std::function<void()>& begin,
             const std::function<void()>& commit) {
  const size_t half = gOrder.size() / 2;
  double w[3] = {}, c[3] = {};
  w[0] = bench::WallSeconds(), c[0] = bench::CpuSeconds();
  begin();
  for (size_t i = 0; i < gOrder.size(); ++i) {
    if (i == half) w[1] = bench::WallSeconds(), c[1] = bench::CpuSeconds();
    add(gOrder[i]);
    if (gLoadBatch > 0 && (i + 1) % static_cast<size_t>(gLoadBatch) == 0 && i + 1 < gOrder.size()) {
      commit();
      begin();
    }
  }
  commit();
  w[2] = bench::WallSeconds(), c[2] = bench::CpuSeconds();
  auto set = [&](Step step, int from, int to, int64_t items) {
    s.steps[step] = Measure{w[to] - w[from], c[to] - c[from], items, 0, true};
  };
  set(kLoad, 0, 2, static_cast<int64_t>(gOrder.size()));
  set(kLoadFirst, 0, 1, static_cast<int64_t>(half));
  set(kLoadSecond, 1, 2, static_cast<int64_t>(gOrder.size() - half));
}

uintmax_t FileBytes(const std::string& stem) {
  uintmax_t total = 0;
  for (const auto& entry : std::filesystem::directory_iterator(gDir)) {
    const std::string name = entry.path().filename().string();
    const bool ours = name == stem || name.rfind(stem + ".", 0) == 0;
    if (ours && name.find("-lock") == std::string::npos && entry.is_regular_file())
      total += entry.file_size();
  }
  return total;
}

// ---- the engine calls alone ------------------------------------------------------------------

void RunEngine(System& s, Ctdb::TCTConnection& conn) {
  const CTDbIntf::TLoadAlignment a = conn.Alignment();
  bench::CreateCustomersTable(conn, gDir, "enginecust", bench::CityIndex::kCityName);
  bench::EngineCustomers table(conn, gDir, "enginecust");
  const int16_t dat = table.dat, byId = table.byId, byCity = table.byCity;
  if (table.cursor->FixedRecLength != static_cast<int32_t>(sizeof(Customer)))
    throw std::runtime_error("the table's records are not laid out as Customer");
  auto fail = [&](const char* what) {
    throw std::runtime_error(std::string(what) + " failed: " + std::to_string(CTDbIntf::GetCtIsamErr(a)));
  };
  auto begin = [&] {
    if (CTDbIntf::TranBegin(a, TRNLOG) == 0) fail("TRANBEG");
  };
  auto commit = [&] {
    if (CTDbIntf::TranCommit(a, FREE) != 0) fail("TRANEND");
  };
  auto find = [&](int32_t id, Customer& c) {
    Customer probe = Make(id);
    char key[64] = {};
    CTDbIntf::BuildKey(a, byId, reinterpret_cast<char*>(&probe), key, 0, 0);
    if (CTDbIntf::GetRecord(a, byId, key, &c) != 0) fail("EQLREC");
  };
  auto sum = [](const Customer& c) {
    return Sum(c.id, strnlen(c.name, sizeof c.name), strnlen(c.city, sizeof c.city), c.balance);
  };
  RunLoad(
      s,
      [&](int32_t id) {
        Customer c = Make(id);
        if (CTDbIntf::AddRecord(a, dat, &c) != 0) fail("ADDREC");
      },
      begin, commit);
  auto scan = [&](int16_t key) {
    Customer c{};
    double total = 0;
    for (int16_t r = CTDbIntf::FirstRecord(a, key, &c); r == 0; r = CTDbIntf::NextRecord(a, key, &c)) total += sum(c);
    return total;
  };
  Run(s, kScanId, gRecords, [&] { return scan(byId); });
  Run(s, kScanCity, gRecords, [&] { return scan(byCity); });
  Run(s, kSeek, kSeeks, [&] {
    double total = 0;
    Customer c{};
    for (int32_t id : gSeeks) find(id, c), total += sum(c);
    return total;
  });
  Run(s, kRanges, gRecords, [&] {
    double total = 0;
    for (int city = 0; city < kCities; ++city) {
      Customer probe{}, c{};
      std::snprintf(probe.city, sizeof probe.city, "%s", CityOf(city).c_str());
      char key[64] = {};
      CTDbIntf::BuildKey(a, byCity, reinterpret_cast<char*>(&probe), key, 0, 0);
      for (int16_t r = CTDbIntf::FirstInSet(a, byCity, key, &c, 20); r == 0; r = CTDbIntf::NextInSet(a, byCity, &c))
        total += sum(c);
    }
    return total;
  });
  auto update = [&](int32_t id, int version) {
    Customer c{};
    find(id, c);
    std::snprintf(c.name, sizeof c.name, "%s", NameOf(id, version).c_str());
    c.balance = id * 0.5 * version;
    if (CTDbIntf::ReWriteRecord(a, dat, &c) != 0) fail("RWTREC");
  };
  Run(s, kUpdate, kUpdates, [&] {
    begin();
    for (int32_t id : gUpdates) update(id, 1);
    commit();
    return 0.0;
  });
  Run(s, kDelete, kDeletes, [&] {
    begin();
    Customer c{};
    for (int32_t id : gDeletes) {
      find(id, c);
      if (CTDbIntf::DeleteRecord(a, dat) != 0) fail("DELREC");
    }
    commit();
    return 0.0;
  });
  Run(s, kSmall, kSmallTransactions, [&] {
    for (int32_t id : gSmall) {
      begin();
      update(id, 2);
      commit();
    }
    return 0.0;
  });
  if (CTDbIntf::NbrOfRecords(a, dat) != gRecords - kDeletes) throw std::runtime_error("wrong record count at the end");
  table.Close();
  s.fileBytes = FileBytes("enginecust");
}

// ---- TCTTable --------------------------------------------------------------------------------

void RunTable(System& s, const bench::Workspace& work) {
  Ctdb::TCTConnection& conn = *work.conn;
  bench::CreateCustomersTable(conn, gDir, "tablecust", bench::CityIndex::kCityName);
  CTTables::TCTTable* table = work.Table("tablecust", true);
  table->Open();
  fw::TField* id = table->FieldByName("ID");
  fw::TField* name = table->FieldByName("NAME");
  fw::TField* city = table->FieldByName("CITY");
  fw::TField* balance = table->FieldByName("BALANCE");
  auto sum = [&] {
    return Sum(id->AsInteger(), name->AsString().size(), city->AsString().size(), balance->AsFloat());
  };
  RunLoad(
      s,
      [&](int32_t key) {
        table->Append();
        id->SetAsInteger(key);
        name->SetAsString(NameOf(key));
        city->SetAsString(CityOf(key));
        balance->SetAsFloat(key * 0.25);
        table->Post();
      },
      [&] { conn.StartTransaction(); }, [&] { conn.Commit(); });
  if (getenv("LOADONLY")) exit(0);
  auto scan = [&](const char* index) {
    table->SetIndexName(index);
    double total = 0;
    for (table->First(); !table->Eof(); table->Next()) total += sum();
    return total;
  };
  Run(s, kScanId, gRecords, [&] { return scan("ById"); });
  Run(s, kScanCity, gRecords, [&] { return scan("ByCity"); });
  table->SetIndexName("ById");
  auto find = [&](int32_t key) {
    if (!table->FindKey({fw::Variant(key)})) throw std::runtime_error("FindKey did not find " + std::to_string(key));
  };
  Run(s, kSeek, kSeeks, [&] {
    double total = 0;
    for (int32_t key : gSeeks) find(key), total += sum();
    return total;
  });
  Run(s, kRanges, gRecords, [&] {
    table->SetIndexName("ByCity");
    double total = 0;
    for (int c = 0; c < kCities; ++c) {
      // Both key fields: a range compares as many fields as were ever assigned while setting
      // keys, and the seeks assigned one already. "~" sorts after every generated name.
      const fw::Variant value(CityOf(c));
      table->SetRange({value, fw::Variant(std::string())}, {value, fw::Variant(std::string("~"))});
      for (; !table->Eof(); table->Next()) total += sum();
    }
    table->CancelRange();
    table->SetIndexName("ById");
    return total;
  });
  auto update = [&](int32_t key, int version) {
    find(key);
    table->Edit();
    name->SetAsString(NameOf(key, version));
    balance->SetAsFloat(key * 0.5 * version);
    table->Post();
  };
  Run(s, kUpdate, kUpdates, [&] {
    conn.StartTransaction();
    for (int32_t key : gUpdates) update(key, 1);
    conn.Commit();
    return 0.0;
  });
  Run(s, kDelete, kDeletes, [&] {
    conn.StartTransaction();
    for (int32_t key : gDeletes) find(key), table->Delete();
    conn.Commit();
    return 0.0;
  });
  Run(s, kSmall, kSmallTransactions, [&] {
    for (int32_t key : gSmall) {
      conn.StartTransaction();
      update(key, 2);
      conn.Commit();
    }
    return 0.0;
  });
  if (table->RecordCount() != gRecords - kDeletes) throw std::runtime_error("wrong record count at the end");
  table->Close();
  s.fileBytes = FileBytes("tablecust");
}

// ---- SQLite ------------------------------------------------------------------------------------

class Sqlite {
 public:
  explicit Sqlite(const std::string& path) {
    if (sqlite3_open(path.c_str(), &db_) != SQLITE_OK) Fail("open");
    Exec("PRAGMA journal_mode=WAL");
    Exec("PRAGMA synchronous=NORMAL");
    Exec("CREATE TABLE customers(id INTEGER PRIMARY KEY, name TEXT, city TEXT, balance REAL)");
    Exec("CREATE INDEX by_city ON customers(city, name)");
  }
  ~Sqlite() {
    for (sqlite3_stmt* st : statements_) sqlite3_finalize(st);
    sqlite3_close(db_);
  }
  void Exec(const char* sql) {
    if (sqlite3_exec(db_, sql, nullptr, nullptr, nullptr) != SQLITE_OK) Fail(sql);
  }
  sqlite3_stmt* Prepare(const char* sql) {
    sqlite3_stmt* st = nullptr;
    if (sqlite3_prepare_v2(db_, sql, -1, &st, nullptr) != SQLITE_OK) Fail(sql);
    statements_.push_back(st);
    return st;
  }
  // Steps a statement that returns no rows and resets it.
  void Done(sqlite3_stmt* st) {
    if (sqlite3_step(st) != SQLITE_DONE) Fail("step");
    sqlite3_reset(st);
  }
  [[noreturn]] void Fail(const char* what) {
    throw std::runtime_error(std::string("SQLite ") + what + ": " + sqlite3_errmsg(db_));
  }

 private:
  sqlite3* db_ = nullptr;
  std::vector<sqlite3_stmt*> statements_;
};

double SumRow(sqlite3_stmt* st) {
  return Sum(sqlite3_column_int(st, 0), static_cast<size_t>(sqlite3_column_bytes(st, 1)),
             static_cast<size_t>(sqlite3_column_bytes(st, 2)), sqlite3_column_double(st, 3));
}

void RunSqlite(System& s) {
  const std::string path = gDir + "/sqlitecust.db";
  {
    Sqlite db(path);
    sqlite3_stmt* insert = db.Prepare("INSERT INTO customers VALUES(?,?,?,?)");
    RunLoad(
        s,
        [&](int32_t id) {
          const std::string name = NameOf(id), city = CityOf(id);
          sqlite3_bind_int(insert, 1, id);
          sqlite3_bind_text(insert, 2, name.c_str(), static_cast<int>(name.size()), SQLITE_TRANSIENT);
          sqlite3_bind_text(insert, 3, city.c_str(), static_cast<int>(city.size()), SQLITE_TRANSIENT);
          sqlite3_bind_double(insert, 4, id * 0.25);
          db.Done(insert);
        },
        [&] { db.Exec("BEGIN"); }, [&] { db.Exec("COMMIT"); });
    auto scan = [&](sqlite3_stmt* st) {
      double total = 0;
      while (sqlite3_step(st) == SQLITE_ROW) total += SumRow(st);
      sqlite3_reset(st);
      return total;
    };
    sqlite3_stmt* byId = db.Prepare("SELECT id,name,city,balance FROM customers ORDER BY id");
    sqlite3_stmt* byCity = db.Prepare("SELECT id,name,city,balance FROM customers ORDER BY city,name");
    Run(s, kScanId, gRecords, [&] { return scan(byId); });
    Run(s, kScanCity, gRecords, [&] { return scan(byCity); });
    sqlite3_stmt* seek = db.Prepare("SELECT id,name,city,balance FROM customers WHERE id=?");
    Run(s, kSeek, kSeeks, [&] {
      double total = 0;
      for (int32_t id : gSeeks) {
        sqlite3_bind_int(seek, 1, id);
        if (sqlite3_step(seek) != SQLITE_ROW) db.Fail("seek");
        total += SumRow(seek);
        sqlite3_reset(seek);
      }
      return total;
    });
    sqlite3_stmt* range = db.Prepare("SELECT id,name,city,balance FROM customers WHERE city=? ORDER BY name");
    Run(s, kRanges, gRecords, [&] {
      double total = 0;
      for (int c = 0; c < kCities; ++c) {
        const std::string city = CityOf(c);
        sqlite3_bind_text(range, 1, city.c_str(), static_cast<int>(city.size()), SQLITE_TRANSIENT);
        total += scan(range);
      }
      return total;
    });
    sqlite3_stmt* update = db.Prepare("UPDATE customers SET name=?, balance=? WHERE id=?");
    auto change = [&](int32_t id, int version) {
      const std::string name = NameOf(id, version);
      sqlite3_bind_text(update, 1, name.c_str(), static_cast<int>(name.size()), SQLITE_TRANSIENT);
      sqlite3_bind_double(update, 2, id * 0.5 * version);
      sqlite3_bind_int(update, 3, id);
      db.Done(update);
    };
    Run(s, kUpdate, kUpdates, [&] {
      db.Exec("BEGIN");
      for (int32_t id : gUpdates) change(id, 1);
      db.Exec("COMMIT");
      return 0.0;
    });
    sqlite3_stmt* del = db.Prepare("DELETE FROM customers WHERE id=?");
    Run(s, kDelete, kDeletes, [&] {
      db.Exec("BEGIN");
      for (int32_t id : gDeletes) {
        sqlite3_bind_int(del, 1, id);
        db.Done(del);
      }
      db.Exec("COMMIT");
      return 0.0;
    });
    Run(s, kSmall, kSmallTransactions, [&] {
      for (int32_t id : gSmall) {
        db.Exec("BEGIN");
        change(id, 2);
        db.Exec("COMMIT");
      }
      return 0.0;
    });
  }
  s.fileBytes = FileBytes("sqlitecust");
}

// ---- report ------------------------------------------------------------------------------------

std::string Rate(const Measure& m, bool cpu) {
  const double t = cpu ? m.cpu : m.wall;
  char text[32];
  if (!m.done || t <= 0) return "-";
  std::snprintf(text, sizeof text, "%.0f", static_cast<double>(m.items) / t);
  return text;
}

std::string Ratio(const Measure& m, const Measure& base) {
  char text[32];
  if (!m.done || !base.done || m.cpu <= 0 || base.cpu <= 0) return "-";
  std::snprintf(text, sizeof text, "%.2f", base.cpu / m.cpu);
  return text;
}

void Print(const System (&systems)[3]) {
  const System& sqlite = systems[2];
  std::printf("\ncustomers workload, %d records (rates: items/s by wall clock | by CPU time; ratio: CPU rate"
              " over SQLite's)\n",
              gRecords);
  std::printf("%-32s %23s %23s %23s %7s %7s\n", "operation", systems[0].name, systems[1].name, systems[2].name,
              "eng/sq", "tab/sq");
  for (int st = 0; st < kSteps; ++st) {
    std::string cells[3];
    for (int i = 0; i < 3; ++i)
      cells[i] = Rate(systems[i].steps[st], false) + " | " + Rate(systems[i].steps[st], true);
    std::printf("%-32s %23s %23s %23s %7s %7s\n", kStepNames[st], cells[0].c_str(), cells[1].c_str(),
                cells[2].c_str(), Ratio(systems[0].steps[st], sqlite.steps[st]).c_str(),
                Ratio(systems[1].steps[st], sqlite.steps[st]).c_str());
  }
  std::printf("%-32s", "file size (MB)");
  for (const System& s : systems) std::printf(" %23.1f", static_cast<double>(s.fileBytes) / 1e6);
  auto sizeRatio = [&](const System& s) { return sqlite.fileBytes ? double(s.fileBytes) / sqlite.fileBytes : 0.0; };
  std::printf(" %7.2f %7.2f  (size over SQLite's)\n", sizeRatio(systems[0]), sizeRatio(systems[1]));
  // The scans, seeks and ranges read the same records: their checksums must agree.
  for (Step st : {kScanId, kScanCity, kSeek, kRanges}) {
    std::vector<double> checks;
    for (const System& s : systems)
      if (s.steps[st].done) checks.push_back(s.steps[st].check);
    if (std::adjacent_find(checks.begin(), checks.end(), std::not_equal_to<>()) != checks.end())
      std::printf("CHECK FAILED: %s read different data (%.0f, %.0f, %.0f)\n", kStepNames[st],
                  systems[0].steps[st].check, systems[1].steps[st].check, sqlite.steps[st].check);
  }
  for (const System& s : systems)
    if (!s.error.empty()) std::printf("%s FAILED: %s\n", s.name, s.error.c_str());
}

// Distinct ids drawn from 1..N, none of them in `taken`.
std::vector<int32_t> Draw(std::mt19937& random, size_t count, std::vector<int32_t>& taken) {
  std::vector<int32_t> ids;
  std::uniform_int_distribution<int32_t> pick(1, gRecords);
  while (ids.size() < count) {
    const int32_t id = pick(random);
    auto at = std::lower_bound(taken.begin(), taken.end(), id);
    if (at != taken.end() && *at == id) continue;
    taken.insert(at, id);
    ids.push_back(id);
  }
  return ids;
}

}  // namespace

int main(int argc, char** argv) {
  std::string given, only;
  const std::vector<char*> rest = bench::Flags()
                                      .Int("--records=", gRecords)
                                      .Int("--load-batch=", gLoadBatch)
                                      .Text("--dir=", given)
                                      .Text("--only=", only)
                                      .Parse(argc, argv);
  if (rest.size() > 1 || (!only.empty() && only != "engine" && only != "TCTTable" && only != "SQLite")) {
    std::fprintf(stderr, "usage: %s [--records=N] [--load-batch=N] [--dir=PATH] [--only=engine|TCTTable|SQLite]\n",
                 argv[0]);
    return 2;
  }
  const int least = kUpdates + kDeletes + kSmallTransactions;
  if (gRecords < least) {
    std::fprintf(stderr, "customers_bench: --records must be at least %d\n", least);
    return 2;
  }
  const bench::ScratchDir dir("customers_bench", given);
  gDir = dir.Path();

  std::mt19937 random(42);
  gOrder = bench::ShuffledIds(1, gRecords, random);
  std::uniform_int_distribution<int32_t> pick(1, gRecords);
  for (int i = 0; i < kSeeks; ++i) gSeeks.push_back(pick(random));
  std::vector<int32_t> taken;
  gUpdates = Draw(random, kUpdates, taken);
  gDeletes = Draw(random, kDeletes, taken);
  gSmall = Draw(random, kSmallTransactions, taken);

  System systems[3] = {System("engine"), System("TCTTable"), System("SQLite")};
  int status = 0;
  bench::Workspace work;
  try {
    work.Open(gDir);
    const std::pair<int, std::function<void()>> runs[] = {
        {0, [&] { RunEngine(systems[0], *work.conn); }},
        {1, [&] { RunTable(systems[1], work); }},
        {2, [&] { RunSqlite(systems[2]); }},
    };
    for (const auto& [index, run] : runs) {
      if (!only.empty() && only != systems[index].name) continue;
      std::fprintf(stderr, "running %s ...\n", systems[index].name);
      try {
        run();
      } catch (const std::exception& e) {
        systems[index].error = e.what();
        status = 1;
      }
    }
  } catch (const std::exception& e) {
    std::fprintf(stderr, "customers_bench: %s\n", e.what());
    status = 1;
  }
  work.Free();
  Print(systems);
  return status;
}
