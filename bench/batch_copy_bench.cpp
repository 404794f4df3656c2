// batch_copy_bench: TCTBatchCopy over the 1,000,000-record customers table (two indexes): cmCopy
// into a new table, cmAppend into an empty one, cmAppendUpdate and cmUpdate into a table holding
// every record already (each one rewritten), and TCTTable::Rebuild into a layout with one field
// more. Items are records. Run from a Release build:
// <build>/bench/batch_copy_bench [--records=N]
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "CTTables.h"
#include "Ctdb.h"

#include "CustomersTable.h"

namespace {

int gRecords = 1000000;
std::string gDir;
fw::TComponent* gOwner = nullptr;
Ctdb::TCTConnection* gConn = nullptr;

CTTables::TCTTable* Table(const std::string& name) {
  auto* table = new CTTables::TCTTable(gOwner);
  table->SetConnection(gConn);
  table->SetDatabase(gDir);
  table->SetTableName(name);
  return table;
}

// Runs one batch from "customers" into `destination` and checks that every record counted.
void RunBatch(benchmark::State& state, const std::string& destination, CTTables::TCTCopyMode mode) {
  CTTables::TCTBatchCopy copy(nullptr);
  copy.SetSource(Table("customers"));
  copy.SetDestination(Table(destination));
  copy.SetCopyMode(mode);
  for (auto _ : state) copy.Execute();
  if (copy.RecordsCopied() != gRecords) state.SkipWithError("not every record was written");
  state.SetItemsProcessed(static_cast<int64_t>(gRecords) * state.iterations());
}

void BatchCopy_Copy(benchmark::State& state) { RunBatch(state, "copied", CTTables::cmCopy); }

void BatchCopy_Append(benchmark::State& state) {
  bench::CreateCustomers(*gConn, gDir, 0, "appended");
  RunBatch(state, "appended", CTTables::cmAppend);
}

// "copied" holds every customer (from BatchCopy_Copy): each record finds its match.
void BatchCopy_AppendUpdate(benchmark::State& state) { RunBatch(state, "copied", CTTables::cmAppendUpdate); }
void BatchCopy_Update(benchmark::State& state) { RunBatch(state, "copied", CTTables::cmUpdate); }

void Rebuild_AddField(benchmark::State& state) {
  CTTables::TCTTable* table = Table("copied");
  table->FieldDefs()->Update();
  table->UpdateIndexDefs();
  fw::TFieldDefs fields(nullptr);
  fields.Assign(*table->FieldDefs());
  fields.Add("EMAIL", fw::ftString, 40);
  CTTables::TCTIndexDefs indexes(nullptr);
  indexes.Assign(*table->IndexDefs());
  for (auto _ : state) table->Rebuild(fields, indexes);
  table->Open();
  if (table->RecordCount() != gRecords || table->FindField("EMAIL") == nullptr)
    state.SkipWithError("the rebuilt table differs");
  state.SetItemsProcessed(static_cast<int64_t>(gRecords) * state.iterations());
}

}  // namespace

BENCHMARK(BatchCopy_Copy)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(BatchCopy_Append)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(BatchCopy_AppendUpdate)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(BatchCopy_Update)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(Rebuild_AddField)->Iterations(1)->Unit(benchmark::kMillisecond);

int main(int argc, char** argv) {
  std::vector<char*> args;
  for (int i = 0; i < argc; ++i) {
    if (std::strncmp(argv[i], "--records=", 10) == 0)
      gRecords = std::max(1, std::atoi(argv[i] + 10));
    else
      args.push_back(argv[i]);
  }
  int count = static_cast<int>(args.size());
  benchmark::Initialize(&count, args.data());

  gDir = (std::filesystem::temp_directory_path() / ("batch_copy_bench_" + std::to_string(::getpid()))).string();
  std::filesystem::create_directories(gDir);
  int status = 0;
  try {
    gOwner = new fw::TComponent(nullptr);
    gConn = new Ctdb::TCTConnection(gOwner);
    gConn->SetActive(true);
    bench::CreateCustomers(*gConn, gDir, gRecords);
    benchmark::RunSpecifiedBenchmarks();
    gOwner->Free();
  } catch (const std::exception& e) {
    std::fprintf(stderr, "batch_copy_bench: %s\n", e.what());
    status = 1;
  }
  benchmark::Shutdown();
  std::filesystem::remove_all(gDir);
  return status;
}
