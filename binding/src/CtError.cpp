// The binding layer's error routines.
#include "CtError.h"

#include <string>

#include "CtMessages.h"
#include "StringUtils.h"

namespace CTDbIntf {

void CtError(std::int32_t Code) {
  if (Code == 0) return;
  std::string message(CtMessage(kMessageBase + Code).value_or(std::string_view()));
  // Line feed before carriage return: the historic order, kept because callers display and
  // compare these texts.
  message += "\n\rCtree Error #";
  message += std::to_string(Code);
  throw ECtreeException(std::move(message), Code);
}

void CtErrorFmt(std::int32_t Code, std::initializer_list<fw::Variant> Args) {
  if (Code == 0) return;
  const std::string pattern(CtMessage(kMessageBase + Code).value_or(std::string_view()));
  throw ECtreeException(fw::Format(pattern, Args), Code);
}

}  // namespace CTDbIntf
