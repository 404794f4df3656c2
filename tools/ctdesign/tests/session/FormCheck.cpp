// ctdesign_formcheck: the tables the designer session links, and the check of the form it saves.
//
//   ctdesign_formcheck create DIR   creates customers.dat and orders.dat (DataExt "dat") in DIR
//   ctdesign_formcheck read FORM    reads FORM as a program would and prints every customer
//                                   with the orders its detail table shows
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "CTTables.h"
#include "TClassInfo.h"
#include "Ctdb.h"
#include "TDataModule.h"
#include "TDataSource.h"
#include "TField.h"
#include "TReader.h"

namespace {

void Create(Ctdb::TCTConnection& conn, const std::string& dir, const char* name,
            const std::vector<std::pair<std::string, fw::TFieldType>>& fields,
            const std::vector<std::pair<std::string, std::string>>& indexes,
            const std::vector<std::vector<fw::Variant>>& rows) {
  fw::TComponentPtr<CTTables::TCTTable> table(new CTTables::TCTTable(nullptr));
  table->SetConnection(&conn);
  table->SetDatabase(dir);
  table->SetTableName(name);
  for (const auto& [field, type] : fields)
    table->FieldDefs()->Add(field, type, type == fw::ftString ? 20 : 0);
  bool primary = true;
  for (const auto& [index, keys] : indexes) {
    table->IndexDefs()->Add(
        index, keys, "", true, false,
        primary ? fw::TIndexOptions{fw::ixPrimary, fw::ixUnique} : fw::TIndexOptions{});
    primary = false;
  }
  table->CreateTable();
  table->Open();
  for (const auto& row : rows) table->AppendRecord(row);
}

fw::Variant V(int32_t value) { return fw::Variant(value); }
fw::Variant V(const char* value) { return fw::Variant(std::string(value)); }

void CreateTables(const std::string& dir) {
  Ctdb::TCTConnection conn(nullptr);
  conn.SetDataExt(".dat");
  conn.SetActive(true);
  Create(conn, dir, "customers.dat", {{"CUSTNO", fw::ftInteger}, {"NAME", fw::ftString}},
         {{"ByNo", "CUSTNO"}},
         {{V(1), V("Harbour Kilns")}, {V(2), V("Quillon Press")}, {V(3), V("Tamsin Yarns")}});
  Create(conn, dir, "orders.dat",
         {{"ORDNO", fw::ftInteger}, {"CUSTNO", fw::ftInteger}, {"NOTE", fw::ftString}},
         {{"ByNo", "ORDNO"}, {"ByCustomer", "CUSTNO;ORDNO"}},
         {{V(500), V(2), V("ink")},
          {V(501), V(1), V("clay")},
          {V(502), V(2), V("paper")},
          {V(503), V(1), V("glaze")}});
}

void PrintLinked(const std::string& form) {
  fw::RegisterClasses({&fw::TDataModule::StaticClass(), &fw::TDataSource::StaticClass()});
  fw::TComponentPtr<fw::TComponent> root(fw::ReadComponentFile(form));
  auto& customers = dynamic_cast<CTTables::TCTTable&>(*root->FindComponent("Customers"));
  auto& orders = dynamic_cast<CTTables::TCTTable&>(*root->FindComponent("Orders"));
  std::printf("Orders: IndexName=%s MasterFields=%s\n", orders.IndexName().c_str(),
              orders.MasterFields().c_str());
  customers.Open();
  orders.Open();
  for (customers.First(); !customers.Eof(); customers.Next()) {
    std::printf("%d %s:", customers.FieldByName("CUSTNO")->AsInteger(),
                customers.FieldByName("NAME")->AsString().c_str());
    for (orders.First(); !orders.Eof(); orders.Next())
      std::printf(" %d %s", orders.FieldByName("ORDNO")->AsInteger(),
                  orders.FieldByName("NOTE")->AsString().c_str());
    std::printf("\n");
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3 || (std::strcmp(argv[1], "create") != 0 && std::strcmp(argv[1], "read") != 0)) {
    std::fprintf(stderr, "usage: ctdesign_formcheck create DIR | read FORM\n");
    return 2;
  }
  try {
    if (std::strcmp(argv[1], "create") == 0)
      CreateTables(argv[2]);
    else
      PrintLinked(argv[2]);
  } catch (const std::exception& e) {
    std::fprintf(stderr, "ctdesign_formcheck: %s\n", e.what());
    return 1;
  }
  return 0;
}
