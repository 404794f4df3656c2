// blob_bench: memo and blob fields through TCTTable against raw LMDB puts and gets of the same
// bytes in the same run. Memo: N records (default 100,000) with a 2 KB memo, written in one
// transaction, then scanned back reading every memo. Blob: M records (default 200) with a 1 MB
// blob written and read back through CreateBlobStream, one transaction for the writes. Run from
// a Release build: <build>/bench/blob_bench [--memo-records=N] [--blob-records=M]. Each case runs
// once and reports bytes_per_second; the dataset cases add `x_lmdb`, their process CPU time over
// that of the LMDB case before them (CPU time is steadier than wall time on a shared machine).
#include <benchmark/benchmark.h>
#include <lmdb.h>

#include <cstdlib>
#include <stdexcept>
#include <string>

#include "BenchClock.h"
#include "BenchProgram.h"
#include "TBlobField.h"
#include "Workspace.h"

namespace {

constexpr size_t kMemoSize = 2048;
constexpr size_t kBlobSize = size_t{1} << 20;
int gMemoRecords = 100000;
int gBlobRecords = 200;
bench::Workspace gWork;
MDB_env* gEnv = nullptr;
double gLmdbSeconds =
    0;  // CPU time of the last LMDB case, the measure of the dataset case after it

// The content of record `id`: printable for memos, every byte value for blobs.
std::string Content(int32_t id, size_t size, bool text) {
  std::string bytes(size, '\0');
  for (size_t i = 0; i < size; ++i) {
    const auto value = static_cast<unsigned>(id * 31 + i * 7);
    bytes[i] = static_cast<char>(text ? 'a' + value % 26 : value & 0xFF);
  }
  return bytes;
}

CTTables::TCTTable* CreateTable(const char* name, fw::TFieldType type) {
  CTTables::TCTTable* table = gWork.Table(name, true);
  table->FieldDefs()->Add("ID", fw::ftInteger, 0, true);
  table->FieldDefs()->Add("DATA", type, 0, false);
  // Flag4: the engine keeps the keys.
  table->IndexDefs()->Add("ById", "ID", "", true, false,
                          fw::TIndexOptions{fw::ixPrimary, fw::ixUnique});
  table->CreateTable();
  table->Open();
  return table;
}

// ---- raw LMDB: one database per case, the record number as key -------------------------------

MDB_dbi OpenDatabase(const char* name) {
  MDB_txn* txn = nullptr;
  MDB_dbi dbi = 0;
  if (mdb_txn_begin(gEnv, nullptr, 0, &txn) != 0 ||
      mdb_dbi_open(txn, name, MDB_CREATE | MDB_INTEGERKEY, &dbi) != 0 || mdb_txn_commit(txn) != 0)
    std::abort();
  return dbi;
}

void LmdbPut(benchmark::State& state, const char* name, int records, size_t size, bool text) {
  const MDB_dbi dbi = OpenDatabase(name);
  const double start = bench::CpuSeconds();
  for (auto _ : state) {
    MDB_txn* txn = nullptr;
    if (mdb_txn_begin(gEnv, nullptr, 0, &txn) != 0) state.SkipWithError("txn");
    for (int32_t id = 1; id <= records; ++id) {
      const std::string content = Content(id, size, text);
      uint32_t key = static_cast<uint32_t>(id);
      MDB_val k{sizeof key, &key}, v{content.size(), const_cast<char*>(content.data())};
      if (mdb_put(txn, dbi, &k, &v, 0) != 0) state.SkipWithError("mdb_put");
    }
    if (mdb_txn_commit(txn) != 0) state.SkipWithError("commit");
  }
  gLmdbSeconds = bench::CpuSeconds() - start;
  state.SetBytesProcessed(static_cast<int64_t>(records) * static_cast<int64_t>(size));
}

void LmdbGet(benchmark::State& state, const char* name, int records, size_t size) {
  const MDB_dbi dbi = OpenDatabase(name);
  const double start = bench::CpuSeconds();
  int64_t bytes = 0;
  for (auto _ : state) {
    MDB_txn* txn = nullptr;
    if (mdb_txn_begin(gEnv, nullptr, MDB_RDONLY, &txn) != 0) state.SkipWithError("txn");
    for (int32_t id = 1; id <= records; ++id) {
      uint32_t key = static_cast<uint32_t>(id);
      MDB_val k{sizeof key, &key}, v{};
      if (mdb_get(txn, dbi, &k, &v) != 0) state.SkipWithError("mdb_get");
      const std::string content(static_cast<const char*>(v.mv_data),
                                v.mv_size);  // as a field hands it out
      bytes += static_cast<int64_t>(content.size());
    }
    mdb_txn_abort(txn);
  }
  gLmdbSeconds = bench::CpuSeconds() - start;
  if (bytes != static_cast<int64_t>(records) * static_cast<int64_t>(size))
    state.SkipWithError("short read");
  state.SetBytesProcessed(bytes);
}

void Report(benchmark::State& state, double start, int64_t bytes) {
  state.SetBytesProcessed(bytes);
  if (gLmdbSeconds > 0) state.counters["x_lmdb"] = (bench::CpuSeconds() - start) / gLmdbSeconds;
}

// ---- memo: 2 KB per record, all in one transaction ----------------------------------------

CTTables::TCTTable* gMemos = nullptr;

void Lmdb_MemoPut(benchmark::State& state) {
  LmdbPut(state, "memos", gMemoRecords, kMemoSize, true);
}

void Dataset_MemoPost(benchmark::State& state) {
  fw::TField* id = gMemos->FieldByName("ID");
  fw::TField* memo = gMemos->FieldByName("DATA");
  const double start = bench::CpuSeconds();
  for (auto _ : state) {
    gWork.conn->StartTransaction();
    for (int32_t i = 1; i <= gMemoRecords; ++i) {
      gMemos->Append();
      id->SetAsInteger(i);
      memo->SetAsString(Content(i, kMemoSize, true));
      gMemos->Post();
    }
    gWork.conn->Commit();
  }
  Report(state, start, static_cast<int64_t>(gMemoRecords) * static_cast<int64_t>(kMemoSize));
}

void Lmdb_MemoGet(benchmark::State& state) { LmdbGet(state, "memos", gMemoRecords, kMemoSize); }

void Dataset_MemoScan(benchmark::State& state) {
  fw::TField* memo = gMemos->FieldByName("DATA");
  const double start = bench::CpuSeconds();
  int64_t bytes = 0;
  for (auto _ : state)
    for (gMemos->First(); !gMemos->Eof(); gMemos->Next())
      bytes += static_cast<int64_t>(memo->AsString().size());
  if (bytes != static_cast<int64_t>(gMemoRecords) * static_cast<int64_t>(kMemoSize))
    state.SkipWithError("the scan did not read every memo");
  Report(state, start, bytes);
}

// ---- blob: 1 MB per record through CreateBlobStream ---------------------------------------

CTTables::TCTTable* gBlobs = nullptr;

void Lmdb_BlobPut(benchmark::State& state) {
  LmdbPut(state, "blobs", gBlobRecords, kBlobSize, false);
}

void Dataset_BlobWrite(benchmark::State& state) {
  fw::TField* id = gBlobs->FieldByName("ID");
  fw::TField* blob = gBlobs->FieldByName("DATA");
  const double start = bench::CpuSeconds();
  for (auto _ : state) {
    gWork.conn->StartTransaction();
    for (int32_t i = 1; i <= gBlobRecords; ++i) {
      const std::string content = Content(i, kBlobSize, false);
      gBlobs->Append();
      id->SetAsInteger(i);
      std::unique_ptr<fw::TStream> stream = gBlobs->CreateBlobStream(blob, fw::bmWrite);
      stream->WriteBuffer(content.data(), static_cast<int64_t>(content.size()));
      stream->Commit();
      stream.reset();
      gBlobs->Post();
    }
    gWork.conn->Commit();
  }
  Report(state, start, static_cast<int64_t>(gBlobRecords) * static_cast<int64_t>(kBlobSize));
}

void Lmdb_BlobGet(benchmark::State& state) { LmdbGet(state, "blobs", gBlobRecords, kBlobSize); }

void Dataset_BlobRead(benchmark::State& state) {
  fw::TField* blob = gBlobs->FieldByName("DATA");
  const double start = bench::CpuSeconds();
  int64_t bytes = 0;
  std::string content(kBlobSize, '\0');
  for (auto _ : state) {
    for (gBlobs->First(); !gBlobs->Eof(); gBlobs->Next()) {
      std::unique_ptr<fw::TStream> stream = gBlobs->CreateBlobStream(blob, fw::bmRead);
      const int64_t size = stream->Size();
      if (size != static_cast<int64_t>(kBlobSize)) state.SkipWithError("a blob has the wrong size");
      stream->ReadBuffer(content.data(), size);
      bytes += size;
    }
  }
  if (bytes != static_cast<int64_t>(gBlobRecords) * static_cast<int64_t>(kBlobSize))
    state.SkipWithError("the scan did not read every blob");
  Report(state, start, bytes);
}

}  // namespace

