// The registry of property editors: which editor a designer uses for which property (framework
// layer, design time).
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "TClassInfo.h"

namespace fw {

class IDesigner;
class TComponent;
class TPropertyEditor;

/// A property editor class: its name and how to make one for a selection.
struct TPropertyEditorClass {
  using Factory = std::function<std::unique_ptr<TPropertyEditor>(
      IDesigner& designer, std::vector<TComponent*> components, const TPropInfo& prop)>;
  std::string Name;
  Factory Create;
};

/// The editor class `E` (constructor as TPropertyEditor's) under `name`. Each editor keeps one
/// in a function-local static, so that registrations can refer to it:
///
///     const fw::TPropertyEditorClass& TMyEditor::EditorClass() {
///       static const auto cls = fw::MakePropertyEditorClass<TMyEditor>("TMyEditor");
///       return cls;
///     }
template <class E>
TPropertyEditorClass MakePropertyEditorClass(std::string name) {
  return {std::move(name),
          [](IDesigner& designer, std::vector<TComponent*> components, const TPropInfo& prop) {
            return std::unique_ptr<TPropertyEditor>(new E(designer, std::move(components), prop));
          }};
}

/// One registration.
struct TPropertyEditorEntry {
  TPropKind PropertyType;
  const TClassInfo* ComponentClass;  // null: components of every class
  std::string PropertyName;          // "": properties of every name
  const TPropertyEditorClass* EditorClass;
};

/// Registers `editorClass` (kept by address: a static) for properties of kind `propertyType`,
/// of components of `componentClass` and its descendants (null: any class), named
/// `propertyName` (case-insensitive; "": any name). Registering the same four again changes
/// nothing. The framework's own editors are registered for every kind a designer edits as
/// text: strings, integers, floats and currency, enumerations and booleans, references.
void RegisterPropertyEditor(TPropKind propertyType, const TClassInfo* componentClass,
                            const std::string& propertyName,
                            const TPropertyEditorClass& editorClass);
/// Every registration in order, the framework's own first.
const std::vector<TPropertyEditorEntry>& RegisteredPropertyEditors();
/// The registration that applies to property `prop` of class `componentClass`: of the entries
/// matching kind, class and name, one naming the property wins over one that does not, then
/// the one whose class is nearest to `componentClass`, then the one registered last. Null when
/// none applies (sets, sub-objects and binary properties have no editor of the framework's).
const TPropertyEditorEntry* FindPropertyEditor(const TClassInfo& componentClass,
                                               const TPropInfo& prop);
/// An editor for `prop` of `components` (not empty, all of one class: the first's decides), or
/// nullptr when no registration applies.
std::unique_ptr<TPropertyEditor> GetPropertyEditor(IDesigner& designer,
                                                   const std::vector<TComponent*>& components,
                                                   const TPropInfo& prop);

}  // namespace fw
