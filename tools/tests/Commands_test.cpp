// Tests of the subcommands over an in-memory table layer: import, export, list, info and the
// structural commands, with their output and exit codes.
#include "Commands.h"

#include <gtest/gtest.h>

#include <signal.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>

#include "FakeBackend.h"
#include "ToolError.h"

namespace ctt {
namespace {

namespace fs = std::filesystem;

class CommandsTest : public ::testing::Test {
 protected:
  void SetUp() override {
    dir = fs::temp_directory_path() / ("ctt_commands_" + std::to_string(::getpid()) + "_" +
                                      ::testing::UnitTest::GetInstance()->current_test_info()->name());
    fs::remove_all(dir);
    fs::create_directories(dir);
    table.Name = "customers";
    create.Fields = ParseFieldDefinitions({"id:integer,name:string:30,city:string:20"});
    create.Indexes = ParseIndexDefinitions({"byid:id:unique", "bycity:city;name:nocase"});
    ASSERT_EQ(RunCreate(backend, table, create, console), kExitOk);
    out.str("");
  }
  void TearDown() override { fs::remove_all(dir); }

  std::string WriteFile(const std::string& name, const std::string& text) {
    const std::string path = (dir / name).string();
    std::ofstream(path, std::ios::binary) << text;
    return path;
  }
  static std::string ReadFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
  }
  ExitCode Import(const std::string& csv, ImportOptions options = {}) {
    options.File = WriteFile("in.csv", csv);
    return RunImport(backend, table, options, console);
  }
  const test::FakeTable& Stored() { return store.Tables.at(table.Display()); }
  std::vector<std::string> Ids() {
    std::vector<std::string> ids;
    for (const auto& r : Stored().Records) ids.push_back(r[0]);
    return ids;
  }
  ErrorReport Failure(const std::function<void()>& f) {
    try {
      f();
    } catch (...) {
      return DescribeException(std::current_exception());
    }
    return {"(no error)", kExitOk};
  }

