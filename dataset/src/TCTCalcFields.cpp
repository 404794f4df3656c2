// TCTCalcFields: the calculated- and lookup-field values of one record buffer (dataset, unit
// CTTables).
#include "TCTCalcFields.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>

#include "StringUtils.h"

namespace CTTables {

namespace {

// `size` bytes from `data` (zeros where `data` is null), or a blank value.
void Store(TCTCalcField& entry, int32_t size, const void* data, size_t available) {
  entry.Data.clear();
  entry.Size = 0;
  if (size <= 0) return;
  entry.Data.assign(static_cast<size_t>(size), 0);
  if (data != nullptr) std::memcpy(entry.Data.data(), data, std::min(available, entry.Data.size()));
  entry.Size = size;
}

void CheckIndex(int index) {
  if (index < 0)
    throw std::out_of_range("TCTCalcFields: list index out of bounds (" + std::to_string(index) +
                            ")");
}

}  // namespace

TCTCalcField* TCTCalcFields::Find(const std::string& Name) {
  for (TCTCalcField& entry : FFields)
    if (fw::SameText(entry.Name, Name)) return &entry;
  return nullptr;
}

void TCTCalcFields::AddField(const std::string& Name, int32_t Size, const void* Data) {
  TCTCalcField entry;
  entry.Name = Name;
  Store(entry, Size, Data, static_cast<size_t>(std::max(Size, 0)));
  FFields.push_back(std::move(entry));
}

void TCTCalcFields::GetData(const std::string& Name, void* Buffer, bool& IsBlank) const {
  const TCTCalcField* entry = const_cast<TCTCalcFields*>(this)->Find(Name);
  if (entry == nullptr) return;
  IsBlank = entry->Data.empty();
  if (!IsBlank && Buffer != nullptr) std::memcpy(Buffer, entry->Data.data(), entry->Data.size());
}

void TCTCalcFields::SetData(const std::string& Name, int32_t Size, const void* Data) {
  TCTCalcField* entry = Find(Name);
  if (entry == nullptr) return;
  Store(*entry, Data != nullptr ? Size : 0, Data, static_cast<size_t>(std::max(Size, 0)));
}

void TCTCalcFields::ClearFields() {
  for (auto entry = FFields.rbegin(); entry != FFields.rend(); ++entry)
    Store(*entry, 0, nullptr, 0);
}

void TCTCalcFields::DeleteFields() { FFields.clear(); }

void TCTCalcFields::RemoveField(const std::string& Name) {
  for (auto entry = FFields.rbegin(); entry != FFields.rend(); ++entry) {
    if (fw::SameText(entry->Name, Name)) {
      FFields.erase(std::next(entry).base());
      return;
    }
  }
}

void TCTCalcFields::GetField(int Index, TCTCalcField& Result) const {
  CheckIndex(Index);
  if (Index < Count()) Result = FFields[static_cast<size_t>(Index)];
}

void TCTCalcFields::SetField(int Index, const TCTCalcField& Value) {
  CheckIndex(Index);
  if (Index >= Count()) return;
  TCTCalcField& entry = FFields[static_cast<size_t>(Index)];
  entry.Name = Value.Name;
  Store(entry, Value.Size, Value.Data.empty() ? nullptr : Value.Data.data(), Value.Data.size());
}

}  // namespace CTTables
