// TCTTable: keeping lookup fields that show this table's records up to date (dataset, unit CTTables).
#include <algorithm>

#include "TCTConnection.h"
#include "TCTTable.h"
#include "TFields.h"

namespace CTTables {

void TCTTable::DoAfterPost() {
  Ctdb::TCTCustomDataSet::DoAfterPost();
  RefreshLookupClients();
}

void TCTTable::DoAfterDelete() {
  Ctdb::TCTCustomDataSet::DoAfterDelete();
  RefreshLookupClients();
}

// A lookup field computes its value when its record is fetched, and a cached one reads its list
// once: after a change to this table (through any table open on the same file and connection)
// both would show what was. The cached lists are read again and every open dataset showing such
// a field re-reads its window. A dataset in the middle of an edit keeps its record: it
// recomputes its lookup fields when its own fields change or when the edit ends.
void TCTTable::RefreshLookupClients() {
  Ctdb::TCTConnection* conn = Connection();
  if (conn == nullptr || FCursor == nullptr) return;
  std::vector<fw::TDataSet*> clients;
  for (int i = 0; i < conn->DataSetCount(); ++i) {
    fw::TDataSet* dataSet = conn->DataSets(i);
    for (int f = 0; f < dataSet->Fields()->Count(); ++f) {
      fw::TField* field = dataSet->Fields()->Fields(f);
      if (field->FieldKind() != fw::fkLookup) continue;
      const auto* lookup = dynamic_cast<const TCTTable*>(field->LookupDataSet());
      if (lookup == nullptr || lookup->Cursor() == nullptr || lookup->Cursor()->TableName != FCursor->TableName)
        continue;
      // Reading the list moves the lookup table, which would post a pending edit of it.
      if (field->LookupCache() && lookup->State() == fw::dsBrowse) field->RefreshLookupList();
      if (std::find(clients.begin(), clients.end(), dataSet) == clients.end()) clients.push_back(dataSet);
    }
  }
  for (fw::TDataSet* client : clients)
    if (client->State() == fw::dsBrowse && !client->IsEmpty()) client->Refresh();
}

}  // namespace CTTables
