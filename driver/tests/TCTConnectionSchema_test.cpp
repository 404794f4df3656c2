// TCTConnection schema reading: fields and offsets for every type code, index descriptors, the
// schema file, index file names, and the numbers returned for bad input.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "DriverTestSupport.h"
#include "StringUtils.h"

namespace Ctdb::testing {
namespace {

// Every type code the driver knows, and one it does not (200); per field: c-tree offset,
// framework size, max and in-record sizes, blob number, then the framework view (logical type,
// subtype, units, framework offset, field type).
struct TypeCase {
  DodaEntry Field;
  int32_t Offset, Size, MaxSize, DefSize;
  bool Blob;
  int32_t BlobNo;
  int16_t FieldType, SubType, Units1, Units2, FwOffset;
  fw::TFieldType Type;
};

const TypeCase kTypes[] = {
    {{"f_bool", CT_BOOL, 1}, 0, 1, 1, 1, false, 0, fldBOOL, 0, 1, 0, 0, fw::ftBoolean},
    {{"f_char", CT_CHAR, 1}, 1, 1, 1, 1, false, 0, fldBYTES, fldstCHAR, 1, 0, 1, fw::ftString},
    {{"f_charu", CT_CHARU, 1}, 2, 1, 1, 1, false, 0, fldBYTES, fldstCHARU, 1, 0, 2, fw::ftString},
    {{"f_int2", CT_INT2, 2}, 3, 2, 2, 2, false, 0, fldINT16, fldstINT16, 2, 0, 3, fw::ftSmallint},
    {{"f_int2u", CT_INT2U, 2}, 5, 2, 2, 2, false, 0, fldUINT16, fldstINT16, 2, 0, 5, fw::ftWord},
    {{"f_int4", CT_INT4, 4}, 7, 4, 4, 4, false, 0, fldINT32, 0, 4, 0, 7, fw::ftInteger},
    {{"f_int4u", CT_INT4U, 4}, 11, 4, 4, 4, false, 0, fldUINT32, 0, 4, 0, 11, fw::ftInteger},
    {{"f_money", CT_MONEY, 4}, 15, 8, 4, 4, false, 0, fldFLOAT, fldstMONEY, 4, 0, 15, fw::ftFloat},
    {{"f_date", CT_DATE, 4}, 19, 4, 4, 4, false, 0, fldDATE, 0, 4, 0, 19, fw::ftDate},
    {{"f_time", CT_TIME, 4}, 23, 4, 4, 4, false, 0, fldTIME, 0, 4, 0, 23, fw::ftTime},
    {{"f_sfloat", CT_SFLOAT, 4}, 27, 8, 4, 4, false, 0, fldFLOAT, fldstSFLOAT, 4, 0, 27, fw::ftFloat},
    {{"f_dfloat", CT_DFLOAT, 8}, 31, 8, 8, 8, false, 0, fldFLOAT, 0, 8, 0, 31, fw::ftFloat},
    {{"f_bcdold", CT_BCDOLD, 10}, 39, 10, 10, 10, false, 0, fldBCD, 0, 32, 20, 39, fw::ftBCD},
    {{"f_bcd", CT_BCD, 10}, 49, 20, 10, 10, false, 0, fldBCD, 0, 32, 20, 49, fw::ftBCD},
    {{"f_efloat", CT_EFLOAT, 10}, 59, 10, 10, 10, false, 0, fldFLOATIEEE, 0, 10, 0, 59, fw::ftUnknown},
    {{"f_times", CT_TIMES, 8}, 69, 8, 8, 8, false, 0, fldTIMESTAMP, 0, 8, 0, 69, fw::ftDateTime},
    {{"f_array", CT_ARRAY, 6}, 77, 6, 6, 6, false, 0, fldBYTES, 0, 6, 0, 77, fw::ftBytes},
    {{"f_resrvd", CT_RESRVD, 3}, 83, 3, 3, 3, false, 0, fldUNKNOWN, 0, 3, 0, 83, fw::ftUnknown},
    {{"f_fstring", CT_FSTRING, 12}, 86, 12, 12, 12, false, 0, fldZSTRING, fldstFSTRING, 12, 0, 86, fw::ftString},
    {{"f_string", CT_STRING, 20}, 98, 20, 20, 1, true, 0, fldBLOB, fldstSTRING, 20, 0, 98, fw::ftMemo},
    {{"f_fpstring", CT_FPSTRING, 11}, 118, 11, 11, 11, false, 1, fldZSTRING, fldstFPSTRING, 10, 0, 99, fw::ftString},
    {{"f_pstring", CT_PSTRING, 40}, 129, 40, 32, 1, true, 1, fldBLOB, fldstPSTRING, 39, 0, 110, fw::ftBlob},
    {{"f_f2string", CT_F2STRING, 12}, 130, 12, 12, 12, false, 2, fldZSTRING, fldstF2STRING, 10, 0, 111, fw::ftString},
    {{"f_2string", CT_2STRING, 300}, 142, 300, 32, 2, true, 2, fldBLOB, fldst2STRING, 298, 0, 123, fw::ftBlob},
    {{"f_f4string", CT_F4STRING, 14}, 144, 14, 14, 14, false, 3, fldZSTRING, fldstF4STRING, 10, 0, 125, fw::ftString},
    {{"f_4string", CT_4STRING, 1000}, 158, 1000, 32, 4, true, 3, fldBLOB, fldst4STRING, 996, 0, 139, fw::ftBlob},
    {{"f_unknown", 200, 5}, 162, 5, 5, 5, false, 4, fldUNKNOWN, 0, 5, 0, 143, fw::ftUnknown},
};

class SchemaTest : public DriverTest {
 protected:
  void SetUp() override { Activate(); }
};

TEST_F(SchemaTest, EveryTypeCodeGetsItsOffsetSizeAndFrameworkView) {
  std::vector<DodaEntry> fields;
  for (const TypeCase& c : kTypes) fields.push_back(c.Field);
  auto cursor = OpenTable(MakeTable("types", fields, {}));
  ASSERT_TRUE(cursor);
  ASSERT_EQ(cursor->FieldCount(), static_cast<int32_t>(std::size(kTypes)));
  EXPECT_TRUE(cursor->HasBlobs);
  TFieldDescList descs;
  ASSERT_EQ(Conn->GetFieldDescs(cursor.get(), &descs), 0);
  ASSERT_EQ(descs.size(), std::size(kTypes));
  for (size_t i = 0; i < std::size(kTypes); ++i) {
    const TypeCase& e = kTypes[i];
    SCOPED_TRACE(e.Field.Name);
    const TCTFieldDesc& field = *cursor->Fields[i];
    EXPECT_EQ(field.Name, e.Field.Name);
    EXPECT_EQ(field.FieldType, e.Field.Type);
    EXPECT_EQ(field.Length, static_cast<int32_t>(e.Field.Length));
    EXPECT_EQ(field.Offset, e.Offset);
    EXPECT_EQ(field.Size, e.Size);
    EXPECT_EQ(field.GetMaxSize(), e.MaxSize);
    EXPECT_EQ(field.GetDefSize(), e.DefSize);
    EXPECT_EQ(field.IsBlob, e.Blob);
    EXPECT_EQ(field.BlobNo, e.BlobNo);
    const CTFldDesc& desc = descs[i];
    EXPECT_EQ(desc.FieldNo, i + 1);
    EXPECT_EQ(desc.FieldType, e.FieldType);
    EXPECT_EQ(desc.SubType, e.SubType);
    EXPECT_EQ(desc.Units1, e.Units1);
    EXPECT_EQ(desc.Units2, e.Units2);
    EXPECT_EQ(desc.Offset, e.FwOffset);
    EXPECT_EQ(desc.Length, e.Size);
    EXPECT_EQ(TCTConnection::BDEToFieldType(desc.FieldType, desc.SubType), e.Type);
  }
  CloseTable(cursor);
}

TEST_F(SchemaTest, IndexDescriptorsFollowTheSegments) {
  const std::vector<DodaEntry> fields = {{"a", CT_INT2, 2},     {"b", CT_INT2U, 2}, {"c", CT_INT2, 2},
                                         {"d", CT_INT4, 4},     {"serial", CT_INT4, 4},
                                         {"name", CT_FSTRING, 12}};
  // Byte range 2..9 covers b, c and d; a range starting inside a (1..5) takes only b and c.
  const std::vector<IndexSpec> indexes = {
      {{{2, 8, REGSEG}}, false, std::string("byRange")},
      {{{1, 5, UREGSEG | DSCSEG}}, true, std::nullopt},
      {{{5, 12, USCHSEG}, {10, 4, SRLSEG}}, false, std::string("BySchema")},
  };
  auto cursor = OpenTable(MakeTable("indexed", fields, indexes));
  ASSERT_TRUE(cursor);
  ASSERT_EQ(cursor->IndexCount, 3);
  ASSERT_EQ(Conn->InitIndexes(cursor.get()), 0);
  ASSERT_EQ(cursor->Indexes.size(), 3u);

  const CTIdxDesc& range = cursor->Indexes[0];
  EXPECT_EQ(range.Name, "byRange");
  EXPECT_EQ(range.IndexId, cursor->DataFileNo + 1);
  EXPECT_EQ(range.Primary, kWordTrue);
  EXPECT_EQ(range.Unique, kWordTrue);
  EXPECT_EQ(range.Maintained, kWordTrue);
  EXPECT_EQ(range.Descending, kWordFalse);
  EXPECT_EQ(range.CaseInsensitive, kWordFalse);
  EXPECT_EQ(range.KeyLength, 8);
  ASSERT_EQ(range.FieldsInKey, 3);
  EXPECT_EQ(range.KeyFields[0], 2);
  EXPECT_EQ(range.KeyFields[1], 3);
  EXPECT_EQ(range.KeyFields[2], 4);

  const CTIdxDesc& inside = cursor->Indexes[1];
  EXPECT_EQ(inside.Name, "1");
  EXPECT_EQ(inside.Primary, kWordFalse);
  EXPECT_EQ(inside.Unique, kWordFalse);
  EXPECT_EQ(inside.Descending, kWordTrue);
  EXPECT_EQ(inside.DescendingFields[0], 1);
  EXPECT_EQ(inside.CaseInsensitive, kWordTrue);
  EXPECT_EQ(inside.KeyLength, 9);
  ASSERT_EQ(inside.FieldsInKey, 2);
  EXPECT_EQ(inside.KeyFields[0], 2);
  EXPECT_EQ(inside.KeyFields[1], 3);

  const CTIdxDesc& schema = cursor->Indexes[2];
  EXPECT_EQ(schema.CaseInsensitive, kWordTrue);
  ASSERT_EQ(schema.FieldsInKey, 2);
  EXPECT_EQ(schema.KeyFields[0], 6) << "a schema segment names field soffset + 1";
  EXPECT_EQ(schema.KeyFields[1], 5) << "a serial segment names the field at its offset";
  EXPECT_TRUE(cursor->Fields[4]->AutoInc);
  EXPECT_FALSE(cursor->Fields[3]->AutoInc);
  EXPECT_TRUE(schema.Condition.empty());
  EXPECT_FALSE(schema.SymbolicName.empty());

  TFieldDescList descs;
  ASSERT_EQ(Conn->GetFieldDescs(cursor.get(), &descs), 0);
  EXPECT_EQ(descs[4].SubType, fldstAUTOINC);

  // Lookup by name, by ordinal text for the unnamed index, primary for an empty name, by id.
  EXPECT_EQ(cursor->FindIndex("BYRANGE", -1), 0);
  EXPECT_EQ(cursor->FindIndex("1", -1), 1);
  EXPECT_EQ(cursor->FindIndex("", -1), 0);
  EXPECT_EQ(cursor->FindIndex("ignored", cursor->DataFileNo + 3), 2);
  EXPECT_EQ(cursor->FindIndex("nothing", -1), -1);
  EXPECT_EQ(cursor->GetIndexDesc("byschema").IndexId, cursor->DataFileNo + 3);
  EXPECT_EQ(cursor->GetIndexDesc("nothing").IndexId, -1);
  CloseTable(cursor);
}

TEST_F(SchemaTest, SwitchingIndexSetsKeyFieldsKeyBufferAndResetsTheRange) {
  const std::vector<DodaEntry> fields = {{"a", CT_INT2, 2}, {"b", CT_INT4, 4}, {"name", CT_FSTRING, 10}};
  auto cursor = OpenTable(MakeTable("switch", fields, {{{{0, 6, REGSEG}}, true, std::string("ab")}}));
  ASSERT_TRUE(cursor);
  ASSERT_EQ(Conn->InitIndexes(cursor.get()), 0);
  const uint8_t key[2] = {1, 2};
  cursor->SetRange(key, 2, true, key, 2, true);
  cursor->Position = cpEof;

  CTIdxDesc wanted;
  wanted.Name = "AB";
  wanted.IndexId = -1;
  ASSERT_EQ(Conn->SwitchToIndex(cursor.get(), &wanted, false), 0);
  EXPECT_EQ(wanted.IndexId, cursor->DataFileNo + 1);
  EXPECT_EQ(wanted.Name, "ab");
  EXPECT_EQ(cursor->KeyNo, wanted.IndexId);
  EXPECT_FALSE(cursor->RangeActive);
  EXPECT_EQ(cursor->Position, cpBof);
  EXPECT_EQ(cursor->KeyBuffer.size(), 10u) << "key length of a duplicate index: 6 + 4";
  EXPECT_EQ(cursor->GetIndexFieldNo(), 2);
  EXPECT_EQ(cursor->GetKeyLen(-1), 6);
  EXPECT_EQ(cursor->GetKeyLen(1), 2);
  EXPECT_EQ(cursor->GetKeyLen(0), 0);
  EXPECT_EQ(cursor->GetKeyLen(3), 0);
  EXPECT_EQ(Conn->SwitchToIndex(cursor.get(), nullptr, false), kCtInvalidIndexDesc);
  CloseTable(cursor);
}

TEST_F(SchemaTest, CursorPropertiesNameTheMemberOfASuperfile) {
  auto cursor = OpenTable(MakeTable("props", {{"a", CT_INT4, 4}, {"b", CT_FSTRING, 8}}, {{{{0, 4, INTSEG}}, false, std::nullopt}}),
                          SHARED | READFIL);
  ASSERT_TRUE(cursor);
  CTCurProps props;
  ASSERT_EQ(Conn->GetCursorProps(cursor.get(), props), 0);
  EXPECT_EQ(props.Name, "props");
  EXPECT_EQ(props.TableType, "CTree");
  EXPECT_EQ(props.FieldCount, 2);
  EXPECT_EQ(props.RecordSize, 12);
  EXPECT_EQ(props.RecordBufferSize, 12);
  EXPECT_EQ(props.IndexCount, 1);
  EXPECT_EQ(props.BookmarkSize, 4);
  EXPECT_TRUE(props.ReadOnly);
  EXPECT_EQ(props.SeqNums, 1);
  cursor->TableName = Dir.File("big.sup!cust.dat");
  ASSERT_EQ(Conn->GetCursorProps(cursor.get(), props), 0);
  EXPECT_EQ(props.Name, "cust");
  CloseTable(cursor);
}

TEST_F(SchemaTest, OnlyTablesWithBlobsGetASchemaFile) {
  auto fixed = OpenTable(MakeTable("fixed", {{"a", CT_INT4, 4}}, {}));
  ASSERT_TRUE(fixed);
  EXPECT_FALSE(fixed->HasBlobs);
  EXPECT_EQ(Conn->OpenSchemaFile(fixed.get()), 0);
  EXPECT_EQ(fixed->SchemaFileNo, -1);
  EXPECT_FALSE(Dir.Exists("fixed.dsf"));
  CloseTable(fixed);

  const std::vector<DodaEntry> fields = {{"id", CT_INT4, 4}, {"memo", CT_STRING, 64}, {"n", CT_INT2, 2}};
  auto blobs = OpenTable(MakeTable("blobs", fields, {{{{0, 4, INTSEG}}, false, std::nullopt}}));
  ASSERT_TRUE(blobs);
  ASSERT_EQ(Conn->OpenSchemaFile(blobs.get()), 0);
  EXPECT_GE(blobs->SchemaFileNo, 0);
  EXPECT_TRUE(Dir.Exists("blobs.dsf"));
  // The schema file carries the table's field list.
  TCTCursorDesc schema(Dir.File("blobs.dsf"), blobs->SchemaFileNo, blobs->SchemaFileNo, SHARED, Conn.get());
  ASSERT_EQ(Conn->ReadFieldsDescriptions(&schema), 0);
  ASSERT_EQ(schema.FieldCount(), 3);
  EXPECT_EQ(schema.Fields[1]->Name, "memo");
  EXPECT_EQ(schema.Fields[1]->FieldType, CT_STRING);
  CloseTable(blobs);

  // Opened again, the existing schema file is used as it is.
  blobs = OpenTable(Dir.File("blobs.dat"));
  ASSERT_EQ(Conn->OpenSchemaFile(blobs.get()), 0);
  EXPECT_GE(blobs->SchemaFileNo, 0);
  EXPECT_EQ(Conn->DeleteSchemaFile(blobs.get()), 0);
  EXPECT_EQ(blobs->SchemaFileNo, -1);
  EXPECT_FALSE(Dir.Exists("blobs.dsf"));

  // A schema file that is not a table gives a number and is not taken.
  std::ofstream(Dir.File("blobs.dsf")) << "this is not a c-tree file";
  EXPECT_NE(Conn->OpenSchemaFile(blobs.get()), 0);
  EXPECT_EQ(blobs->SchemaFileNo, -1);
  CloseTable(blobs);
}

TEST_F(SchemaTest, MissingResourcesAndBadInputGiveNumbers) {
  const CTDbIntf::TLoadAlignment a = Conn->Alignment();
  // A data file made without IFIL and schema.
  const int16_t plain = CTDbIntf::AvailableFileNbr(a, 1);
  std::string name = Dir.File("plain.dat");
  ASSERT_EQ(CTDbIntf::CreateDataFileXtd(a, plain, name.data(), 8, 0, SHARED, 0, nullptr, nullptr), 0);
  TCTCursorDesc bare(name, plain, plain, SHARED, Conn.get());
  EXPECT_EQ(Conn->LoadIFIL(&bare), kCtNoResource);
  EXPECT_EQ(bare.IfilSize, 0);
  EXPECT_EQ(Conn->ReadFieldsDescriptions(&bare), kCtNoResource);
  CTIdxDesc desc;
  EXPECT_EQ(Conn->GetIndexDesc(&bare, 0, desc), kCtNoIndexes);
  EXPECT_EQ(CTDbIntf::CloseCtFile(a, plain, 0), 0);

  // A table with an IFIL but no schema.
  IfilDefinition def;
  def.pfilnam = Dir.File("noschema");
  def.dreclen = 8;
  def.dfilmod = SHARED;
  IfilImage image(def, Conn->RecordPacking());
  ASSERT_EQ(CTDbIntf::CreateIFileXtd(a, image.Data(), nullptr, nullptr, 0, nullptr, nullptr), 0);
  TCTCursorDesc noSchema(Dir.File("noschema.dat"), image.tfilno(), image.tfilno(), SHARED, Conn.get());
  EXPECT_EQ(Conn->LoadIFIL(&noSchema), 0);
  EXPECT_EQ(Conn->ReadFieldsDescriptions(&noSchema), kCtNoResource);
  EXPECT_EQ(CTDbIntf::CloseRFile(a, image.tfilno()), 0);

  // A nil cursor, out-of-range ordinals and an inactive connection.
  CTCurProps props;
  EXPECT_EQ(Conn->LoadIFIL(nullptr), kCtInvalidCursor);
  EXPECT_EQ(Conn->ReadFieldsDescriptions(nullptr), kCtInvalidCursor);
  EXPECT_EQ(Conn->InitIndexes(nullptr), kCtInvalidCursor);
  EXPECT_EQ(Conn->SwitchToIndex(nullptr, &desc, false), kCtInvalidCursor);
  EXPECT_EQ(Conn->SetContext(nullptr), kCtInvalidCursor);

  auto cursor = OpenTable(MakeTable("range", {{"a", CT_INT4, 4}}, {{{{0, 4, INTSEG}}, false, std::nullopt}}));
  ASSERT_TRUE(cursor);
  EXPECT_EQ(Conn->GetIndexDesc(cursor.get(), 1, desc), kCtInvalidIndexDesc);
  EXPECT_EQ(Conn->GetIndexDesc(cursor.get(), -1, desc), kCtInvalidIndexDesc);
  EXPECT_EQ(Conn->GetFieldDescs(cursor.get(), nullptr), 0);
  CloseTable(cursor);

  TCTCursorDesc detached("x", 1, 1, SHARED, Conn.get());
  Conn->SetActive(false);
  EXPECT_EQ(Conn->LoadIFIL(&detached), kCtNotActive);
  EXPECT_EQ(Conn->GetCursorProps(&detached, props), kCtNotActive);
}

TEST_F(SchemaTest, IndexFileNamesKeepEightCharacters) {
  std::string name;
  int32_t number = 0;
  Conn->FindIndexName("/elsewhere/customers.dat", Dir.Path(), name, number);
  EXPECT_EQ(name, "customer");
  EXPECT_EQ(number, 1);

  // Make c-tree see the first two candidates as taken.
  const CTDbIntf::TLoadAlignment a = Conn->Alignment();
  for (const char* taken : {"customer", "custome1"}) {
    const int16_t fileNo = CTDbIntf::AvailableFileNbr(a, 1);
    std::string path = Conn->BuildFullPath(Dir.Path(), taken);
    ASSERT_EQ(CTDbIntf::CreateDataFileXtd(a, fileNo, path.data(), 8, 0, EXCLUSIVE, 0, nullptr, nullptr), 0);
    ASSERT_EQ(CTDbIntf::CloseCtFile(a, fileNo, 0), 0);
  }
  number = 0;
  Conn->FindIndexName("customers.dat", Dir.Path(), name, number);
  EXPECT_EQ(name, "custome2");
  EXPECT_EQ(number, 3);

  // Numbered candidates keep the whole name within eight characters; the index extension is
  // appended as stored, without a dot.
  Conn->SetIndexExt(".ix");
  number = 42;
  Conn->FindIndexName("customers.dat", Dir.Path(), name, number);
  EXPECT_EQ(name, "custom42ix");
  EXPECT_EQ(number, 43);
  number = 100;
  Conn->FindIndexName("customers.dat", Dir.Path(), name, number);
  EXPECT_EQ(name, "custo100ix");
}

TEST_F(SchemaTest, CheckFileExistsAsksCTreeAndLeavesNothingBehind) {
  const auto before = Dir.Files(true);
  EXPECT_FALSE(Conn->CheckFileExists(Dir.File("absent.dat")));
  EXPECT_EQ(Dir.Files(true), before);
  const std::string path = MakeTable("present", {{"a", CT_INT4, 4}}, {});
  EXPECT_TRUE(Conn->CheckFileExists(path));
  EXPECT_TRUE(Conn->CheckFileExists(Dir.File("no/such/dir/x.dat"))) << "any failure to create counts as existing";
}

// The definition records reach each engine variant in its own packing.
class AlignmentSchemaTest : public DriverTest, public ::testing::WithParamInterface<CTDbIntf::TLoadAlignment> {};

TEST_P(AlignmentSchemaTest, SchemaAndIndexesReadBackInEveryPacking) {
  Conn->SetLoadAlignment(GetParam());
  Activate();
  const std::vector<DodaEntry> fields = {{"id", CT_INT4, 4}, {"name", CT_FSTRING, 20}, {"memo", CT_2STRING, 500}};
  auto cursor = OpenTable(MakeTable("aligned", fields, {{{{0, 4, SCHSEG}}, true, std::string("byId")}}));
  ASSERT_TRUE(cursor);
  ASSERT_EQ(cursor->FieldCount(), 3);
  EXPECT_EQ(cursor->Fields[2]->Offset, 24);
  ASSERT_EQ(Conn->InitIndexes(cursor.get()), 0);
  EXPECT_EQ(cursor->Indexes[0].Name, "byId");
  EXPECT_EQ(cursor->Indexes[0].KeyFields[0], 1);
  ASSERT_EQ(Conn->OpenSchemaFile(cursor.get()), 0);
  CloseTable(cursor);
}

INSTANTIATE_TEST_SUITE_P(Variants, AlignmentSchemaTest,
                         ::testing::Values(CTDbIntf::laByte, CTDbIntf::laWord, CTDbIntf::laDWord, CTDbIntf::laByteCli));

}  // namespace
}  // namespace Ctdb::testing
