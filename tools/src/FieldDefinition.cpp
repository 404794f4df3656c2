// FieldDefinition: the field-definition syntax of the tool's `create` command (tools layer).
#include "FieldDefinition.h"

#include <array>
#include <charconv>
#include <utility>
#include <vector>

#include "Nearest.h"
#include "StringUtils.h"
#include "TextSplit.h"
#include "ToolError.h"

namespace ctt {

namespace {

enum SizeRule { srNone, srRequired, srOptional, srScale };

struct TypeEntry {
  const char* Name;
  fw::TFieldType Type;
  SizeRule Size;
};

// The first name of each type is the one the tool prints. Auto-increment is not offered: the
// table layer stores it as a plain integer, so every row would need its own value anyway.
constexpr std::array<TypeEntry, 18> kTypes{{
    {"string", fw::ftString, srRequired},     {"smallint", fw::ftSmallint, srNone},
    {"integer", fw::ftInteger, srNone},       {"int", fw::ftInteger, srNone},
    {"word", fw::ftWord, srNone},             {"boolean", fw::ftBoolean, srNone},
    {"bool", fw::ftBoolean, srNone},          {"float", fw::ftFloat, srNone},
    {"currency", fw::ftCurrency, srNone},     {"bcd", fw::ftBCD, srScale},
    {"date", fw::ftDate, srNone},             {"time", fw::ftTime, srNone},
    {"datetime", fw::ftDateTime, srNone},     {"bytes", fw::ftBytes, srRequired},
    {"varbytes", fw::ftVarBytes, srRequired}, {"blob", fw::ftBlob, srOptional},
    {"memo", fw::ftMemo, srOptional},         {"graphic", fw::ftGraphic, srOptional},
}};

// Types a table may have (made by another program) that `create` does not offer: named for
// display only.
constexpr std::array<std::pair<fw::TFieldType, const char*>, 11> kDisplayOnly{{
    {fw::ftFixedChar, "fixedchar"}, {fw::ftWideString, "widestring"}, {fw::ftLargeint, "largeint"},
    {fw::ftFMTBcd, "fmtbcd"}, {fw::ftFmtMemo, "fmtmemo"}, {fw::ftTypedBinary, "typedbinary"},
    {fw::ftLongWord, "longword"}, {fw::ftShortint, "shortint"}, {fw::ftByte, "byte"},
    {fw::ftTimeStamp, "timestamp"}, {fw::ftAutoInc, "autoinc"},
}};

constexpr int kMaxSize = 65535;
constexpr int kMaxBcdDigits = 32;

const TypeEntry* FindType(std::string_view name) {
  for (const TypeEntry& e : kTypes)
    if (fw::SameText(e.Name, name)) return &e;
  return nullptr;
}

std::string KnownTypes() {
  std::string out;
  for (const TypeEntry& e : kTypes) {
    if (!out.empty()) out += ", ";
    out += e.Name;
  }
  return out;
}

bool ParseInt(std::string_view text, int& value) {
  auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
  return ec == std::errc() && end == text.data() + text.size() && !text.empty();
}

}  // namespace

FieldDefinition ParseFieldDefinition(std::string_view text) {
  const std::string where = "field definition '" + std::string(text) + "': ";
  std::vector<std::string_view> parts = Split(text, ':');
  if (parts.size() < 2 || parts.size() > 3)
    throw UsageError(where + "expected name:type or name:type:size");
  FieldDefinition entry;
  entry.Name = std::string(Trim(parts[0]));
  if (!IsIdentifier(entry.Name))
    throw UsageError(where + "the name must start with a letter or '_' and hold only letters, digits and '_'");
  const TypeEntry* type = FindType(Trim(parts[1]));
  if (!type) {
    const std::string typed = fw::LowerCase(std::string(Trim(parts[1])));
    std::vector<std::string> names;
    for (const TypeEntry& e : kTypes) names.emplace_back(e.Name);
    throw UsageError(where + "unknown type '" + std::string(Trim(parts[1])) + "'" + DidYouMean(typed, names) +
                     " (known: " + KnownTypes() + ")");
  }
  entry.DataType = type->Type;
  const bool hasSize = parts.size() == 3;
  const std::string_view sizeText = hasSize ? Trim(parts[2]) : std::string_view();
  switch (type->Size) {
    case srNone:
      if (hasSize) throw UsageError(where + "type " + type->Name + " takes no size");
      break;
    case srRequired:
    case srOptional:
      if (!hasSize) {
        if (type->Size == srRequired) throw UsageError(where + "type " + type->Name + " needs a size (1 to 65535)");
        break;
      }
      if (!ParseInt(sizeText, entry.Size) || entry.Size < 1 || entry.Size > kMaxSize)
        throw UsageError(where + "the size must be a whole number from 1 to 65535");
      break;
    case srScale: {
      if (!hasSize) break;
      const std::size_t dot = sizeText.find('.');
      const std::string_view scale = dot == std::string_view::npos ? sizeText : sizeText.substr(dot + 1);
      if (!ParseInt(scale, entry.Size) || entry.Size < 0 || entry.Size > kMaxBcdDigits)
        throw UsageError(where + "the scale must be a whole number from 0 to 32");
      if (dot != std::string_view::npos) {
        if (!ParseInt(sizeText.substr(0, dot), entry.Precision) || entry.Precision < 1 ||
            entry.Precision > kMaxBcdDigits || entry.Precision < entry.Size)
          throw UsageError(where + "the precision must be a whole number from the scale to 32");
      }
      break;
    }
  }
  return entry;
}

std::vector<FieldDefinition> ParseFieldDefinitions(const std::vector<std::string>& texts) {
  std::vector<FieldDefinition> entries;
  for (const std::string& text : texts) {
    for (std::string_view one : Split(text, ',')) {
      FieldDefinition entry = ParseFieldDefinition(Trim(one));
      for (const FieldDefinition& earlier : entries)
        if (fw::SameText(earlier.Name, entry.Name))
          throw UsageError("field '" + entry.Name + "' is defined twice");
      entries.push_back(std::move(entry));
    }
  }
  return entries;
}

std::string FieldTypeName(fw::TFieldType type) {
  for (const TypeEntry& e : kTypes)
    if (e.Type == type) return e.Name;
  for (const auto& [t, name] : kDisplayOnly)
    if (t == type) return name;
  return "type#" + std::to_string(static_cast<int>(type));
}

std::optional<fw::TFieldType> FieldTypeFromName(std::string_view name) {
  if (const TypeEntry* e = FindType(name)) return e->Type;
  return std::nullopt;
}

std::string FormatFieldDefinition(const FieldDefinition& entry) {
  std::string out = FieldTypeName(entry.DataType);
  const TypeEntry* type = FindType(out);
  const SizeRule rule = type ? type->Size : srOptional;
  if (rule == srScale) {
    if (entry.Precision > 0)
      out += ":" + std::to_string(entry.Precision) + "." + std::to_string(entry.Size);
    else if (entry.Size > 0)
      out += ":" + std::to_string(entry.Size);
  } else if (rule != srNone && entry.Size > 0) {
    out += ":" + std::to_string(entry.Size);
  }
  return out;
}

}  // namespace ctt
