// Exports_test: every library variant loads and exports exactly the binding's names.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <set>
#include <string>
#include <vector>

namespace {

const char* const kNames[] = {
#include "EntryPoints.inc"
};

const char* const kVariants[] = {"libctstd32b.so", "libctstd32w.so", "libctstd32d.so",
                                 "libctreebm.so",  "libctreebr.so",  "libctreebc.so"};

std::string LibPath(const char* file) { return std::string(CT_LIBRARY_DIR) + "/" + file; }

TEST(EngineExports, EveryVariantResolvesEveryName) {
  ASSERT_EQ(sizeof kNames / sizeof kNames[0], 168u);
  for (const char* file : kVariants) {
    void* h = dlopen(LibPath(file).c_str(), RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(h, nullptr) << file << ": " << dlerror();
    for (const char* name : kNames) EXPECT_NE(dlsym(h, name), nullptr) << file << " lacks " << name;
    dlclose(h);
  }
}

TEST(EngineExports, DynamicSymbolTableHoldsExactlyTheNames) {
  std::set<std::string> want(std::begin(kNames), std::end(kNames));
  for (const char* file : kVariants) {
    std::string cmd = "nm -D --defined-only " + LibPath(file);
    FILE* p = popen(cmd.c_str(), "r");
    ASSERT_NE(p, nullptr);
    std::set<std::string> got;
    char line[512];
    while (fgets(line, sizeof line, p)) {
      char addr[64], type[8], name[400];
      if (sscanf(line, "%63s %7s %399s", addr, type, name) == 3) got.insert(name);
    }
    pclose(p);
    std::vector<std::string> extra, missing;
    std::set_difference(got.begin(), got.end(), want.begin(), want.end(), std::back_inserter(extra));
    std::set_difference(want.begin(), want.end(), got.begin(), got.end(), std::back_inserter(missing));
    EXPECT_TRUE(extra.empty()) << file << " exports " << extra.size() << " extra, first " << (extra.empty() ? "" : extra[0]);
    EXPECT_TRUE(missing.empty()) << file << " misses " << missing.size();
  }
}

}  // namespace
