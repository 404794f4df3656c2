// TCTCalcFields: the calculated- and lookup-field values of one record buffer (dataset, unit
// CTTables).
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace CTTables {

/// One entry of the store: a field name and its raw value. `Data` holds `Size` bytes; an empty
/// `Data` (and `Size` 0) is a blank value.
struct TCTCalcField {
  std::string Name;
  int32_t Size = 0;
  std::vector<uint8_t> Data;
};

/// The raw values of a record's calculated and lookup fields, addressed by field name. Entries
/// keep the order they were added in; names need not be unique, and every by-name operation
/// takes the first match (letter case ignored, ASCII) in the direction it states. Unknown names
/// and indexes at or above Count are ignored: nothing here raises.
class TCTCalcFields {
 public:
  /// Appends an entry. With `Size` above 0 its value is `Size` bytes copied from `Data` (zeros
  /// when `Data` is null); otherwise the entry is blank. An existing name is not checked for.
  void AddField(const std::string& Name, int32_t Size, const void* Data);
  /// Looks for the first entry named `Name` from the front. Found: `IsBlank` tells whether it is
  /// blank, and a value that is not is copied (its Size bytes) to `Buffer` unless `Buffer` is
  /// null. Not found: neither `Buffer` nor `IsBlank` is touched.
  void GetData(const std::string& Name, void* Buffer, bool& IsBlank) const;
  /// Replaces the value of the first entry named `Name` from the front: `Size` bytes from `Data`
  /// when `Size` is above 0 and `Data` is given, else blank. No entry is added for an unknown name.
  void SetData(const std::string& Name, int32_t Size, const void* Data);
  /// Makes every value blank; the entries and their names stay.
  void ClearFields();
  /// Removes every entry.
  void DeleteFields();
  /// Removes the first entry named `Name` searching from the last towards the first (at most one).
  void RemoveField(const std::string& Name);
  /// A copy of entry `Index`; `Result` is left as it was for an index at or above Count.
  /// A negative index raises std::out_of_range, as the list's own index check does.
  void GetField(int Index, TCTCalcField& Result) const;
  /// Replaces entry `Index` by `Value`'s name and value (`Value.Size` bytes, zero-filled where
  /// `Value.Data` is shorter; blank for a Size of 0 or less). Ignored at or above Count; a
  /// negative index raises std::out_of_range.
  void SetField(int Index, const TCTCalcField& Value);
  int Count() const { return static_cast<int>(FFields.size()); }
  /// Copies every entry of `Source`.
  void Assign(const TCTCalcFields& Source) { FFields = Source.FFields; }

 private:
  TCTCalcField* Find(const std::string& Name);
  std::vector<TCTCalcField> FFields;
};

}  // namespace CTTables
