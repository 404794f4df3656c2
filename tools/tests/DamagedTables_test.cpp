// ctt over damaged table files: every command ends with exit code 4 and the engine's error
// number, `check` even for pages damaged badly enough to end the process that reads them, and
// garbage lock files are made afresh.
#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>

#include "CommandLine.h"
#include "DamagedFiles.h"
#include "ToolFolderTest.h"

namespace ctt {
namespace {

namespace fs = std::filesystem;

using ct::testsupport::DataFileDamages;
using ct::testsupport::kPage;
using ct::testsupport::Load;
using ct::testsupport::Store;

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
  for (const auto& damage : DataFileDamages()) {
    std::string bytes = sound;
    damage.Apply(bytes);
    Store(data, bytes);
    std::vector<std::vector<std::string>> commands = {{"check", "people"}};
    if (damage.FoundAtOpen)
      commands.insert(commands.end(), {{"info", "people"}, {"list", "people"}, {"export", "people"}});
    for (const auto& command : commands) {
      SCOPED_TRACE(std::string(damage.Name) + ": " + command[0]);
      EXPECT_EQ(Run(command), kExitStorage) << out.str();
      EXPECT_NE(err.str().find("(error 803)"), std::string::npos) << err.str();
    }
  }
}

TEST_F(DamagedTables, GarbageLockFilesAreMadeAfresh) {
  for (const std::string& file : ct::testsupport::LockFiles("people")) {
    SCOPED_TRACE(file);
    Store(dir / file, std::string(3 * kPage, '\xa5'));
    ASSERT_EQ(Run({"check", "people"}), kExitOk) << err.str();
    ASSERT_EQ(Run({"list", "people", "-n", "0", "-c", "id"}), kExitOk) << err.str();
    EXPECT_NE(out.str().find("(2000 records)"), std::string::npos) << out.str();
  }
}

}  // namespace
}  // namespace ctt
