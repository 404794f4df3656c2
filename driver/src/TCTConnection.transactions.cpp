// TCTConnection: transactions over the engine's TRANBEG, TRANEND and TRANABT (driver).
#include "CtError.h"
#include "TCTConnection.h"
#include "ctisam.h"

namespace Ctdb {

namespace {

// Raises `code` as the engine's error (ECtreeException with its message and number).
void Raise(int32_t code) { CTDbIntf::CtError(code); }

}  // namespace

void TCTConnection::StartTransaction() {
  if (!FActive) Raise(kCtNotActive);
  if (FInTransaction) Raise(CT_ETRAN);
  // No lock bits: records read inside the transaction are not locked; the record changes lock
  // what they write through their own lock sets, which the transaction keeps until it ends.
  if (CTDbIntf::TranBegin(FAlignment, TRNLOG) == 0) Raise(CTDbIntf::GetCtIsamErr(FAlignment));
  FInTransaction = true;
}

void TCTConnection::Commit() {
  if (!FActive) Raise(kCtNotActive);
  if (!FInTransaction) Raise(CT_ETRAN);
  // The engine ends the transaction whether or not its commit succeeds.
  FInTransaction = false;
  Raise(CTDbIntf::TranCommit(FAlignment, FREE));
}

void TCTConnection::Rollback() {
  if (!FActive) Raise(kCtNotActive);
  if (!FInTransaction) Raise(CT_ETRAN);
  FInTransaction = false;
  Raise(CTDbIntf::TranAbort(FAlignment));
}

}  // namespace Ctdb
