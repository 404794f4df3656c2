// The registry of property editors, starting with the framework's own editors by kind.
#include "PropertyEditorRegistry.h"

#include <climits>

#include "Exception.h"
#include "StringUtils.h"
#include "TComponent.h"
#include "TComponentProperty.h"
#include "TEnumProperty.h"
#include "TFloatProperty.h"
#include "TIntegerProperty.h"
#include "TStringProperty.h"

namespace fw {

namespace {

std::vector<TPropertyEditorEntry>& Entries() {
  static const TPropertyEditorClass kString =
      MakePropertyEditorClass<TStringProperty>("TStringProperty");
  static const TPropertyEditorClass kInteger =
      MakePropertyEditorClass<TIntegerProperty>("TIntegerProperty");
  static const TPropertyEditorClass kFloat =
      MakePropertyEditorClass<TFloatProperty>("TFloatProperty");
  static const TPropertyEditorClass kEnum = MakePropertyEditorClass<TEnumProperty>("TEnumProperty");
  static const TPropertyEditorClass kComponent =
      MakePropertyEditorClass<TComponentProperty>("TComponentProperty");
  static std::vector<TPropertyEditorEntry> entries{
      {pkString, nullptr, "", &kString},  {pkInteger, nullptr, "", &kInteger},
      {pkInt64, nullptr, "", &kInteger},  {pkFloat, nullptr, "", &kFloat},
      {pkCurrency, nullptr, "", &kFloat}, {pkEnum, nullptr, "", &kEnum},
      {pkBoolean, nullptr, "", &kEnum},   {pkComponent, nullptr, "", &kComponent},
  };
  return entries;
}

// Steps from `cls` up to `ancestor`; INT_MAX when `ancestor` is null (any class), -1 when it is
// no ancestor.
int Distance(const TClassInfo& cls, const TClassInfo* ancestor) {
  if (ancestor == nullptr) return INT_MAX;
  int steps = 0;
  for (const TClassInfo* c = &cls; c != nullptr; c = c->Parent(), ++steps)
    if (c == ancestor) return steps;
  return -1;
}

}  // namespace

void RegisterPropertyEditor(TPropKind propertyType, const TClassInfo* componentClass,
                            const std::string& propertyName,
                            const TPropertyEditorClass& editorClass) {
  std::vector<TPropertyEditorEntry>& entries = Entries();
  for (const TPropertyEditorEntry& e : entries)
    if (e.PropertyType == propertyType && e.ComponentClass == componentClass &&
        SameText(e.PropertyName, propertyName) && e.EditorClass == &editorClass)
      return;
  entries.push_back({propertyType, componentClass, propertyName, &editorClass});
}

const std::vector<TPropertyEditorEntry>& RegisteredPropertyEditors() { return Entries(); }

const TPropertyEditorEntry* FindPropertyEditor(const TClassInfo& componentClass,
                                               const TPropInfo& prop) {
  const TPropertyEditorEntry* best = nullptr;
  bool bestNamed = false;
  int bestDistance = INT_MAX;
  for (const TPropertyEditorEntry& e : Entries()) {
    if (e.PropertyType != prop.Kind) continue;
    const bool named = !e.PropertyName.empty();
    if (named && !SameText(e.PropertyName, prop.Name)) continue;
    const int distance = Distance(componentClass, e.ComponentClass);
    if (distance < 0) continue;
    // Later entries win ties: a package may replace an editor registered before it.
    if (best == nullptr || (named && !bestNamed) ||
        (named == bestNamed && distance <= bestDistance)) {
      best = &e;
      bestNamed = named;
      bestDistance = distance;
    }
  }
  return best;
}

std::unique_ptr<TPropertyEditor> GetPropertyEditor(IDesigner& designer,
                                                   const std::vector<TComponent*>& components,
                                                   const TPropInfo& prop) {
  if (components.empty()) throw EComponentError("A property editor needs a selected component");
  const TPropertyEditorEntry* entry = FindPropertyEditor(components.front()->ClassType(), prop);
  if (entry == nullptr) return nullptr;
  return entry->EditorClass->Create(designer, components, prop);
}

}  // namespace fw
