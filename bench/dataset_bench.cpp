// dataset_bench: TCTTable as an application uses it against the engine calls alone for the same
// work, on 1,000,000 customer records with two indexes (ID unique; CITY+ID). Run from a Release
// build: <build>/bench/dataset_bench [--records=N]. Each case runs once over the whole table and
// reports items_per_second; the "Engine" cases are the floor under the dataset layer.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include "CTTables.h"
#include "CtRecords.h"
#include "Ctdb.h"
#include "TField.h"

#include "CustomerRecord.h"

namespace {

using bench::Customer;
using bench::kCities;
using bench::CityOf;

constexpr int kLookups = 20000;
int gRecords = 1000000;
std::vector<int32_t> gOrder;   // ids in insertion order (a permutation)
std::vector<int32_t> gProbes;  // ids looked up and rewritten
std::string gDir;
fw::TComponent* gOwner = nullptr;
Ctdb::TCTConnection* gConn = nullptr;
CTTables::TCTTable* gTable = nullptr;  // "customers", written through the dataset
CTDbIntf::TLoadAlignment gAlign = CTDbIntf::laByte;

std::string NameOf(int32_t id) {
  char text[32];
  std::snprintf(text, sizeof text, "name%07d", (id * 7919) % 1000003);
  return text;
}
Customer Make(int32_t id) {
  Customer c{};
  c.id = id;
  std::snprintf(c.name, sizeof c.name, "%s", NameOf(id).c_str());
  std::snprintf(c.city, sizeof c.city, "%s", CityOf(id).c_str());
  c.balance = id * 0.25;
  return c;
}

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

void CreateCustomers(const char* name) {
  Ctdb::CTTblDesc desc;
  desc.Name = name;
  desc.TableType = "CTree";
  desc.Fields = {Field(1, "ID", Ctdb::fldINT32, 0, 4), Field(2, "NAME", Ctdb::fldZSTRING, Ctdb::fldstFSTRING, 30),
                 Field(3, "CITY", Ctdb::fldZSTRING, Ctdb::fldstFSTRING, 20),
                 Field(4, "BALANCE", Ctdb::fldFLOAT, 0, 8)};
  Ctdb::CTIdxDesc byId;
  byId.Name = "ById";
  byId.Unique = byId.Primary = byId.Maintained = Ctdb::kWordTrue;
  byId.KeyFields[0] = 1;
  byId.FieldsInKey = 1;
  Ctdb::CTIdxDesc byCity = byId;
  byCity.Name = "ByCity";
  byCity.Primary = Ctdb::kWordFalse;
  byCity.KeyFields[0] = 3;
  byCity.KeyFields[1] = 1;
  byCity.FieldsInKey = 2;
  desc.Indexes = {byId, byCity};
  CTDbIntf::CtError(gConn->CreateTable(gDir, true, desc));
}

// The engine alone: the data file and key numbers of a table opened by the connection (a new
// exclusive cursor, or the dataset's own table: its file is open exclusively).
struct EngineTable {
  std::unique_ptr<Ctdb::TCTCursorDesc> cursor;
  int16_t dat = -1;
  int16_t byId = -1;
  int16_t byCity = -1;
  explicit EngineTable(const char* name) {
    if (std::strcmp(name, "customers") == 0) {
      dat = gTable->Cursor()->DataFileNo;
    } else {
      CTDbIntf::CtError(gConn->OpenCursor(cursor, name, gDir, 0));
      dat = cursor->DataFileNo;
    }
    byId = static_cast<int16_t>(dat + 1);
    byCity = static_cast<int16_t>(dat + 2);
  }
  ~EngineTable() {
    if (cursor != nullptr) static_cast<void>(gConn->CloseCursor(cursor));
  }
};

// Reads every field as an application would, so the compiler cannot drop the reads.
double ReadFields(fw::TField* const* fields) {
  return fields[0]->AsInteger() + static_cast<double>(fields[1]->AsString().size() + fields[2]->AsString().size()) +
         fields[3]->AsFloat();
}
double ReadRecord(const Customer& c) {
  return c.id + static_cast<double>(strnlen(c.name, sizeof c.name) + strnlen(c.city, sizeof c.city)) + c.balance;
}

void Report(benchmark::State& state, int64_t items) { state.SetItemsProcessed(items); }

// ---- the dataset layer -------------------------------------------------------------------

void Dataset_AppendPost(benchmark::State& state) {
  for (auto _ : state) {
    for (int32_t id : gOrder) {
      gTable->Append();
      gTable->FieldByName("ID")->SetAsInteger(id);
      gTable->FieldByName("NAME")->SetAsString(NameOf(id));
      gTable->FieldByName("CITY")->SetAsString(CityOf(id));
      gTable->FieldByName("BALANCE")->SetAsFloat(id * 0.25);
      gTable->Post();
    }
  }
  Report(state, gRecords);
}

void DatasetScan(benchmark::State& state, const char* index) {
  gTable->SetIndexName(index);
  fw::TField* fields[] = {gTable->FieldByName("ID"), gTable->FieldByName("NAME"), gTable->FieldByName("CITY"),
                          gTable->FieldByName("BALANCE")};
  int64_t rows = 0;
  for (auto _ : state) {
    double sum = 0;
    for (gTable->First(); !gTable->Eof(); gTable->Next()) {
      sum += ReadFields(fields);
      ++rows;
    }
    benchmark::DoNotOptimize(sum);
  }
  if (rows != gRecords) state.SkipWithError("scan did not see every record");
  Report(state, rows);
}
void Dataset_ScanById(benchmark::State& state) { DatasetScan(state, "ById"); }
void Dataset_ScanByCity(benchmark::State& state) { DatasetScan(state, "ByCity"); }

void Dataset_FindKey(benchmark::State& state) {
  gTable->SetIndexName("ById");
  int found = 0;
  for (auto _ : state)
    for (int32_t id : gProbes) found += gTable->FindKey({fw::Variant(id)}) ? 1 : 0;
  if (found != kLookups) state.SkipWithError("a key was not found");
  Report(state, kLookups);
}

void Dataset_RangeWalk(benchmark::State& state) {
  gTable->SetIndexName("ByCity");
  fw::TField* fields[] = {gTable->FieldByName("ID"), gTable->FieldByName("NAME"), gTable->FieldByName("CITY"),
                          gTable->FieldByName("BALANCE")};
  int64_t rows = 0;
  for (auto _ : state) {
    double sum = 0;
    for (int city = 0; city < kCities; ++city) {
      // Both key fields: the range compares every field ever assigned while setting keys, and
      // the FindKey cases assigned ID.
      const fw::Variant name(CityOf(city));
      gTable->SetRange({name, fw::Variant(int32_t{0})}, {name, fw::Variant(int32_t{2147483647})});
      for (; !gTable->Eof(); gTable->Next()) {
        sum += ReadFields(fields);
        ++rows;
      }
    }
    gTable->CancelRange();
    benchmark::DoNotOptimize(sum);
  }
  if (rows != gRecords) state.SkipWithError("the ranges did not cover every record");
  Report(state, rows);
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
  Report(state, kLookups);
}

// ---- the engine calls alone ----------------------------------------------------------------

void Engine_AddRecord(benchmark::State& state) {
  CreateCustomers("enginecust");
  EngineTable t("enginecust");
  for (auto _ : state) {
    for (int32_t id : gOrder) {
      Customer c = Make(id);
      if (CTDbIntf::AddRecord(gAlign, t.dat, &c) != 0) state.SkipWithError("ADDREC failed");
    }
  }
  Report(state, gRecords);
}

void EngineScan(benchmark::State& state, bool byCity) {
  EngineTable t("customers");
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
  Report(state, rows);
}
void Engine_ScanById(benchmark::State& state) { EngineScan(state, false); }
void Engine_ScanByCity(benchmark::State& state) { EngineScan(state, true); }

void Engine_Find(benchmark::State& state) {
  EngineTable t("customers");
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
  Report(state, kLookups);
}

void Engine_RangeWalk(benchmark::State& state) {
  EngineTable t("customers");
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
  Report(state, rows);
}

void Engine_FindRewrite(benchmark::State& state) {
  EngineTable t("customers");
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
  Report(state, kLookups);
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
  std::vector<char*> args;
  for (int i = 0; i < argc; ++i) {
    if (std::strncmp(argv[i], "--records=", 10) == 0)
      gRecords = std::max(kLookups, std::atoi(argv[i] + 10));
    else
      args.push_back(argv[i]);
  }
  int count = static_cast<int>(args.size());
  benchmark::Initialize(&count, args.data());

  gDir = (std::filesystem::temp_directory_path() / ("dataset_bench_" + std::to_string(::getpid()))).string();
  std::filesystem::create_directories(gDir);
  std::mt19937 random(42);
  for (int32_t id = 1; id <= gRecords; ++id) gOrder.push_back(id);
  std::shuffle(gOrder.begin(), gOrder.end(), random);
  for (int i = 0; i < kLookups; ++i) gProbes.push_back(gOrder[static_cast<size_t>(random() % gRecords)]);
  std::sort(gProbes.begin(), gProbes.end());
  gProbes.erase(std::unique(gProbes.begin(), gProbes.end()), gProbes.end());
  for (int32_t id = 1; static_cast<int>(gProbes.size()) < kLookups; ++id)
    if (!std::binary_search(gProbes.begin(), gProbes.end(), id)) gProbes.push_back(id);
  std::shuffle(gProbes.begin(), gProbes.end(), random);

  int status = 0;
  try {
    gOwner = new fw::TComponent(nullptr);
    gConn = new Ctdb::TCTConnection(gOwner);
    gConn->SetActive(true);
    gAlign = gConn->Alignment();
    CreateCustomers("customers");
    gTable = new CTTables::TCTTable(gOwner);
    gTable->SetConnection(gConn);
    gTable->SetDatabase(gDir);
    gTable->SetTableName("customers");
    gTable->SetExclusive(true);
    gTable->Open();
    benchmark::RunSpecifiedBenchmarks();
    gOwner->Free();
  } catch (const std::exception& e) {
    std::fprintf(stderr, "dataset_bench: %s\n", e.what());
    status = 1;
  }
  benchmark::Shutdown();
  std::filesystem::remove_all(gDir);
  return status;
}
