// dataset_bench: TCTTable as an application uses it against the engine calls alone for the same
// work, on 1,000,000 customer records with two indexes (ID unique; CITY+ID). Run from a Release
// build: <build>/bench/dataset_bench [--records=N]. Each case runs once over the whole table and
// reports items_per_second; the "Engine" cases are the floor under the dataset layer.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <random>
#include <vector>

#include "BenchProgram.h"
#include "CustomersTable.h"
#include "Workspace.h"

namespace {

using bench::Customer;
using bench::kCities;
using bench::CityOf;

constexpr int kLookups = 20000;
int gRecords = 1000000;
std::vector<int32_t> gOrder;   // ids in insertion order (a permutation)
std::vector<int32_t> gProbes;  // ids looked up and rewritten
bench::Workspace gWork;
CTTables::TCTTable* gTable = nullptr;  // "customers", written through the dataset
CTDbIntf::TLoadAlignment gAlign = CTDbIntf::laByte;

Customer Make(int32_t id) { return bench::MakeCustomer(id, bench::ScrambledName(id)); }

// The engine alone on the dataset's own table: its file is open exclusively, so no other cursor
// can open it.
int16_t DatasetFile() { return static_cast<int16_t>(gTable->Cursor()->DataFileNo); }

// The engine cases' bench::ReadFields: every field of the record image read.
double ReadRecord(const Customer& c) {
  return c.id + static_cast<double>(strnlen(c.name, sizeof c.name) + strnlen(c.city, sizeof c.city)) + c.balance;
}

// ---- the dataset layer -------------------------------------------------------------------

void Dataset_AppendPost(benchmark::State& state) {
  for (auto _ : state) {
    for (int32_t id : gOrder) {
      gTable->Append();
      gTable->FieldByName("ID")->SetAsInteger(id);
      gTable->FieldByName("NAME")->SetAsString(bench::ScrambledName(id));
      gTable->FieldByName("CITY")->SetAsString(CityOf(id));
      gTable->FieldByName("BALANCE")->SetAsFloat(id * 0.25);
      gTable->Post();
    }
  }
  state.SetItemsProcessed(gRecords);
}

void DatasetScan(benchmark::State& state, const char* index) {
  gTable->SetIndexName(index);
  const auto fields = bench::CustomerFields(*gTable);
  int64_t rows = 0;
  for (auto _ : state) {
    double sum = 0;
    for (gTable->First(); !gTable->Eof(); gTable->Next()) {
      sum += bench::ReadFields(fields);
      ++rows;
    }
    benchmark::DoNotOptimize(sum);
  }
  if (rows != gRecords) state.SkipWithError("scan did not see every record");
  state.SetItemsProcessed(rows);
}
void Dataset_ScanById(benchmark::State& state) { DatasetScan(state, "ById"); }
void Dataset_ScanByCity(benchmark::State& state) { DatasetScan(state, "ByCity"); }

void Dataset_FindKey(benchmark::State& state) {
  gTable->SetIndexName("ById");
  int found = 0;
  for (auto _ : state)
    for (int32_t id : gProbes) found += gTable->FindKey({fw::Variant(id)}) ? 1 : 0;
  if (found != kLookups) state.SkipWithError("a key was not found");
  state.SetItemsProcessed(kLookups);
}

void Dataset_RangeWalk(benchmark::State& state) {
  gTable->SetIndexName("ByCity");
  const auto fields = bench::CustomerFields(*gTable);
  int64_t rows = 0;
  for (auto _ : state) {
    double sum = 0;
    for (int city = 0; city < kCities; ++city) {
      // Both key fields: the range compares every field ever assigned while setting keys, and
      // the FindKey cases assigned ID.
      const fw::Variant name(CityOf(city));
      gTable->SetRange({name, fw::Variant(int32_t{0})}, {name, fw::Variant(int32_t{2147483647})});
      for (; !gTable->Eof(); gTable->Next()) {
        sum += bench::ReadFields(fields);
        ++rows;
      }
    }
    gTable->CancelRange();
    benchmark::DoNotOptimize(sum);
  }
  if (rows != gRecords) state.SkipWithError("the ranges did not cover every record");
  state.SetItemsProcessed(rows);
}

void Dataset_EditPost(benchmark::State& state) {
  gTable->SetIndexName("ById");
  for (auto _ : state) {
    for (int32_t id : gProbes) {
      gTable->FindKey({fw::Variant(id)});
      gTable->Edit();
      gTable->FieldByName("BALANCE")->SetAsFloat(id * 0.5);
      gTable->Post();
    }
  }
  state.SetItemsProcessed(kLookups);
}

// ---- the engine calls alone ----------------------------------------------------------------

void Engine_AddRecord(benchmark::State& state) {
  bench::CreateCustomersTable(*gWork.conn, gWork.dir, "enginecust", bench::CityIndex::kCityId);
  bench::EngineCustomers t(*gWork.conn, gWork.dir, "enginecust");
  for (auto _ : state) {
    for (int32_t id : gOrder) {
      Customer c = Make(id);
      if (CTDbIntf::AddRecord(gAlign, t.dat, &c) != 0) state.SkipWithError("ADDREC failed");
    }
  }
  state.SetItemsProcessed(gRecords);
}

void EngineScan(benchmark::State& state, bool byCity) {
  bench::EngineCustomers t(DatasetFile());
  const int16_t key = byCity ? t.byCity : t.byId;
  int64_t rows = 0;
  for (auto _ : state) {
    Customer c{};
    double sum = 0;
    for (int16_t r = CTDbIntf::FirstRecord(gAlign, key, &c); r == 0; r = CTDbIntf::NextRecord(gAlign, key, &c)) {
      sum += ReadRecord(c);
      ++rows;
    }
    benchmark::DoNotOptimize(sum);
  }
  state.SetItemsProcessed(rows);
}
void Engine_ScanById(benchmark::State& state) { EngineScan(state, false); }
void Engine_ScanByCity(benchmark::State& state) { EngineScan(state, true); }

void Engine_Find(benchmark::State& state) {
  bench::EngineCustomers t(DatasetFile());
  int found = 0;
  for (auto _ : state) {
    for (int32_t id : gProbes) {
      Customer probe = Make(id), c{};
      char key[64] = {};
      CTDbIntf::BuildKey(gAlign, t.byId, reinterpret_cast<char*>(&probe), key, 0, 0);
      found += CTDbIntf::GetRecord(gAlign, t.byId, key, &c) == 0 ? 1 : 0;
    }
  }
  if (found != kLookups) state.SkipWithError("a key was not found");
  state.SetItemsProcessed(kLookups);
}

void Engine_RangeWalk(benchmark::State& state) {
  bench::EngineCustomers t(DatasetFile());
  int64_t rows = 0;
  for (auto _ : state) {
    double sum = 0;
    for (int city = 0; city < kCities; ++city) {
      Customer probe{}, c{};
      std::snprintf(probe.city, sizeof probe.city, "%s", CityOf(city).c_str());
      char key[64] = {};
      CTDbIntf::BuildKey(gAlign, t.byCity, reinterpret_cast<char*>(&probe), key, 0, 0);
      for (int16_t r = CTDbIntf::FirstInSet(gAlign, t.byCity, key, &c, 20); r == 0;
           r = CTDbIntf::NextInSet(gAlign, t.byCity, &c)) {
        sum += ReadRecord(c);
        ++rows;
      }
    }
    benchmark::DoNotOptimize(sum);
  }
  if (rows != gRecords) state.SkipWithError("the ranges did not cover every record");
  state.SetItemsProcessed(rows);
}

void Engine_FindRewrite(benchmark::State& state) {
  bench::EngineCustomers t(DatasetFile());
  for (auto _ : state) {
    for (int32_t id : gProbes) {
      Customer probe = Make(id), c{};
      char key[64] = {};
      CTDbIntf::BuildKey(gAlign, t.byId, reinterpret_cast<char*>(&probe), key, 0, 0);
      if (CTDbIntf::GetRecord(gAlign, t.byId, key, &c) != 0) state.SkipWithError("EQLREC failed");
      c.balance = id * 0.75;
      if (CTDbIntf::ReWriteRecord(gAlign, t.dat, &c) != 0) state.SkipWithError("RWTREC failed");
    }
  }
  state.SetItemsProcessed(kLookups);
}

}  // namespace

