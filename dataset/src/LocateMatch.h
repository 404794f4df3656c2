// LocateMatch: the searched fields of Locate/Lookup with their key values, and the two ways of
// testing a record against them (dataset, unit CTTables).
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "DataSetTypes.h"
#include "TField.h"
#include "Variant.h"

namespace Ctdb {
class TCTConnection;
class TCTCursorDesc;
class TCTCustomRecordBuffer;
}  // namespace Ctdb

namespace CTTables {

/// How one searched field is compared; chosen by the field's type.
enum TLocateKind : uint8_t { lkNull, lkText, lkInteger, lkFloat, lkCurrency, lkDateTime, lkBoolean, lkNever };

/// One searched field and its key value converted to the field's kind. A null or unassigned key
/// value matches a null field; any other key value is compared with the field's value as its
/// getters report it (0, 0.0, false or "" for a null field).
struct LocateCondition {
  fw::TField* Field = nullptr;
  TLocateKind Kind = lkNever;
  bool Partial = false;  ///< The last field of a partial search on a string: "begins with".
  std::string Text;      ///< lkText: the key text (up to an embedded zero, as the comparison sees it).
  int64_t Integer = 0;   ///< lkInteger, lkBoolean (0/1), lkCurrency (scaled).
  double Float = 0;      ///< lkFloat, lkDateTime.
  std::vector<uint8_t> Native;  ///< The key in the field's native form (index keys); empty for lkNull.
};

/// The conditions of one search. Both tests give the same answer for every record: MatchesFields
/// reads the fields of the dataset's current state buffer through their getters (the
/// record-by-record rule), MatchesRecord decodes the raw record bytes with the driver's field
/// conversion and compares them without building variants (the bulk scan).
class LocateMatch {
 public:
  /// Converts every key value to its field's kind: raises the framework's conversion error for
  /// a value the field's type cannot take. `Values` holds one value per field.
  LocateMatch(fw::TDataSet* DataSet, const std::vector<fw::TField*>& Fields, const std::vector<fw::Variant>& Values,
              fw::TLocateOptions Options);

  const std::vector<LocateCondition>& Conditions() const { return FConditions; }
  /// False when some key can match no record (a text longer than its field).
  bool Satisfiable() const;
  /// Whether the fields `From` .. last match, read from the dataset's current buffer.
  bool MatchesFields(size_t From = 0) const;
  /// Whether the record (`Length` bytes at `Record`) matches on every field. `Scratch` is a
  /// record buffer of the cursor used to decode the fields.
  bool MatchesRecord(Ctdb::TCTConnection& Conn, Ctdb::TCTCursorDesc* Cursor, Ctdb::TCTCustomRecordBuffer& Scratch,
                     const uint8_t* Record, int32_t Length);
  /// Whether every searched field is a stored field whose bytes MatchesRecord can decode.
  bool DecodesRecords() const;

 private:
  bool TextMatches(const LocateCondition& Condition, std::string_view Value) const;
  void ConvertKey(LocateCondition& Condition, const fw::Variant& Value);

  fw::TDataSet* FDataSet;
  std::vector<LocateCondition> FConditions;
  bool FCaseInsensitive;
  bool FByteCollation;              // the locale collates by byte value: compare bytes directly
  std::array<uint8_t, 256> FUpper{};  // AnsiUpperCase of every byte (case-insensitive searches only)
  std::vector<uint8_t> FNative;     // decoding buffer
};

}  // namespace CTTables
