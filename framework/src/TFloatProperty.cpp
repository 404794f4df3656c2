// TFloatProperty: number text of floating-point and currency properties.
#include "TFloatProperty.h"

#include "Exception.h"
#include "StringUtils.h"
#include "TClassInfo.h"

namespace fw {

std::string TFloatProperty::GetValue() const {
  const Variant value = GetVarValue();
  return PropInfo().Kind == pkCurrency ? CurrToStr(value.AsCurrency())
                                       : FloatToStr(value.AsDouble());
}

void TFloatProperty::SetValue(const std::string& value) {
  const std::string text = Trim(value);
  if (PropInfo().Kind == pkCurrency) {
    Currency number = 0;
    if (!TryStrToCurr(text, number))
      throw EConvertError("'" + value + "' is not a valid currency value");
    SetVarValue(Variant::FromCurrency(number));
  } else {
    double number = 0;
    if (!TryStrToFloat(text, number))
      throw EConvertError("'" + value + "' is not a valid floating point value");
    SetVarValue(Variant(number));
  }
}

}  // namespace fw
