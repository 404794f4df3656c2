// txn_bench: the cost of one large transaction in the engine: N adds, then rewrites moving a key
// and deletes, each batch in one TRANBEG .. TRANEND, and the rollback of N adds. Prints the
// time of each and the rate of the first and second halves, so that growth with the size of
// the transaction shows. Run from a Release build:
//   <build>/bench/txn_bench [--exclusive] [--no-locks] N...
#include <dlfcn.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <vector>

#include "ctisam.h"

namespace {

#pragma pack(push, 1)
struct Customer {
  int32_t id;
  char name[30];
  char city[20];
  double balance;
  int32_t date;
};
#pragma pack(pop)

struct Engine {
#define FN(n) decltype(&::n) n = reinterpret_cast<decltype(&::n)>(dlsym(h, #n));
  void* h = dlopen(CT_LIBRARY_DIR "/libctstd32b.so", RTLD_NOW | RTLD_LOCAL);
  FN(INTISAMX)
  FN(CREIFIL) FN(ADDREC) FN(RWTREC) FN(DELREC) FN(EQLREC) FN(frmkey) FN(CLISAM) FN(TRANBEG)
      FN(TRANEND) FN(TRANABT) FN(DATENT) FN(CLIFIL) FN(OPNRFIL)
#undef FN
};

Customer Make(int32_t id, int shift = 0) {
  Customer c{};
  c.id = id;
  std::snprintf(c.name, sizeof c.name, "name%07d", (id * 7919 + shift) % 1000003);
  std::snprintf(c.city, sizeof c.city, "city%02d", (id + shift) % 50);
  c.balance = id * 0.25;
  return c;
}

double Now() {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

void Fail(const char* what, int rc) {
  std::fprintf(stderr, "%s failed: %d\n", what, rc);
  std::exit(1);
}

// Runs op(i) for i in [0, n) inside one transaction; prints the total, the rate of each half
// and the commit (or abort) time.
template <typename F>
void Timed(Engine& e, const char* label, int n, int lockMode, bool commit, F&& op) {
  double t0 = Now();
  if (e.TRANBEG(static_cast<COUNT>(lockMode)) <= 0) Fail("TRANBEG", 0);
  double mid = 0;
  for (int i = 0; i < n; ++i) {
    if (i == n / 2) mid = Now();
    op(i);
  }
  double t1 = Now();
  COUNT rc = commit ? e.TRANEND(FREE) : e.TRANABT();
  if (rc != 0) Fail(commit ? "TRANEND" : "TRANABT", rc);
  double t2 = Now();
  std::printf("%-10s N=%8d  %8.3f s  %9.0f/s  halves %9.0f/s %9.0f/s  %s %.3f s\n", label, n,
              t2 - t0, n / (t2 - t0), (n / 2) / (mid - t0), (n - n / 2) / (t1 - mid),
              commit ? "commit" : "abort", t2 - t1);
}

}  // namespace

int main(int argc, char** argv) {
  bool exclusive = false;
  int lockMode = ENABLE;
  std::vector<int> sizes;
  for (int i = 1; i < argc; ++i) {
    if (!std::strcmp(argv[i], "--exclusive"))
      exclusive = true;
    else if (!std::strcmp(argv[i], "--no-locks"))
      lockMode = 0;
    else
      sizes.push_back(std::atoi(argv[i]));
  }
  if (sizes.empty()) sizes = {5000, 10000, 20000, 40000};
  Engine e;
  if (!e.h || e.INTISAMX(10, 32, 4, 10, 0, nullptr, nullptr, nullptr) != 0) Fail("load", 0);
  char tmpl[] = "/tmp/cttxn-XXXXXX";
  std::filesystem::path dir = mkdtemp(tmpl);
  std::filesystem::current_path(dir);
  const COUNT mode = exclusive ? EXCLUSIVE : SHARED;
  std::printf("file %s, lock mode %s\n", exclusive ? "EXCLUSIVE" : "SHARED",
              lockMode ? "ENABLE" : "none");
  for (int n : sizes) {
    ISEG s1[1] = {{0, 4, SGNSEG}};
    ISEG s2[2] = {{34, 20, REGSEG}, {4, 30, REGSEG}};
    IIDX ix[2] = {{4, 0, 0, 0, 0, 1, s1, nullptr, nullptr, nullptr, nullptr},
                  {54, 0, 1, 0, 0, 2, s2, nullptr, nullptr, nullptr, nullptr}};
    char name[32];
    std::snprintf(name, sizeof name, "t%d", n);
    IFIL f = {name, -1, sizeof(Customer), 0, mode, 2, 0, mode, ix, nullptr, nullptr, -1};
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
  std::filesystem::current_path("/");
  std::filesystem::remove_all(dir);
  return 0;
}
