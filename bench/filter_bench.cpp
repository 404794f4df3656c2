// filter_bench: a full scan of 1,000,000 customer records through TCTTable with a filter of two
// comparisons that passes 2% of them, against the unfiltered scan of the same table in the same
// run, the described evaluator (the substituted text parsed for every record), and the same query
// as a full scan in SQLite on the same data (when built with SQLite).
// Run from a Release build: <build>/bench/filter_bench [--records=N]. Each case scans once; the
// summary at the end compares process CPU times, which a shared machine disturbs less than wall
// time.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <stdexcept>
#include <string>

#include "UnitFilterParser.h"

#ifdef CT_BENCH_SQLITE
#include <sqlite3.h>
#endif

#include "BenchClock.h"
#include "BenchProgram.h"
#include "CustomersTable.h"
#include "Workspace.h"

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
bench::Workspace gWork;
CTTables::TCTTable* gTable = nullptr;
std::map<std::string, double> gCpu;  // seconds of process CPU time per case

Customer Make(int32_t id) { return bench::MakeCustomer(id, bench::ScrambledName(id)); }

bool Passes(int32_t id) { return id % kCities < 2 && id <= kIdLimit; }

// One scan of the table as it is set up, reading the visible records; `expected` rows.
void Scan(benchmark::State& state, const char* name, int expected) {
  const auto fields = bench::CustomerFields(*gTable);
  int64_t rows = 0;
  for (auto _ : state) {
    const double start = bench::CpuSeconds();
    double sum = 0;
    for (gTable->First(); !gTable->Eof(); gTable->Next()) {
      sum += bench::ReadFields(fields);
      ++rows;
    }
    gCpu[name] = bench::CpuSeconds() - start;
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
  Check(sqlite3_open((gWork.dir + "/customers.sqlite").c_str(), &gSqlite), "open");
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
    const double start = bench::CpuSeconds();
    double sum = 0;
    while (sqlite3_step(query) == SQLITE_ROW) {
      sum += sqlite3_column_int(query, 0) + sqlite3_column_bytes(query, 1) + sqlite3_column_bytes(query, 2) +
             sqlite3_column_double(query, 3);
      ++rows;
    }
    sqlite3_reset(query);
    gCpu["sqlite"] = bench::CpuSeconds() - start;
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
  bench::BenchProgram program("filter_bench", argc, argv, bench::Flags().Int("--records=", gRecords, 1000));
  const int status = program.Run([&] {
    gWork.Open(program.Dir());
    // The table with its unique ID index only, filled through the engine in batches of 100.
    bench::CreateCustomersTable(*gWork.conn, gWork.dir, "customers", bench::CityIndex::kNone);
    bench::FillCustomers(*gWork.conn, gWork.dir, "customers", gRecords, 100, Make);
    for (int32_t id = 1; id <= gRecords; ++id) gExpected += Passes(id);
#ifdef CT_BENCH_SQLITE
    LoadSqlite();
#endif
    gTable = gWork.Table("customers", true);
    gTable->Open();
    benchmark::RunSpecifiedBenchmarks();
    const double base = gCpu["unfiltered"];
    std::printf("\nprocess CPU time, %d records, filter %s passing %d:\n", gRecords, kFilter, gExpected);
    for (const auto& [name, seconds] : gCpu)
      std::printf("  %-16s %8.1f ms  %5.2fx the unfiltered scan\n", name.c_str(), seconds * 1e3,
                  base > 0 ? seconds / base : 0.0);
    gWork.Free();
  });
#ifdef CT_BENCH_SQLITE
  sqlite3_close(gSqlite);
#endif
  return status;
}
