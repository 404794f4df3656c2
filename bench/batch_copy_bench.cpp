// batch_copy_bench: TCTBatchCopy over the 1,000,000-record customers table (two indexes): cmCopy
// into a new table, cmAppend into an empty one, cmAppendUpdate and cmUpdate into a table holding
// every record already (each one rewritten), and TCTTable::Rebuild into a layout with one field
// more. Items are records. Run from a Release build:
// <build>/bench/batch_copy_bench [--records=N]
#include <benchmark/benchmark.h>

#include <string>

#include "BenchProgram.h"
#include "CustomersTable.h"
#include "Workspace.h"

namespace {

int gRecords = 1000000;
bench::Workspace gWork;

// Runs one batch from "customers" into `destination` and checks that every record counted.
void RunBatch(benchmark::State& state, const std::string& destination, CTTables::TCTCopyMode mode) {
  CTTables::TCTBatchCopy copy(nullptr);
  copy.SetSource(gWork.Table("customers", false));
  copy.SetDestination(gWork.Table(destination, false));
  copy.SetCopyMode(mode);
  for (auto _ : state) copy.Execute();
  if (copy.RecordsCopied() != gRecords) state.SkipWithError("not every record was written");
  state.SetItemsProcessed(static_cast<int64_t>(gRecords) * state.iterations());
}

void BatchCopy_Copy(benchmark::State& state) { RunBatch(state, "copied", CTTables::cmCopy); }

void BatchCopy_Append(benchmark::State& state) {
  bench::CreateCustomers(*gWork.conn, gWork.dir, 0, "appended");
  RunBatch(state, "appended", CTTables::cmAppend);
}

// "copied" holds every customer (from BatchCopy_Copy): each record finds its match.
void BatchCopy_AppendUpdate(benchmark::State& state) { RunBatch(state, "copied", CTTables::cmAppendUpdate); }
void BatchCopy_Update(benchmark::State& state) { RunBatch(state, "copied", CTTables::cmUpdate); }

void Rebuild_AddField(benchmark::State& state) {
  CTTables::TCTTable* table = gWork.Table("copied", false);
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
  bench::BenchProgram program("batch_copy_bench", argc, argv, bench::Flags().Int("--records=", gRecords, 1));
  return program.Run([&] {
    gWork.Open(program.Dir());
    bench::CreateCustomers(*gWork.conn, gWork.dir, gRecords);
    benchmark::RunSpecifiedBenchmarks();
    gWork.Free();
  });
}
