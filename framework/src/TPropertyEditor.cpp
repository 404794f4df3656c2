// TPropertyEditor: the selection, the property and the value passing shared by every editor.
#include "TPropertyEditor.h"

#include "Exception.h"
#include "IDesigner.h"
#include "TClassInfo.h"
#include "TComponent.h"

namespace fw {

TPropertyEditor::TPropertyEditor(IDesigner& designer, std::vector<TComponent*> components,
                                 const TPropInfo& prop)
    : FDesigner(designer), FComponents(std::move(components)), FProp(prop) {
  if (FComponents.empty()) throw EComponentError("A property editor needs a selected component");
}

TComponent* TPropertyEditor::GetComponent(int index) const {
  if (index < 0 || index >= PropCount())
    throw EListError("List index out of bounds (" + std::to_string(index) + ")");
  return FComponents[static_cast<size_t>(index)];
}

const std::string& TPropertyEditor::GetName() const { return FProp.Name; }

TPropertyAttributes TPropertyEditor::GetAttributes() const {
  return FProp.ReadOnly() ? TPropertyAttributes{paReadOnly} : TPropertyAttributes{};
}

void TPropertyEditor::GetValues(const TGetStrProc& /*proc*/) {}

void TPropertyEditor::Edit() {}

Variant TPropertyEditor::GetVarValue() const { return FProp.Get(*FComponents.front()); }

void TPropertyEditor::SetVarValue(const Variant& value) {
  CheckWritable();
  for (TComponent* c : FComponents) FProp.Set(*c, value);
  FDesigner.Modified();
}

void TPropertyEditor::CheckWritable() const {
  if (FProp.ReadOnly()) throw EConvertError("Property " + FProp.Name + " is read-only");
}

}  // namespace fw
