// The table seam: table references, and the backend this build offers (tools layer).
#include "TableBackend.h"

#include "TableLayerBackend.h"
#include "ToolError.h"

namespace ctt {

std::string TableRef::Display() const {
  std::string out = Directory;
  if (!out.empty() && out.back() != '/') out += '/';
  if (!SuperFile.empty()) out += SuperFile + "!";
  return out + Name;
}

void TableBackend::CopyTable(const TableRef&, const TableRef&, CopyMode, BatchObserver&, BatchResult&) {
  throw ToolError(kExitUnavailable, "copying tables is not available with this table layer");
}

void TableBackend::RebuildTable(const TableRef&, bool) {
  throw ToolError(kExitUnavailable, "rebuilding tables is not available with this table layer");
}

void TableBackend::AlterTable(const TableRef&, const std::vector<FieldDefinition>&,
                              const std::vector<IndexDefinition>&, BatchObserver&, BatchResult&) {
  throw ToolError(kExitUnavailable, "changing a table's layout is not available with this table layer");
}

std::vector<TableRef> TableBackend::ListTables(const std::string&) {
  throw ToolError(kExitUnavailable, "listing tables is not available with this table layer");
}

std::unique_ptr<TableBackend> MakeTableBackend(const ConnectionOptions& options) {
  return MakeTableLayerBackend(options);
}

}  // namespace ctt
