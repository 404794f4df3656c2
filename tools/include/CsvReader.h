// CsvReader: reads records of comma-separated values as RFC 4180 describes them (tools layer).
#pragma once

#include <cstdint>
#include <istream>
#include <stdexcept>
#include <string>
#include <vector>

namespace ctt {

/// Malformed CSV input. `Line` is the 1-based line on which the bad record starts; `Resumable`
/// tells whether the reader skipped to the next record (true) or cannot go on (false: an
/// unterminated quoted field swallowed the rest of the input).
class CsvError : public std::runtime_error {
 public:
  CsvError(const std::string& message, std::int64_t line, bool resumable)
      : std::runtime_error(message), Line(line), Resumable(resumable) {}
  std::int64_t Line;
  bool Resumable;
};

/// Reads one record at a time from a stream it does not own (the stream must outlive the
/// reader). Rules:
/// - a record ends at LF or CR LF outside quotes; the last record may lack its line end;
/// - a field is either plain (no quote characters at all) or quoted from its first to its last
///   character; inside quotes a doubled quote is one quote and separators, CR and LF are data;
/// - a completely empty line is skipped (it is not a record with one empty field);
/// - a UTF-8 byte-order mark at the very start is skipped.
/// Bytes are passed through unchanged (no transcoding).
class CsvReader {
 public:
  explicit CsvReader(std::istream& input, char separator = ',');

  /// Reads the next record into `fields` (cleared first). Returns false at the end of the input.
  /// Raises CsvError for a quote inside a plain field or text after a closing quote (resumable:
  /// the rest of that line is skipped, the next call reads the next record) and for a quoted
  /// field still open at the end of the input (not resumable). Raises std::ios_base::failure
  /// when the stream reports a read error.
  bool Next(std::vector<std::string>& fields);

  /// The line on which the record last returned (or rejected) started, 1-based.
  std::int64_t RecordLine() const { return FRecordLine; }
  /// Bytes consumed from the stream so far (for progress display).
  std::uint64_t BytesRead() const { return FBytesRead; }

 private:
  int Peek();
  int Get();
  bool Fill();
  void SkipRestOfLine();

  std::istream& FInput;
  char FSeparator;
  std::vector<char> FBuffer;
  std::size_t FPos = 0;
  std::size_t FEnd = 0;
  std::uint64_t FBytesRead = 0;
  std::int64_t FLine = 1;
  std::int64_t FRecordLine = 0;
  bool FStarted = false;
};

}  // namespace ctt
