// TEnumProperty: member names of enumerations and booleans.
#include "TEnumProperty.h"

#include "Exception.h"
#include "StringUtils.h"
#include "TClassInfo.h"

namespace fw {

std::vector<std::string> TEnumProperty::Names() const {
  return PropInfo().Kind == pkBoolean ? std::vector<std::string>{"False", "True"}
                                      : PropInfo().Names;
}

TPropertyAttributes TEnumProperty::GetAttributes() const {
  return TPropertyEditor::GetAttributes().Include(paValueList);
}

std::string TEnumProperty::GetValue() const {
  const Variant value = GetVarValue();
  if (PropInfo().Kind == pkBoolean) return value.AsBoolean() ? "True" : "False";
  const int64_t ordinal = value.AsInt64();
  const std::vector<std::string>& names = PropInfo().Names;
  // An ordinal without a name shows as its number rather than failing the whole property list.
  return ordinal >= 0 && ordinal < static_cast<int64_t>(names.size())
             ? names[static_cast<size_t>(ordinal)]
             : IntToStr(ordinal);
}

void TEnumProperty::SetValue(const std::string& value) {
  const std::vector<std::string> names = Names();
  const std::string text = Trim(value);
  for (size_t i = 0; i < names.size(); ++i) {
    if (!SameText(names[i], text)) continue;
    if (PropInfo().Kind == pkBoolean)
      SetVarValue(Variant(i == 1));
    else
      SetVarValue(Variant(static_cast<int32_t>(i)));
    return;
  }
  throw EConvertError("'" + value + "' is not a value of property " + GetName());
}

void TEnumProperty::GetValues(const TGetStrProc& proc) {
  for (const std::string& name : Names()) proc(name);
}

}  // namespace fw
