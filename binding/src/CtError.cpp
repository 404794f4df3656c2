// The binding layer's error routines.
#include "CtError.h"

#include <limits>
#include <string>

#include "CtMessages.h"
#include "StringUtils.h"

namespace CTDbIntf {

namespace {

// The message of error number `code`, empty when there is none (also for numbers so large that
// 30000 + code does not fit a message number).
std::string_view MessageOf(std::int32_t code) {
  if (code > std::numeric_limits<std::int32_t>::max() - kMessageBase) return {};
  return CtMessage(kMessageBase + code).value_or(std::string_view());
}

}  // namespace

void CtError(std::int32_t Code) {
  if (Code == 0) return;
  std::string message(MessageOf(Code));
  // Line feed before carriage return: the historic order, kept because callers display and
  // compare these texts.
  message += "\n\rCtree Error #";
  message += std::to_string(Code);
  throw ECtreeException(std::move(message), Code);
}

void CtErrorFmt(std::int32_t Code, std::initializer_list<fw::Variant> Args) {
  if (Code == 0) return;
  throw ECtreeException(fw::Format(MessageOf(Code), Args), Code);
}

}  // namespace CTDbIntf
