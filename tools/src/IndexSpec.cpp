// IndexSpec: the index-definition syntax of the tool's `create` and `add-index` (tools layer).
#include "IndexSpec.h"

#include "StringUtils.h"
#include "TextSplit.h"
#include "ToolError.h"

namespace ctt {

std::string IndexSpec::FieldsText() const {
  std::string out;
  for (const std::string& f : Fields) {
    if (!out.empty()) out += ';';
    out += f;
  }
  return out;
}

std::string IndexSpec::OptionsText() const {
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

fw::TIndexOptions IndexSpec::Options() const {
  fw::TIndexOptions options;
  if (Primary) options.Include(fw::ixPrimary);
  if (Unique || Primary) options.Include(fw::ixUnique);
  if (Descending) options.Include(fw::ixDescending);
  if (CaseInsensitive) options.Include(fw::ixCaseInsensitive);
  return options;
}

IndexSpec ParseIndexSpec(std::string_view text) {
  const std::string where = "index definition '" + std::string(text) + "': ";
  std::vector<std::string_view> parts = Split(text, ':');
  if (parts.size() < 2 || parts.size() > 3)
    throw UsageError(where + "expected name:fields or name:fields:options");
  IndexSpec spec;
  spec.Name = std::string(Trim(parts[0]));
  if (!IsIdentifier(spec.Name))
    throw UsageError(where + "the name must start with a letter or '_' and hold only letters, digits and '_'");
  std::string fields(parts[1]);
  for (char& c : fields)
    if (c == '+') c = ';';
  for (std::string_view f : Split(fields, ';')) {
    std::string name(Trim(f));
    if (name.empty()) throw UsageError(where + "a key field name is empty");
    for (const std::string& earlier : spec.Fields)
      if (fw::SameText(earlier, name)) throw UsageError(where + "field '" + name + "' is in the key twice");
    spec.Fields.push_back(std::move(name));
  }
  if (parts.size() == 3) {
    for (std::string_view o : Split(parts[2], ',')) {
      const std::string_view option = Trim(o);
      if (fw::SameText(option, "unique")) {
        spec.Unique = true;
      } else if (fw::SameText(option, "primary")) {
        spec.Primary = spec.Unique = true;
      } else if (fw::SameText(option, "desc") || fw::SameText(option, "descending")) {
        spec.Descending = true;
      } else if (fw::SameText(option, "nocase") || fw::SameText(option, "caseinsensitive")) {
        spec.CaseInsensitive = true;
      } else {
        throw UsageError(where + "unknown option '" + std::string(option) +
                         "' (known: unique, primary, desc, nocase)");
      }
    }
  }
  return spec;
}

std::vector<IndexSpec> ParseIndexSpecs(const std::vector<std::string>& texts) {
  std::vector<IndexSpec> specs;
  for (const std::string& text : texts) {
    IndexSpec spec = ParseIndexSpec(text);
    for (const IndexSpec& earlier : specs)
      if (fw::SameText(earlier.Name, spec.Name))
        throw UsageError("index '" + spec.Name + "' is defined twice");
    specs.push_back(std::move(spec));
  }
  return specs;
}

void CheckIndexFields(const IndexSpec& index, const std::vector<FieldSpec>& fields) {
  for (const std::string& key : index.Fields) {
    const FieldSpec* found = nullptr;
    for (const FieldSpec& f : fields)
      if (fw::SameText(f.Name, key)) found = &f;
    if (!found) throw UsageError("index '" + index.Name + "': '" + key + "' is not a field of the table");
    if (found->DataType == fw::ftBlob || found->DataType == fw::ftMemo || found->DataType == fw::ftGraphic)
      throw UsageError("index '" + index.Name + "': field '" + key + "' is a " +
                       FieldTypeName(found->DataType) + " and cannot be a key");
  }
}

}  // namespace ctt
