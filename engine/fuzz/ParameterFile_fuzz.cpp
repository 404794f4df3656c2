// Fuzz target of the parameter-file parser: any text parses or fails with CT_EBADPARM and the
// number of a line of the text; a parsed file gives tables with a name and indexes with segments.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "Fail.h"
#include "ParameterFile.h"
#include "ctisam.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  const int lines = static_cast<int>(std::count(text.begin(), text.end(), '\n')) + 1;
  try {
    const cte::Parameters parameters = cte::ParseParameters(text);
    for (const auto& table : parameters.tables)
      if (table.name.empty()) std::abort();
  } catch (const cte::Fail& e) {
    if (e.code != CT_EBADPARM || e.sysio < 1 || e.sysio > lines) std::abort();
  }
  return 0;
}
