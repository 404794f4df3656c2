// txn_bench: the cost of one large transaction in the engine: N adds, then rewrites moving a key
// and deletes, each batch in one TRANBEG .. TRANEND, and the rollback of N adds. Prints the
// time of each and the rate of the first and second halves, so that growth with the size of
// the transaction shows. Run from a Release build:
//   <build>/bench/txn_bench [--exclusive] [--no-locks] N...
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "BenchClock.h"
#include "BenchFlags.h"
#include "EngineLibrary.h"
#include "ScratchDir.h"

namespace {

using Customer = bench::EngineCustomer;
using Engine = bench::EngineLibrary;

Customer Make(int32_t id, int shift = 0) {
  Customer c{};
  c.id = id;
  std::snprintf(c.name, sizeof c.name, "name%07d", (id * 7919 + shift) % 1000003);
  std::snprintf(c.city, sizeof c.city, "city%02d", (id + shift) % 50);
  c.balance = id * 0.25;
  return c;
}

void Fail(const char* what, int rc) {
  std::fprintf(stderr, "%s failed: %d\n", what, rc);
  std::exit(1);
}

// Runs op(i) for i in [0, n) inside one transaction; prints the total, the rate of each half
// and the commit (or abort) time.
template <typename F>
void Timed(Engine& e, const char* label, int n, int lockMode, bool commit, F&& op) {
  double t0 = bench::WallSeconds();
  if (e.TRANBEG(static_cast<COUNT>(lockMode)) <= 0) Fail("TRANBEG", 0);
  double mid = 0;
  for (int i = 0; i < n; ++i) {
    if (i == n / 2) mid = bench::WallSeconds();
    op(i);
  }
  double t1 = bench::WallSeconds();
  COUNT rc = commit ? e.TRANEND(FREE) : e.TRANABT();
  if (rc != 0) Fail(commit ? "TRANEND" : "TRANABT", rc);
  double t2 = bench::WallSeconds();
  std::printf("%-10s N=%8d  %8.3f s  %9.0f/s  halves %9.0f/s %9.0f/s  %s %.3f s\n", label, n,
              t2 - t0, n / (t2 - t0), (n / 2) / (mid - t0), (n - n / 2) / (t1 - mid),
              commit ? "commit" : "abort", t2 - t1);
}

}  // namespace

int main(int argc, char** argv) {
  bool exclusive = false, noLocks = false;
  const std::vector<char*> rest =
      bench::Flags().Switch("--exclusive", exclusive).Switch("--no-locks", noLocks).Parse(argc, argv);
  const int lockMode = noLocks ? 0 : ENABLE;
  std::vector<int> sizes;
  for (size_t i = 1; i < rest.size(); ++i) sizes.push_back(std::atoi(rest[i]));
  if (sizes.empty()) sizes = {5000, 10000, 20000, 40000};
  Engine e;
  if (!e.Start()) Fail("load", 0);
  bench::ScratchDir dir("txn_bench");
  dir.Enter();
  const COUNT mode = exclusive ? EXCLUSIVE : SHARED;
  std::printf("file %s, lock mode %s\n", exclusive ? "EXCLUSIVE" : "SHARED",
              lockMode ? "ENABLE" : "none");
  for (int n : sizes) {
    char name[32];
    std::snprintf(name, sizeof name, "t%d", n);
    bench::EngineCustomersFile file(name, mode);
    IFIL& f = file.file;
    if (COUNT rc = e.CREIFIL(&f)) Fail("CREIFIL", rc);
    const COUNT dat = f.tfilno;
    auto add = [&](int i) {
      Customer c = Make(i);
      if (COUNT rc = e.ADDREC(dat, &c)) Fail("ADDREC", rc);
    };
    Timed(e, "add", n, lockMode, true, add);
    auto find = [&](int id, Customer& c) {
      Customer k = Make(id);
      uint8_t key[4];
      e.frmkey(dat + 1, reinterpret_cast<pTEXT>(&k), reinterpret_cast<pTEXT>(key), 0, 0);
      if (COUNT rc = e.EQLREC(dat + 1, key, &c)) Fail("EQLREC", rc);
    };
    Timed(e, "abort-add", n, lockMode, false, [&](int i) { add(n + i); });
    const int rewrites = std::min(n, 20000), deletes = std::min(n / 2, 10000);
    Timed(e, "rewrite", rewrites, lockMode, true, [&](int i) {
      Customer c;
      find(static_cast<int>((i * 7919LL) % n), c);
      Customer r = Make(c.id, i + 1);
      if (COUNT rc = e.RWTREC(dat, &r)) Fail("RWTREC", rc);
    });
    Timed(e, "delete", deletes, lockMode, true, [&](int i) {
      Customer c;
      find(static_cast<int>((i * 2LL) % n), c);
      if (COUNT rc = e.DELREC(dat)) Fail("DELREC", rc);
    });
    if (e.DATENT(dat) != n - deletes) Fail("DATENT", static_cast<int>(e.DATENT(dat)));
    e.CLIFIL(&f);
  }
  e.CLISAM();
  return 0;
}
