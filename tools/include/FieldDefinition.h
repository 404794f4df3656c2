// FieldDefinition: one field of a table to create, parsed from "name:type[:size]" (tools layer).
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "DataSetTypes.h"

namespace ctt {

/// A field definition as the framework's field definitions take it: `Size` is the number of
/// characters for strings, bytes for byte fields, the scale (digits after the point) for BCD,
/// and 0 where the type has a fixed size; `Precision` is the total number of digits for BCD
/// (0 when not given) and 0 otherwise.
struct FieldDefinition {
  std::string Name;
  fw::TFieldType DataType = fw::ftUnknown;
  int Size = 0;
  int Precision = 0;
};

/// Parses one definition "name:type[:size]". Types (case-insensitive): string (size 1..65535
/// required), smallint, integer (int), word, boolean (bool), float, currency, bcd (size "p.s"
/// or "s", s 0..32, p s..32), date, time, datetime, bytes and varbytes (size 1..65535 required),
/// blob and memo (size optional); not autoinc, which the table layer would store as a plain
/// integer. A name starts with a letter or "_" and holds letters,
/// digits and "_" only. Raises UsageError naming the definition and what is wrong.
FieldDefinition ParseFieldDefinition(std::string_view text);

/// Parses a list of definitions separated by commas (each element as ParseFieldDefinition) and
/// checks that no name occurs twice (names compare case-insensitively). Raises UsageError.
std::vector<FieldDefinition> ParseFieldDefinitions(const std::vector<std::string>& texts);

/// The tool's name for a field type ("string", "integer", ...; also names a few types `create`
/// does not offer, such as "largeint"), or "type#n" with the framework's ordinal for the rest.
std::string FieldTypeName(fw::TFieldType type);

/// The field type with the tool's name `name` (case-insensitive), or nullopt.
std::optional<fw::TFieldType> FieldTypeFromName(std::string_view name);

/// "string:40", "bcd:12.2", "integer": a definition in the syntax ParseFieldDefinition reads back.
std::string FormatFieldDefinition(const FieldDefinition& entry);

}  // namespace ctt
