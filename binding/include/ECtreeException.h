// The binding layer's exception: a storage or package error with its error number.
#pragma once

#include <cstdint>
#include <string>

#include "Exception.h"

namespace CTDbIntf {

/// Raised by CtError/CtErrorFmt for a non-zero error number, and by the library loader when a
/// variant cannot be loaded or bound.
class ECtreeException : public fw::Exception {
 public:
  /// `message` is the complete text; `errorCode` the number raised (0 for loader failures).
  explicit ECtreeException(std::string message, std::int32_t errorCode = 0)
      : fw::Exception(std::move(message)), ErrorCode(errorCode) {}

  /// The error number raised: a storage error number (2 to 998), one of the package's own
  /// (1101 to 1137), or 0 when the library loader raised the exception.
  std::int32_t ErrorCode = 0;
};

}  // namespace CTDbIntf
