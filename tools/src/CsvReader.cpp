// CsvReader: a buffered state machine over the input stream (tools layer).
#include "CsvReader.h"

#include <ios>

namespace ctt {

namespace {
constexpr std::size_t kBufferSize = 1 << 16;
constexpr int kEnd = -1;
}  // namespace

CsvReader::CsvReader(std::istream& input, char separator)
    : FInput(input), FSeparator(separator), FBuffer(kBufferSize) {}

bool CsvReader::Fill() {
  if (!FInput.good()) {
    if (FInput.bad()) throw std::ios_base::failure("read error on the CSV input");
    return false;
  }
  FInput.read(FBuffer.data(), static_cast<std::streamsize>(FBuffer.size()));
  if (FInput.bad()) throw std::ios_base::failure("read error on the CSV input");
  FPos = 0;
  FEnd = static_cast<std::size_t>(FInput.gcount());
  return FEnd > 0;
}

int CsvReader::Peek() {
  if (FPos == FEnd && !Fill()) return kEnd;
  return static_cast<unsigned char>(FBuffer[FPos]);
}

int CsvReader::Get() {
  int c = Peek();
  if (c != kEnd) {
    ++FPos;
    ++FBytesRead;
    if (c == '\n') ++FLine;
  }
  return c;
}

void CsvReader::SkipRestOfLine() {
  for (int c = Get(); c != kEnd && c != '\n'; c = Get()) {
  }
}

bool CsvReader::Next(std::vector<std::string>& fields) {
  fields.clear();
  if (!FStarted) {
    FStarted = true;
    // A byte-order mark is only skipped when all three bytes are there.
    if (Peek() == 0xEF && FEnd - FPos >= 3 && static_cast<unsigned char>(FBuffer[FPos + 1]) == 0xBB &&
        static_cast<unsigned char>(FBuffer[FPos + 2]) == 0xBF) {
      FPos += 3;
      FBytesRead += 3;
    }
  }
  // Empty lines (LF or CR LF alone) are not records.
  for (;;) {
    int c = Peek();
    if (c == kEnd) return false;
    if (c == '\n') {
      Get();
      continue;
    }
    if (c == '\r') {
      Get();
      if (Peek() == '\n') {
        Get();
        continue;
      }
      // A lone CR starts a plain field holding it; put nothing back, handle below.
      FRecordLine = FLine;
      fields.emplace_back("\r");
      break;
    }
    FRecordLine = FLine;
    fields.emplace_back();
    break;
  }

  const char sep = FSeparator;
  bool fieldStart = fields.back().empty();
  for (;;) {
    std::string& field = fields.back();
    if (fieldStart && Peek() == '"') {
      const std::int64_t quoteLine = FLine;
      Get();
      // Quoted field: runs to the next quote that is not doubled.
      for (;;) {
        int c = Get();
        if (c == kEnd) {
          throw CsvError("line " + std::to_string(quoteLine) + ": quoted field " +
                             std::to_string(fields.size()) +
                             " is not terminated (its closing quote is missing)",
                         FRecordLine, false);
        }
        if (c == '"') {
          if (Peek() == '"') {
            Get();
            field.push_back('"');
            continue;
          }
          break;
        }
        field.push_back(static_cast<char>(c));
      }
      int c = Peek();
      if (c == sep) {
        Get();
        fields.emplace_back();
        fieldStart = true;
        continue;
      }
      if (c == kEnd || c == '\n') {
        Get();
        return true;
      }
      if (c == '\r') {
        Get();
        if (Peek() == '\n') {
          Get();
          return true;
        }
      }
      std::int64_t line = FLine;
      SkipRestOfLine();
      throw CsvError("line " + std::to_string(line) + ": text after the closing quote of field " +
                         std::to_string(fields.size()),
                     FRecordLine, true);
    }
    // Plain field: runs to the separator or the line end.
    fieldStart = false;
    for (;;) {
      int c = Peek();
      if (c == kEnd) return true;
      if (c == '\n') {
        Get();
        return true;
      }
      if (c == '\r') {
        Get();
        if (Peek() == '\n') {
          Get();
          return true;
        }
        field.push_back('\r');
        continue;
      }
      if (c == sep) {
        Get();
        fields.emplace_back();
        fieldStart = true;
        break;
      }
      if (c == '"') {
        std::int64_t line = FLine;
        SkipRestOfLine();
        throw CsvError("line " + std::to_string(line) + ": quote inside unquoted field " +
                           std::to_string(fields.size()) + " (quote the whole field and double the quote)",
                       FRecordLine, true);
      }
      field.push_back(static_cast<char>(Get()));
    }
  }
}

}  // namespace ctt
