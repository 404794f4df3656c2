// TCTTable: rebuilding the table's files in place and restructuring it into a new layout (dataset).
#include "CtError.h"
#include "CtSession.h"
#include "DataSetTypes.h"
#include "IfilDefinition.h"
#include "StringUtils.h"
#include "TCTBatchCopy.h"
#include "TCTConnection.h"
#include "TCTTable.h"

namespace CTTables {

void TCTTable::RebuildLow() { RebuildFiles(false); }

void TCTTable::CompactLow() { RebuildFiles(true); }

void TCTTable::RebuildFiles(bool Compact) {
  const bool wasActive = Active();
  Open();
  // The IFIL record itself is copied: the cursor that owns the one read from the file closes.
  Ctdb::IfilDefinition ifil = FCursor->Ifil;
  const std::string fileName = FCursor->TableName;
  Close();
  // Rebuilt under the data file's own extension, whatever it is (none, by default).
  const std::string extension = fw::ExtractFileExt(fw::ExtractFileName(fileName));
  ifil.pfilnam = fileName.substr(0, fileName.size() - extension.size());
  CTDbIntf::CtError(Compact ? Conn().CompactTable(ifil, extension) : Conn().RebuildTable(ifil, extension));
  if (wasActive) Open();
}

void TCTTable::DoRebuildError(fw::TComponent* /*Sender*/, fw::TField* SrcField, fw::TField* TrgField,
                              const std::exception& E, bool& Continue) {
  if (FOnRebuildError) FOnRebuildError(this, SrcField, TrgField, E, Continue);
}

void TCTTable::Rebuild(const fw::TFieldDefs& NewFieldDefs, const TCTIndexDefs& NewIndexDefs) {
  // Copied first: the definitions may be this table's own, which reopening it below refills.
  fw::TFieldDefs fields(nullptr);
  fields.Assign(NewFieldDefs);
  TCTIndexDefs indexes(nullptr);
  indexes.Assign(NewIndexDefs);
  const bool wasActive = Active();
  const bool wasExclusive = FExclusive;
  DisableControls();
  std::unique_ptr<TCTTable> rebuilt;
  bool created = false;  // the new files exist and are Rebuild's to remove on failure
  // Gives the table back its sharing and its open or closed state.
  const auto restore = [&] {
    rebuilt.reset();
    FExclusive = wasExclusive;
    Close();
    if (wasActive) Open();
  };
  try {
    // Held exclusively from the first record read to the exchange of the files: a change another
    // program made meanwhile would go with the old files.
    Close();
    FExclusive = true;
    Open();
    rebuilt = std::make_unique<TCTTable>(nullptr);
    rebuilt->SetConnection(Connection());
    rebuilt->FIsSuperFile = FIsSuperFile;
    rebuilt->FDatabase = FDatabase;
    const std::string temporary = Conn().GetTempFileName(FCursor.get());
    if (temporary.empty()) CTDbIntf::CtError(CTDbIntf::GetCtIsamErr(Conn().Alignment()));
    // A member named "host!member" gets its new files in the same host.
    const size_t bang = FTableName.find('!');
    rebuilt->FTableName = bang == std::string::npos ? temporary : FTableName.substr(0, bang + 1) + temporary;
    rebuilt->FieldDefs()->Assign(fields);
    rebuilt->IndexDefs()->Assign(indexes);
    rebuilt->FExclusive = true;
    rebuilt->CreateTable();
    created = true;

    TCTBatchCopy copy(nullptr);
    copy.SetSource(this);
    copy.SetDestination(rebuilt.get());
    copy.SetCopyMode(cmAppend);
    if (FOnRebuildError)
      copy.SetOnCopyError([this](fw::TComponent* sender, fw::TField* from, fw::TField* to, const std::exception& e,
                                 bool& proceed) { DoRebuildError(sender, from, to, e, proceed); });
    if (FOnRebuildProgress)
      copy.SetOnProgress([this](fw::TComponent*, TCTProgressStage stage, int32_t recNo, const std::string& msg) {
        FOnRebuildProgress(this, stage, recNo, msg);
      });
    copy.Execute();
    // From here on the exchange looks after the files itself.
    created = false;
    ExchangeFiles(*rebuilt);
  } catch (...) {
    // The table's own files were not touched: only the new ones go. The error that stopped the
    // rebuild is the one raised, also when they cannot be removed.
    if (created) static_cast<void>(rebuilt->DeleteTableFiles());
    try {
      restore();
    } catch (...) {
    }
    EnableControls();
    throw;
  }
  try {
    restore();
  } catch (...) {
    EnableControls();
    throw;
  }
  EnableControls();
}

// The new files take the table's name without a moment in which the records exist nowhere
// complete: the old files move aside under a temporary name first, then the new ones move in,
// and only then are the old ones deleted. When the new files cannot move in, the old ones move
// back and the table is as it was.
void TCTTable::ExchangeFiles(TCTTable& Rebuilt) {
  Ctdb::TCTConnection& conn = Conn();
  const std::string original = FCursor->TableName;
  const std::string temporary = conn.GetTempFileName(FCursor.get());
  if (temporary.empty()) CTDbIntf::CtError(CTDbIntf::GetCtIsamErr(conn.Alignment()));
  // A superfile member moves aside inside its host: members are renamed only within one.
  const std::string fileName = fw::ExtractFileName(original);
  const size_t bang = fileName.find('!');
  const std::string aside = bang == std::string::npos ? temporary : fileName.substr(0, bang + 1) + temporary;
  if (const int32_t refused = conn.RenameTable(FCursor.get(), aside)) {
    Close();
    static_cast<void>(Rebuilt.DeleteTableFiles());
    CTDbIntf::CtError(refused);
  }
  const std::string asideName = FCursor->TableName;
  Close();

  int32_t moved = 0;
  try {
    Rebuilt.Open();
    moved = conn.RenameTable(Rebuilt.FCursor.get(), original);
    Rebuilt.Close();
  } catch (const CTDbIntf::ECtreeException& e) {
    moved = e.ErrorCode != 0 ? e.ErrorCode : Ctdb::kCtInvalidCursor;
  }
  if (moved != 0) {
    std::unique_ptr<Ctdb::TCTCursorDesc> old;
    int32_t back = conn.OpenCursor(old, asideName, std::string(), 0);
    if (back == 0) back = conn.RenameTable(old.get(), original);
    if (old != nullptr) static_cast<void>(conn.CloseCursor(old));
    if (back != 0)
      fw::DatabaseError("Rebuild could not put the table's files back: its records are in " + asideName +
                            ", the rebuilt ones in " + Rebuilt.StorageFileName(),
                        this);
    static_cast<void>(Rebuilt.DeleteTableFiles());
    CTDbIntf::CtError(moved);
  }
  CTDbIntf::CtError(conn.DeleteTable(std::string(), asideName));
}

int32_t TCTTable::DeleteTableFiles() noexcept {
  try {
    Close();
    if (Connection() == nullptr) return Ctdb::kCtInvalidCursor;
    std::string directory, name;
    StorageNames(directory, name);
    return Connection()->DeleteTable(directory, name);
  } catch (...) {
    return Ctdb::kCtInvalidCursor;
  }
}

}  // namespace CTTables
