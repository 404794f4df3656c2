// The table seam filled by the package's components (tools layer, private).
#pragma once

#include <memory>

#include "TableBackend.h"

namespace ctt {

/// A backend over TCTConnection (configured by ConnectionSetup) and TCTTable. Reading (info,
/// list, export) works; what the table layer does not offer yet raises
/// ToolError(kExitUnavailable) naming it.
std::unique_ptr<TableBackend> MakeTableLayerBackend(const ConnectionOptions& options);

}  // namespace ctt
