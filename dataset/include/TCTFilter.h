// TCTFilter and TCTFilterComp: one condition of a table's condition list (dataset, unit CTTables).
#pragma once

#include <cstdint>
#include <string>

#include "Variant.h"

namespace CTTables {

/// Comparison kinds of a TCTFilter (ordinals 0 to 5).
enum TCTFilterComp : uint8_t { cfcEqual, cfcGTEqual, cfcLTEqual, cfcLessThan, cfcGreaterThan, cfcNotEqual };

/// One condition kept by TCTTable::AddFilterCondition. Plain data: nothing in the package
/// interprets it, and the table's record filter does not read it.
class TCTFilter {
 public:
  /// Stores the four values as given (`Value` is copied).
  TCTFilter(const std::string& FieldName, int32_t FieldIndex, TCTFilterComp Comp, const fw::Variant& Value)
      : FieldName(FieldName), FieldIndex(FieldIndex), Comp(Comp), Value(Value) {}

  std::string FieldName;
  int32_t FieldIndex;
  TCTFilterComp Comp;
  fw::Variant Value;
};

}  // namespace CTTables
