// master_detail_bench: a detail table following its master through TCTTable's master/detail link,
// against the same walk done with a plain SetRange per customer, on the demo's customers (3,000)
// and orders (12,000) times a scale factor (default 100). Run from a Release build:
// <build>/bench/master_detail_bench [--scale=N]. The tables are filled in transactions of
// kBatch records, because one very large transaction is slow in the engine.
#include <benchmark/benchmark.h>

#include <functional>
#include <string>
#include <vector>

#include "BenchProgram.h"
#include "TDataSource.h"
#include "TField.h"
#include "Workspace.h"

namespace {

constexpr int kCustomers = 3000;
constexpr int kOrders = 12000;
constexpr int kBatch = 5000;
int gScale = 100;
bench::Workspace gWork;

CTTables::TCTTable* NewTable(const char* name) { return gWork.Table(name, true); }

void Fill(CTTables::TCTTable* table, int count, const std::function<std::vector<fw::Variant>(int32_t)>& row) {
  table->CreateTable();
  table->Open();
  for (int32_t i = 1; i <= count;) {
    gWork.conn->StartTransaction();
    for (int n = 0; n < kBatch && i <= count; ++n, ++i) table->AppendRecord(row(i));
    gWork.conn->Commit();
  }
  table->Close();
}

void CreateTables() {
  const int customers = kCustomers * gScale;
  CTTables::TCTTable* cust = NewTable("customers");
  cust->FieldDefs()->Add("CUSTNO", fw::ftInteger);
  cust->FieldDefs()->Add("NAME", fw::ftString, 30);
  cust->IndexDefs()->Add("ByNo", "CUSTNO", "", true, false, {fw::ixPrimary, fw::ixUnique});
  Fill(cust, customers, [](int32_t i) {
    return std::vector<fw::Variant>{fw::Variant(i), fw::Variant("customer " + std::to_string(i))};
  });
  CTTables::TCTTable* ords = NewTable("orders");
  ords->FieldDefs()->Add("ORDNO", fw::ftInteger);
  ords->FieldDefs()->Add("CUSTNO", fw::ftInteger);
  ords->FieldDefs()->Add("AMOUNT", fw::ftFloat);
  ords->IndexDefs()->Add("ByNo", "ORDNO", "", true, false, {fw::ixPrimary, fw::ixUnique});
  ords->IndexDefs()->Add("ByCustomer", "CUSTNO;ORDNO", "", true, false, {fw::ixUnique});
  // Orders spread over the customers in no key order, four per customer on average.
  Fill(ords, kOrders * gScale, [customers](int32_t i) {
    const auto owner = static_cast<int32_t>((int64_t{i} * 7919) % customers + 1);
    return std::vector<fw::Variant>{fw::Variant(i), fw::Variant(owner), fw::Variant(i * 0.5)};
  });
  delete cust;
  delete ords;
}

void Report(benchmark::State& state, int64_t customers, int64_t details) {
  state.counters["customers/s"] = benchmark::Counter(static_cast<double>(customers), benchmark::Counter::kIsRate);
  state.counters["details/s"] = benchmark::Counter(static_cast<double>(details), benchmark::Counter::kIsRate);
  if (details != int64_t{kOrders} * gScale) state.SkipWithError("not every order was read");
}

// Walks every customer; the orders follow through the master/detail link.
void MasterDetail_Walk(benchmark::State& state) {
  CTTables::TCTTable* cust = NewTable("customers");
  CTTables::TCTTable* ords = NewTable("orders");
  auto* source = new fw::TDataSource(gWork.owner);
  source->SetDataSet(cust);
  ords->SetIndexName("ByCustomer");
  ords->SetMasterSource(source);
  ords->SetMasterFields("CUSTNO");
  cust->Open();
  ords->Open();
  fw::TField* amount = ords->FieldByName("AMOUNT");
  int64_t customers = 0, details = 0;
  double sum = 0;
  for (auto _ : state) {
    for (cust->First(); !cust->Eof(); cust->Next(), ++customers)
      for (; !ords->Eof(); ords->Next(), ++details) sum += amount->AsFloat();
  }
  benchmark::DoNotOptimize(sum);
  Report(state, customers, details);
  delete ords;
  delete source;
  delete cust;
}

// The same walk with a range set by hand for each customer: the floor of the link's cost.
void PlainRange_Walk(benchmark::State& state) {
  CTTables::TCTTable* cust = NewTable("customers");
  CTTables::TCTTable* ords = NewTable("orders");
  ords->SetIndexName("ByCustomer");
  cust->Open();
  ords->Open();
  fw::TField* number = cust->FieldByName("CUSTNO");
  fw::TField* amount = ords->FieldByName("AMOUNT");
  int64_t customers = 0, details = 0;
  double sum = 0;
  for (auto _ : state) {
    for (cust->First(); !cust->Eof(); cust->Next(), ++customers) {
      const fw::Variant key(number->AsInteger());
      ords->SetRange({key}, {key});
      for (; !ords->Eof(); ords->Next(), ++details) sum += amount->AsFloat();
    }
  }
  benchmark::DoNotOptimize(sum);
  Report(state, customers, details);
  delete ords;
  delete cust;
}

}  // namespace

BENCHMARK(MasterDetail_Walk)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(PlainRange_Walk)->Iterations(1)->Unit(benchmark::kMillisecond);

int main(int argc, char** argv) {
  bench::BenchProgram program("master_detail_bench", argc, argv, bench::Flags().Int("--scale=", gScale, 1));
  return program.Run([&] {
    gWork.Open(program.Dir());
    CreateTables();
    benchmark::RunSpecifiedBenchmarks();
    gWork.Free();
  });
}
