// The tool's own failures and the translation of any failure into a message and an exit code.
#pragma once

#include <cstdint>
#include <exception>
#include <iosfwd>
#include <stdexcept>
#include <string>

#include "ExitCode.h"

namespace ctt {

/// A failure the tool itself detects, carrying the exit code it ends the process with. Raised
/// for bad command lines and definitions (kExitUsage), unreadable files (kExitFile), and
/// operations this build cannot perform (kExitUnavailable).
class ToolError : public std::runtime_error {
 public:
  ToolError(ExitCode code, const std::string& message) : std::runtime_error(message), Code(code) {}
  ExitCode Code;
};

/// Shorthand for ToolError(kExitUsage, message).
class UsageError : public ToolError {
 public:
  explicit UsageError(const std::string& message) : ToolError(kExitUsage, message) {}
};

/// "<message> (error <code>)" for a storage error number: the text is the package's message for
/// that number, or "storage error" when it has none. Example: "Key value already exists (error 2)".
std::string DescribeErrorNumber(std::int32_t code);

/// Flushes `out` and raises ToolError(kExitFile, "cannot write <what>") when anything written to
/// it was lost (a full disk, a closed pipe).
void CheckWritten(std::ostream& out, const std::string& what);

/// A failure as one line a person can read, and the exit code it maps to.
struct ErrorReport {
  std::string Message;
  ExitCode Code = kExitInternal;
};

/// Describes the exception `error` (call inside a catch block with std::current_exception()).
/// ECtreeException: its message without the trailing "Ctree Error #n" part, followed by
/// " (error n)" when it carries a number; number 12 (file not found) maps to kExitNotFound,
/// others to kExitStorage. ToolError: its message and code. A framework exception (bad value,
/// unknown field): its message, kExitUsage for a conversion error, else kExitStorage. CsvError
/// and stream failures: kExitFile. Anything else: its what() and kExitInternal.
ErrorReport DescribeException(std::exception_ptr error);

}  // namespace ctt
