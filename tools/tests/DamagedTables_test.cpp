// ctt over damaged table files: every command ends with exit code 4 and the engine's error
// number, `check` even for pages damaged badly enough to end the process that reads them, and
// garbage lock files are made afresh.
#include <gtest/gtest.h>

#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <random>
#include <sstream>

#include "CommandLine.h"
#include "ToolFolderTest.h"

namespace ctt {
namespace {

namespace fs = std::filesystem;

std::string Load(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), {});
}

void Store(const fs::path& path, const std::string& bytes) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

constexpr size_t kPage = 4096;

// Each page of the file whose flags (u16 at 10) are exactly `flags` (LMDB's page layout).
void ForEachPage(std::string& bytes, uint16_t flags, const std::function<void(char* page)>& change) {
  for (size_t at = 2 * kPage; at + kPage <= bytes.size(); at += kPage) {
    uint16_t f;
    std::memcpy(&f, bytes.data() + at + 10, 2);
    if (f == flags) change(bytes.data() + at);
  }
}

struct Damage {
  const char* name;
  bool readAtOpen;  // the open finds it (else only the page verify of `check` does)
  std::function<void(std::string& data)> apply;
};

const Damage kDamages[] = {
    {"cut in half", true, [](std::string& b) { b.resize(b.size() / 2); }},
    {"a text file", true, [](std::string& b) { b = "id,name,city\n1,Ada Quill,Quenby\n"; }},
    {"meta page's commit number flipped", true, [](std::string& b) { b[kPage + 144] ^= 1; }},
    // LMDB asserts that a branch page holds two keys or more: the open's first read ends the
    // process that reads.
    {"branch pages holding one key", false, [](std::string& b) { ForEachPage(b, 1, [](char* p) { p[12] = 18; }); }},
    {"leaf pages flagged as changed in memory", false, [](std::string& b) { ForEachPage(b, 2, [](char* p) { p[10] |= 0x10; }); }},
};

class DamagedTables : public test::ToolFolderTest {
 protected:
  DamagedTables() : ToolFolderTest("ctt_damaged_") {}
  void SetUp() override {
    const fs::path csv = dir / "people.csv";
    std::ofstream rows(csv);
    rows << "id,name,city\n";
    for (int id = 1; id <= 2000; ++id) rows << id << ",Name " << id << ",City " << id % 17 << '\n';
    rows.close();
    ASSERT_EQ(Run({"create", "people", "-f", "id:integer,name:string:20,city:string:16", "-x", "ById:id:unique,primary",
                   "-x", "ByCity:city;id"}),
              kExitOk)
        << err.str();
    ASSERT_EQ(Run({"import", "people", csv.string()}), kExitOk) << err.str();
  }
};

TEST_F(DamagedTables, EveryCommandReportsTheDamageAsAStorageError) {
  const fs::path data = dir / "people";
  const std::string sound = Load(data);
  for (const Damage& damage : kDamages) {
    std::string bytes = sound;
    damage.apply(bytes);
    Store(data, bytes);
    std::vector<std::vector<std::string>> commands = {{"check", "people"}};
    if (damage.readAtOpen)
      commands.insert(commands.end(), {{"info", "people"}, {"list", "people"}, {"export", "people"}});
    for (const auto& command : commands) {
      SCOPED_TRACE(std::string(damage.name) + ": " + command[0]);
      EXPECT_EQ(Run(command), kExitStorage) << out.str();
      EXPECT_NE(err.str().find("(error 803)"), std::string::npos) << err.str();
    }
  }
}

TEST_F(DamagedTables, GarbageLockFilesAreMadeAfresh) {
  for (const char* file : {"people-lock", "people-rlock", "people.idx-lock", "people.idx-rlock"}) {
    SCOPED_TRACE(file);
    Store(dir / file, std::string(3 * kPage, '\xa5'));
    ASSERT_EQ(Run({"check", "people"}), kExitOk) << err.str();
    ASSERT_EQ(Run({"list", "people", "-n", "0", "-c", "id"}), kExitOk) << err.str();
    EXPECT_NE(out.str().find("(2000 records)"), std::string::npos) << out.str();
  }
}

}  // namespace
}  // namespace ctt
