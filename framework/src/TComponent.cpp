// TComponent: ownership, names, state flags, notifications and the destruction order.
#include "TComponent.h"

#include <algorithm>

#include "Exception.h"
#include "StringUtils.h"
#include "TClassInfo.h"

namespace fw {

bool IsValidIdent(std::string_view name) {
  if (name.empty()) return false;
  auto alpha = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; };
  if (!alpha(name[0])) return false;
  return std::all_of(name.begin() + 1, name.end(), [&](char c) { return alpha(c) || (c >= '0' && c <= '9'); });
}

const TClassInfo& TComponent::StaticClass() {
  static const TClassInfo info = TClassBuilder<TComponent>("TComponent", &TPersistent::StaticClass())
                                     .Creatable()
                                     .Property("Name", &TComponent::Name, &TComponent::SetName, "")
                                     .Property("Tag", &TComponent::Tag, &TComponent::SetTag, 0)
                                     .Build();
  return info;
}

const TClassInfo& TComponent::ClassType() const { return StaticClass(); }

TComponent::TComponent(TComponent* owner) {
  if (owner != nullptr) owner->InsertComponent(this);
}

TComponent::~TComponent() {
  Destroying();
  // Step 2: tell every free-notification partner, last registered first.
  while (!FFreeNotifies.empty()) {
    TComponent* partner = FFreeNotifies.back();
    FFreeNotifies.pop_back();
    partner->RemoveNotify(this);
    partner->Notification(this, opRemove);
  }
  DestroyComponents();
  if (FOwner != nullptr) FOwner->RemoveComponent(this);
}

void TComponent::Free() {
  Destroying();
  delete this;
}

void TComponent::Destroying() {
  if (FComponentState.Contains(csDestroying)) return;
  FComponentState.Include(csDestroying);
  for (TComponent* c : FComponents) c->Destroying();
}

void TComponent::DestroyComponents() {
  while (!FComponents.empty()) {
    TComponent* c = FComponents.back();
    if (c->FComponentState.Contains(csFreeNotification)) {
      RemoveComponent(c);
    } else {
      FComponents.pop_back();
      c->FOwner = nullptr;
    }
    c->Free();
  }
}

TComponent* TComponent::Components(int index) const {
  if (index < 0 || index >= ComponentCount())
    throw EListError("List index out of bounds (" + std::to_string(index) + ")");
  return FComponents[index];
}

int TComponent::ComponentIndex() const {
  if (FOwner == nullptr) return -1;
  const auto& list = FOwner->FComponents;
  return static_cast<int>(std::find(list.begin(), list.end(), this) - list.begin());
}

void TComponent::SetComponentIndex(int value) {
  if (FOwner == nullptr) return;
  auto& list = FOwner->FComponents;
  const int current = ComponentIndex();
  value = std::clamp(value, 0, static_cast<int>(list.size()) - 1);
  if (value == current) return;
  list.erase(list.begin() + current);
  list.insert(list.begin() + value, this);
}

void TComponent::SetName(const std::string& value) {
  if (value == FName) return;
  if (!value.empty() && !IsValidIdent(value))
    throw EComponentError("'" + value + "' is not a valid component name");
  if (FOwner != nullptr) FOwner->ValidateRename(this, FName, value);
  FName = value;
}

void TComponent::ValidateRename(TComponent* c, std::string_view curName, std::string_view newName) const {
  if (c == nullptr || newName.empty() || SameText(curName, newName)) return;
  TComponent* other = FindComponent(newName);
  if (other != nullptr && other != c)
    throw EComponentError("A component named " + std::string(newName) + " already exists");
}

void TComponent::InsertComponent(TComponent* c) {
  c->ValidateContainer(this);
  ValidateInsert(c);
  ValidateRename(c, "", c->FName);
  if (c->FOwner != nullptr) c->FOwner->Unlink(c);
  FComponents.push_back(c);
  c->FOwner = this;
  if (FComponentState.Contains(csDesigning)) c->SetDesigning(true);
  Notification(c, opInsert);
}

void TComponent::RemoveComponent(TComponent* c) {
  Notification(c, opRemove);
  Unlink(c);
  c->SetComponentStateFlag(csDesigning, false);
  ValidateRename(c, c->FName, "");
}

void TComponent::Unlink(TComponent* c) {
  auto it = std::find(FComponents.begin(), FComponents.end(), c);
  if (it != FComponents.end()) FComponents.erase(it);
  c->FOwner = nullptr;
}

TComponent* TComponent::FindComponent(std::string_view name) const {
  if (name.empty()) return nullptr;
  for (TComponent* c : FComponents)
    if (SameText(c->FName, name)) return c;
  return nullptr;
}

void TComponent::FreeNotification(TComponent* c) {
  if (c == nullptr || c == this) return;
  if (FOwner == nullptr || c->FOwner != FOwner) {
    if (std::find(FFreeNotifies.begin(), FFreeNotifies.end(), c) == FFreeNotifies.end()) {
      FFreeNotifies.push_back(c);
      c->FreeNotification(this);
    }
  }
  FComponentState.Include(csFreeNotification);
}

void TComponent::RemoveFreeNotification(TComponent* c) {
  if (c == nullptr) return;
  RemoveNotify(c);
  c->RemoveNotify(this);
}

void TComponent::RemoveNotify(TComponent* c) {
  auto it = std::find(FFreeNotifies.begin(), FFreeNotifies.end(), c);
  if (it == FFreeNotifies.end()) return;
  FFreeNotifies.erase(it);
  if (FFreeNotifies.empty()) FComponentState.Exclude(csFreeNotification);
}

void TComponent::Notification(TComponent* c, TOperation operation) {
  if (operation == opRemove && c != nullptr) RemoveFreeNotification(c);
  // Owned components may remove themselves or others while being told: re-clamp each step.
  int i = ComponentCount() - 1;
  while (i >= 0) {
    FComponents[i]->Notification(c, operation);
    --i;
    if (i >= ComponentCount()) i = ComponentCount() - 1;
  }
}

void TComponent::SetDesigning(bool value) {
  SetComponentStateFlag(csDesigning, value);
  for (TComponent* c : FComponents) c->SetDesigning(value);
}

void TComponent::Updating() { FComponentState.Include(csUpdating); }
void TComponent::Updated() { FComponentState.Exclude(csUpdating); }

void TComponent::GetChildren(const std::function<void(TComponent*)>& proc, TComponent* root) const {
  if (root != this) return;
  for (TComponent* c : FComponents)
    if (!c->HasParent()) proc(c);
}

void TComponent::Loaded() { FComponentState.Exclude(csLoading); }

void TComponent::SetComponentStateFlag(TComponentStateFlag flag, bool on) {
  if (on) FComponentState.Include(flag);
  else FComponentState.Exclude(flag);
}

}  // namespace fw
