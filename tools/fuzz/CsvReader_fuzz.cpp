// Fuzz target of the CSV reader: any input reads as records or raises CsvError with the line of
// the bad record; a resumable error lets the reader go on, a final one comes last. The first
// byte picks the separator (',' ';' or tab), the rest is the input.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

#include "CsvReader.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  const char separators[] = {',', ';', '\t'};
  const std::string text(reinterpret_cast<const char*>(data) + 1, size - 1);
  const std::int64_t lines = std::count(text.begin(), text.end(), '\n') + 1;
  std::istringstream input(text);
  ctt::CsvReader reader(input, separators[data[0] % 3]);
  std::vector<std::string> fields;
  std::int64_t lastLine = 0;
  for (std::size_t records = 0;; ++records) {
    if (records > text.size() + 1) std::abort();  // more records than bytes: no progress
    try {
      if (!reader.Next(fields)) break;
      if (fields.empty()) std::abort();
    } catch (const ctt::CsvError& e) {
      if (e.Line < 1 || e.Line > lines || e.Line < lastLine) std::abort();
      if (!e.Resumable) {
        // A final error: nothing more is read.
        try {
          if (reader.Next(fields)) std::abort();
        } catch (const ctt::CsvError&) {
        }
        break;
      }
    }
    if (reader.RecordLine() < lastLine || reader.RecordLine() > lines) std::abort();
    lastLine = reader.RecordLine();
  }
  if (reader.BytesRead() > text.size()) std::abort();
  return 0;
}
