// locate_bench: Locate and Lookup on a TCTTable of 1,000,000 customer records with two indexes
// (ID unique; CITY+ID): searches by an indexed field beside FindKey in the same run, Lookup, and
// Locate of a value of a field no index covers near the end of the table, by the bulk scan and
// by the record-by-record reading a range forces. Run from a Release build:
// <build>/bench/locate_bench [--records=N]
#include <benchmark/benchmark.h>

#include <random>
#include <vector>

#include "BenchProgram.h"
#include "CustomersTable.h"
#include "Workspace.h"

namespace {

constexpr int kSearches = 20000;
int gRecords = 1000000;
std::vector<int32_t> gProbes;  // ids searched, in random order
bench::Workspace gWork;
CTTables::TCTTable* gTable = nullptr;

void Dataset_FindKey(benchmark::State& state) {
  int found = 0;
  for (auto _ : state)
    for (int32_t id : gProbes) found += gTable->FindKey({fw::Variant(id)}) ? 1 : 0;
  if (found != kSearches * static_cast<int>(state.iterations())) state.SkipWithError("a key was not found");
  state.SetItemsProcessed(kSearches * state.iterations());
}

void Dataset_LocateIndexed(benchmark::State& state) {
  int found = 0;
  for (auto _ : state)
    for (int32_t id : gProbes) found += gTable->Locate("ID", fw::Variant(id), {}) ? 1 : 0;
  if (found != kSearches * static_cast<int>(state.iterations())) state.SkipWithError("a record was not found");
  state.SetItemsProcessed(kSearches * state.iterations());
}

void Dataset_Lookup(benchmark::State& state) {
  int found = 0;
  for (auto _ : state)
    for (int32_t id : gProbes) found += gTable->Lookup("ID", fw::Variant(id), "NAME").IsNull() ? 0 : 1;
  if (found != kSearches * static_cast<int>(state.iterations())) state.SkipWithError("a record was not found");
  state.SetItemsProcessed(kSearches * state.iterations());
}

// NAME is covered by no index: the table is read in its order (ID) up to the record searched,
// which lies near the end. Items are the records read.
void LocateUnindexed(benchmark::State& state, bool inRange) {
  const int32_t target = gRecords - 10;
  if (inRange) gTable->SetRange({fw::Variant(int32_t{0})}, {fw::Variant(gRecords + 1)});
  for (auto _ : state)
    if (!gTable->Locate("NAME", fw::Variant(bench::CustomerName(target)), {}) || gTable->FieldByName("ID")->AsInteger() != target)
      state.SkipWithError("the record was not found");
  if (inRange) gTable->CancelRange();
  state.SetItemsProcessed(static_cast<int64_t>(target) * state.iterations());
}
void Dataset_LocateScan(benchmark::State& state) { LocateUnindexed(state, false); }
void Dataset_LocateScanInRange(benchmark::State& state) { LocateUnindexed(state, true); }

}  // namespace

BENCHMARK(Dataset_FindKey)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(Dataset_LocateIndexed)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(Dataset_Lookup)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(Dataset_LocateScan)->Iterations(3)->Unit(benchmark::kMillisecond);
BENCHMARK(Dataset_LocateScanInRange)->Iterations(1)->Unit(benchmark::kMillisecond);

int main(int argc, char** argv) {
  bench::BenchProgram program("locate_bench", argc, argv, bench::Flags().Int("--records=", gRecords, kSearches));
  std::mt19937 random(42);
  for (int i = 0; i < kSearches; ++i) gProbes.push_back(static_cast<int32_t>(random() % gRecords) + 1);
  return program.Run([&] {
    gWork.Open(program.Dir());
    bench::CreateCustomers(*gWork.conn, gWork.dir, gRecords);
    gTable = gWork.Table("customers", true);
    gTable->Open();
    benchmark::RunSpecifiedBenchmarks();
    gWork.Free();
  });
}
