// mdexample: customers, their orders and each order's lines opened from a form file as a
// three-level master/detail chain, printed customer by customer (example program of the dataset
// layer).
//
// Usage: mdexample [form-file]. The three tables are created in a new temporary directory and
// the form (orders.fm beside this source by default) is read there, so its Database '.' names
// that directory.
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <string>

#include "CTTables.h"
#include "Ctdb.h"
#include "ECtreeException.h"
#include "TClassInfo.h"
#include "TDataSource.h"
#include "TField.h"
#include "TReader.h"

namespace {

// The form's root class.
class TOrdersModule : public fw::TComponent {
 public:
  explicit TOrdersModule(fw::TComponent* AOwner) : fw::TComponent(AOwner) {}
  static const fw::TClassInfo& StaticClass() {
    static const fw::TClassInfo info =
        fw::TClassBuilder<TOrdersModule>("TOrdersModule", &fw::TComponent::StaticClass()).Creatable().Build();
    return info;
  }
  const fw::TClassInfo& ClassType() const override { return StaticClass(); }
};

fw::Variant V(int32_t value) { return fw::Variant(value); }
fw::Variant V(const char* value) { return fw::Variant(std::string(value)); }

// A new table "name" with the given fields and indexes, filled with `rows`.
void Create(Ctdb::TCTConnection* conn, const char* name,
            const std::vector<std::pair<std::string, fw::TFieldType>>& fields,
            const std::vector<std::pair<std::string, std::string>>& indexes,
            const std::vector<std::vector<fw::Variant>>& rows) {
  fw::TComponentPtr<CTTables::TCTTable> table(new CTTables::TCTTable(nullptr));
  table->SetConnection(conn);
  table->SetDatabase(".");
  table->SetTableName(name);
  for (const auto& [field, type] : fields) table->FieldDefs()->Add(field, type, type == fw::ftString ? 20 : 0);
  bool primary = true;
  for (const auto& [index, keys] : indexes) {
    // The first index is the primary, unique one; the others allow duplicates.
    table->IndexDefs()->Add(index, keys, "", true, false,
                            primary ? fw::TIndexOptions{fw::ixPrimary, fw::ixUnique} : fw::TIndexOptions{});
    primary = false;
  }
  table->CreateTable();
  table->Open();
  for (const auto& row : rows) table->AppendRecord(row);
}

void CreateTables() {
  fw::TComponentPtr<Ctdb::TCTConnection> conn(new Ctdb::TCTConnection(nullptr));
  conn->SetActive(true);
  Create(conn.get(), "customers", {{"CUSTNO", fw::ftInteger}, {"NAME", fw::ftString}}, {{"ByNo", "CUSTNO"}},
         {{V(1), V("Vellamo Tools")}, {V(2), V("Korppi Bakery")}, {V(3), V("Nordkap Optics")}});
  Create(conn.get(), "orders", {{"ORDNO", fw::ftInteger}, {"CUSTNO", fw::ftInteger}, {"NOTE", fw::ftString}},
         {{"ByNo", "ORDNO"}, {"ByCustomer", "CUSTNO;ORDNO"}},
         {{V(100), V(2), V("spring")}, {V(101), V(1), V("rush")}, {V(102), V(2), V("summer")}});
  Create(conn.get(), "lines", {{"ORDER", fw::ftInteger}, {"LINENO", fw::ftInteger}, {"ITEM", fw::ftString},
                               {"QTY", fw::ftInteger}},
         {{"ByOrder", "ORDER;LINENO"}},
         {{V(100), V(1), V("rye flour"), V(40)}, {V(101), V(1), V("chisel"), V(3)},
          {V(100), V(2), V("yeast"), V(5)}, {V(102), V(1), V("sugar"), V(12)}, {V(101), V(2), V("file"), V(2)}});
}

// Walks the customers; the orders follow each customer and the lines each order.
void PrintChain(fw::TComponent& module) {
  auto& customers = dynamic_cast<CTTables::TCTTable&>(*module.FindComponent("Customers"));
  auto& orders = dynamic_cast<CTTables::TCTTable&>(*module.FindComponent("Orders"));
  auto& lines = dynamic_cast<CTTables::TCTTable&>(*module.FindComponent("Lines"));
  for (customers.First(); !customers.Eof(); customers.Next()) {
    std::printf("%d %s\n", customers.FieldByName("CUSTNO")->AsInteger(),
                customers.FieldByName("NAME")->AsString().c_str());
    if (orders.IsEmpty()) std::printf("  (no orders)\n");
    for (orders.First(); !orders.Eof(); orders.Next()) {
      std::printf("  order %d %s\n", orders.FieldByName("ORDNO")->AsInteger(),
                  orders.FieldByName("NOTE")->AsString().c_str());
      for (lines.First(); !lines.Eof(); lines.Next())
        std::printf("    %d. %-10s x%d\n", lines.FieldByName("LINENO")->AsInteger(),
                    lines.FieldByName("ITEM")->AsString().c_str(), lines.FieldByName("QTY")->AsInteger());
    }
  }
}

}  // namespace

int main(int argc, char** argv) {
  const std::filesystem::path form = std::filesystem::absolute(argc > 1 ? argv[1] : CT_EXAMPLE_DIR "/orders.fm");
  std::string pattern = (std::filesystem::temp_directory_path() / "mdexample_XXXXXX").string();
  if (::mkdtemp(pattern.data()) == nullptr) {
    std::perror("mkdtemp");
    return 1;
  }
  const std::filesystem::path dir = pattern;
  int status = 0;
  try {
    std::filesystem::current_path(dir);
    CreateTables();
    fw::RegisterClass(TOrdersModule::StaticClass());
    fw::RegisterClass(fw::TDataSource::StaticClass());
    fw::TComponentPtr<fw::TComponent> module(fw::ReadComponentFile(form.string()));
    PrintChain(*module);
  } catch (const CTDbIntf::ECtreeException& e) {
    std::fprintf(stderr, "mdexample: c-tree error %d: %s\n", e.ErrorCode, e.what());
    status = 1;
  } catch (const std::exception& e) {
    std::fprintf(stderr, "mdexample: %s\n", e.what());
    status = 1;
  }
  std::error_code ignored;
  std::filesystem::current_path(std::filesystem::temp_directory_path(), ignored);
  std::filesystem::remove_all(dir, ignored);
  return status;
}