BENCHMARK(Lmdb_MemoPut)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(Dataset_MemoPost)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(Lmdb_MemoGet)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(Dataset_MemoScan)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(Lmdb_BlobPut)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(Dataset_BlobWrite)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(Lmdb_BlobGet)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(Dataset_BlobRead)->Iterations(1)->Unit(benchmark::kMillisecond);

int main(int argc, char** argv) {
  bench::BenchProgram program("blob_bench", argc, argv,
                             bench::Flags()
                                 .Int("--memo-records=", gMemoRecords, 1)
                                 .Int("--blob-records=", gBlobRecords, 1));
  const int status = program.Run([&] {
    if (mdb_env_create(&gEnv) != 0 || mdb_env_set_maxdbs(gEnv, 4) != 0 ||
        mdb_env_set_mapsize(gEnv, size_t{16} << 30) != 0 ||
        mdb_env_open(gEnv, (program.Dir() + "/plain.mdb").c_str(), MDB_NOSUBDIR | MDB_NOSYNC, 0644) != 0)
      throw std::runtime_error("cannot open the LMDB environment");
    gWork.Open(program.Dir());
    gMemos = CreateTable("memos", fw::ftMemo);
    gBlobs = CreateTable("blobs", fw::ftBlob);
    benchmark::RunSpecifiedBenchmarks();
    gWork.Free();
  });
  if (gEnv != nullptr) mdb_env_close(gEnv);
  return status;
}
