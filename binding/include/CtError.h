// The binding layer's error routines: turning an error number into an ECtreeException.
#pragma once

#include <cstdint>
#include <initializer_list>

#include "ECtreeException.h"
#include "Variant.h"

namespace CTDbIntf {

/// Does nothing when `Code` is 0. Otherwise raises ECtreeException with ErrorCode = Code and the
/// message of number 30000 + Code (unformatted, "%s" left as is) followed by a line feed, a
/// carriage return (in that order, on purpose) and "Ctree Error #" with Code in decimal. When the
/// number has no message the text is only that appended part: "\n\rCtree Error #<Code>".
void CtError(std::int32_t Code);

/// Does nothing when `Code` is 0. Otherwise raises ECtreeException with ErrorCode = Code and the
/// message of number 30000 + Code formatted with `Args` by fw::Format. Nothing is appended (unlike
/// CtError). A number with no message gives an empty text. A message whose placeholders do not
/// fit `Args` raises fw::Format's own conversion error instead.
void CtErrorFmt(std::int32_t Code, std::initializer_list<fw::Variant> Args);

}  // namespace CTDbIntf
