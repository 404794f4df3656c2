// Exception classes of the framework layer: the base class and the families the framework raises.
#pragma once

#include <exception>
#include <string>

namespace fw {

/// Base of every exception the framework and the package raise. Carries a message a person
/// can read; `what()` returns the same text.
class Exception : public std::exception {
 public:
  explicit Exception(std::string message) : FMessage(std::move(message)) {}

  const std::string& Message() const noexcept { return FMessage; }
  void SetMessage(std::string message) { FMessage = std::move(message); }
  const char* what() const noexcept override { return FMessage.c_str(); }

 private:
  std::string FMessage;
};

/// Silent abort: raised by `Abort()` to leave an operation without an error message.
class EAbort : public Exception {
 public:
  using Exception::Exception;
};

/// Text, number and date conversions that cannot succeed.
class EConvertError : public Exception {
 public:
  using Exception::Exception;
};

/// Variant conversions that cannot succeed (Null to a number, text that is not a number, ...).
class EVariantError : public Exception {
 public:
  using Exception::Exception;
};

/// Component names and ownership (invalid or duplicate name, unknown class or property).
class EComponentError : public Exception {
 public:
  using Exception::Exception;
};

/// Stream errors; EReadError and EWriteError for short reads and writes.
class EStreamError : public Exception {
 public:
  using Exception::Exception;
};
class EReadError : public EStreamError {
 public:
  using EStreamError::EStreamError;
};
class EWriteError : public EStreamError {
 public:
  using EStreamError::EStreamError;
};

/// A file stream could not create or open its file (the message names the file and the reason).
class EFCreateError : public EStreamError {
 public:
  using EStreamError::EStreamError;
};
class EFOpenError : public EStreamError {
 public:
  using EStreamError::EStreamError;
};

/// A malformed form file: the message names the line and what is wrong.
class EParserError : public Exception {
 public:
  using Exception::Exception;
};

/// A file-system operation failed (changing directory, opening a file); `ErrorCode` is the
/// system's error number.
class EInOutError : public Exception {
 public:
  EInOutError(std::string message, int errorCode)
      : Exception(std::move(message)), FErrorCode(errorCode) {}
  int ErrorCode() const noexcept { return FErrorCode; }

 private:
  int FErrorCode;
};

/// A class name that no registered class has (form reading, `FindClass`).
class EClassNotFound : public EComponentError {
 public:
  using EComponentError::EComponentError;
};

/// Integer overflow in a conversion (a value that does not fit its target).
class EIntOverflow : public Exception {
 public:
  using Exception::Exception;
};

/// List index out of bounds and similar container misuse.
class EListError : public Exception {
 public:
  using Exception::Exception;
};

/// Every data-layer error (datasets, fields, data links) unless stated otherwise.
class EDatabaseError : public Exception {
 public:
  using Exception::Exception;
};

/// Raises EAbort with an empty message.
[[noreturn]] void Abort();

}  // namespace fw
