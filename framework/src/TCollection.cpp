// TCollection and TCollectionItem: ownership, order, IDs and change notices.
#include "TCollection.h"

#include <algorithm>

#include "Exception.h"
#include "TClassInfo.h"

namespace fw {

const TClassInfo& TCollectionItem::StaticClass() {
  static const TClassInfo info("TCollectionItem", &TPersistent::StaticClass());
  return info;
}

const TClassInfo& TCollectionItem::ClassType() const { return StaticClass(); }

TCollectionItem::TCollectionItem(TCollection* collection) { SetCollection(collection); }

TCollectionItem::~TCollectionItem() {
  if (FCollection != nullptr) FCollection->RemoveItem(this);
}

void TCollectionItem::SetCollection(TCollection* value) {
  if (value == FCollection) return;
  if (FCollection != nullptr) FCollection->RemoveItem(this);
  if (value != nullptr) value->InsertItem(this);
}

int TCollectionItem::Index() const {
  if (FCollection == nullptr) return -1;
  const auto& items = FCollection->FItems;
  return static_cast<int>(std::find(items.begin(), items.end(), this) - items.begin());
}

void TCollectionItem::SetIndex(int value) {
  if (FCollection == nullptr) return;
  auto& items = FCollection->FItems;
  const int current = Index();
  value = std::clamp(value, 0, static_cast<int>(items.size()) - 1);
  if (value == current) return;
  items.erase(items.begin() + current);
  items.insert(items.begin() + value, this);
  Changed(true);
}

std::string TCollectionItem::DisplayName() const { return ClassName(); }

std::string TCollectionItem::GetNamePath() const {
  if (FCollection == nullptr) return ClassName();
  return FCollection->GetNamePath() + "[" + std::to_string(Index()) + "]";
}

void TCollectionItem::Changed(bool all) {
  if (FCollection != nullptr) FCollection->Changed(all ? nullptr : this);
}

const TClassInfo& TCollection::StaticClass() {
  static const TClassInfo info("TCollection", &TPersistent::StaticClass());
  return info;
}

const TClassInfo& TCollection::ClassType() const { return StaticClass(); }

TCollection::TCollection(TPersistent* owner) : FOwner(owner) {}

TCollection::~TCollection() {
  // Items are deleted directly: a descendant's Notify/Update must not run from here, its own
  // members are already gone.
  for (auto it = FItems.rbegin(); it != FItems.rend(); ++it) {
    (*it)->FCollection = nullptr;
    delete *it;
  }
}

TCollectionItem* TCollection::Items(int index) const {
  if (index < 0 || index >= Count()) throw EListError("List index out of bounds (" + std::to_string(index) + ")");
  return FItems[index];
}

TCollectionItem* TCollection::Add() { return CreateItem(); }

TCollectionItem* TCollection::Insert(int index) {
  TCollectionItem* item = Add();
  item->SetIndex(index);
  return item;
}

void TCollection::Delete(int index) {
  TCollectionItem* item = Items(index);
  Notify(item, cnDeleting);
  delete item;
}

void TCollection::Clear() {
  if (FItems.empty()) return;
  BeginUpdate();
  try {
    while (!FItems.empty()) Delete(Count() - 1);
  } catch (...) {
    EndUpdate();
    throw;
  }
  EndUpdate();
}

TCollectionItem* TCollection::FindItemID(int id) const {
  for (TCollectionItem* item : FItems)
    if (item->FID == id) return item;
  return nullptr;
}

void TCollection::BeginUpdate() { ++FUpdateCount; }

void TCollection::EndUpdate() {
  if (FUpdateCount > 0 && --FUpdateCount == 0) Changed(nullptr);
}

void TCollection::Changed(TCollectionItem* item) {
  if (FUpdateCount == 0) Update(item);
}

void TCollection::Assign(const TPersistent& source) {
  const auto* other = dynamic_cast<const TCollection*>(&source);
  if (other == nullptr) {
    TPersistent::Assign(source);
    return;
  }
  if (other == this) return;
  BeginUpdate();
  try {
    Clear();
    for (TCollectionItem* item : other->FItems) Add()->Assign(*item);
  } catch (...) {
    EndUpdate();
    throw;
  }
  EndUpdate();
}

std::string TCollection::GetNamePath() const {
  if (FOwner == nullptr) return ClassName();
  return FOwner->GetNamePath() + "." + FPropName;
}

void TCollection::InsertItem(TCollectionItem* item) {
  FItems.push_back(item);
  item->FCollection = this;
  item->FID = FNextID++;
  Notify(item, cnAdded);
  Changed(nullptr);
}

void TCollection::RemoveItem(TCollectionItem* item) {
  Notify(item, cnExtracting);
  FItems.erase(std::remove(FItems.begin(), FItems.end(), item), FItems.end());
  item->FCollection = nullptr;
  Changed(nullptr);
}

}  // namespace fw
