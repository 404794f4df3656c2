// EParserError, ECutParenError, EConvertStringError: the exceptions of the filter parser (dataset, unit UnitFilterParser).
#pragma once

#include "Exception.h"

namespace UnitFilterParser {

/// A filter text the parser cannot evaluate. Raised as such when the numbers of "(" and ")"
/// differ ("Paren count off ", CR LF, "Found <n> (", CR LF, "Found <m> )") and when a group holds
/// no operand at all (for instance "()" or a text of blanks). Carries only the message.
class EParserError : public fw::Exception {
 public:
  using fw::Exception::Exception;
};

/// Never raised by the parser; declared for callers that want to catch it.
class ECutParenError : public EParserError {
 public:
  using EParserError::EParserError;
};

/// A comparison met an operator it does not know: "Unknown operator " followed by the operator
/// text (empty when a comparison has an operand but no operator).
class EConvertStringError : public EParserError {
 public:
  using EParserError::EParserError;
};

}  // namespace UnitFilterParser
