// filter_bench: a full scan of 1,000,000 customer records through TCTTable with a filter of two
// comparisons that passes 2% of them, against the unfiltered scan of the same table in the same
// run, the described evaluator (the substituted text parsed for every record), and the same query
// as a full scan in SQLite on the same data (when built with SQLite).
// Run from a Release build: <build>/bench/filter_bench [--records=N]. Each case scans once; the
// summary at the end compares process CPU times, which a shared machine disturbs less than wall
// time.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "CTTables.h"
#include "CtRecords.h"
#include "Ctdb.h"
#include "TField.h"
#include "UnitFilterParser.h"

#ifdef CT_BENCH_SQLITE
#include <sqlite3.h>
#endif

#include "CustomerRecord.h"

namespace {

using bench::Customer;
using bench::kCities;
using bench::CityOf;

constexpr int32_t kIdLimit = 500000;
// City below city02 (4% of the records) and ID in the lower half: 2% pass.
constexpr const char* kFilter = "(\"CITY\" < 'city02') AND (\"ID\" <= 500000)";
constexpr const char* kQuery =
    "SELECT id, name, city, balance FROM customers WHERE city < 'city02' AND id <= 500000";

int gRecords = 1000000;
int gExpected = 0;  // records the filter passes
std::string gDir;
fw::TComponent* gOwner = nullptr;
Ctdb::TCTConnection* gConn = nullptr;
CTTables::TCTTable* gTable = nullptr;
std::map<std::string, double> gCpu;  // seconds of process CPU time per case

double CpuNow() {
  timespec t{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
  return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_nsec) * 1e-9;
}

Customer Make(int32_t id) {
  Customer c{};
  c.id = id;
  std::snprintf(c.name, sizeof c.name, "name%07d", (id * 7919) % 1000003);
  std::snprintf(c.city, sizeof c.city, "%s", CityOf(id).c_str());
  c.balance = id * 0.25;
  return c;
}

bool Passes(int32_t id) { return id % kCities < 2 && id <= kIdLimit; }

Ctdb::CTFldDesc Field(uint16_t no, const char* name, int16_t type, int16_t subType, int16_t length) {
  Ctdb::CTFldDesc desc;
  desc.FieldNo = no;
  desc.Name = name;
  desc.FieldType = type;
  desc.SubType = subType;
  desc.Units1 = length;
  desc.Length = length;
  return desc;
}

// The table with its unique ID index, filled through the engine in batches of 100 records.
void CreateCustomers() {
  Ctdb::CTTblDesc desc;
  desc.Name = "customers";
  desc.TableType = "CTree";
  desc.Fields = {Field(1, "ID", Ctdb::fldINT32, 0, 4), Field(2, "NAME", Ctdb::fldZSTRING, Ctdb::fldstFSTRING, 30),
                 Field(3, "CITY", Ctdb::fldZSTRING, Ctdb::fldstFSTRING, 20),
                 Field(4, "BALANCE", Ctdb::fldFLOAT, 0, 8)};
  Ctdb::CTIdxDesc byId;
  byId.Name = "ById";
  byId.Unique = byId.Primary = byId.Maintained = Ctdb::kWordTrue;
  byId.KeyFields[0] = 1;
  byId.FieldsInKey = 1;
  desc.Indexes = {byId};
  CTDbIntf::CtError(gConn->CreateTable(gDir, true, desc));
  std::unique_ptr<Ctdb::TCTCursorDesc> cursor;
  CTDbIntf::CtError(gConn->OpenCursor(cursor, "customers", gDir, 0));
  for (int32_t id = 1; id <= gRecords; ++id) {
    if (id % 100 == 1) gConn->StartTransaction();
    Customer c = Make(id);
    CTDbIntf::CtError(CTDbIntf::AddRecord(gConn->Alignment(), cursor->DataFileNo, &c));
    if (id % 100 == 0 || id == gRecords) gConn->Commit();
    gExpected += Passes(id);
  }
  CTDbIntf::CtError(gConn->CloseCursor(cursor));
}

// Reads every field as an application would, so the compiler cannot drop the reads.
double ReadFields(fw::TField* const* fields) {
  return fields[0]->AsInteger() + static_cast<double>(fields[1]->AsString().size() + fields[2]->AsString().size()) +
         fields[3]->AsFloat();
}

// One scan of the table as it is set up, reading the visible records; `expected` rows.
void Scan(benchmark::State& state, const char* name, int expected) {
  fw::TField* fields[] = {gTable->FieldByName("ID"), gTable->FieldByName("NAME"), gTable->FieldByName("CITY"),
                          gTable->FieldByName("BALANCE")};
  int64_t rows = 0;
  for (auto _ : state) {
    const double start = CpuNow();
    double sum = 0;
    for (gTable->First(); !gTable->Eof(); gTable->Next()) {
      sum += ReadFields(fields);
      ++rows;
    }
    gCpu[name] = CpuNow() - start;
    benchmark::DoNotOptimize(sum);
  }
  if (rows != expected) state.SkipWithError("the scan did not see the expected records");
  state.SetItemsProcessed(gRecords);
}

void Filter_Unfiltered(benchmark::State& state) {
  gTable->SetFilter("");
  gTable->SetFiltered(false);
  Scan(state, "unfiltered", gRecords);
}

void Filter_Analysed(benchmark::State& state) {
  gTable->SetFilter(kFilter);
  gTable->SetFiltered(true);
  Scan(state, "filtered", gExpected);
}

// The floor under any filter: every record fetched and shown to an event that rejects it.
void Filter_RejectingEvent(benchmark::State& state) {
  gTable->SetFilter("");
  gTable->SetOnFilterRecord([](fw::TDataSet*, bool& accept) { accept = false; });
  Scan(state, "rejecting event", 0);
  gTable->SetOnFilterRecord(nullptr);
}

// The evaluator as described: the Filter substituted and parsed for every record. It runs in the
// event, so the table's own evaluation only sees the 2% the event accepts.
void Filter_TextEvaluator(benchmark::State& state) {
  gTable->SetFilter(kFilter);
  gTable->SetOnFilterRecord([](fw::TDataSet*, bool& accept) {
    accept = UnitFilterParser::ParseFilter(gTable->BuildparsString());
  });
  Scan(state, "text evaluator", gExpected);
  gTable->SetOnFilterRecord(nullptr);
}

#ifdef CT_BENCH_SQLITE
sqlite3* gSqlite = nullptr;

void Check(int code, const char* what) {
  if (code != SQLITE_OK && code != SQLITE_DONE) throw std::runtime_error(std::string(what) + ": " + sqlite3_errmsg(gSqlite));
}

// The same records in a SQLite file with no index on the filtered columns, cached in memory.
void LoadSqlite() {
  Check(sqlite3_open((gDir + "/customers.sqlite").c_str(), &gSqlite), "open");
  Check(sqlite3_exec(gSqlite,
                     "PRAGMA journal_mode=OFF; PRAGMA synchronous=OFF; PRAGMA cache_size=-262144;"
                     "CREATE TABLE customers(id INTEGER, name TEXT, city TEXT, balance REAL); BEGIN;",
                     nullptr, nullptr, nullptr),
        "create");
  sqlite3_stmt* insert = nullptr;
  Check(sqlite3_prepare_v2(gSqlite, "INSERT INTO customers VALUES(?, ?, ?, ?)", -1, &insert, nullptr), "prepare");
  for (int32_t id = 1; id <= gRecords; ++id) {
    const Customer c = Make(id);
    sqlite3_bind_int(insert, 1, c.id);
    sqlite3_bind_text(insert, 2, c.name, -1, SQLITE_TRANSIENT);
    sqlite3_bind_text(insert, 3, c.city, -1, SQLITE_TRANSIENT);
    sqlite3_bind_double(insert, 4, c.balance);
    Check(sqlite3_step(insert), "insert");
    sqlite3_reset(insert);
  }
  sqlite3_finalize(insert);
  Check(sqlite3_exec(gSqlite, "COMMIT;", nullptr, nullptr, nullptr), "commit");
}

void Sqlite_FullScan(benchmark::State& state) {
  sqlite3_stmt* query = nullptr;
  Check(sqlite3_prepare_v2(gSqlite, kQuery, -1, &query, nullptr), "prepare");
  int64_t rows = 0;
  for (auto _ : state) {
    const double start = CpuNow();
    double sum = 0;
    while (sqlite3_step(query) == SQLITE_ROW) {
      sum += sqlite3_column_int(query, 0) + sqlite3_column_bytes(query, 1) + sqlite3_column_bytes(query, 2) +
             sqlite3_column_double(query, 3);
      ++rows;
    }
    sqlite3_reset(query);
    gCpu["sqlite"] = CpuNow() - start;
    benchmark::DoNotOptimize(sum);
  }
  sqlite3_finalize(query);
  if (rows != gExpected) state.SkipWithError("the query did not return the expected records");
  state.SetItemsProcessed(gRecords);
}
#endif

}  // namespace

