// FieldText: one null model and one text form per field type, for import and export alike.
#include "FieldText.h"

#include <algorithm>

#include "DateTime.h"
#include "StringUtils.h"
#include "ToolError.h"

namespace ctt {

namespace {

std::string TemporalText(fw::TFieldType type, fw::TDateTime value) {
  int hour = 0, minute = 0, second = 0, milli = 0;
  fw::DecodeTime(value, hour, minute, second, milli);
  const char* format = type == fw::ftDate   ? "yyyy-mm-dd"
                       : type == fw::ftTime ? (milli != 0 ? "hh:nn:ss.zzz" : "hh:nn:ss")
                       : milli != 0         ? "yyyy-mm-dd hh:nn:ss.zzz"
                                            : "yyyy-mm-dd hh:nn:ss";
  return fw::FormatDateTime(format, value);
}

bool Spelled(const std::string& text, std::initializer_list<const char*> usual, const std::vector<std::string>& more) {
  return std::any_of(usual.begin(), usual.end(), [&](const char* s) { return fw::SameText(text, s); }) ||
         std::any_of(more.begin(), more.end(), [&](const std::string& s) { return fw::SameText(text, s); });
}

}  // namespace

ColumnKind KindOf(fw::TFieldType type) {
  switch (type) {
    case fw::ftSmallint: case fw::ftInteger: case fw::ftWord: case fw::ftFloat:
    case fw::ftCurrency: case fw::ftBCD: case fw::ftAutoInc: case fw::ftLargeint:
      return ColumnKind::Number;
    case fw::ftBoolean:
      return ColumnKind::Boolean;
    case fw::ftDate: case fw::ftTime: case fw::ftDateTime:
      return ColumnKind::Temporal;
    default:
      return ColumnKind::Text;
  }
}

std::string FieldText(const fw::TField& field) {
  const fw::TFieldType type = field.DataType();
  if (type == fw::ftBoolean) return !field.IsNull() && field.AsBoolean() ? "true" : "false";
  if (type == fw::ftTime) return TemporalText(type, field.IsNull() ? 0.0 : field.AsDateTime());
  if (KindOf(type) == ColumnKind::Temporal)
    return field.IsNull() ? std::string() : TemporalText(type, field.AsDateTime());
  if (KindOf(type) == ColumnKind::Number && field.IsNull()) return "0";
  return field.AsString();
}

void SetFieldText(fw::TField& field, const std::string& text, const ValueSpellings& spellings) {
  if (text.empty() || (!spellings.Null.empty() && text == spellings.Null)) return;
  if (field.DataType() == fw::ftBoolean) {
    if (Spelled(text, {"true", "yes", "1"}, spellings.True)) {
      field.SetAsBoolean(true);
    } else if (Spelled(text, {"false", "no", "0"}, spellings.False)) {
      field.SetAsBoolean(false);
    } else {
      throw ToolError(kExitRejected, "'" + text + "' is not a boolean for field " + field.FieldName() +
                                         " (true/false, yes/no, 1/0 or the --true/--false spellings)");
    }
    return;
  }
  if (field.DataType() == fw::ftString && field.Size() > 0 && text.size() > static_cast<std::size_t>(field.Size())) {
    if (!spellings.Truncate)
      throw ToolError(kExitRejected, "text of " + std::to_string(text.size()) + " bytes is longer than field " +
                                         field.FieldName() + " (" + std::to_string(field.Size()) +
                                         " bytes); --truncate cuts it");
    // Cut before the UTF-8 sequence that would not fit whole.
    std::size_t cut = static_cast<std::size_t>(field.Size());
    while (cut > 0 && (static_cast<unsigned char>(text[cut]) & 0xC0) == 0x80) --cut;
    field.SetAsString(text.substr(0, cut));
    return;
  }
  field.SetAsString(text);
}

}  // namespace ctt
