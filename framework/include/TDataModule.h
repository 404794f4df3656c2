// TDataModule: a form root for non-visual components such as connections and tables (framework
// layer).
#pragma once

#include "TComponent.h"

namespace fw {

/// A component that only owns components: the root of a form file holding a program's data
/// access components ("object Data: TDataModule ... end"). Registered for form reading.
class TDataModule : public TComponent {
 public:
  explicit TDataModule(TComponent* owner) : TComponent(owner) {}
  static const TClassInfo& StaticClass();
  const TClassInfo& ClassType() const override { return StaticClass(); }
};

}  // namespace fw
