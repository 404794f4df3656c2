// TComponentProperty: references chosen among the components of the designed form.
#include "TComponentProperty.h"

#include "Exception.h"
#include "IDesigner.h"
#include "StringUtils.h"
#include "TClassInfo.h"
#include "TComponent.h"

namespace fw {

TPropertyAttributes TComponentProperty::GetAttributes() const {
  return TPropertyEditor::GetAttributes().Include(paValueList).Include(paSortList);
}

std::string TComponentProperty::GetValue() const {
  const TComponent* target = PropInfo().GetComponent(*GetComponent(0));
  return target == nullptr ? std::string() : target->Name();
}

void TComponentProperty::SetValue(const std::string& value) {
  CheckWritable();
  const std::string name = Trim(value);
  TComponent* target = nullptr;
  if (!name.empty()) {
    TComponent* root = Designer().Root();
    target = root != nullptr ? root->FindComponent(name) : nullptr;
    if (target == nullptr) throw EConvertError("No component named " + name + " on the form");
  }
  for (int i = 0; i < PropCount(); ++i) PropInfo().SetComponent(*GetComponent(i), target);
  Designer().Modified();
}

void TComponentProperty::GetValues(const TGetStrProc& proc) {
  const TComponent* root = Designer().Root();
  if (root == nullptr) return;
  const TClassInfo* wanted =
      PropInfo().ComponentClass != nullptr ? &PropInfo().ComponentClass() : nullptr;
  for (int i = 0; i < root->ComponentCount(); ++i) {
    const TComponent* c = root->Components(i);
    if (!c->Name().empty() && (wanted == nullptr || c->InheritsFrom(*wanted))) proc(c->Name());
  }
}

}  // namespace fw
