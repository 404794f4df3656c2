// TCTTable: creating and deleting tables, adding and removing indexes, over real engine files.
#include <filesystem>

#include "Exception.h"
#include "TField.h"
#include "TFieldDefs.h"
#include "TFloatField.h"
#include "TStringList.h"
#include "TableTestSupport.h"

namespace CTTables::testing {
namespace {

using Restructure = TableTest;

Ctdb::CTFldDesc Encoded(fw::TFieldType type, int size) {
  Ctdb::CTFldDesc desc;
  TCTTable::EncodeFieldDesc(desc, "F", type, size);
  return desc;
}

// A closed table "orders" with four fields and two indexes defined, not yet created.
TCTTable* DefineOrders(TCTTable* table) {
  table->SetTableName("orders");
  table->FieldDefs()->Add("ID", fw::ftInteger);
  table->FieldDefs()->Add("CUSTOMER", fw::ftString, 30);
  table->FieldDefs()->Add("TOTAL", fw::ftFloat);
  table->FieldDefs()->Add("PAID", fw::ftBoolean);
  table->IndexDefs()->Add("ById", "ID", "", true, false, {fw::ixPrimary, fw::ixUnique});
  table->IndexDefs()->Add("ByCustomer", "CUSTOMER;ID", "", true, false, {fw::ixUnique});
  return table;
}

void AddOrder(TCTTable& table, int32_t id, const std::string& customer, double total) {
  table.Append();
  table.FieldByName("ID")->SetAsInteger(id);
  table.FieldByName("CUSTOMER")->SetAsString(customer);
  table.FieldByName("TOTAL")->SetAsFloat(total);
  table.FieldByName("PAID")->SetAsBoolean(id % 2 == 0);
  table.Post();
}

TEST(EncodeFieldDesc, ChoosesTypesSubtypesAndUnits) {
  EXPECT_EQ(Encoded(fw::ftString, 1).SubType, Ctdb::fldstCHARU);
  EXPECT_EQ(Encoded(fw::ftString, 254).SubType, Ctdb::fldstFPSTRING);
  EXPECT_EQ(Encoded(fw::ftString, 255).SubType, Ctdb::fldstF2STRING);
  EXPECT_EQ(Encoded(fw::ftString, 65534).SubType, Ctdb::fldstF2STRING);
  EXPECT_EQ(Encoded(fw::ftString, 65535).SubType, Ctdb::fldstF4STRING);
  EXPECT_EQ(Encoded(fw::ftString, 40).Units1, 40);
  EXPECT_EQ(Encoded(fw::ftString, 40).FieldType, Ctdb::fldZSTRING);

  EXPECT_EQ(Encoded(fw::ftVarBytes, 254).SubType, Ctdb::fldstPSTRING);
  EXPECT_EQ(Encoded(fw::ftVarBytes, 300).SubType, Ctdb::fldst2STRING);
  EXPECT_EQ(Encoded(fw::ftGraphic, 65535).SubType, Ctdb::fldst4STRING);
  EXPECT_EQ(Encoded(fw::ftBlob, 10).FieldType, Ctdb::fldBLOB);
  EXPECT_EQ(Encoded(fw::ftMemo, 500).SubType, Ctdb::fldstSTRING);
  EXPECT_EQ(Encoded(fw::ftMemo, 500).Units1, 500);

  const Ctdb::CTFldDesc bcd = Encoded(fw::ftBCD, 4);
  EXPECT_EQ(bcd.FieldType, Ctdb::fldBCD);
  EXPECT_EQ(bcd.Units1, 32);
  EXPECT_EQ(bcd.Units2, 4);
  EXPECT_EQ(Encoded(fw::ftCurrency, 0).FieldType, Ctdb::fldFLOAT);
  EXPECT_EQ(Encoded(fw::ftCurrency, 0).SubType, Ctdb::fldstMONEY);
  EXPECT_EQ(Encoded(fw::ftAutoInc, 0).FieldType, Ctdb::fldINT32);
  EXPECT_EQ(Encoded(fw::ftAutoInc, 0).SubType, Ctdb::fldstAUTOINC);
  EXPECT_EQ(Encoded(fw::ftWord, 0).FieldType, Ctdb::fldUINT16);
  EXPECT_EQ(Encoded(fw::ftDateTime, 0).FieldType, Ctdb::fldTIMESTAMP);
  EXPECT_EQ(Encoded(fw::ftGuid, 0).FieldType, Ctdb::fldBLOB);  // later types: untyped blobs
  EXPECT_EQ(Encoded(fw::ftGuid, 0).SubType, 0);
  EXPECT_EQ(Encoded(fw::ftSingle, 0).FieldType, Ctdb::fldBLOB);
}

TEST_F(Restructure, CreatedTableKeepsItsFieldsIndexesAndRecords) {
  TCTTable* table = DefineOrders(NewTable());
  table->CreateTable();
  EXPECT_FALSE(table->Active());
  table->Open();
  AddOrder(*table, 2, "Oslo Ltd", 12.5);
  AddOrder(*table, 1, "Bergen AS", 99.25);
  AddOrder(*table, 3, "Aker", 1);
  table->Close();

  TCTTable* again = TableOn("orders", true);
  again->Open();
  const fw::TFieldDefs& fields = *again->FieldDefs();
  ASSERT_EQ(fields.Count(), 4);
  EXPECT_EQ(fields.Items(1)->Name(), "CUSTOMER");
  EXPECT_EQ(fields.Items(1)->DataType(), fw::ftString);
  EXPECT_EQ(fields.Items(1)->Size(), 30);
  EXPECT_EQ(fields.Items(3)->DataType(), fw::ftBoolean);
  EXPECT_EQ(again->RecordCount(), 3);
  again->SetIndexName("ByCustomer");
  again->First();
  EXPECT_EQ(again->FieldByName("CUSTOMER")->AsString(), "Aker");
  EXPECT_EQ(IdsToEnd(*again), (Ids{3, 1, 2}));
  again->SetIndexName("ById");
  again->First();
  EXPECT_DOUBLE_EQ(again->FieldByName("TOTAL")->AsFloat(), 99.25);
  EXPECT_FALSE(again->FieldByName("PAID")->AsBoolean());
}

TEST_F(Restructure, CreateReplacesAnExistingTableAndRefusesBadDefinitions) {
  FillPeople();
  TCTTable* table = NewTable();
  table->FieldDefs()->Add("CODE", fw::ftString, 8);
  table->CreateTable();  // same name "people": replaced, records gone
  table->Open();
  EXPECT_EQ(table->RecordCount(), 0);
  EXPECT_EQ(table->FieldDefs()->Count(), 1);
  EXPECT_THROW(table->CreateTable(), fw::EDatabaseError);  // must be inactive

  // DeleteTable closes the table and removes its files.
  table->DeleteTable();
  EXPECT_FALSE(table->Active());
  EXPECT_EQ(ErrorOf([&] { table->Open(); }), 12);
  EXPECT_EQ(ErrorOf([&] { table->DeleteTable(); }), 12);

  TCTTable* empty = TableOn("nothing", true);
  EXPECT_EQ(ErrorOf([&] { empty->CreateTable(); }), 1115);
  EXPECT_FALSE(std::filesystem::exists(Dir / "nothing.idx"));

  TCTTable* badKey = TableOn("badkey", true);
  badKey->FieldDefs()->Add("A", fw::ftInteger);
  badKey->IndexDefs()->Add("ByB", "B", "", true, false, {});
  EXPECT_THROW(badKey->CreateTable(), std::exception);
}

TEST_F(Restructure, CreateTableStoresOnlyDataFields) {
  TCTTable* table = TableOn("notes", true);
  for (const auto& [name, kind] : {std::pair{"ID", fw::fkData}, {"TWICE", fw::fkCalculated}, {"LABEL", fw::fkLookup}}) {
    auto* field = new fw::TFloatField(table);
    field->SetFieldName(name);
    field->SetFieldKind(kind);
    field->SetDataSet(table);
  }
  table->IndexDefs()->Add("ById", "ID", "", true, false, {fw::ixPrimary, fw::ixUnique});
  table->CreateTable();
  TCTTable* reader = TableOn("notes", true);
  reader->FieldDefs()->Update();
  ASSERT_EQ(reader->FieldDefs()->Count(), 1);
  EXPECT_EQ(reader->FieldDefs()->Items(0)->Name(), "ID");
}

TEST_F(Restructure, AddIndexBuildsKeysForRecordsPresentAndRefusesWhatItCannotBuild) {
  TCTTable* table = OpenPeople();
  table->AddIndex("ByAmount", "AMOUNT", "", true, false, {});
  table->SetIndexName("ByAmount");
  ASSERT_EQ(table->IndexName(), "ByAmount");
  table->First();
  EXPECT_EQ(IdsToEnd(*table), (Ids{1, 2, 3, 4, 5, 6, 7, 8, 9, 10}));
  EXPECT_EQ(ErrorOf([&] { table->AddIndex("BYAMOUNT", "ID", "", true, false, {}); }), 1134);
  EXPECT_THROW(table->AddIndex("ByNothing", "NOPE", "", true, false, {}), std::exception);
  EXPECT_THROW(table->AddIndex("UniqueCity", "CITY", "", true, false, {fw::ixUnique}), CTDbIntf::ECtreeException);
  EXPECT_EQ(table->RecordCount(), 10);  // three cities, ten people: the table is kept
  table->AddIndex("ByCityAgain", "CITY", "", true, false, {});  // the refusal left nothing behind
  table->SetIndexName("ByName");
  table->First();
  EXPECT_EQ(table->FieldByName("NAME")->AsString(), "Aino");
  table->Close();

  fw::TStringList names;
  NewTable()->GetIndexNames(names);
  EXPECT_EQ(names.IndexOf("ByAmount"), 3);
}

// Deleting an index keeps the current one; deleting the current one, standing last, leaves none
// named. The other indexes keep their keys.
TEST_F(Restructure, DeleteIndexKeepsTheOthersAndTheCurrentOneUnlessDeleted) {
  TCTTable* table = OpenPeople();
  table->DeleteIndex("ByCity");  // right after open, before the definitions are read
  table->Close();
  fw::TStringList names;
  NewTable()->GetIndexNames(names);
  EXPECT_EQ(names.IndexOf("ByCity"), -1);
  EXPECT_GE(names.IndexOf("ByName"), 0);

  table = OpenPeople();
  table->AddIndex("ByAmount", "AMOUNT", "", true, false, {});
  table->AddIndex("ByCityName", "CITY;NAME", "", true, false, {});  // a second one beside it
  table->UpdateIndexDefs();
  table->SetIndexName("ByName");
  table->DeleteIndex("NoSuchIndex");  // ignored
  table->DeleteIndex("ByAmount");
  EXPECT_EQ(table->IndexName(), "ByName");
  EXPECT_EQ(table->Cursor()->GetIndexCount(), 4);
  table->First();
  EXPECT_EQ(table->FieldByName("NAME")->AsString(), "Aino");

  table->SetIndexName("ByCity");
  table->First();
  const Ids byCity = IdsToEnd(*table);
  for (const char* current : {"ByCityName", "ByName"}) {  // each standing last, added or created
    SCOPED_TRACE(current);
    table->SetIndexName(current);
    table->DeleteIndex(current);
    EXPECT_EQ(table->IndexName(), "");
    table->First();
    EXPECT_EQ(table->RecordCount(), 10);
  }
  table->SetIndexName("ByCity");
  table->First();
  EXPECT_EQ(IdsToEnd(*table), byCity);
}

TEST_F(Restructure, OpenIndexAddsAnIndexFileOfTheSameLayoutAsCurrentIndex) {
  FillPeople();
  TCTTable* side = TableOn("side", true);
  TCTTable* people = NewTable();
  people->FieldDefs()->Update();
  side->FieldDefs()->Assign(*people->FieldDefs());
  side->IndexDefs()->Add("SideAmount", "AMOUNT", "", true, false, {});
  side->CreateTable();

  TCTTable* table = NewTable();
  EXPECT_THROW(table->OpenIndex("side.idx"), fw::EDatabaseError);  // the table must be open
  table->Open();
  EXPECT_EQ(ErrorOf([&] { table->OpenIndex("nosuch.idx"); }), 12);
  EXPECT_EQ(table->IndexName(), "ById");
  table->OpenIndex("side.idx");
  EXPECT_EQ(table->IndexName(), "side");
  table->First();
  EXPECT_EQ(IdsToEnd(*table), (Ids{1, 2, 3, 4, 5, 6, 7, 8, 9, 10}));  // by AMOUNT
  table->SetIndexName("ByName");
  table->First();
  EXPECT_EQ(table->FieldByName("NAME")->AsString(), "Aino");
}

}  // namespace
}  // namespace CTTables::testing
