// The table seam: table references, and the backend this build offers (tools layer).
#include "TableBackend.h"

#include "ConnectionSetup.h"
#include "ToolError.h"

namespace ctt {

std::string TableRef::Display() const {
  std::string out = Directory;
  if (!out.empty() && out.back() != '/') out += '/';
  if (!SuperFile.empty()) out += SuperFile + "!";
  return out + Name;
}

std::unique_ptr<TableBackend> MakeTableBackend(const ConnectionOptions& options) {
  // The connection is configured (and a form file read) so that its errors show even so.
  ConnectionSetup setup(options);
  throw ToolError(kExitUnavailable,
                  "this build of ctt has no table layer yet: the command cannot run (exit code 7)");
}

}  // namespace ctt
