// TPropertyEditor: how a designer shows and changes one published property (framework layer, design
// time).
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "TSet.h"
#include "Variant.h"

namespace fw {

class IDesigner;
class TComponent;
struct TPropInfo;

/// What a designer offers for a property.
enum TPropertyAttribute : uint8_t {
  paValueList,  // GetValues lists values to pick from
  paSortList,   // the designer shows those values sorted
  paDialog,     // Edit opens a dialog that sets the value
  paReadOnly,   // the value is shown only (the property has no setter)
};
using TPropertyAttributes = TSet<TPropertyAttribute>;

/// Receives one value of a value list.
using TGetStrProc = std::function<void(const std::string&)>;

/// Base of the property editors. An editor is made by the designer (see
/// PropertyEditorRegistry.h) for one property of the selected components and lives while that
/// selection is shown; it keeps no state of its own beyond the selection.
///
/// Values pass as text. A text the editor cannot take, or a value a component's setter refuses,
/// raises (EConvertError, or the setter's exception) and the property keeps its old value: the
/// text is converted before any component is touched.
class TPropertyEditor {
 public:
  /// Edits `prop` of `components` (not empty; every component's class publishes `prop`).
  /// `designer` must outlive the editor.
  TPropertyEditor(IDesigner& designer, std::vector<TComponent*> components, const TPropInfo& prop);
  virtual ~TPropertyEditor() = default;
  TPropertyEditor(const TPropertyEditor&) = delete;
  TPropertyEditor& operator=(const TPropertyEditor&) = delete;

  IDesigner& Designer() const { return FDesigner; }
  /// Selected component `index` (0 is the first); EListError out of range.
  TComponent* GetComponent(int index) const;
  /// Number of selected components.
  int PropCount() const { return static_cast<int>(FComponents.size()); }
  const TPropInfo& PropInfo() const { return FProp; }
  /// The property's name.
  const std::string& GetName() const;

  /// Base: {paReadOnly} for a property without setter, else empty. Descendants add theirs.
  virtual TPropertyAttributes GetAttributes() const;
  /// The first component's value as the designer shows it.
  virtual std::string GetValue() const = 0;
  /// Sets the value from `value` on every selected component, then tells the designer
  /// (`Modified`). Raises as the class comment says; EConvertError for a read-only property.
  virtual void SetValue(const std::string& value) = 0;
  /// With paValueList: passes every value to `proc` (the designer sorts them for paSortList).
  /// Base: passes nothing.
  virtual void GetValues(const TGetStrProc& proc);
  /// With paDialog: opens the editor's dialog through the designer and stores what the user
  /// confirms. Base: nothing.
  virtual void Edit();

 protected:
  /// The first component's value (simple kinds).
  Variant GetVarValue() const;
  /// Stores `value` in every selected component, then calls Designer().Modified().
  void SetVarValue(const Variant& value);
  /// Raises EConvertError when the property has no setter.
  void CheckWritable() const;

 private:
  IDesigner& FDesigner;
  std::vector<TComponent*> FComponents;
  const TPropInfo& FProp;
};

}  // namespace fw