  fs::path dir;
  test::FakeStore store;
  test::FakeBackend backend{store};
  std::ostringstream out, err;
  Console console{out, err, false};
  TableRef table;
  CreateOptions create;
};

const char* kCustomers =
    "id,name,city\r\n"
    "3,\"Berg, Anna\",Oslo\r\n"
    "1,Costa,Porto\r\n"
    "2,\"O'Neill \"\"Jr\"\"\",oslo\r\n"
    "4,\"Two\nLines\",Graz\r\n";

TEST_F(CommandsTest, ImportAddsEveryRowAndSummarises) {
  EXPECT_EQ(Import(kCustomers), kExitOk);
  EXPECT_EQ(Ids(), (std::vector<std::string>{"3", "1", "2", "4"}));
  EXPECT_EQ(Stored().Records[2][1], "O'Neill \"Jr\"");
  EXPECT_EQ(Stored().Records[3][1], "Two\nLines");
  EXPECT_EQ(out.str().rfind("rows read 4, added 4, rejected 0 into customers", 0), 0u) << out.str();
  EXPECT_EQ(err.str(), "");
}

TEST_F(CommandsTest, ImportRejectsBadRowsWithTheirReasonsAndKeepsTheRest) {
  const std::string csv =
      "name,id\n"
      "a,1\n"
      "dup,1\n"
      "short\n"
      "b,\"2\"x\n"
      "c,notanumber\n"
      "d,5\n";
  EXPECT_EQ(Import(csv), kExitRejected);
  EXPECT_EQ(Ids(), (std::vector<std::string>{"1", "5"}));
  EXPECT_EQ(Stored().Records[1][2], "") << "a column the CSV lacks stays blank";
  EXPECT_EQ(err.str(),
            "ctt: import: line 3: Key value already exists (error 2)\n"
            "ctt: import: line 4: the row has 1 fields, the header 2\n"
            "ctt: import: line 5: text after the closing quote of field 2\n"
            "ctt: import: line 6: 'notanumber' is not a valid number\n");
  EXPECT_EQ(out.str().rfind("rows read 6, added 2, rejected 4 into customers", 0), 0u) << out.str();
}

TEST_F(CommandsTest, ImportCommitsInBatches) {
  ImportOptions options;
  options.BatchSize = 2;
  EXPECT_EQ(Import(kCustomers, options), kExitOk);
  EXPECT_EQ(store.Commits, 2);
  options.BatchSize = 0;
  EXPECT_EQ(Import("id\n10\n11\n12\n", options), kExitOk);
  EXPECT_EQ(store.Commits, 3) << "batch size 0 is one transaction";
}

TEST_F(CommandsTest, StopOnErrorRollsBackTheBatchAndTellsWhereToResume) {
  ImportOptions options;
  options.BatchSize = 2;
  options.StopOnError = true;
  EXPECT_EQ(Import("id\n1\n2\n3\n1\n4\n", options), kExitRejected);
  EXPECT_EQ(Ids(), (std::vector<std::string>{"1", "2"}));
  EXPECT_EQ(store.Rollbacks, 1);
  EXPECT_NE(err.str().find("the batch from line 4 on was rolled back"), std::string::npos) << err.str();
  EXPECT_NE(err.str().find("rerun with --skip-rows 2"), std::string::npos) << err.str();

  // Resuming after the fix adds the rest and nothing twice.
  options.SkipRows = 2;
  err.str("");
  EXPECT_EQ(Import("id\n1\n2\n3\n9\n4\n", options), kExitOk);
  EXPECT_EQ(Ids(), (std::vector<std::string>{"1", "2", "3", "9", "4"}));
  EXPECT_NE(out.str().find("skipped 2"), std::string::npos);
}

// The rerun after a kill: rows whose unique key is there count as already there, other refusals
// are still rejections, and a table without a unique index refuses the option.
TEST_F(CommandsTest, SkipExistingAddsOnlyWhatIsMissing) {
  ImportOptions options;
  options.BatchSize = 2;
  ASSERT_EQ(Import("id\n1\n2\n", options), kExitOk);
  options.SkipExisting = true;
  out.str("");
  EXPECT_EQ(Import("id\n1\n2\n3\nbad\n4\n", options), kExitRejected);
  EXPECT_EQ(Ids(), (std::vector<std::string>{"1", "2", "3", "4"}));
  EXPECT_EQ(err.str(), "ctt: import: line 5: 'bad' is not a valid number\n");
  EXPECT_EQ(out.str().rfind("rows read 5, added 2, rejected 1, already there 2 into customers", 0), 0u) << out.str();

  TableRef plain;
  plain.Name = "plain";
  CreateOptions noUnique;
  noUnique.Fields = ParseFieldDefinitions({"id:integer"});
  noUnique.Indexes = ParseIndexDefinitions({"byid:id"});
  ASSERT_EQ(RunCreate(backend, plain, noUnique, console), kExitOk);
  options.File = WriteFile("plain.csv", "id\n1\n");
  const ErrorReport refused = Failure([&] { RunImport(backend, plain, options, console); });
  EXPECT_EQ(refused.Code, kExitUsage);
  EXPECT_NE(refused.Message.find("--skip-existing needs a unique index on plain"), std::string::npos)
      << refused.Message;
  EXPECT_TRUE(store.Tables.at(plain.Display()).Records.empty());
}

TEST_F(CommandsTest, WithoutTransactionsEachAddedRowStays) {
  store.Transactions = false;
  ImportOptions options;
  options.StopOnError = true;
  EXPECT_EQ(Import("id\n1\n2\n1\n3\n", options), kExitRejected);
  EXPECT_EQ(Ids(), (std::vector<std::string>{"1", "2"}));
  EXPECT_EQ(store.Commits + store.Rollbacks, 0);
  EXPECT_NE(err.str().find("stopped at the first rejected row\n"), std::string::npos) << err.str();
  EXPECT_NE(err.str().find("rerun with --skip-rows 2 "), std::string::npos) << err.str();
}

TEST_F(CommandsTest, FailedCommitRollsBackThatBatchOnly) {
  store.FailCommitNumber = 2;
  ImportOptions options;
  options.BatchSize = 2;
  EXPECT_EQ(Import("id\n1\n2\n3\n4\n5\n", options), kExitStorage);
  EXPECT_EQ(Ids(), (std::vector<std::string>{"1", "2"}));
  EXPECT_NE(err.str().find("rerun with --skip-rows 2"), std::string::npos) << err.str();
}

TEST_F(CommandsTest, UnterminatedQuoteStopsTheImportWithFileError) {
  ImportOptions options;
  options.BatchSize = 2;
  EXPECT_EQ(Import("id,name\n1,a\n2,b\n3,c\n4,\"open\n5,x\n", options), kExitFile);
  EXPECT_EQ(Ids(), (std::vector<std::string>{"1", "2"})) << "the open batch is rolled back";
  EXPECT_NE(err.str().find("line 5: quoted field 2 is not terminated"), std::string::npos) << err.str();
}

TEST_F(CommandsTest, ImportInputErrors) {
  EXPECT_EQ(Failure([&] { Import(""); }).Code, kExitFile);
  const ErrorReport unknown = Failure([&] { Import("id,nmae\n1,x\n"); });
  EXPECT_EQ(unknown.Code, kExitFile);
  EXPECT_EQ(unknown.Message, "CSV column 2 'nmae' is not a field of the table (fields: id, name, city)");
  EXPECT_EQ(Failure([&] { Import("id,ID\n1,1\n"); }).Message, "CSV column 'ID' appears twice in the header");
  ImportOptions options;
  options.File = (dir / "missing.csv").string();
  EXPECT_EQ(Failure([&] { RunImport(backend, table, options, console); }).Code, kExitFile);
  EXPECT_TRUE(Stored().Records.empty());
}

TEST_F(CommandsTest, ImportCanCreateTheTableFirst) {
  ImportOptions options;
  options.Fields = ParseFieldDefinitions({"code:string:4,qty:integer"});
  options.Indexes = ParseIndexDefinitions({"bycode:code:unique"});
  table.Name = "stock";
  EXPECT_EQ(Import("qty,code\n5,A1\n", options), kExitOk);
  EXPECT_EQ(Stored().Records, (std::vector<std::vector<std::string>>{{"A1", "5"}}));
}

TEST_F(CommandsTest, ExportWritesTheIndexOrderAndRangeAsCsv) {
  ASSERT_EQ(Import(kCustomers), kExitOk);
  ExportOptions options;
  options.File = (dir / "out.csv").string();
  options.Read.Index = "bycity";
  options.Read.From = {"oslo"};
  options.Read.To = {"Porto"};
  err.str("");
  EXPECT_EQ(RunExport(backend, table, options, console), kExitOk);
  EXPECT_EQ(ReadFile(options.File),
            "id,name,city\r\n"
            "3,\"Berg, Anna\",Oslo\r\n"
            "2,\"O'Neill \"\"Jr\"\"\",oslo\r\n"
            "1,Costa,Porto\r\n");
  EXPECT_EQ(err.str(), "exported 3 rows to " + options.File + "\n");
  EXPECT_FALSE(fs::exists(options.File + ".partial"));

  options.File = "-";
  options.Read = {};
  options.Read.Columns = {"NAME", "id"};
  options.Format.Separator = ';';
  out.str("");
  EXPECT_EQ(RunExport(backend, table, options, console), kExitOk);
  EXPECT_EQ(out.str(), "name;id\r\nCosta;1\r\n\"O'Neill \"\"Jr\"\"\";2\r\nBerg, Anna;3\r\n\"Two\nLines\";4\r\n");
}

TEST_F(CommandsTest, ExportFailureLeavesNoFileBehind) {
  ASSERT_EQ(Import(kCustomers), kExitOk);
  ExportOptions options;
  options.File = (dir / "out.csv").string();
  options.Read.From = {"1", "2"};
  const ErrorReport bad = Failure([&] { RunExport(backend, table, options, console); });
  EXPECT_EQ(bad.Message, "--from gives 2 values; index byid has the key fields id (integer)");
  EXPECT_FALSE(fs::exists(options.File));
  options.Read = {};
  options.Read.Columns = {"zip"};
  EXPECT_EQ(Failure([&] { RunExport(backend, table, options, console); }).Code, kExitUsage);
  EXPECT_FALSE(fs::exists(options.File));
  EXPECT_FALSE(fs::exists(options.File + ".partial"));
  options.Read = {};
  options.File = (dir / "no" / "such" / "dir.csv").string();
  EXPECT_EQ(Failure([&] { RunExport(backend, table, options, console); }).Code, kExitFile);
}

TEST_F(CommandsTest, ListShowsAnAlignedTableWithFindAndLimit) {
  ASSERT_EQ(Import(kCustomers), kExitOk);
  ListOptions options;
  options.Read.Index = "byid";
  options.Find = {"2"};
  options.Limit = 2;
  out.str("");
  EXPECT_EQ(RunList(backend, table, options, console), kExitOk);
  EXPECT_EQ(out.str(),
            "id  name          city\n"
            "--  ------------  ----\n"
            " 2  O'Neill \"Jr\"  oslo\n"
            " 3  Berg, Anna    Oslo\n"
            "(more records follow; --limit 2 stopped the listing, --limit 0 shows all)\n");

  options.Find = {"9"};
  out.str("");
  EXPECT_EQ(RunList(backend, table, options, console), kExitOk);
  EXPECT_EQ(out.str(), "id  name  city\n--  ----  ----\n(0 records)\n");

  options = {};
  options.Read.Filter = "\"city\" = 'Oslo'";  // handed to the table layer, which applies it
  EXPECT_EQ(RunList(backend, table, options, console), kExitOk);
  EXPECT_EQ(store.Filter, options.Read.Filter);

  options = {};
  options.Read.From = {"4"};
  options.Read.Columns = {"name"};
  out.str("");
  EXPECT_EQ(RunList(backend, table, options, console), kExitOk);
  EXPECT_EQ(out.str(), "name\n----------\nTwo\\nLines\n(1 record)\n");
}

TEST_F(CommandsTest, ReadingAMissingTableOrIndexIsNotFound) {
  ListOptions options;
  options.Read.Index = "byzip";
  const ErrorReport index = Failure([&] { RunList(backend, table, options, console); });
  EXPECT_EQ(index.Code, kExitNotFound);
  EXPECT_EQ(index.Message, "table customers has no index 'byzip'");
  TableRef missing{"", "nosuch", ""};
  const ErrorReport report = Failure([&] { RunInfo(backend, missing, false, console); });
  EXPECT_EQ(report.Code, kExitNotFound);
  EXPECT_EQ(report.Message, "Could not open file: not there or locked (error 12)");
  EXPECT_EQ(Failure([&] { RunDrop(backend, missing, console); }).Code, kExitNotFound);
}

TEST_F(CommandsTest, InfoDescribesFieldsIndexesAndFiles) {
  ASSERT_EQ(Import(kCustomers), kExitOk);
  out.str("");
  EXPECT_EQ(RunInfo(backend, table, false, console), kExitOk);
  EXPECT_EQ(out.str(),
            "table    customers\n"
            "files    data.dat\n"
            "         data.idx\n"
            "records  4\n"
            "\n"
            "#  field  type     size\n"
            "-  -----  -------  ----\n"
            "1  id     integer\n"
            "2  name   string     30\n"
            "3  city   string     20\n"
            "\n"
            "index   fields     options\n"
            "------  ---------  -------\n"
            "byid    id         unique\n"
            "bycity  city;name  nocase\n");
}

TEST_F(CommandsTest, CheckReportsADamagedTableAsAStorageError) {
  ASSERT_EQ(Import(kCustomers), kExitOk);
  out.str("");
  EXPECT_EQ(RunCheck(backend, table, console), kExitOk);
  EXPECT_EQ(out.str(), "table customers: every page reads back\n");
  store.Tables.at(table.Display()).Damaged = true;
  const ErrorReport report = Failure([&] { RunCheck(backend, table, console); });
  EXPECT_EQ(report.Code, kExitStorage);
  EXPECT_NE(report.Message.find("error 803"), std::string::npos) << report.Message;
}

TEST_F(CommandsTest, CreateRefusesAnExistingTableUnlessReplaceIsGiven) {
  ASSERT_EQ(Import(kCustomers), kExitOk);
  const ErrorReport refused = Failure([&] { RunCreate(backend, table, create, console); });
  EXPECT_EQ(refused.Code, kExitUsage);
  EXPECT_EQ(refused.Message, "table customers already exists; --replace replaces it and deletes its records");
  ImportOptions options;
  options.Fields = create.Fields;
  EXPECT_EQ(Failure([&] { Import("id\n9\n", options); }).Code, kExitUsage);
  EXPECT_EQ(Stored().Records.size(), 4u);

  create.Replace = true;
  EXPECT_EQ(RunCreate(backend, table, create, console), kExitOk);
  EXPECT_TRUE(Stored().Records.empty());
  options.Replace = true;
  EXPECT_EQ(Import("id\n9\n", options), kExitOk);
  EXPECT_EQ(Ids(), (std::vector<std::string>{"9"}));
}

// A stream whose every write fails, as standard output redirected to a full device.
class FullDevice : public std::streambuf {
 protected:
  int overflow(int) override { return traits_type::eof(); }
  std::streamsize xsputn(const char*, std::streamsize) override { return 0; }
};

TEST_F(CommandsTest, ListAndInfoFailWhenTheirOutputCannotBeWritten) {
  ASSERT_EQ(Import(kCustomers), kExitOk);
  FullDevice device;
  std::ostream full(&device);
  Console lost{full, err, false};
  for (const auto& command : std::vector<std::function<void()>>{
           [&] { RunList(backend, table, ListOptions{}, lost); }, [&] { RunInfo(backend, table, false, lost); }}) {
    full.clear();
    const ErrorReport report = Failure(command);
    EXPECT_EQ(report.Code, kExitFile);
    EXPECT_EQ(report.Message, "cannot write standard output");
  }
}

class ImportSignalTest : public CommandsTest, public ::testing::WithParamInterface<std::pair<int, ExitCode>> {};

TEST_P(ImportSignalTest, StopsAfterTheRowRollsBackTheBatchAndPrintsTheResumePoint) {
  const auto [signal, code] = GetParam();
  store.SignalAtAppend = 4;
  store.Signal = signal;
  ImportOptions options;
  options.BatchSize = 2;
  EXPECT_EQ(Import("id\n1\n2\n3\n4\n5\n6\n", options), code);
  EXPECT_EQ(Ids(), (std::vector<std::string>{"1", "2"}));
  EXPECT_NE(err.str().find(signal == SIGINT ? "stopped by SIGINT" : "stopped by SIGTERM"), std::string::npos)
      << err.str();
  EXPECT_NE(err.str().find("rerun with --skip-rows 2 "), std::string::npos) << err.str();
  // The handlers are gone with the import: the default action is back.
  struct sigaction now {};
  sigaction(signal, nullptr, &now);
  EXPECT_EQ(now.sa_handler, SIG_DFL);
}

INSTANTIATE_TEST_SUITE_P(Signals, ImportSignalTest,
                         ::testing::Values(std::make_pair(SIGINT, kExitInterrupted),
                                           std::make_pair(SIGTERM, kExitTerminated)));

TEST_F(CommandsTest, StructuralCommands) {
  EXPECT_EQ(out.str(), "");
  EXPECT_EQ(RunAddIndex(backend, table, ParseIndexDefinition("byname:name"), console), kExitOk);
  EXPECT_EQ(Stored().Indexes.size(), 3u);
  EXPECT_EQ(Failure([&] { RunAddIndex(backend, table, ParseIndexDefinition("BYNAME:city"), console); }).Code, kExitUsage);
  EXPECT_EQ(Failure([&] { RunAddIndex(backend, table, ParseIndexDefinition("byzip:zip"), console); }).Message,
            "index 'byzip': 'zip' is not a field of the table");
  EXPECT_EQ(RunDropIndex(backend, table, "BYNAME", console), kExitOk);
  EXPECT_EQ(Stored().Indexes.size(), 2u);
  EXPECT_EQ(Failure([&] { RunDropIndex(backend, table, "byname", console); }).Code, kExitNotFound);
  EXPECT_EQ(Failure([&] { RunCreate(backend, table, CreateOptions{}, console); }).Code, kExitUsage);
  EXPECT_EQ(RunDrop(backend, table, console), kExitOk);
  EXPECT_TRUE(store.Tables.empty());
  EXPECT_EQ(out.str(),
            "added index byname (name) to customers\n"
            "dropped index byname from customers\n"
            "dropped customers\n");
}

}  // namespace
}  // namespace ctt
