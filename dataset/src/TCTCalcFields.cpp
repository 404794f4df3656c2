// TCTCalcFields: the calculated- and lookup-field values of one record buffer (dataset, unit CTTables).
#include "TCTCalcFields.h"

#include <cstring>

namespace CTTables {

void TCTCalcFields::Clear(int32_t size) { FData.assign(static_cast<size_t>(size > 0 ? size : 0), 0); }

bool TCTCalcFields::Get(int32_t offset, int32_t dataSize, void* dest) const {
  if (offset < 0 || dataSize < 0 || static_cast<size_t>(offset) + 1 + static_cast<size_t>(dataSize) > FData.size())
    return false;
  const bool present = FData[static_cast<size_t>(offset)] != 0;
  if (present && dest != nullptr && dataSize > 0)
    std::memcpy(dest, FData.data() + offset + 1, static_cast<size_t>(dataSize));
  return present;
}

void TCTCalcFields::Set(int32_t offset, int32_t dataSize, const void* src) {
  if (offset < 0 || dataSize < 0) return;
  const size_t end = static_cast<size_t>(offset) + 1 + static_cast<size_t>(dataSize);
  if (end > FData.size()) FData.resize(end, 0);
  FData[static_cast<size_t>(offset)] = src != nullptr ? 1 : 0;
  if (src != nullptr && dataSize > 0)
    std::memcpy(FData.data() + offset + 1, src, static_cast<size_t>(dataSize));
  else
    std::memset(FData.data() + offset + 1, 0, static_cast<size_t>(dataSize));
}

}  // namespace CTTables
