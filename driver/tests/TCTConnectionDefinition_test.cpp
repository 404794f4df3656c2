// TCTConnection table and index definition: the IFIL, IIDX, ISEG and DODA a created table gets,
// overwriting, clean-up after a failed create, renaming, deleting, plain files, and indexes added
// to an open table.
#include <gtest/gtest.h>

#include <filesystem>
#include <tuple>

#include "TableFixture.h"

namespace Ctdb::testing {
namespace {

CTFldDesc Field(const std::string& name, int16_t type, int16_t subType, int16_t length) {
  CTFldDesc desc;
  desc.Name = name;
  desc.FieldType = type;
  desc.SubType = subType;
  desc.Length = length;
  desc.Units1 = length;
  return desc;
}

CTIdxDesc Index(const std::string& name, std::vector<int32_t> fields, bool unique) {
  CTIdxDesc desc;
  desc.Name = name;
  desc.Unique = unique ? kWordTrue : kWordFalse;
  desc.Maintained = kWordTrue;
  desc.FieldsInKey = static_cast<int16_t>(fields.size());
  for (size_t i = 0; i < fields.size(); ++i) desc.KeyFields[i] = fields[i];
  return desc;
}

class DefinitionTest : public TableTest {
 protected:
  void SetUp() override { Activate(); }

