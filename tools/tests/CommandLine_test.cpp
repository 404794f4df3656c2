// Tests of the command line: options reaching the commands, and the exit codes a script sees.
#include "CommandLine.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "FakeBackend.h"

namespace ctt {
namespace {

class CommandLineTest : public ::testing::Test {
 protected:
  int Run(std::vector<std::string> args) {
    args.insert(args.begin(), "ctt");
    out.str("");
    err.str("");
    return RunTool(args, console, [this](const ConnectionOptions& options) {
      seen = options;
      return std::make_unique<test::FakeBackend>(store);
    });
  }

  test::FakeStore store;
  ConnectionOptions seen;
  std::ostringstream out, err;
  Console console{out, err, false};
};

TEST_F(CommandLineTest, HelpAndUsageErrors) {
  EXPECT_EQ(Run({"--help"}), kExitOk);
  EXPECT_NE(out.str().find("5 table or index not found"), std::string::npos);
  EXPECT_EQ(Run({"import", "--help"}), kExitOk);
  EXPECT_NE(out.str().find("--skip-rows"), std::string::npos);
  EXPECT_EQ(Run({}), kExitUsage);
  EXPECT_EQ(Run({"frobnicate", "t"}), kExitUsage);
  EXPECT_EQ(Run({"-d", "tmp", "lsit", "t"}), kExitUsage);
  EXPECT_NE(err.str().find("Did you mean 'list'?\nCommands: create, import,"), std::string::npos) << err.str();
  EXPECT_EQ(Run({"list", "t", "--limt", "3"}), kExitUsage);
  EXPECT_NE(err.str().find("Did you mean '--limit' for '--limt'?"), std::string::npos) << err.str();
  EXPECT_EQ(Run({"--version"}), kExitOk);
  EXPECT_EQ(out.str().rfind("ctt ", 0), 0u);
  EXPECT_EQ(Run({"list"}), kExitUsage);
  EXPECT_NE(err.str().find("Run 'ctt --help'"), std::string::npos);
  EXPECT_EQ(Run({"list", "t", "--limit", "many"}), kExitUsage);
  EXPECT_EQ(Run({"create", "t"}), kExitUsage) << "--field is required";
  EXPECT_EQ(Run({"list", "t", "--from", "a,\"b"}), kExitUsage);
  EXPECT_EQ(err.str(), "ctt: list: --from 'a,\"b': quoted field 2 is not terminated (its closing quote is missing)\n");
  EXPECT_EQ(Run({"export", "t", "--separator", "ab"}), kExitUsage);
  EXPECT_EQ(Run({"--max-files", "0", "info", "t"}), kExitUsage);
  EXPECT_EQ(Run({"--alignment", "nibble", "info", "t"}), kExitUsage);
  EXPECT_EQ(err.str(), "ctt: info: unknown alignment 'nibble' (known: byte, word, dword, bytemon, bytered, bytecli)\n");
  EXPECT_TRUE(store.Tables.empty());
}

TEST_F(CommandLineTest, DefinitionErrorsAreUsageErrorsNamingTheCommand) {
  EXPECT_EQ(Run({"create", "t", "-f", "id:integer,name:strng:4"}), kExitUsage);
  EXPECT_EQ(err.str().rfind("ctt: create: field definition 'name:strng:4': unknown type 'strng'", 0), 0u) << err.str();
  EXPECT_EQ(Run({"create", "t", "-f", "id:integer", "-x", "k:name"}), kExitUsage);
  EXPECT_EQ(err.str(), "ctt: create: index 'k': 'name' is not a field of the table\n");
  EXPECT_EQ(Run({"import", "t", "x.csv", "-x", "k:id"}), kExitUsage);
  EXPECT_TRUE(store.Tables.empty());
}

TEST_F(CommandLineTest, ConnectionOptionsReachTheBackendBeforeOrAfterTheCommand) {
  EXPECT_EQ(Run({"--alignment", "word", "create", "t", "-f", "id:integer", "--max-files", "20", "--dir", "data",
                 "--superfile", "host", "--data-ext", ".dat"}),
            kExitOk);
  EXPECT_EQ(seen.Alignment, CTDbIntf::laWord);
  EXPECT_EQ(seen.MaxFiles, 20);
  EXPECT_EQ(seen.NullKeys, true) << "indexes the tool creates keep records with blank keys";
  EXPECT_EQ(seen.DataExt, ".dat");
  EXPECT_FALSE(seen.MaxSectors.has_value()) << "what is not given keeps the form's or the default value";
  EXPECT_FALSE(seen.ServerName.has_value());
  EXPECT_EQ(store.Tables.count("data/host!t"), 1u);
  EXPECT_EQ(out.str(), "created data/host!t with 1 field and 0 indexes\n");
}

TEST_F(CommandLineTest, ExitCodesOfAWholeSession) {
  namespace fs = std::filesystem;
  const fs::path csv = fs::temp_directory_path() / ("ctt_cli_" + std::to_string(::getpid()) + ".csv");
  std::ofstream(csv) << "id,name\n1,a\n1,b\n2,c\n";
  EXPECT_EQ(Run({"create", "t", "-f", "id:integer,name:string:10", "-x", "pk:id:primary"}), kExitOk);
  EXPECT_EQ(Run({"import", "t", csv.string()}), kExitRejected);
  EXPECT_EQ(err.str(), "ctt: import: line 3: Key value already exists (error 2)\n");
  EXPECT_EQ(Run({"list", "t", "-n", "0"}), kExitOk);
  EXPECT_NE(out.str().find("(2 records)"), std::string::npos);
  EXPECT_EQ(Run({"list", "t", "--from", "1,2"}), kExitUsage);
  EXPECT_EQ(err.str(), "ctt: list: --from gives 2 values; index pk has the key fields id (integer)\n");
  EXPECT_EQ(Run({"info", "nosuch"}), kExitNotFound);
  EXPECT_EQ(err.str(), "ctt: info: Could not open file: not there or locked (error 12)\n");
  EXPECT_EQ(Run({"drop-index", "t", "nosuch"}), kExitNotFound);
  EXPECT_EQ(Run({"import", "t", (csv.string() + ".missing")}), kExitFile);
  EXPECT_EQ(Run({"drop", "t"}), kExitOk);
  fs::remove(csv);
}

TEST(CommandLineBuild, TheCommandLineIsCheckedBeforeTheTableLayerIsAsked) {
  std::ostringstream out, err;
  Console console{out, err, false};
  EXPECT_EQ(RunTool({"ctt", "create", "t", "-f", "x:nope"}, console, MakeTableBackend), kExitUsage);
  err.str("");
  EXPECT_EQ(RunTool({"ctt", "--form", "/nonexistent/ctt.dfm", "info", "t"}, console, MakeTableBackend), kExitFile);
  EXPECT_EQ(err.str().rfind("ctt: info: form file /nonexistent/ctt.dfm: ", 0), 0u) << err.str();
}

}  // namespace
}  // namespace ctt
