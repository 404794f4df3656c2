// Shared fixture of the dataset tests.
#include "TableTestSupport.h"

#include <unistd.h>

#include <random>

#include "CtRecords.h"
#include "TField.h"
#include "TFloatField.h"
#include "TReader.h"

namespace CTTables::testing {

const std::vector<Person>& People() {
  static const std::vector<Person> people = {
      {7, "Greta", "Oslo", 70.5},   {3, "Aino", "Bergen", 30},    {10, "Lasse", "Oslo", 100},
      {1, "Arvid", "Bergen", 10},    {5, "Eskil", "Tromso", 50}, {9, "Kalle", "Tromso", 90},
      {2, "Brita", "Oslo", 20},   {8, "Dagmar", "Bergen", 80}, {4, "Dorit", "Oslo", 40},
      {6, "Nanna", "Tromso", 60},
  };
  return people;
}

int32_t Id(TCTTable* table) { return table->FieldByName("ID")->AsInteger(); }

const fw::TClassInfo& TTestForm::StaticClass() {
  static const fw::TClassInfo info =
      fw::TClassBuilder<TTestForm>("TTestForm", &fw::TComponent::StaticClass()).Creatable().Build();
  return info;
}

std::string FormText(const std::string& components) {
  return "object Root: TTestForm\n  object Db: TCTConnection\n  end\n" + components + "end\n";
}

std::string TableText(const std::string& name, const std::string& database, const std::string& properties) {
  return "  object " + name + ": TCTTable\n    Connection = Db\n    Database = '" + database + "'\n" +
         properties + "  end\n";
}

fw::TComponentPtr<fw::TComponent> ReadForm(const std::string& form) {
  fw::RegisterClass(TTestForm::StaticClass());
  return fw::TComponentPtr<fw::TComponent>(fw::ReadComponentText(form));
}

TableTest::TableTest() : OldDir(std::filesystem::current_path()), Owner(new fw::TComponent(nullptr)) {
  std::random_device random;
  for (;;) {
    Dir = std::filesystem::temp_directory_path() /
          ("cttables_test_" + std::to_string(::getpid()) + "_" + std::to_string(random()));
    if (std::filesystem::create_directory(Dir)) break;
  }
  Conn = new Ctdb::TCTConnection(Owner.get());
  Conn->SetActive(true);
}

TableTest::~TableTest() {
  Owner.reset();
  std::error_code ignored;
  std::filesystem::current_path(OldDir, ignored);
  std::filesystem::remove_all(Dir, ignored);
}

namespace {

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

}  // namespace

void TableTest::MakePeople() {
  Ctdb::CTTblDesc desc;
  desc.Name = "people";
  desc.TableType = "CTree";
  desc.Fields = {Field(1, "ID", Ctdb::fldINT32, 0, 4), Field(2, "NAME", Ctdb::fldZSTRING, Ctdb::fldstFSTRING, 20),
                 Field(3, "CITY", Ctdb::fldZSTRING, Ctdb::fldstFSTRING, 16),
                 Field(4, "AMOUNT", Ctdb::fldFLOAT, 0, 8)};
  desc.Indexes = {Index("ById", {1}, true, true), Index("ByCity", {3, 1}, true, false),
                  Index("ByName", {2}, false, false)};
  ASSERT_EQ(Conn->CreateTable(Dir.string(), true, desc), 0);
}

void TableTest::FillPeople() {
  MakePeople();
  // Written with the engine's plain record add: the browsing tests do not depend on posting.
  std::unique_ptr<Ctdb::TCTCursorDesc> cursor;
  ASSERT_EQ(Conn->OpenCursor(cursor, "people", Dir.string(), 0), 0);
  for (const Person& p : People()) {
    Ctdb::TCTCustomRecordBuffer record(cursor.get());
    record.InitRecord();
    std::string name = p.Name, city = p.City;
    ASSERT_EQ(Conn->SetField(cursor.get(), 1, &record, &p.Id), 0);
    ASSERT_EQ(Conn->SetField(cursor.get(), 2, &record, name.c_str()), 0);
    ASSERT_EQ(Conn->SetField(cursor.get(), 3, &record, city.c_str()), 0);
    ASSERT_EQ(Conn->SetField(cursor.get(), 4, &record, &p.Amount), 0);
    ASSERT_EQ(CTDbIntf::AddRecord(Conn->Alignment(), cursor->DataFileNo, record.RecordPtr()), 0);
  }
  ASSERT_EQ(Conn->CloseCursor(cursor), 0);
}

TCTTable* TableTest::NewTable(bool exclusive) {
  auto* table = new TCTTable(Owner.get());
  table->SetConnection(Conn);
  table->SetDatabase(Dir.string());
  table->SetTableName("people");
  table->SetExclusive(exclusive);
  return table;
}

TCTTable* TableTest::TableOn(const std::string& name, bool exclusive) {
  TCTTable* table = NewTable(exclusive);
  table->SetTableName(name);
  return table;
}

TCTTable* TableTest::OpenPeople(bool exclusive, const std::string& index) {
  FillPeople();
  TCTTable* table = NewTable(exclusive);
  if (!index.empty()) table->SetIndexName(index);
  table->Open();
  return table;
}

Ids TableTest::IdsToEnd(TCTTable& table) {
  Ids ids;
  for (; !table.Eof(); table.Next()) ids.push_back(Id(&table));
  return ids;
}

Ids TableTest::IdsBackwards(TCTTable& table) {
  Ids ids;
  for (table.Last(); !table.Bof(); table.Prior()) ids.push_back(Id(&table));
  return ids;
}

fw::TField* TableTest::AddDoubledAmount(TCTTable& table) {
  table.FieldDefs()->Update();
  for (int i = 0; i < table.FieldDefs()->Count(); ++i) table.FieldDefs()->Items(i)->CreateField(&table);
  auto* doubled = new fw::TFloatField(&table);
  doubled->SetFieldName("DOUBLED");
  doubled->SetFieldKind(fw::fkCalculated);
  doubled->SetDataSet(&table);
  table.OnCalcFields = [](fw::TDataSet* ds) {
    ds->FieldByName("DOUBLED")->SetAsFloat(ds->FieldByName("AMOUNT")->AsFloat() * 2);
  };
  return doubled;
}

}  // namespace CTTables::testing
