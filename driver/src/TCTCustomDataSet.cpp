// TCTCustomDataSet: the dataset base class of the package's tables (driver, unit Ctdb).
#include "TCTCustomDataSet.h"

#include "TCTConnection.h"
#include "TClassInfo.h"

namespace Ctdb {

TCTCustomDataSet::TCTCustomDataSet(fw::TComponent* AOwner) : fw::TDataSet(AOwner) {}

const fw::TClassInfo& TCTCustomDataSet::StaticClass() {
  static const fw::TClassInfo info =
      fw::TClassBuilder<TCTCustomDataSet>("TCTCustomDataSet", &fw::TDataSet::StaticClass())
          .Reference("Connection", &TCTCustomDataSet::Connection, &TCTCustomDataSet::SetConnection)
          .Build();
  return info;
}

void TCTCustomDataSet::SetConnection(TCTConnection* Value) {
  if (Value == nullptr) {
    Close();
    return;
  }
  if (Value == FConnection) return;
  Close();
  if (FConnection != nullptr) FConnection->RemoveFreeNotification(this);
  FConnection = Value;
  FConnection->FreeNotification(this);
}

void TCTCustomDataSet::Notification(fw::TComponent* AComponent, fw::TOperation Operation) {
  fw::TDataSet::Notification(AComponent, Operation);
  if (Operation == fw::opRemove && AComponent != nullptr && AComponent == FConnection) {
    Close();
    FConnection = nullptr;
  }
}

void TCTCustomDataSet::InternalOpen() {
  if (FConnection != nullptr) FConnection->AddDataSet(this);
}

void TCTCustomDataSet::InternalClose() {
  if (FConnection != nullptr) FConnection->RemoveDataSet(this);
}

}  // namespace Ctdb