BENCHMARK(Filter_Unfiltered)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(Filter_Analysed)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(Filter_RejectingEvent)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(Filter_TextEvaluator)->Iterations(1)->Unit(benchmark::kMillisecond);
#ifdef CT_BENCH_SQLITE
BENCHMARK(Sqlite_FullScan)->Iterations(1)->Unit(benchmark::kMillisecond);
#endif

int main(int argc, char** argv) {
  std::vector<char*> args;
  for (int i = 0; i < argc; ++i) {
    if (std::strncmp(argv[i], "--records=", 10) == 0)
      gRecords = std::max(1000, std::atoi(argv[i] + 10));
    else
      args.push_back(argv[i]);
  }
  int count = static_cast<int>(args.size());
  benchmark::Initialize(&count, args.data());

  gDir = (std::filesystem::temp_directory_path() / ("filter_bench_" + std::to_string(::getpid()))).string();
  std::filesystem::create_directories(gDir);
  int status = 0;
  try {
    gOwner = new fw::TComponent(nullptr);
    gConn = new Ctdb::TCTConnection(gOwner);
    gConn->SetActive(true);
    CreateCustomers();
#ifdef CT_BENCH_SQLITE
    LoadSqlite();
#endif
    gTable = new CTTables::TCTTable(gOwner);
    gTable->SetConnection(gConn);
    gTable->SetDatabase(gDir);
    gTable->SetTableName("customers");
    gTable->SetExclusive(true);
    gTable->Open();
    benchmark::RunSpecifiedBenchmarks();
    const double base = gCpu["unfiltered"];
    std::printf("\nprocess CPU time, %d records, filter %s passing %d:\n", gRecords, kFilter, gExpected);
    for (const auto& [name, seconds] : gCpu)
      std::printf("  %-16s %8.1f ms  %5.2fx the unfiltered scan\n", name.c_str(), seconds * 1e3,
                  base > 0 ? seconds / base : 0.0);
    gOwner->Free();
  } catch (const std::exception& e) {
    std::fprintf(stderr, "filter_bench: %s\n", e.what());
    status = 1;
  }
#ifdef CT_BENCH_SQLITE
  sqlite3_close(gSqlite);
#endif
  benchmark::Shutdown();
  std::filesystem::remove_all(gDir);
  return status;
}
