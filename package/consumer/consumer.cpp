// A user program of the installed package: a table created, filled and read back through TCTTable.
#include <cstdio>
#include <string>

#include "CTTables.h"
#include "Ctdb.h"
#include "ECtreeException.h"
#include "TField.h"

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: consumer DIR\n");
    return 2;
  }
  try {
    fw::TComponentPtr<Ctdb::TCTConnection> db(new Ctdb::TCTConnection(nullptr));
    fw::TComponentPtr<CTTables::TCTTable> staff(new CTTables::TCTTable(nullptr));
    staff->SetConnection(db.get());
    staff->SetDatabase(argv[1]);
    staff->SetTableName("staff");
    staff->FieldDefs()->Add("ID", fw::ftInteger);
    staff->FieldDefs()->Add("NAME", fw::ftString, 20);
    staff->IndexDefs()->Add("ById", "ID", "", true, false, {fw::ixPrimary, fw::ixUnique});
    staff->CreateTable();
    staff->Open();
    // Appended out of key order, so that reading in index order proves the index is used.
    staff->AppendRecord({fw::Variant(2), fw::Variant("Orla Vint")});
    staff->AppendRecord({fw::Variant(1), fw::Variant("Bram Tessel")});
    std::string seen;
    for (staff->First(); !staff->Eof(); staff->Next())
      seen += std::to_string(staff->FieldByName("ID")->AsInteger()) + ":" +
              staff->FieldByName("NAME")->AsString() + ";";
    staff->Close();
    if (seen != "1:Bram Tessel;2:Orla Vint;") {
      std::fprintf(stderr, "read back \"%s\"\n", seen.c_str());
      return 1;
    }
    std::printf("%s\n", seen.c_str());
  } catch (const std::exception& e) {
    std::fprintf(stderr, "%s\n", e.what());
    return 1;
  }
  return 0;
}
