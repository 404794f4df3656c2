// LockRegion_test: the region's hash table after many changes, seen from another process, and
// the locks of a process that died.
#include "LockRegion.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <map>
#include <random>
#include <string>

namespace {

// Runs body in a forked child (which attaches to the region on its own); its exit status.
template <typename F>
int InChild(F&& body) {
  pid_t pid = fork();
  if (pid == 0) {
    int rc = 3;
    try {
      rc = body();
    } catch (...) {
      rc = 2;
    }
    _exit(rc);
  }
  int status = 0;
  waitpid(pid, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : 100;
}

class LockRegionTest : public ::testing::Test {
 protected:
  void SetUp() override {
    char tmpl[] = "/tmp/ctregion-XXXXXX";
    ASSERT_NE(mkdtemp(tmpl), nullptr);
    dir_ = tmpl;
    path_ = dir_ + "/table-rlock";
  }
  void TearDown() override { std::filesystem::remove_all(dir_); }
  static uint64_t Key(uint64_t n) { return 128 + 68 * n; }  // record positions
  std::string dir_, path_;
};

// Random takes, upgrades and releases, growing the table twice over: another process then finds
// exactly the model's locks, read ones shared and write ones refused.
TEST_F(LockRegionTest, AnotherProcessSeesExactlyTheLocksHeld) {
  cte::LockRegion region(path_);
  std::mt19937 rng(7);
  std::map<uint64_t, bool> model;
  constexpr uint64_t kKeys = 30000;
  for (int i = 0; i < 150000; ++i) {
    uint64_t key = Key(rng() % kKeys);
    if (rng() % 3 < 2) {
      bool write = rng() % 2;
      ASSERT_TRUE(region.Acquire(key, write));
      model[key] = model[key] || write;
    } else {
      region.Release(&key, 1);
      model.erase(key);
    }
  }
  ASSERT_GT(model.size(), 8192u);
  EXPECT_EQ(InChild([&] {
              cte::LockRegion other(path_);
              int wrong = 0;
              for (uint64_t n = 0; n < kKeys; ++n) {
                uint64_t key = Key(n);
                auto it = model.find(key);
                bool shared = other.Acquire(key, false);
                wrong += shared != (it == model.end() || !it->second);
                wrong += other.HeldByOther(key) != (it != model.end());
                wrong += other.Acquire(key, true) != (it == model.end());
                if (shared) other.Release(&key, 1);
              }
              return wrong ? 1 : 0;
            }),
            0);
}

// A process that dies holding locks and the writer lock (no destructor runs) leaves them to
// whoever comes next.
TEST_F(LockRegionTest, LocksOfADeadProcessAreDropped) {
  cte::LockRegion region(path_);
  ASSERT_TRUE(region.Acquire(Key(1), false));
  EXPECT_EQ(InChild([&] {
              auto* doomed = new cte::LockRegion(path_);
              if (!doomed->LockWriter(100)) return 1;
              for (uint64_t n = 2; n < 100; ++n)
                if (!doomed->Acquire(Key(n), true)) return 1;
              return doomed->Acquire(Key(1), false) && !doomed->Acquire(Key(1), true) ? 0 : 1;
            }),
            0);
  for (uint64_t n = 1; n < 100; ++n) EXPECT_TRUE(region.Acquire(Key(n), true)) << n;
  EXPECT_TRUE(region.LockWriter(100));
  region.UnlockWriter();
}

}  // namespace
