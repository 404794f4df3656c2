// ECTreeTableEditorError: the exception of the design-time unit CTreeReg (design layer).
#pragma once

#include "Exception.h"

namespace CTreeReg {

/// Raised by the property editors for a design-time mistake they find themselves (a master
/// fields dialog on a table without master source); the quoted messages of the editors are the
/// framework's plain fw::Exception.
class ECTreeTableEditorError : public fw::Exception {
 public:
  using fw::Exception::Exception;
};

}  // namespace CTreeReg
