// TDataModule: its class table, registered for form reading.
#include "TDataModule.h"

#include "TClassInfo.h"

namespace fw {

namespace {
[[maybe_unused]] const bool kRegistered = (RegisterClass(TDataModule::StaticClass()), true);
}  // namespace

const TClassInfo& TDataModule::StaticClass() {
  static const TClassInfo info =
      TClassBuilder<TDataModule>("TDataModule", &TComponent::StaticClass()).Creatable().Build();
  return info;
}

}  // namespace fw
