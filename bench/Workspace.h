// The folder, owner component and connection a benchmark works with (bench).
#pragma once

#include <string>

#include "CTTables.h"
#include "Ctdb.h"

namespace bench {

/// Empty until Open; the benchmarks keep one in a global for their cases to share. Free releases
/// the owner and with it the connection and every table made by Table. A run that fails half-way
/// does not call Free: its components are left to the end of the process.
struct Workspace {
  std::string dir;
  fw::TComponent* owner = nullptr;
  Ctdb::TCTConnection* conn = nullptr;

  /// A new owner and an active connection it owns, for tables in `folder`.
  void Open(const std::string& folder) {
    dir = folder;
    owner = new fw::TComponent(nullptr);
    conn = new Ctdb::TCTConnection(owner);
    conn->SetActive(true);
  }

  /// A closed table `name` of the folder on the connection, owned by the owner.
  CTTables::TCTTable* Table(const std::string& name, bool exclusive) const {
    auto* table = new CTTables::TCTTable(owner);
    table->SetConnection(conn);
    table->SetDatabase(dir);
    table->SetTableName(name);
    if (exclusive) table->SetExclusive(true);
    return table;
  }

  void Free() {
    if (owner != nullptr) owner->Free();
    owner = nullptr;
    conn = nullptr;
  }
};

}  // namespace bench
