// ctt over a table created with a password: every command that reaches the table's files needs
// --password with that password, and ends with exit code 4 and error 455 without it.
#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>

#include "CommandLine.h"

namespace ctt {
namespace {

namespace fs = std::filesystem;

class ProtectedTables : public ::testing::Test {
 protected:
  void SetUp() override {
    std::random_device random;
    dir = fs::temp_directory_path() / ("ctt_protected_" + std::to_string(::getpid()) + "_" + std::to_string(random()));
    fs::create_directories(dir);
    std::ofstream(dir / "rows.csv") << "id,name\n1,Ada Quill\n2,Bo Fenwick\n";
    ASSERT_EQ(Run("--password=Quenby-42", {"create", "people", "-f", "id:integer,name:string:20", "-x", "ById:id:unique"}),
              kExitOk)
        << err.str();
  }
  void TearDown() override {
    std::error_code ignored;
    fs::remove_all(dir, ignored);
  }

  int Run(const std::string& password, std::vector<std::string> args) {
    args.insert(args.begin(), {"ctt", "--dir", dir.string()});
    if (!password.empty()) args.insert(args.begin() + 1, password);
    out.str("");
    err.str("");
    return RunTool(args, console, MakeTableBackend);
  }

  fs::path dir;
  std::ostringstream out, err;
  Console console{out, err, false};
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
