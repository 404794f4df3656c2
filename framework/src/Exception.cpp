// Exception classes of the framework layer.
#include "Exception.h"

namespace fw {

void Abort() { throw EAbort(""); }

}  // namespace fw
