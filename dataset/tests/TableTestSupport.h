// Shared fixture of the dataset tests: a fresh directory, an active connection and a people table.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "CTTables.h"
#include "TClassInfo.h"
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

using Ids = std::vector<int32_t>;

/// Shorthands for the values passed to keys, ranges and searches.
inline fw::Variant V(int32_t value) { return fw::Variant(value); }
inline fw::Variant V(const char* value) { return fw::Variant(std::string(value)); }
inline fw::Variant V(double value) { return fw::Variant(value); }

/// The ID of the table's current record.
int32_t Id(TCTTable* table);

/// A form's root class, registered by FormText's users through ReadForm.
class TTestForm : public fw::TComponent {
 public:
  explicit TTestForm(fw::TComponent* AOwner) : fw::TComponent(AOwner) {}
  static const fw::TClassInfo& StaticClass();
  const fw::TClassInfo& ClassType() const override { return StaticClass(); }
};

/// Text of a TTestForm "Root" holding a connection "Db" and `components`.
std::string FormText(const std::string& components);
/// Text of a table component `name` on "Db", database `database`, with `properties` (each
/// "    Name = value\n") after its connection and database.
std::string TableText(const std::string& name, const std::string& database, const std::string& properties);
/// Reads `form` (made by FormText) into a new root the caller owns.
fw::TComponentPtr<fw::TComponent> ReadForm(const std::string& form);

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
  /// A new table on `name` (closed, shared unless `exclusive`), owned by the fixture.
  TCTTable* TableOn(const std::string& name, bool exclusive = false);
  /// FillPeople, then a new table on it opened on index `index` (the primary one when empty).
  TCTTable* OpenPeople(bool exclusive = true, const std::string& index = "");
  /// The ID values from the current record to the end, advancing the table.
  static Ids IdsToEnd(TCTTable& table);
  /// The ID values from the last record back to the first.
  static Ids IdsBackwards(TCTTable& table);
  /// Gives the closed `table` persistent fields for its stored ones and a calculated field
  /// "DOUBLED" holding AMOUNT * 2; returns that field.
  static fw::TField* AddDoubledAmount(TCTTable& table);

  std::filesystem::path Dir;
  std::filesystem::path OldDir;
  fw::TComponentPtr<fw::TComponent> Owner;
  Ctdb::TCTConnection* Conn = nullptr;
};

}  // namespace CTTables::testing
