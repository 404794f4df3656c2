// Shared fixture of the dataset tests: a fresh directory, an active connection and a people table.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "CTTables.h"
#include "Ctdb.h"
#include "ECtreeException.h"

namespace CTTables::testing {

/// One row of the people table.
struct Person {
  int32_t Id;
  std::string Name;
  std::string City;
  double Amount;
};

/// Ten people in three cities, in no key order.
const std::vector<Person>& People();

/// Runs `action` and returns the ErrorCode of the ECtreeException it raises (-1 when it raises
/// none; other exceptions propagate).
template <class F>
int32_t ErrorOf(F&& action) {
  try {
    action();
  } catch (const CTDbIntf::ECtreeException& e) {
    return e.ErrorCode;
  }
  return -1;
}

/// A temporary directory with an active connection and, after MakePeople, the table "people":
/// ID (integer, unique index "ById", the primary one), NAME (string 20), CITY (string 16) and
/// AMOUNT (float), indexed also by "ByCity" (CITY;ID) and "ByName" (NAME, duplicates allowed).
class TableTest : public ::testing::Test {
 protected:
  TableTest();
  ~TableTest() override;

  /// Creates the table (empty).
  void MakePeople();
  /// Creates the table and adds People() with the engine's plain record add.
  void FillPeople();
  /// A new table on "people" (closed), owned by the fixture.
  TCTTable* NewTable(bool exclusive = true);
  /// The ID values from the current record to the end, advancing the table.
  static std::vector<int32_t> IdsToEnd(TCTTable& table);
  /// Gives the closed `table` persistent fields for its stored ones and a calculated field
  /// "DOUBLED" holding AMOUNT * 2; returns that field.
  static fw::TField* AddDoubledAmount(TCTTable& table);

  std::filesystem::path Dir;
  std::filesystem::path OldDir;
  fw::TComponentPtr<fw::TComponent> Owner;
  Ctdb::TCTConnection* Conn = nullptr;
};

}  // namespace CTTables::testing
