// IndexDefinition: one index of a table, parsed from "name:field;field[:options]" (tools layer).
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "FieldDefinition.h"

namespace ctt {

/// An index definition: its key fields in order and its options.
struct IndexDefinition {
  std::string Name;
  std::vector<std::string> Fields;
  bool Primary = false;  ///< the table's primary index; implies Unique
  bool Unique = false;
  bool Descending = false;
  bool CaseInsensitive = false;

  /// The key fields joined with ";", as the framework's index definitions hold them.
  std::string FieldsText() const;
  /// The options as the tool writes them ("unique,nocase"), empty when none.
  std::string OptionsText() const;
  /// The options as the framework's index definitions hold them.
  fw::TIndexOptions Options() const;
};

/// Parses "name:fields[:options]". Fields are separated by ";" or "+" ("last+first" spares the
/// shell quoting). Options, separated by commas, case-insensitive: unique, primary (implies
/// unique), desc or descending, nocase or caseinsensitive. Raises UsageError naming the
/// definition and what is wrong (empty name or field, a field twice, unknown option).
IndexDefinition ParseIndexDefinition(std::string_view text);

/// Parses several definitions (each as ParseIndexDefinition) and checks that no index name occurs
/// twice (case-insensitively). Raises UsageError.
std::vector<IndexDefinition> ParseIndexDefinitions(const std::vector<std::string>& texts);

/// Checks that every key field of `index` is one of `fields` (case-insensitively) and is not a
/// blob or memo field. Raises UsageError naming the index and the field.
void CheckIndexFields(const IndexDefinition& index, const std::vector<FieldDefinition>& fields);

}  // namespace ctt
