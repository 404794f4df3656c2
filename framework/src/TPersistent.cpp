// TPersistent: class identity and Assign.
#include "TPersistent.h"

#include "Exception.h"
#include "TClassInfo.h"

namespace fw {

const TClassInfo& TPersistent::StaticClass() {
  static const TClassInfo info("TPersistent", nullptr);
  return info;
}

const TClassInfo& TPersistent::ClassType() const { return StaticClass(); }

const std::string& TPersistent::ClassName() const { return ClassType().ClassName(); }

bool TPersistent::InheritsFrom(const TClassInfo& cls) const { return ClassType().InheritsFrom(cls); }

void TPersistent::Assign(const TPersistent& source) { source.AssignTo(*this); }

std::string TPersistent::GetNamePath() const { return ClassName(); }

void TPersistent::AssignTo(TPersistent& dest) const {
  throw EConvertError("Cannot assign a " + ClassName() + " to a " + dest.ClassName());
}

}  // namespace fw
