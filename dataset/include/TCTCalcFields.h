// TCTCalcFields: the calculated- and lookup-field values of one record buffer (dataset, unit CTTables).
#pragma once

#include <cstdint>
#include <vector>

namespace CTTables {

/// The store of a record's calculated and lookup field values. Each such field owns a slot at its
/// framework Offset: one "has value" byte followed by the field's DataSize bytes. The store is
/// sized by the dataset (its CalcFieldsSize) and starts with every field blank.
class TCTCalcFields {
 public:
  /// Makes the store `size` bytes long with every field blank.
  void Clear(int32_t size);
  int32_t Size() const { return static_cast<int32_t>(FData.size()); }
  /// Copies the `dataSize`-byte value of the slot at `offset` into `dest` (may be null) and
  /// returns whether it holds a value. A slot outside the store is blank.
  bool Get(int32_t offset, int32_t dataSize, void* dest) const;
  /// Stores `dataSize` bytes from `src` in the slot at `offset`; a null `src` blanks it. The store
  /// grows when the slot lies beyond its end.
  void Set(int32_t offset, int32_t dataSize, const void* src);
  /// Copies another store.
  void Assign(const TCTCalcFields& source) { FData = source.FData; }

 private:
  std::vector<uint8_t> FData;
};

}  // namespace CTTables
