// quickstart: a c-tree table created, filled, searched and edited through the components.
#include <cstdio>

#include "CTTables.h"
#include "Ctdb.h"
#include "ECtreeException.h"
#include "TField.h"

int main() {
  try {
    // The connection owns the session; Alignment, extensions and limits keep their defaults.
    fw::TComponentPtr<Ctdb::TCTConnection> db(new Ctdb::TCTConnection(nullptr));

    fw::TComponentPtr<CTTables::TCTTable> people(new CTTables::TCTTable(nullptr));
    people->SetConnection(db.get());
    people->SetDatabase(".");
    people->SetTableName("people");

    // Fields and indexes, then the files: the data file "people" (DataExt is empty by default,
    // so the name gets no extension) and the index file "people.idx".
    people->FieldDefs()->Add("ID", fw::ftInteger);
    people->FieldDefs()->Add("NAME", fw::ftString, 20);
    people->FieldDefs()->Add("CITY", fw::ftString, 16);
    // An index: name, key fields, expression (none), maintained, subset, options.
    people->IndexDefs()->Add("ById", "ID", "", true, false, {fw::ixPrimary, fw::ixUnique});
    people->IndexDefs()->Add("ByCity", "CITY;NAME", "", true, false, {fw::ixCaseInsensitive});
    people->CreateTable();

    people->Open();
    people->AppendRecord({fw::Variant(1), fw::Variant("Hugo"), fw::Variant("Lyon")});
    people->AppendRecord({fw::Variant(2), fw::Variant("Clara"), fw::Variant("Oslo")});
    people->AppendRecord({fw::Variant(3), fw::Variant("Nils"), fw::Variant("Oslo")});

    // Walk the records of one city in the order of the second index.
    people->SetIndexName("ByCity");
    people->SetRange({fw::Variant("Oslo")}, {fw::Variant("Oslo")});
    for (people->First(); !people->Eof(); people->Next())
      std::printf("%d %s\n", people->FieldByName("ID")->AsInteger(),
                  people->FieldByName("NAME")->AsString().c_str());
    people->CancelRange();

    // Seek by the primary key and change the record.
    people->SetIndexName("ById");
    if (people->FindKey({fw::Variant(2)})) {
      people->Edit();
      people->FieldByName("CITY")->SetAsString("Bergen");
      people->Post();
    }
    people->Close();
    people->DeleteTable();
  } catch (const CTDbIntf::ECtreeException& e) {  // storage errors carry the c-tree number
    std::fprintf(stderr, "error %d: %s\n", e.ErrorCode, e.what());
    return 1;
  } catch (const std::exception& e) {
    std::fprintf(stderr, "%s\n", e.what());
    return 1;
  }
  return 0;
}
