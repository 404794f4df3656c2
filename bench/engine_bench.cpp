// engine_bench: the engine against a plain LMDB program doing the least work for the same
// operations, on 1,000,000 customer records with two indexes (id unique; city+name with
// duplicates). Run from a Release build: <build>/bench/engine_bench [--records=N]
#include <benchmark/benchmark.h>
#include <lmdb.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <vector>

#include "BenchProgram.h"
#include "CustomerRecord.h"
#include "EngineLibrary.h"

namespace {

using Customer = bench::EngineCustomer;
using bench::kCities;
constexpr int kLookups = 20000;
int gRecords = 1000000;
std::vector<int32_t> gOrder;    // ids in insertion order (a permutation)
std::vector<int32_t> gProbes;   // ids looked up and rewritten

Customer Make(int32_t id, int cityShift = 0) {
  Customer c{};
  c.id = id;
  std::snprintf(c.name, sizeof c.name, "name%07d", (id * 7919) % 1000003);
  std::snprintf(c.city, sizeof c.city, "city%02d", (id + cityShift) % kCities);
  c.balance = id * 0.25;
  c.date = 100000 + id % 5000;
  return c;
}

// ---- the engine, loaded as the package loads it ----
struct Engine : bench::EngineLibrary {
  COUNT dat = -1;
} * gEngine;

// ---- plain LMDB: a records database and two key databases maintained by hand ----
struct Plain {
  MDB_env* env = nullptr;
  MDB_dbi rec = 0, k1 = 0, k2 = 0;
  uint32_t next = 128;
} gPlain;

void Key1(const Customer& c, uint8_t* k) {
  uint32_t v = static_cast<uint32_t>(c.id) ^ 0x80000000u;
  for (int i = 0; i < 4; ++i) k[i] = static_cast<uint8_t>(v >> (24 - 8 * i));
}
void Key2(const Customer& c, uint32_t pos, uint8_t* k) {
  std::memcpy(k, c.city, 20);
  std::memcpy(k + 20, c.name, 30);
  for (int i = 0; i < 4; ++i) k[50 + i] = static_cast<uint8_t>(pos >> (24 - 8 * i));
}

// Creates the files in the working directory.
void Setup() {
  std::mt19937 rng(42);
  gOrder = bench::ShuffledIds(0, gRecords, rng);
  for (int i = 0; i < kLookups; ++i) gProbes.push_back(static_cast<int32_t>(rng() % gRecords));

  gEngine = new Engine();
  if (!gEngine->Start()) std::abort();
  static bench::EngineCustomersFile file((pTEXT) "bench", EXCLUSIVE);
  if (gEngine->CREIFIL(&file.file) != 0) std::abort();
  gEngine->dat = file.file.tfilno;

  mdb_env_create(&gPlain.env);
  mdb_env_set_maxdbs(gPlain.env, 4);
  mdb_env_set_mapsize(gPlain.env, size_t{1} << 30);
  if (mdb_env_open(gPlain.env, "plain.mdb", MDB_NOSUBDIR | MDB_NOSYNC, 0644) != 0) std::abort();
  MDB_txn* t;
  mdb_txn_begin(gPlain.env, nullptr, 0, &t);
  mdb_dbi_open(t, "rec", MDB_CREATE | MDB_INTEGERKEY, &gPlain.rec);
  mdb_dbi_open(t, "k1", MDB_CREATE, &gPlain.k1);
  mdb_dbi_open(t, "k2", MDB_CREATE, &gPlain.k2);
  mdb_txn_commit(t);
}

// ---- bulk add ----
void EngineAdd(benchmark::State& st) {
  for (auto _ : st)
    for (int32_t id : gOrder) {
      Customer c = Make(id);
      if (gEngine->ADDREC(gEngine->dat, &c) != 0) std::abort();
    }
  st.SetItemsProcessed(gRecords);
}
void PlainAdd(benchmark::State& st) {
  for (auto _ : st)
    for (int32_t id : gOrder) {
      Customer c = Make(id);
      uint8_t k1[4], k2[54];
      uint32_t pos = gPlain.next;
      gPlain.next += sizeof c;
      Key1(c, k1);
      Key2(c, pos, k2);
      MDB_txn* t;
      mdb_txn_begin(gPlain.env, nullptr, 0, &t);
      MDB_val rk{4, &pos}, rv{sizeof c, &c}, v1{4, k1}, v2{54, k2}, pv{4, &pos};
      mdb_put(t, gPlain.rec, &rk, &rv, MDB_APPEND);
      if (mdb_put(t, gPlain.k1, &v1, &pv, MDB_NOOVERWRITE) != 0) std::abort();
      mdb_put(t, gPlain.k2, &v2, &pv, MDB_NOOVERWRITE);
      if (mdb_txn_commit(t) != 0) std::abort();
    }
  st.SetItemsProcessed(gRecords);
}

// ---- scans ----
void EnginePhysicalScan(benchmark::State& st) {
  Customer c;
  long n = 0;
  for (auto _ : st)
    for (COUNT rc = gEngine->FRSREC(gEngine->dat, &c); rc == 0; rc = gEngine->NXTREC(gEngine->dat, &c)) ++n;
  if (n != gRecords) std::abort();
  st.SetItemsProcessed(n);
}
void PlainPhysicalScan(benchmark::State& st) {
  Customer c;
  long n = 0;
  for (auto _ : st) {
    MDB_txn* t;
    MDB_cursor* cur;
    mdb_txn_begin(gPlain.env, nullptr, MDB_RDONLY, &t);
    mdb_cursor_open(t, gPlain.rec, &cur);
    MDB_val k, v;
    for (int rc = mdb_cursor_get(cur, &k, &v, MDB_FIRST); rc == 0; rc = mdb_cursor_get(cur, &k, &v, MDB_NEXT)) {
      std::memcpy(&c, v.mv_data, sizeof c);
      ++n;
    }
    mdb_cursor_close(cur);
    mdb_txn_abort(t);
  }
  benchmark::DoNotOptimize(c);
  st.SetItemsProcessed(n);
}

// The driver's way: FRSKEY/NXTKEY, SETCURI on the position found, RRDREC.
void EngineKeyScan(benchmark::State& st) {
  const COUNT keyno = static_cast<COUNT>(gEngine->dat + st.range(0));
  Customer c;
  uint8_t key[64];
  long n = 0;
  for (auto _ : st)
    for (LONG pos = gEngine->FRSKEY(keyno, key); pos; pos = gEngine->NXTKEY(keyno, key)) {
      gEngine->SETCURI(gEngine->dat, pos, nullptr, 0);
      gEngine->RRDREC(gEngine->dat, &c);
      ++n;
    }
  if (n != gRecords) std::abort();
  st.SetItemsProcessed(n);
}
void EngineNxtRecScan(benchmark::State& st) {
  const COUNT keyno = static_cast<COUNT>(gEngine->dat + st.range(0));
  Customer c;
  long n = 0;
  for (auto _ : st)
    for (COUNT rc = gEngine->FRSREC(keyno, &c); rc == 0; rc = gEngine->NXTREC(keyno, &c)) ++n;
  if (n != gRecords) std::abort();
  st.SetItemsProcessed(n);
}
void PlainKeyScan(benchmark::State& st) {
  MDB_dbi dbi = st.range(0) == 1 ? gPlain.k1 : gPlain.k2;
  Customer c;
  long n = 0;
  for (auto _ : st) {
    MDB_txn* t;
    MDB_cursor* cur;
    mdb_txn_begin(gPlain.env, nullptr, MDB_RDONLY, &t);
    mdb_cursor_open(t, dbi, &cur);
    MDB_val k, v, rv;
    for (int rc = mdb_cursor_get(cur, &k, &v, MDB_FIRST); rc == 0; rc = mdb_cursor_get(cur, &k, &v, MDB_NEXT)) {
      MDB_val rk{4, v.mv_data};
      mdb_get(t, gPlain.rec, &rk, &rv);
      std::memcpy(&c, rv.mv_data, sizeof c);
      ++n;
    }
    mdb_cursor_close(cur);
    mdb_txn_abort(t);
  }
  benchmark::DoNotOptimize(c);
  st.SetItemsProcessed(n);
}

// ---- random lookups ----
void EngineEqlRec(benchmark::State& st) {
  Customer c;
  uint8_t key[4];
  for (auto _ : st)
    for (int32_t id : gProbes) {
      Customer probe = Make(id);
      gEngine->frmkey(static_cast<COUNT>(gEngine->dat + 1), (pTEXT) &probe, (pTEXT) key, 0, 0);
      if (gEngine->EQLREC(static_cast<COUNT>(gEngine->dat + 1), key, &c) != 0) std::abort();
    }
  st.SetItemsProcessed(kLookups);
}
void PlainEqlRec(benchmark::State& st) {
  Customer c;
  for (auto _ : st) {
    MDB_txn* t;
    mdb_txn_begin(gPlain.env, nullptr, MDB_RDONLY, &t);
    for (int32_t id : gProbes) {
      Customer probe = Make(id);
      uint8_t key[4];
      Key1(probe, key);
      MDB_val k{4, key}, v, rv;
      if (mdb_get(t, gPlain.k1, &k, &v) != 0) std::abort();
      MDB_val rk{4, v.mv_data};
      mdb_get(t, gPlain.rec, &rk, &rv);
      std::memcpy(&c, rv.mv_data, sizeof c);
    }
    mdb_txn_abort(t);
  }
  benchmark::DoNotOptimize(c);
  st.SetItemsProcessed(kLookups);
}

// ---- range counts, one per city ----
void CityRange(int city, uint8_t* low, uint8_t* high) {
  char name[21] = {};
  std::snprintf(name, sizeof name, "city%02d", city);
  std::memset(low, 0, 54);
  std::memset(high, 0xFF, 54);
  std::memcpy(low, name, 20);
  std::memcpy(high, name, 20);
}
void EngineRngent(benchmark::State& st) {
  long total = 0;
  for (auto _ : st)
    for (int city = 0; city < kCities; ++city) {
      uint8_t low[54], high[54];
      CityRange(city, low, high);
      total += gEngine->RNGENT(static_cast<COUNT>(gEngine->dat + 2), low, high);
    }
  if (total != gRecords) std::abort();
  st.SetItemsProcessed(kCities);
}
void PlainRngent(benchmark::State& st) {
  long total = 0;
  for (auto _ : st) {
    MDB_txn* t;
    MDB_cursor* cur;
    mdb_txn_begin(gPlain.env, nullptr, MDB_RDONLY, &t);
    mdb_cursor_open(t, gPlain.k2, &cur);
    for (int city = 0; city < kCities; ++city) {
      uint8_t low[54], high[54];
      CityRange(city, low, high);
      MDB_val k{54, low}, v;
      for (int rc = mdb_cursor_get(cur, &k, &v, MDB_SET_RANGE); rc == 0 && std::memcmp(k.mv_data, high, 54) <= 0;
           rc = mdb_cursor_get(cur, &k, &v, MDB_NEXT))
        ++total;
    }
    mdb_cursor_close(cur);
    mdb_txn_abort(t);
  }
  if (total != gRecords) std::abort();
  st.SetItemsProcessed(kCities);
}

// ---- rewrites that move the city+name key ----
void EngineRewrite(benchmark::State& st) {
  Customer c;
  uint8_t key[4];
  for (auto _ : st)
    for (int32_t id : gProbes) {
      Customer probe = Make(id);
      gEngine->frmkey(static_cast<COUNT>(gEngine->dat + 1), (pTEXT) &probe, (pTEXT) key, 0, 0);
      if (gEngine->EQLREC(static_cast<COUNT>(gEngine->dat + 1), key, &c) != 0) std::abort();
      std::snprintf(c.city, sizeof c.city, "city%02d", (std::atoi(c.city + 4) + 1) % kCities);
      if (gEngine->RWTREC(gEngine->dat, &c) != 0) std::abort();
    }
  st.SetItemsProcessed(kLookups);
}
void PlainRewrite(benchmark::State& st) {
  for (auto _ : st)
    for (int32_t id : gProbes) {
      Customer probe = Make(id), c;
      uint8_t key[4], oldK2[54], newK2[54];
      Key1(probe, key);
      MDB_txn* t;
      mdb_txn_begin(gPlain.env, nullptr, 0, &t);
      MDB_val k{4, key}, v, rv;
      if (mdb_get(t, gPlain.k1, &k, &v) != 0) std::abort();
      uint32_t pos;
      std::memcpy(&pos, v.mv_data, 4);
      MDB_val rk{4, &pos};
      mdb_get(t, gPlain.rec, &rk, &rv);
      std::memcpy(&c, rv.mv_data, sizeof c);
      Key2(c, pos, oldK2);
      std::snprintf(c.city, sizeof c.city, "city%02d", (std::atoi(c.city + 4) + 1) % kCities);
      Key2(c, pos, newK2);
      MDB_val o{54, oldK2}, n{54, newK2}, pv{4, &pos}, nv{sizeof c, &c};
      mdb_del(t, gPlain.k2, &o, nullptr);
      mdb_put(t, gPlain.k2, &n, &pv, MDB_NOOVERWRITE);
      mdb_put(t, gPlain.rec, &rk, &nv, 0);
      if (mdb_txn_commit(t) != 0) std::abort();
    }
  st.SetItemsProcessed(kLookups);
}

// ---- the driver's way of changing a record: each add or rewrite inside its own lock set ----
void EngineLockSetAdd(benchmark::State& st) {
  int32_t id = gRecords;
  for (auto _ : st)
    for (int i = 0; i < kLookups; ++i) {
      Customer c = Make(id++);
      if (gEngine->LKISAM(ENABLE) != 0 || gEngine->ADDREC(gEngine->dat, &c) != 0 || gEngine->LKISAM(FREE) != 0)
        std::abort();
    }
  st.SetItemsProcessed(kLookups);
}
void EngineLockSetRewrite(benchmark::State& st) {
  Customer c;
  uint8_t key[4];
  for (auto _ : st)
    for (int32_t id : gProbes) {
      Customer probe = Make(id);
      gEngine->frmkey(static_cast<COUNT>(gEngine->dat + 1), (pTEXT) &probe, (pTEXT) key, 0, 0);
      if (gEngine->LKISAM(ENABLE) != 0) std::abort();
      if (gEngine->EQLREC(static_cast<COUNT>(gEngine->dat + 1), key, &c) != 0) std::abort();
      c.balance += 1;
      if (gEngine->RWTREC(gEngine->dat, &c) != 0 || gEngine->LKISAM(FREE) != 0) std::abort();
    }
  st.SetItemsProcessed(kLookups);
}

// ---- one transaction of 20,000 rewrites, or of 10,000 deletes (the table open exclusively
// with Arg 0, shared with Arg 1: then every record touched is locked in the file's lock region) ----
void Reopen(int shared) {
  if (gEngine->CLRFIL(static_cast<COUNT>(gEngine->dat)) != 0 ||
      gEngine->OPNRFIL(static_cast<COUNT>(gEngine->dat), (pTEXT) "bench.dat", shared ? SHARED : EXCLUSIVE) != 0)
    std::abort();
}
void EngineTranRewrite(benchmark::State& st) {
  Reopen(static_cast<int>(st.range(0)));
  Customer c;
  uint8_t key[4];
  for (auto _ : st) {
    if (gEngine->TRANBEG(ENABLE) <= 0) std::abort();
    for (int32_t id : gProbes) {
      Customer probe = Make(id);
      gEngine->frmkey(static_cast<COUNT>(gEngine->dat + 1), (pTEXT) &probe, (pTEXT) key, 0, 0);
      if (gEngine->EQLREC(static_cast<COUNT>(gEngine->dat + 1), key, &c) != 0) std::abort();
      c.balance += 1;
      if (gEngine->RWTREC(gEngine->dat, &c) != 0) std::abort();
    }
    if (gEngine->TRANEND(FREE) != 0) std::abort();
  }
  st.SetItemsProcessed(kLookups);
  Reopen(0);
}
// Deletes records 0, 2, 4, ... (a shared run after an exclusive one takes the odd ones).
void EngineTranDelete(benchmark::State& st) {
  constexpr int kDeletes = 10000;
  const int shared = static_cast<int>(st.range(0));
  Reopen(shared);
  Customer c;
  uint8_t key[4];
  for (auto _ : st) {
    if (gEngine->TRANBEG(ENABLE) <= 0) std::abort();
    for (int32_t i = 0; i < kDeletes; ++i) {
      Customer probe = Make(2 * i + shared);
      gEngine->frmkey(static_cast<COUNT>(gEngine->dat + 1), (pTEXT) &probe, (pTEXT) key, 0, 0);
      if (gEngine->EQLREC(static_cast<COUNT>(gEngine->dat + 1), key, &c) != 0 || gEngine->DELREC(gEngine->dat) != 0)
        std::abort();
    }
    if (gEngine->TRANEND(FREE) != 0) std::abort();
  }
  st.SetItemsProcessed(kDeletes);
  Reopen(0);
}

// ---- an index on name added to the open table (filled from every record) ----
void EngineAddIndex(benchmark::State& st) {
  static ISEG seg[1] = {{4, 30, REGSEG}};
  static IIDX ix[1] = {{34, 0, 1, 0, 0, 1, seg, (pTEXT) "by_name", nullptr, nullptr, nullptr}};
  for (auto _ : st) {
    IFIL add = {(pTEXT) "bench_name", gEngine->dat, sizeof(Customer), 0, EXCLUSIVE, 1, 0, EXCLUSIVE, ix, nullptr,
                nullptr, -1};
    if (gEngine->TMPIIDXX(&add, 0, nullptr, nullptr) != 0 || gEngine->PRMIIDX(&add) != 0) std::abort();
    st.counters["keys"] = static_cast<double>(gEngine->IDXENT(add.tfilno));
  }
}

void Register() {
  auto one = [](const char* name, void (*fn)(benchmark::State&)) {
    return benchmark::RegisterBenchmark(name, fn)->Iterations(1)->Unit(benchmark::kMillisecond)->UseRealTime();
  };
  one("add/engine", EngineAdd);
  one("add/plain", PlainAdd);
  one("physical_scan/engine", EnginePhysicalScan);
  one("physical_scan/plain", PlainPhysicalScan);
  one("key_scan_id/engine_frskey_setcuri_rrdrec", EngineKeyScan)->Arg(1);
  one("key_scan_id/engine_nxtrec", EngineNxtRecScan)->Arg(1);
  one("key_scan_id/plain", PlainKeyScan)->Arg(1);
  one("key_scan_city/engine_frskey_setcuri_rrdrec", EngineKeyScan)->Arg(2);
  one("key_scan_city/engine_nxtrec", EngineNxtRecScan)->Arg(2);
  one("key_scan_city/plain", PlainKeyScan)->Arg(2);
  one("eqlrec_random/engine", EngineEqlRec);
  one("eqlrec_random/plain", PlainEqlRec);
  one("rngent_cities/engine", EngineRngent);
  one("rngent_cities/plain", PlainRngent);
  one("rewrite_city/engine", EngineRewrite);
  one("rewrite_city/plain", PlainRewrite);
  one("lockset_add/engine", EngineLockSetAdd);
  one("lockset_rewrite/engine", EngineLockSetRewrite);
  one("add_index_name/engine", EngineAddIndex);
  one("tran_rewrite/engine", EngineTranRewrite)->Arg(0)->Arg(1);
  one("tran_delete/engine", EngineTranDelete)->Arg(0)->Arg(1);
}

}  // namespace

int main(int argc, char** argv) {
  bench::BenchProgram program("engine_bench", argc, argv, bench::Flags().Int("--records=", gRecords));
  program.Scratch().Enter();
  return program.Run([] {
    Setup();
    Register();
    benchmark::RunSpecifiedBenchmarks();
    gEngine->CLISAM();
    mdb_env_close(gPlain.env);
  });
}
