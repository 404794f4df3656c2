// TIntegerProperty: decimal text of integer properties.
#include "TIntegerProperty.h"

#include "Exception.h"
#include "StringUtils.h"

namespace fw {

std::string TIntegerProperty::GetValue() const { return IntToStr(GetVarValue().AsInt64()); }

void TIntegerProperty::SetValue(const std::string& value) {
  int64_t number = 0;
  if (!TryStrToInt64(Trim(value), number))
    throw EConvertError("'" + value + "' is not a valid integer value");
  SetVarValue(Variant(number));
}

}  // namespace fw
