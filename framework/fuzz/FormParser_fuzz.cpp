// Fuzz target of the form-file parser: any text parses or raises EParserError whose message
// names a line of the text ("Line N: ...", 1 <= N <= lines + 1).
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "Exception.h"
#include "FormParser.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  try {
    fw::ParseForm(text);
  } catch (const fw::EParserError& e) {
    const std::string message = e.Message();
    if (message.rfind("Line ", 0) != 0) std::abort();
    const long line = std::strtol(message.c_str() + 5, nullptr, 10);
    const long lines = static_cast<long>(std::count(text.begin(), text.end(), '\n')) + 1;
    if (line < 1 || line > lines) std::abort();
  }
  return 0;
}
