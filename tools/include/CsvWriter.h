// CsvWriter: writes records of comma-separated values as RFC 4180 describes them (tools layer).
#pragma once

#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace ctt {

/// Writes records to a stream it does not own (the stream must outlive the writer). A field is
/// quoted when it contains the separator, a quote, CR or LF, or starts or ends with a blank (so
/// that readers which trim see the value intact); quotes inside are doubled. Each record ends
/// with `lineEnd` (RFC 4180 prescribes CR LF, the default).
class CsvWriter {
 public:
  explicit CsvWriter(std::ostream& output, char separator = ',', std::string lineEnd = "\r\n");

  /// Writes one record. Stream errors surface through the stream's own state or exceptions.
  void WriteRow(const std::vector<std::string>& fields);

  /// Appends `field` to `out`, quoted when it needs to be (see the class comment).
  static void AppendField(std::string& out, std::string_view field, char separator);

 private:
  std::ostream& FOutput;
  char FSeparator;
  std::string FLineEnd;
  std::string FScratch;
};

}  // namespace ctt
