// TStringProperty: text in, text out.
#include "TStringProperty.h"

namespace fw {

std::string TStringProperty::GetValue() const { return GetVarValue().AsString(); }

void TStringProperty::SetValue(const std::string& value) { SetVarValue(Variant(value)); }

}  // namespace fw
