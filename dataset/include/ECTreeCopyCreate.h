// ECTreeCopyCreate: an exception class offered to users of the batch copy (dataset, unit CTTables).
#pragma once

#include <string>

#include "Exception.h"

namespace CTTables {

/// For applications that report a failed creation of a copy's destination in their own way.
/// The package declares it and never raises it.
class ECTreeCopyCreate : public fw::Exception {
 public:
  explicit ECTreeCopyCreate(std::string Message) : fw::Exception(std::move(Message)) {}
};

}  // namespace CTTables
