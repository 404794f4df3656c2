// End-to-end tests of the tool over the package's components and the embedded engine.
#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>

#include "CommandLine.h"
#include "ToolFolderTest.h"
#include "CtRecords.h"
#include "Ctdb.h"

namespace ctt {
namespace {

namespace fs = std::filesystem;

Ctdb::CTFldDesc Field(uint16_t no, const std::string& name, int16_t type, int16_t subType, int16_t length) {
  Ctdb::CTFldDesc desc;
  desc.FieldNo = no;
  desc.Name = name;
  desc.FieldType = type;
  desc.SubType = subType;
  desc.Units1 = length;
  desc.Length = length;
  return desc;
}

Ctdb::CTIdxDesc Index(const std::string& name, std::vector<int32_t> fields, bool unique, bool primary) {
  Ctdb::CTIdxDesc desc;
  desc.Name = name;
  desc.Unique = unique ? Ctdb::kWordTrue : Ctdb::kWordFalse;
  desc.Primary = primary ? Ctdb::kWordTrue : Ctdb::kWordFalse;
  desc.Maintained = Ctdb::kWordTrue;
  for (size_t i = 0; i < fields.size(); ++i) desc.KeyFields[i] = fields[i];
  desc.FieldsInKey = static_cast<int16_t>(fields.size());
  return desc;
}

// A directory holding the table "people" (ID, NAME, CITY; indexes ById and ByCity = CITY;ID),
// written through the driver, so that reading is tested apart from the table layer's create.
class TableLayerTest : public test::ToolFolderTest {
 protected:
  TableLayerTest() : ToolFolderTest("ctt_layer_") {}
  void SetUp() override {
    Ctdb::TCTConnection conn(nullptr);
    conn.SetActive(true);
    Ctdb::CTTblDesc desc;
    desc.Name = "people";
    desc.TableType = "CTree";
    desc.Fields = {Field(1, "ID", Ctdb::fldINT32, 0, 4), Field(2, "NAME", Ctdb::fldZSTRING, Ctdb::fldstFSTRING, 20),
                   Field(3, "CITY", Ctdb::fldZSTRING, Ctdb::fldstFSTRING, 16)};
    desc.Indexes = {Index("ById", {1}, true, true), Index("ByCity", {3, 1}, true, false)};
    ASSERT_EQ(conn.CreateTable(dir.string(), true, desc), 0);
    std::unique_ptr<Ctdb::TCTCursorDesc> cursor;
    ASSERT_EQ(conn.OpenCursor(cursor, "people", dir.string(), 0), 0);
    const std::vector<std::tuple<int32_t, std::string, std::string>> people = {
        {4, "Dorit", "Oslo"}, {1, "Arvid, Jr", "Bergen"}, {3, "Aino", "Bergen"}, {2, "Brita", "Oslo"},
        {5, "Eskil", "Tromso"}};
    for (const auto& [id, name, city] : people) {
      Ctdb::TCTCustomRecordBuffer record(cursor.get());
      record.InitRecord();
      ASSERT_EQ(conn.SetField(cursor.get(), 1, &record, &id), 0);
      ASSERT_EQ(conn.SetField(cursor.get(), 2, &record, name.c_str()), 0);
      ASSERT_EQ(conn.SetField(cursor.get(), 3, &record, city.c_str()), 0);
      ASSERT_EQ(CTDbIntf::AddRecord(conn.Alignment(), cursor->DataFileNo, record.RecordPtr()), 0);
    }
    ASSERT_EQ(conn.CloseCursor(cursor), 0);
    conn.SetActive(false);
  }
};

TEST_F(TableLayerTest, ListsInIndexOrderWithFindAndRange) {
  ASSERT_EQ(Run({"list", "people", "--index", "ByCity", "-c", "ID,CITY"}), kExitOk) << err.str();
  EXPECT_EQ(out.str(),
            "ID  CITY\n"
            "--  ------\n"
            " 1  Bergen\n"
            " 3  Bergen\n"
            " 2  Oslo\n"
            " 4  Oslo\n"
            " 5  Tromso\n"
            "(5 records)\n");
  ASSERT_EQ(Run({"list", "people", "--find", "3", "-n", "2", "-c", "ID"}), kExitOk) << err.str();
  EXPECT_EQ(out.str(), "ID\n--\n 3\n 4\n(more records follow; --limit 2 stopped the listing, --limit 0 shows all)\n");
  ASSERT_EQ(Run({"list", "people", "--from", "2", "--to", "4", "-c", "ID"}), kExitOk) << err.str();
  EXPECT_EQ(out.str(), "ID\n--\n 2\n 3\n 4\n(3 records)\n");
  ASSERT_EQ(Run({"list", "people", "--from", "4", "-c", "ID"}), kExitOk) << err.str();
  EXPECT_EQ(out.str(), "ID\n--\n 4\n 5\n(2 records)\n");
  ASSERT_EQ(Run({"list", "people", "--to", "3", "-c", "ID"}), kExitOk) << err.str();
  EXPECT_EQ(out.str(), "ID\n--\n 1\n 2\n 3\n(3 records)\n");
  ASSERT_EQ(Run({"list", "people", "--index", "ByCity", "--to", "Oslo", "-c", "ID"}), kExitOk) << err.str();
  EXPECT_EQ(out.str(), "ID\n--\n 1\n 3\n 2\n 4\n(4 records)\n");
}

TEST_F(TableLayerTest, FilterSelectsRecordsWithinARangeAndBadFiltersAreUsageErrors) {
  ASSERT_EQ(Run({"list", "people", "--filter", "(\"CITY\" = 'oslo') OR (\"ID\" < 2)", "-c", "ID"}), kExitOk)
      << err.str();
  EXPECT_EQ(out.str(), "ID\n--\n 1\n 2\n 4\n(3 records)\n");
  // A key search that lands on a record the filter rejects starts at the next one it accepts.
  ASSERT_EQ(Run({"list", "people", "--find", "3", "--filter", "\"CITY\" = 'Oslo'", "-c", "ID"}), kExitOk) << err.str();
  EXPECT_EQ(out.str(), "ID\n--\n 4\n(1 record)\n");
  ASSERT_EQ(Run({"list", "people", "--from", "3", "--filter", "\"CITY\" = 'Oslo'", "-c", "ID"}), kExitOk) << err.str();
  EXPECT_EQ(out.str(), "ID\n--\n 4\n(1 record)\n");
  ASSERT_EQ(Run({"export", "people", "-i", "ByCity", "--from", "Bergen", "--to", "Oslo", "--filter", "\"ID\" > 2",
                 "-c", "ID"}),
            kExitOk)
      << err.str();
  EXPECT_EQ(out.str(), "ID\r\n3\r\n4\r\n");
  EXPECT_EQ(Run({"list", "people", "--filter", "(\"ID\" = 1"}), kExitUsage);
  EXPECT_EQ(err.str(), "ctt: list: bad filter: Paren count off; Found 1 (; Found 0 )\n");
}

TEST_F(TableLayerTest, ExportsCsvAndDescribesTheTable) {
  ASSERT_EQ(Run({"export", "people", "--from", "1", "--to", "2"}), kExitOk) << err.str();
  EXPECT_EQ(out.str(), "ID,NAME,CITY\r\n1,\"Arvid, Jr\",Bergen\r\n2,Brita,Oslo\r\n");
  ASSERT_EQ(Run({"info", "people"}), kExitOk) << err.str();
  EXPECT_NE(out.str().find("records  5\n"), std::string::npos) << out.str();
  EXPECT_NE(out.str().find("2  NAME   string     20\n"), std::string::npos) << out.str();
  EXPECT_NE(out.str().find("ByCity  CITY;ID"), std::string::npos) << out.str();
  ASSERT_EQ(Run({"check", "people"}), kExitOk) << err.str();
  EXPECT_EQ(out.str(), "table " + (dir / "people").string() + ": every page reads back\n");
}

TEST_F(TableLayerTest, ImportAddsRowsAndReportsDuplicateKeys) {
  const fs::path csv = dir / "more.csv";
  std::ofstream(csv) << "NAME,ID,CITY\r\n\"Greta, H\",6,Oslo\r\nDup,1,Bergen\r\nKalle,7,\r\n";
  EXPECT_EQ(Run({"import", "people", csv.string()}), kExitRejected);
  EXPECT_EQ(err.str(), "ctt: import: line 3: Key value already exists (error 2)\n");
  EXPECT_EQ(out.str().rfind("rows read 3, added 2, rejected 1 into ", 0), 0u) << out.str();
  ASSERT_EQ(Run({"export", "people", "--from", "5", "--to", "9"}), kExitOk) << err.str();
  EXPECT_EQ(out.str(), "ID,NAME,CITY\r\n5,Eskil,Tromso\r\n6,\"Greta, H\",Oslo\r\n7,Kalle,\r\n");
}

TEST_F(TableLayerTest, MissingTablesIndexesAndBadRanges) {
  EXPECT_EQ(Run({"info", "nosuch"}), kExitNotFound);
  EXPECT_NE(err.str().find("does not exist (no file " + (dir / "nosuch").string() + ";"), std::string::npos) << err.str();
  EXPECT_NE(err.str().find("(error 12)"), std::string::npos) << err.str();
  EXPECT_EQ(Run({"drop", "nosuch"}), kExitNotFound);
  EXPECT_EQ(Run({"list", "people", "--index", "ByZip"}), kExitNotFound);
  EXPECT_EQ(Run({"drop-index", "people", "ByZip"}), kExitNotFound);
  // Key mistakes are usage errors that name the index's fields.
  for (const std::vector<std::string>& args : std::vector<std::vector<std::string>>{
           {"list", "people", "--from", "x", "--to", "4"},
           {"list", "people", "--from", "1,2", "--to", "4"},
           {"list", "people", "--find", "x"},
           {"list", "people", "--limit", "-1"}}) {
    EXPECT_EQ(Run(args), kExitUsage) << args[3];
    if (args[2] != "--limit") {
      EXPECT_NE(err.str().find("index ById has the key fields ID (integer)"), std::string::npos) << err.str();
    }
  }
  ASSERT_EQ(Run({"list", "people", "--from", "4", "--to", "2", "-c", "ID"}), kExitOk) << err.str();
  EXPECT_EQ(out.str(), "ID\n--\n(0 records)\n");
  ASSERT_EQ(Run({"info", "people"}), kExitOk) << err.str();
  EXPECT_NE(out.str().find("records  5\n"), std::string::npos) << out.str();
}

// Every type the tool offers, at its blank, least and greatest values and with non-ASCII text:
// what export writes, import reads back to the same texts.
TEST_F(TableLayerTest, EveryTypeRoundTripsThroughExportAndImport) {
  const std::string fields =
      "no:integer,s:string:12,si:smallint,w:word,b:boolean,f:float,c:currency,d:date,t:time,dt:datetime,"
      "bc:bcd:16.4";
  ASSERT_EQ(Run({"create", "ledger", "-f", fields, "-x", "byno:no:primary"}), kExitOk) << err.str();
  const fs::path csv = dir / "ledger.csv";
  std::ofstream(csv) << "no,s,si,w,b,f,c,d,t,dt,bc\n"
                        "-2147483648,日本語テ,-32768,0,yes,-1.5e+300,-21474836.48,0001-01-01,00:00:00.5,"
                        "1899-12-30 00:00:00,-999999999999.9999\n"
                        "0,,,,,,,,,,\n"
                        "2147483647,\"a,\"\"b\"\"\n😀\",32767,65535,FALSE,2.5e-300,21474836.47,9999-12-31,23:59:59.999,"
                        "9999-12-31 23:59:59.999,999999999999.9999\n";
  ASSERT_EQ(Run({"import", "ledger", csv.string()}), kExitOk) << err.str();
  ASSERT_EQ(Run({"export", "ledger"}), kExitOk) << err.str();
  const std::string first = out.str();
  EXPECT_EQ(first,
            "no,s,si,w,b,f,c,d,t,dt,bc\r\n"
            "-2147483648,日本語テ,-32768,0,true,-1.5E300,-21474836.48,0001-01-01,00:00:00.500,1899-12-30 00:00:00,"
            "-999999999999.9999\r\n"
            "0,,0,0,false,0,0,,00:00:00,,0\r\n"
            "2147483647,\"a,\"\"b\"\"\n😀\",32767,65535,false,2.5E-300,21474836.47,9999-12-31,23:59:59.999,"
            "9999-12-31 23:59:59.999,999999999999.9999\r\n");
  std::ofstream(csv, std::ios::trunc) << first;
  ASSERT_EQ(Run({"create", "ledger", "-f", fields, "-x", "byno:no:primary", "--replace"}), kExitOk) << err.str();
  ASSERT_EQ(Run({"import", "ledger", csv.string()}), kExitOk) << err.str();
  ASSERT_EQ(Run({"export", "ledger"}), kExitOk) << err.str();
  EXPECT_EQ(out.str(), first);
}

// Values import refuses with the row's line, and the spellings that make it take them.
TEST_F(TableLayerTest, ImportRejectsOverlongTextAndReadsTheGivenSpellings) {
  ASSERT_EQ(Run({"create", "notes", "-f", "no:integer,s:string:6,b:boolean,d:date", "-x", "byno:no:primary"}),
            kExitOk);
  const fs::path csv = dir / "notes.csv";
  std::ofstream(csv) << "no,s,b,d\n1,ÆØÅæ,ja,31.12.2020\n2,-,nei,01.02.2003\n3,abc,maybe,01.02.2003\n";
  ASSERT_EQ(Run({"import", "notes", csv.string(), "--true", "ja", "--false", "nei", "--null", "-", "--date-format",
                 "dd.mm.yyyy"}),
            kExitRejected);
  EXPECT_NE(err.str().find("line 2: text of 8 bytes is longer than field s (6 bytes)"), std::string::npos) << err.str();
  EXPECT_NE(err.str().find("line 4: 'maybe' is not a boolean"), std::string::npos) << err.str();
  ASSERT_EQ(Run({"import", "notes", csv.string(), "--true", "ja", "--false", "nei", "--null", "-", "--date-format",
                 "dd.mm.yyyy", "--truncate", "--skip-rows", "2"}),
            kExitRejected);
  ASSERT_EQ(Run({"import", "notes", csv.string(), "--true", "ja", "--date-format", "dd.mm.yyyy", "--truncate",
                 "--stop-on-error"}),
            kExitRejected);
  ASSERT_EQ(Run({"export", "notes", "--format", "json"}), kExitOk) << err.str();
  EXPECT_EQ(out.str(), "[\n{\"no\":2,\"s\":\"\",\"b\":false,\"d\":\"2003-02-01\"}\n]\n");
  EXPECT_EQ(Run({"import", "notes", csv.string(), "--date-format", "dd.mm"}), kExitUsage);
}

TEST_F(TableLayerTest, TablesListsDataFilesAndSuperfileMembers) {
  ASSERT_EQ(Run({"--superfile", "shop.sup", "create", "orders", "-f", "no:integer", "-x", "k:no:primary"}), kExitOk);
  ASSERT_EQ(Run({"--superfile", "shop.sup", "create", "lines", "-f", "no:integer,qty:integer"}), kExitOk);
  std::ofstream(dir / "notes.txt") << "not a table";
  ASSERT_EQ(Run({"tables"}), kExitOk) << err.str();
  EXPECT_EQ(out.str(),
            "table            records  fields  indexes\n"
            "---------------  -------  ------  -------\n"
            "people                 5       3        2\n"
            "shop.sup!lines         0       2        0\n"
            "shop.sup!orders        0       1        1\n"
            "(3 tables)\n");
}

TEST_F(TableLayerTest, ListAndExportWriteEveryFormat) {
  const std::vector<std::string> read = {"--index", "ByCity", "-c", "ID,NAME", "--to", "Bergen"};
  auto run = [&](std::vector<std::string> args) {
    args.insert(args.end(), read.begin(), read.end());
    EXPECT_EQ(Run(args), kExitOk) << err.str();
    return out.str();
  };
  EXPECT_EQ(run({"export", "people", "--format", "tsv", "--line-end", "lf", "--no-header"}),
            "1\tArvid, Jr\n3\tAino\n");
  EXPECT_EQ(run({"export", "people", "--line-end", "lf"}), "ID,NAME\n1,\"Arvid, Jr\"\n3,Aino\n");
  EXPECT_EQ(run({"list", "people", "--format", "markdown"}),
            "| ID | NAME |\n| ---: | --- |\n| 1 | Arvid, Jr |\n| 3 | Aino |\n");
  EXPECT_EQ(run({"list", "people", "--format", "json", "-n", "1"}), "[\n{\"ID\":1,\"NAME\":\"Arvid, Jr\"}\n]\n");
  EXPECT_NE(err.str().find("more records follow"), std::string::npos);
  EXPECT_EQ(run({"list", "people", "--no-header"}), "1  Arvid, Jr\n3  Aino\n(2 records)\n");
  EXPECT_EQ(Run({"list", "people", "--format", "xml"}), kExitUsage);

  // info --format create prints a command that makes the same layout.
  ASSERT_EQ(Run({"info", "people", "--format", "create"}), kExitOk) << err.str();
  EXPECT_EQ(out.str(), "ctt create people -f ID:integer,NAME:string:20,CITY:string:16 -x ById:ID:primary "
                       "-x ByCity:CITY+ID:unique\n");
}

TEST_F(TableLayerTest, CreateImportChangeIndexesAndDrop) {
  ASSERT_EQ(Run({"create", "orders", "-f", "no:integer,customer:string:20,amount:float", "-x", "byno:no:primary",
                 "-x", "bycustomer:customer+no"}),
            kExitOk)
      << err.str();
  const fs::path csv = dir / "orders.csv";
  std::ofstream(csv) << "no,customer,amount\n"
                        "3,\"Berg, Anna\",10.5\n"
                        "1,\"Multi\nLine\",7\n"
                        "2,Aker,1\n"
                        "3,Dup,2\n"          // a duplicate key
                        "4,Short\n"          // too few fields
                        "5,Bad,not-a-number\n"
                        "6,Ok,6\n";
  EXPECT_EQ(Run({"import", "orders", csv.string()}), kExitRejected);
  EXPECT_NE(err.str().find("line 6: Key value already exists (error 2)"), std::string::npos) << err.str();
  EXPECT_NE(err.str().find("line 7: the row has 2 fields"), std::string::npos) << err.str();
  EXPECT_NE(err.str().find("line 8: 'not-a-number'"), std::string::npos) << err.str();
  EXPECT_EQ(out.str().rfind("rows read 7, added 4, rejected 3 into ", 0), 0u) << out.str();

  ASSERT_EQ(Run({"export", "orders", "--index", "bycustomer"}), kExitOk) << err.str();
  EXPECT_EQ(out.str(),
            "no,customer,amount\r\n2,Aker,1\r\n3,\"Berg, Anna\",10.5\r\n1,\"Multi\nLine\",7\r\n6,Ok,6\r\n");
  ASSERT_EQ(Run({"list", "orders", "--index", "bycustomer", "--find", "B", "--limit", "1", "-c", "no"}), kExitOk);
  EXPECT_EQ(out.str().substr(0, 9), "no\n--\n 3\n") << out.str();

  ASSERT_EQ(Run({"add-index", "orders", "byamount:amount"}), kExitOk) << err.str();
  ASSERT_EQ(Run({"list", "orders", "--index", "byamount", "--from", "5", "--to", "8", "-c", "no"}), kExitOk)
      << err.str();
  EXPECT_EQ(out.str(), "no\n--\n 6\n 1\n(2 records)\n");
  ASSERT_EQ(Run({"info", "orders"}), kExitOk) << err.str();
  EXPECT_NE(out.str().find("byamount"), std::string::npos) << out.str();
  EXPECT_EQ(Run({"add-index", "orders", "byno2:nosuchfield"}), kExitUsage);
  // An index the table was created with can be dropped too; the added one keeps working.
  ASSERT_EQ(Run({"drop-index", "orders", "bycustomer"}), kExitOk) << err.str();
  EXPECT_NE(Run({"list", "orders", "--index", "bycustomer", "-c", "no"}), kExitOk);
  ASSERT_EQ(Run({"list", "orders", "--index", "byamount", "--from", "5", "--to", "8", "-c", "no"}), kExitOk)
      << err.str();
  EXPECT_EQ(out.str(), "no\n--\n 6\n 1\n(2 records)\n");
  // A second added index beside the first; then the first goes.
  ASSERT_EQ(Run({"add-index", "orders", "bycustdesc:customer:desc"}), kExitOk) << err.str();
  ASSERT_EQ(Run({"drop-index", "orders", "byamount"}), kExitOk) << err.str();
  ASSERT_EQ(Run({"list", "orders", "--index", "bycustdesc", "-n", "1", "-c", "no"}), kExitOk) << err.str();
  EXPECT_EQ(out.str().substr(0, 9), "no\n--\n 6\n") << out.str();
  ASSERT_EQ(Run({"info", "orders"}), kExitOk) << err.str();
  EXPECT_EQ(out.str().find("byamount"), std::string::npos) << out.str();

  ASSERT_EQ(Run({"drop", "orders"}), kExitOk) << err.str();
  EXPECT_EQ(Run({"info", "orders"}), kExitNotFound);
}

TEST_F(TableLayerTest, ListExportAndInfoKeepRecordsWhoseKeyIsBlank) {
  ASSERT_EQ(Run({"create", "t", "-f", "id:integer,name:string:10", "-x", "byname:name", "-x", "byid:id:primary"}),
            kExitOk)
      << err.str();
  const fs::path csv = dir / "blank.csv";
  std::ofstream(csv) << "id,name\n1,b\n2,\n3,a\n";
  ASSERT_EQ(Run({"import", "t", csv.string()}), kExitOk) << err.str();
  ASSERT_EQ(Run({"export", "t"}), kExitOk) << err.str();
  EXPECT_EQ(out.str(), "id,name\r\n2,\r\n3,a\r\n1,b\r\n");
  ASSERT_EQ(Run({"list", "t", "-c", "id"}), kExitOk) << err.str();
  EXPECT_EQ(out.str(), "id\n--\n 2\n 3\n 1\n(3 records)\n");
  ASSERT_EQ(Run({"info", "t"}), kExitOk) << err.str();
  EXPECT_NE(out.str().find("records  3\n"), std::string::npos) << out.str();
  const std::string files = "files    " + (dir / "t").string() + "\n         " + (dir / "t.idx").string() + "\n";
  EXPECT_NE(out.str().find(files), std::string::npos) << out.str();
}

TEST_F(TableLayerTest, AnIndexThatLeavesBlankKeysOutIsNamedInsteadOfLosingRecords) {
  {
    // Made by a program with NullKeys off: ByName has no key for a record with a blank name.
    Ctdb::TCTConnection conn(nullptr);
    conn.SetActive(true);
    Ctdb::CTTblDesc desc;
    desc.Name = "tags";
    desc.Fields = {Field(1, "ID", Ctdb::fldINT32, 0, 4), Field(2, "NAME", Ctdb::fldZSTRING, Ctdb::fldstFSTRING, 8)};
    desc.Indexes = {Index("ById", {1}, true, true), Index("ByName", {2}, false, false)};
    ASSERT_EQ(conn.CreateTable(dir.string(), true, desc), 0);
  }
  std::ofstream(dir / "tags.csv") << "ID,NAME\n1,x\n2,\n";
  ASSERT_EQ(Run({"import", "tags", (dir / "tags.csv").string()}), kExitOk) << err.str();
  ASSERT_EQ(Run({"info", "tags"}), kExitOk) << err.str();
  EXPECT_NE(out.str().find("records  2\n"), std::string::npos) << out.str();
  ASSERT_EQ(Run({"export", "tags"}), kExitOk) << err.str();
  EXPECT_EQ(out.str(), "ID,NAME\r\n1,x\r\n2,\r\n");
  EXPECT_EQ(Run({"export", "tags", "--index", "ByName"}), kExitStorage);
  EXPECT_EQ(out.str(), "");
  EXPECT_EQ(err.str(), "ctt: export: index ByName holds 1 of the table's 2 records: it leaves out those whose key "
                       "is blank; read through an index that holds them all\n");
  ASSERT_EQ(Run({"list", "tags", "--index", "ByName"}), kExitOk) << err.str();
  EXPECT_NE(err.str().find("ctt: list: warning: index ByName holds 1 of the table's 2 records"), std::string::npos)
      << err.str();
}

TEST_F(TableLayerTest, CreateRefusesRecordsBeyondTheStorageLimitBeforeMakingAnything) {
  for (const char* fields : {"a:string:30000,b:string:30000,c:string:30000", "a:string:40000"}) {
    EXPECT_EQ(Run({"create", "big", "-f", fields}), kExitStorage) << fields;
    EXPECT_EQ(err.str(), "ctt: create: Record longer than the storage limit of 32767 bytes (error 1103)\n");
    EXPECT_EQ(Run({"info", "big"}), kExitNotFound);
  }
  EXPECT_EQ(Run({"create", "people", "--replace", "-f", "a:string:40000"}), kExitStorage);
  ASSERT_EQ(Run({"info", "people"}), kExitOk) << "the refused replacement left the table alone";
  EXPECT_NE(out.str().find("records  5\n"), std::string::npos) << out.str();
}

TEST_F(TableLayerTest, FoldersAreResolvedOnceAndAMissingOneIsNamed) {
  fs::current_path(dir);
  fs::create_directories("rel");
  const auto run = [this](std::vector<std::string> args) {
    args.insert(args.begin(), "ctt");
    out.str("");
    err.str("");
    return RunTool(args, console, MakeTableBackend);
  };
  ASSERT_EQ(run({"--dir", "rel", "create", "t", "-f", "id:integer", "-x", "byid:id:primary"}), kExitOk) << err.str();
  std::ofstream("rel/in.csv") << "id\n7\n";
  ASSERT_EQ(run({"--dir", "rel", "import", "t", "rel/in.csv"}), kExitOk) << err.str();
  ASSERT_EQ(run({"--dir", "./rel/", "export", "t"}), kExitOk) << err.str();
  EXPECT_EQ(out.str(), "id\r\n7\r\n");
  EXPECT_TRUE(fs::exists("rel/t"));
  ASSERT_EQ(run({"--dir", "rel", "add-index", "t", "byid2:id:desc"}), kExitOk) << err.str();
  ASSERT_EQ(run({"--dir", "rel", "drop-index", "t", "byid2"}), kExitOk) << err.str();
  ASSERT_EQ(run({"--dir", "rel", "--superfile", "host", "create", "m", "-f", "id:integer", "-x", "k:id"}), kExitOk)
      << err.str();
  ASSERT_EQ(run({"--dir", "rel", "--superfile", "host", "info", "m"}), kExitOk) << err.str();

  EXPECT_EQ(run({"--dir", "missing", "create", "t", "-f", "id:integer"}), kExitNotFound);
  EXPECT_EQ(err.str(), "ctt: create: folder missing does not exist\n");
  EXPECT_EQ(run({"--dir", "missing", "list", "t"}), kExitNotFound);
  EXPECT_FALSE(fs::exists("missing"));
  EXPECT_FALSE(fs::exists("t"));
}

TEST_F(TableLayerTest, BatchesAreCommittedOrRolledBackAndTheImportResumes) {
  ASSERT_EQ(Run({"create", "t", "-f", "id:integer,name:string:10", "-x", "byid:id:primary"}), kExitOk) << err.str();
  const fs::path bad = dir / "bad.csv";
  std::ofstream(bad) << "id,name\n1,a\n2,b\n3,c\n1,dup\n5,e\n";
  EXPECT_EQ(Run({"import", "t", bad.string(), "--batch-size", "2", "--stop-on-error"}), kExitRejected);
  EXPECT_NE(err.str().find("line 5: Key value already exists (error 2)"), std::string::npos) << err.str();
  EXPECT_NE(err.str().find("the batch from line 4 on was rolled back"), std::string::npos) << err.str();
  EXPECT_NE(err.str().find("rerun with --skip-rows 2"), std::string::npos) << err.str();
  ASSERT_EQ(Run({"export", "t"}), kExitOk) << err.str();
  EXPECT_EQ(out.str(), "id,name\r\n1,a\r\n2,b\r\n");

  const fs::path fixed = dir / "fixed.csv";
  std::ofstream(fixed) << "id,name\n1,a\n2,b\n3,c\n4,d\n5,e\n";
  ASSERT_EQ(Run({"import", "t", fixed.string(), "--batch-size", "2", "--skip-rows", "2"}), kExitOk) << err.str();
  ASSERT_EQ(Run({"export", "t"}), kExitOk) << err.str();
  EXPECT_EQ(out.str(), "id,name\r\n1,a\r\n2,b\r\n3,c\r\n4,d\r\n5,e\r\n");

  // One transaction for the whole file: all rows or none.
  std::ofstream(bad) << "id,name\n6,f\n7,g\n7,dup\n";
  EXPECT_EQ(Run({"import", "t", bad.string(), "--batch-size", "0", "--stop-on-error"}), kExitRejected);
  ASSERT_EQ(Run({"info", "t"}), kExitOk) << err.str();
  EXPECT_NE(out.str().find("records  5\n"), std::string::npos) << out.str();
}

TEST_F(TableLayerTest, CopyModesListRejectedRecordsAndSummarise) {
  const std::string people = (dir / "people").string();
  const std::string few = (dir / "few").string();
  ASSERT_EQ(Run({"copy", "people", "staff"}), kExitOk) << err.str();
  EXPECT_EQ(out.str().rfind("records read 5, written 5, rejected 0 (copy " + people + " into ", 0), 0u) << out.str();
  EXPECT_EQ(Run({"copy", "people", "staff"}), kExitUsage);  // copying replaces only on request
  EXPECT_NE(err.str().find("already exists; --replace"), std::string::npos) << err.str();

  ASSERT_EQ(Run({"create", "few", "-f", "ID:integer,NAME:string:20,CITY:string:16", "-x", "ById:ID:primary"}),
            kExitOk);
  std::ofstream(dir / "few.csv") << "ID,NAME,CITY\n1,Old,Narvik\n9,Nine,Bodo\n";
  ASSERT_EQ(Run({"import", "few", (dir / "few.csv").string()}), kExitOk) << err.str();
  EXPECT_EQ(Run({"copy", "people", "few", "--mode", "append"}), kExitRejected);
  EXPECT_EQ(err.str(), "ctt: copy: record 1 (ID 1): Key value already exists (error 2)\n");
  EXPECT_EQ(out.str().rfind("records read 5, written 4, rejected 1 (append " + people + " into " + few + ")", 0), 0u)
      << out.str();
  ASSERT_EQ(Run({"export", "few", "--to", "1"}), kExitOk);
  EXPECT_EQ(out.str(), "ID,NAME,CITY\r\n1,Old,Narvik\r\n");
  ASSERT_EQ(Run({"copy", "people", "few", "--mode", "update"}), kExitOk) << err.str();
  EXPECT_EQ(out.str().rfind("records read 5, written 5, rejected 0", 0), 0u) << out.str();
  ASSERT_EQ(Run({"copy", "people", "few", "--mode", "delete"}), kExitOk) << err.str();
  ASSERT_EQ(Run({"export", "few"}), kExitOk);
  EXPECT_EQ(out.str(), "ID,NAME,CITY\r\n9,Nine,Bodo\r\n");

  EXPECT_EQ(Run({"copy", "people", "staff", "--mode", "append", "--stop-on-error"}), kExitRejected);
  EXPECT_EQ(err.str(), "ctt: copy: record 1 (ID 1): Key value already exists (error 2)\n"
                       "ctt: copy: stopped; the 0 records written before are in " + (dir / "staff").string() + "\n");
  EXPECT_EQ(Run({"copy", "people", "people", "--replace"}), kExitStorage);
  EXPECT_EQ(err.str(), "ctt: copy: Batch source and destination are pointing to the same data (error 1131)\n");
  ASSERT_EQ(Run({"info", "people"}), kExitOk);
  EXPECT_NE(out.str().find("records  5\n"), std::string::npos) << out.str();
  EXPECT_EQ(Run({"copy", "people", "staff", "--mode", "merge"}), kExitUsage);
}

TEST_F(TableLayerTest, AlterKeepsTheRecordsOrLeavesTheTableUnchangedAndRebuildWorksInPlace) {
  const std::string people = (dir / "people").string();
  EXPECT_EQ(Run({"alter", "people", "-f", "ID:integer,CITY:string:16", "-x", "OneCity:CITY:unique"}), kExitRejected);
  EXPECT_EQ(err.str(), "ctt: alter: record 3 (ID 3): Key value already exists (error 2)\n"
                       "ctt: alter: table " + people + " is unchanged\n");
  EXPECT_EQ(Run({"alter", "people", "-f", "ID:integer", "-x", "ByZip:ZIP"}), kExitUsage);
  ASSERT_EQ(Run({"export", "people", "--to", "1"}), kExitOk);
  EXPECT_EQ(out.str(), "ID,NAME,CITY\r\n1,\"Arvid, Jr\",Bergen\r\n");

  ASSERT_EQ(Run({"alter", "people", "-f", "ID:integer,CITY:string:16,EMAIL:string:30", "-x", "ById:ID:primary", "-x",
                 "ByCity:CITY+ID"}),
            kExitOk)
      << err.str();
  EXPECT_EQ(out.str().rfind("altered " + people + ": 5 records now with 3 fields and 2 indexes", 0), 0u) << out.str();
  ASSERT_EQ(Run({"export", "people", "--index", "ByCity", "--to", "Bergen"}), kExitOk) << err.str();
  EXPECT_EQ(out.str(), "ID,CITY,EMAIL\r\n1,Bergen,\r\n3,Bergen,\r\n");

  ASSERT_EQ(Run({"rebuild", "people"}), kExitOk) << err.str();
  EXPECT_EQ(out.str().rfind("rebuilt " + people + ": 2 indexes made anew from 5 records", 0), 0u) << out.str();
  ASSERT_EQ(Run({"list", "people", "--index", "ByCity", "-c", "ID"}), kExitOk) << err.str();
  EXPECT_EQ(out.str(), "ID\n--\n 1\n 3\n 2\n 4\n 5\n(5 records)\n");
}

// A rebuild leaves the old index pages free inside the file; with --compact the file gives them
// back and keeps every record and key.
TEST_F(TableLayerTest, RebuildCompactGivesTheFreeSpaceBack) {
  ASSERT_EQ(Run({"create", "t", "-f", "id:integer,name:string:40", "-x", "byid:id:primary", "-x", "byname:name"}),
            kExitOk)
      << err.str();
  const fs::path csv = dir / "many.csv";
  {
    std::ofstream rows(csv);
    rows << "id,name\n";
    for (int id = 1; id <= 3000; ++id) rows << id << ",name" << (id * 7919) % 3001 << "\n";
  }
  ASSERT_EQ(Run({"import", "t", csv.string()}), kExitOk) << err.str();
  ASSERT_EQ(Run({"rebuild", "t"}), kExitOk) << err.str();
  const auto rebuilt = fs::file_size(dir / "t");
  ASSERT_EQ(Run({"rebuild", "--compact", "t"}), kExitOk) << err.str();
  EXPECT_NE(out.str().find("3000 records, data file "), std::string::npos) << out.str();
  EXPECT_LT(fs::file_size(dir / "t"), rebuilt);
  ASSERT_EQ(Run({"check", "t"}), kExitOk) << err.str();
  ASSERT_EQ(Run({"export", "t", "--index", "byname", "--to", "name1", "-c", "id"}), kExitOk) << err.str();
  EXPECT_EQ(out.str(), "id\r\n1088\r\n");  // 1088 * 7919 % 3001 == 1
  // A member shares its host's file with the other members: refused before anything is done.
  EXPECT_EQ(Run({"--superfile", "shop.sup", "rebuild", "--compact", "items"}), kExitUsage);
}

}  // namespace
}  // namespace ctt
