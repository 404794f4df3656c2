// IndexDefinition: the index-definition syntax of the tool's `create` and `add-index` (tools layer).
#include "IndexDefinition.h"

#include <vector>

#include "Nearest.h"
#include "StringUtils.h"
#include "TextSplit.h"
#include "ToolError.h"

namespace ctt {

std::string IndexDefinition::FieldsText() const {
  std::string out;
  for (const std::string& f : Fields) {
    if (!out.empty()) out += ';';
    out += f;
  }
  return out;
}

std::string IndexDefinition::OptionsText() const {
  std::string out;
  auto add = [&out](const char* name) {
    if (!out.empty()) out += ',';
    out += name;
  };
  if (Primary) add("primary");
  if (Unique && !Primary) add("unique");
  if (Descending) add("desc");
  if (CaseInsensitive) add("nocase");
  return out;
}

fw::TIndexOptions IndexDefinition::Options() const {
  fw::TIndexOptions options;
  if (Primary) options.Include(fw::ixPrimary);
  if (Unique || Primary) options.Include(fw::ixUnique);
  if (Descending) options.Include(fw::ixDescending);
  if (CaseInsensitive) options.Include(fw::ixCaseInsensitive);
  return options;
}

IndexDefinition ParseIndexDefinition(std::string_view text) {
  const std::string where = "index definition '" + std::string(text) + "': ";
  std::vector<std::string_view> parts = Split(text, ':');
  if (parts.size() < 2 || parts.size() > 3)
    throw UsageError(where + "expected name:fields or name:fields:options");
  IndexDefinition entry;
  entry.Name = std::string(Trim(parts[0]));
  if (!IsIdentifier(entry.Name))
    throw UsageError(where + "the name must start with a letter or '_' and hold only letters, digits and '_'");
  std::string fields(parts[1]);
  for (char& c : fields)
    if (c == '+') c = ';';
  for (std::string_view f : Split(fields, ';')) {
    std::string name(Trim(f));
    if (name.empty()) throw UsageError(where + "a key field name is empty");
    for (const std::string& earlier : entry.Fields)
      if (fw::SameText(earlier, name)) throw UsageError(where + "field '" + name + "' is in the key twice");
    entry.Fields.push_back(std::move(name));
  }
  if (parts.size() == 3) {
    for (std::string_view o : Split(parts[2], ',')) {
      const std::string_view option = Trim(o);
      if (fw::SameText(option, "unique")) {
        entry.Unique = true;
      } else if (fw::SameText(option, "primary")) {
        entry.Primary = entry.Unique = true;
      } else if (fw::SameText(option, "desc") || fw::SameText(option, "descending")) {
        entry.Descending = true;
      } else if (fw::SameText(option, "nocase") || fw::SameText(option, "caseinsensitive")) {
        entry.CaseInsensitive = true;
      } else {
        throw UsageError(where + "unknown option '" + std::string(option) +
                         "' (known: unique, primary, desc, nocase)");
      }
    }
  }
  return entry;
}

std::vector<IndexDefinition> ParseIndexDefinitions(const std::vector<std::string>& texts) {
  std::vector<IndexDefinition> entries;
  for (const std::string& text : texts) {
    IndexDefinition entry = ParseIndexDefinition(text);
    for (const IndexDefinition& earlier : entries)
      if (fw::SameText(earlier.Name, entry.Name))
        throw UsageError("index '" + entry.Name + "' is defined twice");
    entries.push_back(std::move(entry));
  }
  return entries;
}

void CheckIndexFields(const IndexDefinition& index, const std::vector<FieldDefinition>& fields) {
  for (const std::string& key : index.Fields) {
    const FieldDefinition* found = nullptr;
    for (const FieldDefinition& f : fields)
      if (fw::SameText(f.Name, key)) found = &f;
    if (!found) {
      std::vector<std::string> names;
      for (const FieldDefinition& f : fields) names.push_back(f.Name);
      throw UsageError("index '" + index.Name + "': '" + key + "' is not a field of the table" + DidYouMean(key, names));
    }
    if (found->DataType == fw::ftBlob || found->DataType == fw::ftMemo || found->DataType == fw::ftGraphic)
      throw UsageError("index '" + index.Name + "': field '" + key + "' is a " +
                       FieldTypeName(found->DataType) + " and cannot be a key");
  }
}

}  // namespace ctt
