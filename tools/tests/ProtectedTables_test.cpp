// ctt over a table created with a password: every command that reaches the table's files needs
// --password with that password, and ends with exit code 4 and error 455 without it.
#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>

#include "CommandLine.h"
#include "ToolFolderTest.h"

namespace ctt {
namespace {

namespace fs = std::filesystem;

class ProtectedTables : public test::ToolFolderTest {
 protected:
  ProtectedTables() : ToolFolderTest("ctt_protected_") {}
  void SetUp() override {
    std::ofstream(dir / "rows.csv") << "id,name\n1,Ada Quill\n2,Bo Fenwick\n";
    ASSERT_EQ(Run("--password=Quenby-42", {"create", "people", "-f", "id:integer,name:string:20", "-x", "ById:id:unique"}),
              kExitOk)
        << err.str();
  }
  int Run(const std::string& password, std::vector<std::string> args) {
    if (!password.empty()) args.insert(args.begin(), password);
    return ToolFolderTest::Run(std::move(args));
  }
};

TEST_F(ProtectedTables, EveryCommandNeedsThePassword) {
  const std::vector<std::vector<std::string>> commands = {
      {"import", "people", (dir / "rows.csv").string()},
      {"info", "people"},
      {"list", "people"},
      {"export", "people"},
      {"check", "people"},
      {"add-index", "people", "ByName:name"},
      {"drop-index", "people", "ByName"},
      {"create", "people", "-f", "id:integer", "--replace"},
      {"drop", "people"},
  };
  for (const auto& command : commands) {
    for (const char* password : {"", "--password=quenby-42", "--password=Quenby-4"}) {
      SCOPED_TRACE(command[0] + " " + password);
      EXPECT_EQ(Run(password, command), kExitStorage) << out.str();
      EXPECT_NE(err.str().find("(error 455)"), std::string::npos) << err.str();
    }
    SCOPED_TRACE(command[0]);
    EXPECT_EQ(Run("--password=Quenby-42", command), kExitOk) << err.str();
  }
}

}  // namespace
}  // namespace ctt
