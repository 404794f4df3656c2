// The table seam: table references, and the backend this build offers (tools layer).
#include "TableBackend.h"

#include "TableLayerBackend.h"

namespace ctt {

std::string TableRef::Display() const {
  std::string out = Directory;
  if (!out.empty() && out.back() != '/') out += '/';
  if (!SuperFile.empty()) out += SuperFile + "!";
  return out + Name;
}

std::unique_ptr<TableBackend> MakeTableBackend(const ConnectionOptions& options) {
  return MakeTableLayerBackend(options);
}

}  // namespace ctt