BENCHMARK(Dataset_AppendPost)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(Engine_AddRecord)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(Dataset_ScanById)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(Engine_ScanById)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(Dataset_ScanByCity)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(Engine_ScanByCity)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(Dataset_FindKey)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(Engine_Find)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(Dataset_RangeWalk)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(Engine_RangeWalk)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(Dataset_EditPost)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(Engine_FindRewrite)->Iterations(1)->Unit(benchmark::kMillisecond);

int main(int argc, char** argv) {
  bench::BenchProgram program("dataset_bench", argc, argv, bench::Flags().Int("--records=", gRecords, kLookups));
  std::mt19937 random(42);
  gOrder = bench::ShuffledIds(1, gRecords, random);
  for (int i = 0; i < kLookups; ++i) gProbes.push_back(gOrder[static_cast<size_t>(random() % gRecords)]);
  std::sort(gProbes.begin(), gProbes.end());
  gProbes.erase(std::unique(gProbes.begin(), gProbes.end()), gProbes.end());
  for (int32_t id = 1; static_cast<int>(gProbes.size()) < kLookups; ++id)
    if (!std::binary_search(gProbes.begin(), gProbes.end(), id)) gProbes.push_back(id);
  std::shuffle(gProbes.begin(), gProbes.end(), random);

  return program.Run([&] {
    gWork.Open(program.Dir());
    gAlign = gWork.conn->Alignment();
    bench::CreateCustomersTable(*gWork.conn, gWork.dir, "customers", bench::CityIndex::kCityId);
    gTable = gWork.Table("customers", true);
    gTable->Open();
    benchmark::RunSpecifiedBenchmarks();
    gWork.Free();
  });
}
