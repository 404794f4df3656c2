// ctexample: a table created from field and index definitions and filled in a transaction, then
// opened from a form file, browsed by two indexes, searched, restricted to a range, edited and
// posted (example program of the dataset layer).
//
// Usage: ctexample [form-file [directory]]. The table "people" is created in `directory` (a new
// temporary directory by default) and the form (people.fm beside this source by default) is read
// there, so its Database '.' names that directory.
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <string>

#include "CTTables.h"
#include "Ctdb.h"
#include "ECtreeException.h"
#include "TClassInfo.h"
#include "TField.h"
#include "TReader.h"

namespace {

// The form's root class.
class TPeopleModule : public fw::TComponent {
 public:
  explicit TPeopleModule(fw::TComponent* AOwner) : fw::TComponent(AOwner) {}
  static const fw::TClassInfo& StaticClass() {
    static const fw::TClassInfo info =
        fw::TClassBuilder<TPeopleModule>("TPeopleModule", &fw::TComponent::StaticClass()).Creatable().Build();
    return info;
  }
  const fw::TClassInfo& ClassType() const override { return StaticClass(); }
};

// Creates the table from field and index definitions and adds a few people in one transaction.
void CreatePeople() {
  fw::TComponentPtr<Ctdb::TCTConnection> conn(new Ctdb::TCTConnection(nullptr));
  conn->SetActive(true);
  fw::TComponentPtr<CTTables::TCTTable> table(new CTTables::TCTTable(nullptr));
  table->SetConnection(conn.get());
  table->SetDatabase(".");
  table->SetTableName("people");
  table->FieldDefs()->Add("ID", fw::ftInteger);
  table->FieldDefs()->Add("NAME", fw::ftString, 20);
  table->FieldDefs()->Add("CITY", fw::ftString, 16);
  table->FieldDefs()->Add("AMOUNT", fw::ftFloat);
  // Name, key fields, expression, engine-maintained, subset, options.
  table->IndexDefs()->Add("ById", "ID", "", true, false, {fw::ixPrimary, fw::ixUnique});
  table->IndexDefs()->Add("ByCity", "CITY;ID", "", true, false, {fw::ixUnique});
  table->IndexDefs()->Add("ByName", "NAME", "", true, false, {});
  table->CreateTable();  // replaces a table of that name

  table->Open();
  const struct {
    int32_t id;
    const char* name;
    const char* city;
    double amount;
  } people[] = {{1, "Arvid", "Bergen", 10}, {2, "Brita", "Oslo", 20}, {3, "Aino", "Bergen", 30},
                {4, "Dorit", "Oslo", 40}, {5, "Eskil", "Tromso", 50}, {6, "Greta", "Oslo", 60}};
  conn->StartTransaction();
  try {
    for (const auto& p : people)
      table->AppendRecord({fw::Variant(p.id), fw::Variant(std::string(p.name)), fw::Variant(std::string(p.city)),
                           fw::Variant(p.amount)});
    conn->Commit();  // all six become visible and durable together
  } catch (...) {
    if (conn->InTransaction()) conn->Rollback();
    throw;
  }
}

void PrintAll(CTTables::TCTTable& table, const char* title) {
  std::printf("%s (index %s):\n", title, table.IndexName().c_str());
  for (table.First(); !table.Eof(); table.Next())
    std::printf("  %2d  %-10s %-8s %8.2f\n", table.FieldByName("ID")->AsInteger(),
                table.FieldByName("NAME")->AsString().c_str(), table.FieldByName("CITY")->AsString().c_str(),
                table.FieldByName("AMOUNT")->AsFloat());
}

}  // namespace

int main(int argc, char** argv) {
  const std::filesystem::path form =
      std::filesystem::absolute(argc > 1 ? argv[1] : CT_EXAMPLE_DIR "/people.fm");
  std::filesystem::path dir;
  const bool temporary = argc <= 2;
  if (!temporary) {
    dir = argv[2];
  } else {
    std::string pattern = (std::filesystem::temp_directory_path() / "ctexample_XXXXXX").string();
    if (::mkdtemp(pattern.data()) == nullptr) {
      std::perror("mkdtemp");
      return 1;
    }
    dir = pattern;
  }
  int status = 0;
  try {
    std::filesystem::current_path(dir);
    CreatePeople();

    fw::RegisterClass(TPeopleModule::StaticClass());
    fw::TComponentPtr<fw::TComponent> module(fw::ReadComponentFile(form.string()));
    auto& people = dynamic_cast<CTTables::TCTTable&>(*module->FindComponent("People"));

    PrintAll(people, "By name, as the form file configured it");
    people.SetIndexName("ByCity");
    PrintAll(people, "By city");

    // A range on the city alone. (Each field ever assigned while setting keys counts for later
    // ranges, so the range comes before the two-field seek below.)
    people.SetRange({fw::Variant(std::string("Oslo"))}, {fw::Variant(std::string("Oslo"))});
    PrintAll(people, "Range Oslo");
    people.First();
    people.Edit();
    people.FieldByName("AMOUNT")->SetAsFloat(people.FieldByName("AMOUNT")->AsFloat() + 100);
    people.Post();
    people.CancelRange();

    if (people.FindKey({fw::Variant(std::string("Oslo")), fw::Variant(int32_t{4})}))
      std::printf("FindKey(Oslo, 4): %s\n", people.FieldByName("NAME")->AsString().c_str());
    PrintAll(people, "After raising the first Oslo amount by 100");
  } catch (const CTDbIntf::ECtreeException& e) {
    std::fprintf(stderr, "ctexample: c-tree error %d: %s\n", e.ErrorCode, e.what());
    status = 1;
  } catch (const std::exception& e) {
    std::fprintf(stderr, "ctexample: %s\n", e.what());
    status = 1;
  }
  if (temporary) {
    std::error_code ignored;
    std::filesystem::current_path(std::filesystem::temp_directory_path(), ignored);
    std::filesystem::remove_all(dir, ignored);
  }
  return status;
}