  // id INT32, grp INT32, name fixed string of 12: records of 20 bytes, as TableTest's.
  static CTTblDesc People() {
    CTTblDesc desc;
    desc.Name = "people";
    desc.TableType = "CTree";
    desc.Fields = {Field("id", fldINT32, 0, 4), Field("grp", fldINT32, 0, 4),
                   Field("name", fldZSTRING, fldstFSTRING, 12)};
    CTIdxDesc byGroup = Index("ByGroup", {2, 3}, false);
    byGroup.CaseInsensitive = kWordTrue;
    byGroup.Descending = kWordTrue;
    desc.Indexes = {Index("", {1}, true), byGroup};
    return desc;
  }
  /// Creates the table `desc` describes in the test directory (failing the test when refused).
  void Create(const CTTblDesc& desc = People()) {
    CTTblDesc copy = desc;
    ASSERT_EQ(Conn->CreateTable(Dir.Path(), false, copy), 0) << desc.Name;
  }
  void OpenPeople(int32_t flags = SHARED) {
    ASSERT_EQ(Conn->OpenCursor(Cursor, "people", Dir.Path(), flags), 0);
  }
  /// Adds records (id, grp, name) straight through the engine.
  void AddRows(const std::vector<std::tuple<int32_t, int32_t, std::string>>& rows) {
    for (const auto& [id, grp, name] : rows) {
      std::vector<uint8_t> rec = Record(id, grp, name);
      rec.resize(static_cast<size_t>(Cursor->FixedRecLength), 0);
      ASSERT_EQ(CTDbIntf::AddRecord(Conn->Alignment(), Cursor->DataFileNo, rec.data()), 0) << id;
    }
  }
};

TEST_F(DefinitionTest, CreatedTableCarriesTheDefinitionRecordsAsBuilt) {
  Create();
  EXPECT_EQ(Dir.Files(), (std::vector<std::string>{"people", "people.idx"}));
  OpenPeople();
  const IfilDefinition& ifil = Cursor->Ifil;
  EXPECT_EQ(ifil.dreclen, 30);  // 20 bytes of fields and 10 more
  EXPECT_EQ(ifil.ixtdsiz, 30);
  EXPECT_EQ(ifil.dfilmod, SHARED);
  EXPECT_EQ(ifil.ifilmod, SHARED);
  ASSERT_EQ(ifil.ix.size(), 2u);
  EXPECT_EQ(ifil.ix[0].ridxnam, std::optional<std::string>("Primary"));
  EXPECT_EQ(ifil.ix[0].ikeylen, 4);
  EXPECT_EQ(ifil.ix[0].ikeydup, 0);
  EXPECT_EQ(ifil.ix[0].inulkey, 1);
  ASSERT_EQ(ifil.ix[0].seg.size(), 1u);
  EXPECT_EQ(ifil.ix[0].seg[0].soffset, 0);
  EXPECT_EQ(ifil.ix[0].seg[0].segmode, VSCHSEG);
  EXPECT_EQ(ifil.ix[1].ikeylen, 4 + 12 + 4);
  EXPECT_EQ(ifil.ix[1].ikeydup, 1);
  ASSERT_EQ(ifil.ix[1].seg.size(), 2u);
  EXPECT_EQ(ifil.ix[1].seg[1].soffset, 2);
  EXPECT_EQ(ifil.ix[1].seg[1].slength, 12);
  EXPECT_EQ(ifil.ix[1].seg[1].segmode, UVSCHSEG | DSCSEG);
  ASSERT_EQ(Cursor->FieldCount(), 3);
  EXPECT_EQ(Cursor->FieldDescByIndex(0)->FieldType, CT_INT4);
  EXPECT_EQ(Cursor->FieldDescByIndex(2)->FieldType, CT_FSTRING);
  EXPECT_EQ(Cursor->FieldDescByIndex(2)->Length, 12);

  // The descending, upper-casing index orders by group, then name, both backwards.
  AddRows({{1, 10, "anne"}, {2, 20, "Bob"}, {3, 20, "carl"}});
  UseIndex("ByGroup");
  EXPECT_EQ(Walk(true), (std::vector<int32_t>{3, 2, 1}));
}

TEST_F(DefinitionTest, DataFileNamesFollowThePathRules) {
  Conn->SetDataExt(".dat");  // stored as "dat" and appended without a dot
  CTTblDesc desc = People();
  Create(desc);
  desc.Name = "other.tbl";
  Create(desc);
  EXPECT_EQ(Dir.Files(), (std::vector<std::string>{"other.idx", "other.tbl", "people.idx", "peopledat"}));
  OpenPeople();
  ASSERT_EQ(Conn->CloseCursor(Cursor), 0);
  ASSERT_EQ(Conn->OpenCursor(Cursor, "other.tbl", Dir.Path(), SHARED), 0);
}

TEST_F(DefinitionTest, VariableFieldsAndTableFlagsSetTheFileMode) {
  CTTblDesc desc = People();
  desc.Fields.push_back(Field("notes", fldBLOB, fldst4STRING, 30000));
  desc.TableFlags = 0x10 | 0x400;  // bit 0x10 brings the whole 0x30 group with it
  Create(desc);
  OpenPeople();
  EXPECT_EQ(Cursor->Ifil.dfilmod, SHARED | VLENGTH | 0x30 | 0x400);
  EXPECT_TRUE(Cursor->HasBlobs);
  EXPECT_EQ(Cursor->FieldDescByIndex(3)->FieldType, CT_4STRING);
}

TEST_F(DefinitionTest, NullKeysDecidesWhetherBlankKeysAreStored) {
  for (const bool nullKeys : {false, true}) {
    SCOPED_TRACE(nullKeys);
    Conn->SetNullKeys(nullKeys);
    CTTblDesc desc = People();
    desc.Indexes = {Index("ByName", {3}, false)};
    ASSERT_EQ(Conn->CreateTable(Dir.Path(), true, desc), 0);
    OpenPeople();
    AddRows({{1, 1, ""}, {2, 1, "x"}});
    EXPECT_EQ(CTDbIntf::NbrOfKeyEntries(Conn->Alignment(), static_cast<int16_t>(Cursor->DataFileNo + 1)),
              nullKeys ? 2 : 1);
    ASSERT_EQ(Conn->CloseCursor(Cursor), 0);
  }
}

TEST_F(DefinitionTest, OverwriteReplacesATableAndOnlyThen) {
  CTTblDesc desc = People();
  Create(desc);
  OpenPeople();
  AddRows({{1, 1, "kept"}});
  ASSERT_EQ(Conn->CloseCursor(Cursor), 0);
  EXPECT_EQ(Conn->CreateTable(Dir.Path(), false, desc), DCRAT_ERR);
  OpenPeople();
  int32_t count = 0;
  ASSERT_EQ(Conn->GetRecordCount(Cursor.get(), count), 0);
  EXPECT_EQ(count, 1);
  // An open table cannot be deleted, so it cannot be overwritten either.
  EXPECT_NE(Conn->CreateTable(Dir.Path(), true, desc), 0);
  ASSERT_EQ(Conn->CloseCursor(Cursor), 0);
  ASSERT_EQ(Conn->CreateTable(Dir.Path(), true, desc), 0);
  OpenPeople();
  ASSERT_EQ(Conn->GetRecordCount(Cursor.get(), count), 0);
  EXPECT_EQ(count, 0);
}

TEST_F(DefinitionTest, FailedCreatesLeaveNoFiles) {
  CTTblDesc desc = People();
  desc.Indexes[1].ExpressionIndex = kWordTrue;
  desc.Indexes[1].Expression = "grp >";  // malformed: the condition cannot be applied
  EXPECT_NE(Conn->CreateTable(Dir.Path(), false, desc), 0);
  EXPECT_TRUE(Dir.Files().empty());
  desc = People();
  desc.Indexes[0].KeyFields[0] = 4;
  EXPECT_EQ(Conn->CreateTable(Dir.Path(), false, desc), kCtInvalidIndexDesc);
  desc = People();
  desc.Fields.push_back(Field("odd", fldBLOB, 0, 10));
  EXPECT_EQ(Conn->CreateTable(Dir.Path(), false, desc), CT_EBADDEF);
  desc.Fields.clear();
  EXPECT_EQ(Conn->CreateTable(Dir.Path(), false, desc), kCtNoFields);
  // Records beyond 32767 bytes: the stored 16-bit length would be another one.
  desc = People();
  desc.Fields.push_back(Field("memo", fldZSTRING, fldstF2STRING, 32767 - 20 - 10));
  EXPECT_EQ(Conn->CreateTable(Dir.Path(), false, desc), 0);
  ASSERT_EQ(Conn->DeleteTable(Dir.Path(), "people"), 0);
  desc.Fields.push_back(Field("one", fldBOOL, 0, 1));
  EXPECT_EQ(Conn->CreateTable(Dir.Path(), false, desc), kCtRecordTooLong);
  EXPECT_TRUE(Dir.Files().empty());
  Conn->SetActive(false);
  desc = People();
  EXPECT_EQ(Conn->CreateTable(Dir.Path(), false, desc), kCtNotActive);
}

TEST_F(DefinitionTest, ARelativePathIsTakenFromTheCurrentFolderOnce) {
  const std::filesystem::path saved = std::filesystem::current_path();
  std::filesystem::current_path(Dir.Path());
  std::filesystem::create_directory("rel");
  CTTblDesc desc = People();
  const int32_t created = Conn->CreateTable("rel", false, desc);
  const int32_t opened = Conn->OpenCursor(Cursor, "people", "rel", SHARED);
  std::filesystem::current_path(saved);
  EXPECT_EQ(created, 0);
  EXPECT_EQ(opened, 0);
  EXPECT_TRUE(std::filesystem::exists(std::filesystem::path(Dir.Path()) / "rel" / "people"));
}

TEST_F(DefinitionTest, RenamedTableOpensUnderItsNewName) {
  Create();
  OpenPeople(EXCLUSIVE);
  AddRows({{7, 1, "moved"}});
  ASSERT_EQ(Conn->RenameTable(Cursor.get(), "renamed"), 0);
  ASSERT_EQ(Conn->CloseCursor(Cursor), 0);
  EXPECT_EQ(Dir.Files(), (std::vector<std::string>{"renamed", "renamed.idx"}));
  ASSERT_EQ(Conn->OpenCursor(Cursor, "renamed", Dir.Path(), SHARED), 0);
  UseIndex("Primary");
  EXPECT_EQ(Walk(true), std::vector<int32_t>{7});
  EXPECT_EQ(Conn->RenameTable(nullptr, "x"), kCtInvalidCursor);
  // A shared table cannot be renamed; nothing moves.
  EXPECT_NE(Conn->RenameTable(Cursor.get(), "again"), 0);
  EXPECT_EQ(Dir.Files(), (std::vector<std::string>{"renamed", "renamed.idx"}));
}

TEST_F(DefinitionTest, DeleteTableAndCreateFile) {
  Create();
  ASSERT_EQ(Conn->DeleteTable(Dir.Path(), "people"), 0);
  EXPECT_TRUE(Dir.Files().empty());
  EXPECT_EQ(Conn->DeleteTable(Dir.Path(), "people"), FNOP_ERR);
  ASSERT_EQ(Conn->CreateFile(Dir.File("plain.dat"), 16, EXCLUSIVE), 0);
  EXPECT_EQ(Dir.Files(), std::vector<std::string>{"plain.dat"});
  EXPECT_EQ(Conn->CreateFile(Dir.File("plain.dat"), 16, EXCLUSIVE), DCRAT_ERR);
  EXPECT_EQ(Conn->CreateFile(Dir.File("bad.dat"), 0, EXCLUSIVE), CT_EBADARG);
}

TEST_F(DefinitionTest, APathEndingInAFileNameMakesASuperfileMember) {
  CTTblDesc desc = People();
  const int32_t created = Conn->CreateTable(Dir.File("host.sup"), false, desc);
  if (created == NSUP_ERR) GTEST_SKIP() << "the engine has no superfiles yet";
  ASSERT_EQ(created, 0);
  ASSERT_EQ(Conn->OpenCursor(Cursor, "host.sup!people", Dir.Path(), SHARED), 0);
  CTCurProps props;
  ASSERT_EQ(Conn->GetCursorProps(Cursor.get(), props), 0);
  EXPECT_EQ(props.Name, "people");
  AddRows({{1, 10, "member"}});
  UseIndex("Primary");
  EXPECT_EQ(Walk(true), std::vector<int32_t>{1});
  ASSERT_EQ(Conn->CloseCursor(Cursor), 0);
  ASSERT_EQ(Conn->DeleteTable(Dir.Path(), "host.sup!people"), 0);
  EXPECT_EQ(Conn->OpenCursor(Cursor, "host.sup!people", Dir.Path(), SHARED), FNOP_ERR);
}

TEST_F(DefinitionTest, ConditionalIndexesHoldOnlyTheirRecords) {
  CTTblDesc desc = People();
  desc.Indexes[1].ExpressionIndex = kWordTrue;
  desc.Indexes[1].Expression = "grp > 15";
  const int32_t created = Conn->CreateTable(Dir.Path(), false, desc);
  if (created == NSUP_ERR) GTEST_SKIP() << "the engine has no conditional indexes yet";
  ASSERT_EQ(created, 0);
  OpenPeople();
  AddRows({{1, 10, "a"}, {2, 20, "b"}, {3, 30, "c"}});
  UseIndex("ByGroup");
  EXPECT_EQ(Walk(true), (std::vector<int32_t>{3, 2}));
  EXPECT_EQ(Cursor->Indexes[1].Condition, "grp > 15");
}

TEST_F(DefinitionTest, RebuildingAnIndexAsksTheHookAndRebuildingATableRestoresEveryKey) {
  CTTblDesc desc = People();
  desc.Name = "people.dat";
  Create(desc);
  ASSERT_EQ(Conn->OpenCursor(Cursor, "people.dat", Dir.Path(), SHARED), 0);
  AddRows({{1, 10, "a"}, {2, 20, "b"}, {3, 30, "c"}});
  UseIndex("ByGroup");
  CTIdxDesc byGroup = Cursor->Indexes[1];
  int offered = 0;
  Conn->OnIndexKey = [&](TCTCursorDesc*, CTIdxDesc* index, const void* rec, int32_t, bool& accept) {
    ++offered;
    EXPECT_EQ(index->Name, "ByGroup");
    int32_t grp = 0;
    std::memcpy(&grp, static_cast<const uint8_t*>(rec) + 4, 4);
    accept = grp != 20;
  };
  ASSERT_EQ(Conn->RebuildIndex(Cursor.get(), &byGroup), 0);
  Conn->OnIndexKey = nullptr;
  EXPECT_EQ(offered, 3);
  EXPECT_EQ(Cursor->Position, cpBof);
  EXPECT_EQ(Walk(true), (std::vector<int32_t>{3, 1}));
  UseIndex("Primary");
  EXPECT_EQ(Walk(true), (std::vector<int32_t>{1, 2, 3}));

  IfilDefinition ifil = Cursor->Ifil;
  ifil.pfilnam = Dir.File("people");
  ASSERT_EQ(Conn->CloseCursor(Cursor), 0);
  ASSERT_EQ(Conn->RebuildTable(ifil), 0);
  ASSERT_EQ(Conn->OpenCursor(Cursor, "people.dat", Dir.Path(), SHARED), 0);
  UseIndex("ByGroup");
  EXPECT_EQ(Walk(true), (std::vector<int32_t>{3, 2, 1}));
}

TEST_F(DefinitionTest, LockedReadsTakeTheRecordLock) {
  Create();
  OpenPeople();
  AddRows({{1, 10, "a"}});
  UseIndex("Primary");
  TCTCustomRecordBuffer* buffer = NewBuffer();
  ASSERT_EQ(Conn->SetToBegin(Cursor.get()), 0);
  ASSERT_EQ(Conn->GetNextRecord(Cursor.get(), dbiNOLOCK, buffer), 0);
  const int32_t locked = Conn->GetCurrentRecord(Cursor.get(), dbiWRITELOCK, buffer);
  if (locked == NSUP_ERR) GTEST_SKIP() << "the engine has no record locks yet";
  ASSERT_EQ(locked, 0);
  EXPECT_EQ(IdOf(*buffer), 1);
  EXPECT_EQ(Conn->LockData(Cursor->DataFileNo, FREE), 0);
}

TEST_F(DefinitionTest, AnOpenedIndexFileJoinsTheCursorUntilItCloses) {
  CTTblDesc desc = People();
  Create(desc);
  desc.Name = "side";
  desc.Indexes = {Index("SideName", {3}, true)};
  Create(desc);
  OpenPeople();
  ASSERT_EQ(Conn->InitIndexes(Cursor.get()), 0);
  CTIdxDesc opened;
  ASSERT_EQ(Conn->OpenIndex(Cursor.get(), "side.idx", &opened), 0);
  EXPECT_EQ(Cursor->IndexCount, 3);
  EXPECT_EQ(opened.Name, "side");
  EXPECT_EQ(Cursor->Indexes.back().IndexId, opened.IndexId);
  AddRows({{2, 10, "b"}, {1, 20, "a"}});
  ASSERT_EQ(Conn->SwitchToIndex(Cursor.get(), &opened, false), 0);
  EXPECT_EQ(Walk(true), (std::vector<int32_t>{1, 2}));
  ASSERT_EQ(Conn->InitIndexes(Cursor.get()), 0);  // the opened file stays in the list
  EXPECT_EQ(Cursor->IndexCount, 3);
  EXPECT_EQ(Cursor->Indexes.back().IndexId, opened.IndexId);
  EXPECT_EQ(Conn->CloseCursor(Cursor), 0);
}

// Indexes added to an open table (through the engine's incremental index calls) are filled at
// once; AddIndex then DeleteIndex, on the open table and across a reopen: the list, the key
// numbers and the files follow.
TEST_F(DefinitionTest, AddedIndexesAreDeletedOnAnOpenOrReopenedTable) {
  Create();
  const std::vector<std::string> original = Dir.Files();
  OpenPeople();
  AddRows({{1, 30, "c"}, {2, 10, "a"}, {3, 20, "b"}});
  ASSERT_EQ(Conn->InitIndexes(Cursor.get()), 0);
  CTIdxDesc byName = Index("ByName", {3}, true);
  ASSERT_EQ(Conn->AddIndex(Cursor.get(), &byName), 0);
  EXPECT_EQ(Cursor->IndexCount, 3);
  CTIdxDesc use;  // switched to by its name alone, the added index is filled
  use.Name = "ByName";
  use.IndexId = -1;
  ASSERT_EQ(Conn->SwitchToIndex(Cursor.get(), &use, false), 0);
  EXPECT_EQ(Walk(true), (std::vector<int32_t>{2, 3, 1}));
  ASSERT_EQ(Conn->InitIndexes(Cursor.get()), 0);
  ASSERT_EQ(Cursor->IndexCount, 3);
  EXPECT_EQ(Cursor->Indexes.back().Name, "ByName");
  EXPECT_EQ(Cursor->Indexes.back().IndexId, byName.IndexId);
  ASSERT_EQ(Conn->DeleteIndex(Cursor.get(), &byName), 0);
  EXPECT_EQ(Cursor->IndexCount, 2);
  EXPECT_EQ(Dir.Files(), original);
  EXPECT_EQ(Conn->DeleteIndex(Cursor.get(), &byName), kCtInvalidIndexDesc);
  CTIdxDesc unknown = Index("nothere", {1}, true);
  unknown.IndexId = -1;
  EXPECT_EQ(Conn->DeleteIndex(Cursor.get(), &unknown), kCtInvalidIndexDesc);

  // Added again, then the table closes: the reopened table has it and deletes it.
  byName = Index("ByName", {3}, true);
  ASSERT_EQ(Conn->AddIndex(Cursor.get(), &byName), 0);
  ASSERT_EQ(Conn->CloseCursor(Cursor), 0);
  OpenPeople(EXCLUSIVE);
  ASSERT_EQ(Conn->InitIndexes(Cursor.get()), 0);
  ASSERT_EQ(Cursor->IndexCount, 3);
  use = Cursor->Indexes.back();
  EXPECT_EQ(use.Name, "ByName");
  ASSERT_EQ(Conn->SwitchToIndex(Cursor.get(), &use, false), 0);
  EXPECT_EQ(Walk(true), (std::vector<int32_t>{2, 3, 1}));
  ASSERT_EQ(Conn->DeleteIndex(Cursor.get(), &use), 0);
  // An index of the created set goes too; the remaining one keeps its number and its keys.
  CTIdxDesc byGroup = Cursor->Indexes[1];
  ASSERT_EQ(Conn->DeleteIndex(Cursor.get(), &byGroup), 0);
  ASSERT_EQ(Conn->InitIndexes(Cursor.get()), 0);
  ASSERT_EQ(Cursor->IndexCount, 1);
  use = Cursor->Indexes[0];
  ASSERT_EQ(Conn->SwitchToIndex(Cursor.get(), &use, false), 0);
  EXPECT_EQ(Walk(true), (std::vector<int32_t>{1, 2, 3}));
  ASSERT_EQ(Conn->CloseCursor(Cursor), 0);
  EXPECT_EQ(Dir.Files(), original);
  OpenPeople();
  ASSERT_EQ(Conn->InitIndexes(Cursor.get()), 0);
  EXPECT_EQ(Cursor->IndexCount, 1);
  EXPECT_EQ(Conn->CloseCursor(Cursor), 0);
}

TEST_F(DefinitionTest, UnnamedIndexesAfterADeletedOneMoveUpAPlaceAndAName) {
  // Three unnamed indexes, known by their places "0", "1" and "2": id, grp, name.
  MakeTable("codes", {{"id", CT_INT4, 4}, {"grp", CT_INT4, 4}, {"name", CT_FSTRING, 12}},
            {{{{0, 4, SCHSEG}}, false}, {{{1, 4, SCHSEG}}, true}, {{{2, 12, SCHSEG}}, true}});
  ASSERT_EQ(Conn->OpenCursor(Cursor, "codes.dat", Dir.Path(), SHARED), 0);
  ASSERT_EQ(Conn->InitIndexes(Cursor.get()), 0);
  const int16_t nameIndex = Cursor->Indexes[2].IndexId;
  CTIdxDesc victim;
  victim.Name = "1";
  victim.IndexId = -1;
  ASSERT_EQ(Conn->DeleteIndex(Cursor.get(), &victim), 0);
  // The name index is now the second in the set: its name follows its place, its number stays.
  const int32_t moved = Cursor->FindIndex("1", -1);
  ASSERT_GE(moved, 0);
  EXPECT_EQ(Cursor->Indexes[static_cast<size_t>(moved)].IndexId, nameIndex);
  EXPECT_EQ(Cursor->Indexes[static_cast<size_t>(moved)].KeyFields[0], 3);
  EXPECT_LT(Cursor->FindIndex("2", -1), 0);
  ASSERT_EQ(Conn->DeleteIndex(Cursor.get(), &victim), 0);
  ASSERT_EQ(Conn->CloseCursor(Cursor), 0);
  ASSERT_EQ(Conn->OpenCursor(Cursor, "codes.dat", Dir.Path(), SHARED), 0);
  EXPECT_EQ(Cursor->Ifil.ix.size(), 1u);
}

TEST_F(DefinitionTest, IndexCallsCheckTheirArguments) {
  Create();
  OpenPeople();
  EXPECT_EQ(Conn->AddIndex(Cursor.get(), nullptr), kCtInvalidIndexDesc);
  EXPECT_EQ(Conn->OpenIndex(Cursor.get(), "x.idx", nullptr), kCtInvalidIndexDesc);
  EXPECT_EQ(Conn->DeleteIndex(Cursor.get(), nullptr), kCtInvalidIndexDesc);
  EXPECT_EQ(Conn->RebuildIndex(Cursor.get(), nullptr), kCtInvalidIndexDesc);
  CTIdxDesc noFields = Index("none", {}, true);
  EXPECT_EQ(Conn->AddIndex(Cursor.get(), &noFields), kCtInvalidIndexDesc);
  CTIdxDesc any = Index("x", {1}, true);
  EXPECT_EQ(Conn->AddIndex(nullptr, &any), kCtInvalidCursor);
  EXPECT_EQ(Conn->AddIndexKey(Cursor.get(), nullptr, nullptr), kCtInvalidIndexDesc);
  ASSERT_EQ(Conn->CloseCursor(Cursor), 0);
  Conn->SetActive(false);
  EXPECT_EQ(Conn->AddIndex(nullptr, &any), kCtNotActive);
  EXPECT_EQ(Conn->RenameTable(nullptr, "x"), kCtNotActive);
}

}  // namespace
}  // namespace Ctdb::testing
