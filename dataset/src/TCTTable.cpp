// TCTTable: life cycle, properties and field definitions of the table dataset (dataset, unit CTTables).
#include "TCTTable.h"

#include <filesystem>
#include <utility>

#include "CtError.h"
#include "FilterProgram.h"
#include "StringUtils.h"
#include "TClassInfo.h"
#include "TCTBatchCopy.h"
#include "TCTConnection.h"
#include "TCTMasterDataLink.h"
#include "TDataSource.h"

namespace CTTables {

namespace {

// The batch copy is registered with the table, so that every program that can read a table from
// a form can read a batch copy too.
[[maybe_unused]] const bool kRegistered =
    (fw::RegisterClasses({&TCTTable::StaticClass(), &TCTBatchCopy::StaticClass()}), true);

// Open mode bits of the connection's OpenCursor.
constexpr int32_t kOpenShared = 1;
constexpr int32_t kOpenReadOnly = 8;
constexpr int32_t kAlignmentMismatch = 1136;
constexpr int32_t kNoConnection = 1118;
constexpr int32_t kNoTableName = 1120;

}  // namespace

TCTTable::TCTTable(fw::TComponent* AOwner)
    : Ctdb::TCTCustomDataSet(AOwner),
      FKeyFieldNames(std::make_unique<fw::TStringList>()),
      FIndexDefs(std::make_unique<TCTIndexDefs>(this)) {
  FIndexDesc.IndexId = -1;
  FMasterFieldList = std::make_unique<fw::TStringList>();
  FMasterLink = std::make_unique<TCTMasterDataLink>(this);
  FMasterLink->OnMasterChange = [this](TCTMasterDataLink* sender) { MasterLinkChange(sender); };
  FMasterLink->OnMasterDisable = [this](TCTMasterDataLink* sender) { MasterLinkDisable(sender); };
}

TCTTable::~TCTTable() {
  try {
    Close();
  } catch (...) {
    // A destructor never throws; the storage is released by the cursor's owner either way.
  }
  FMasterLink.reset();
}

const fw::TClassInfo& TCTTable::StaticClass() {
  static const fw::TClassInfo info =
      fw::TClassBuilder<TCTTable>("TCTTable", &Ctdb::TCTCustomDataSet::StaticClass())
          .Creatable()
          .Property("Database", &TCTTable::Database, &TCTTable::SetDatabase, "")
          .Property("IndexName", &TCTTable::IndexName, &TCTTable::SetIndexName, "")
          .Reference("MasterSource", &TCTTable::MasterSource, &TCTTable::SetMasterSource)
          .Property("MasterFields", &TCTTable::MasterFields, &TCTTable::SetMasterFields, "")
          .Property("TableName", &TCTTable::TableName, &TCTTable::SetTableName, "")
          .Property("ReadOnly", &TCTTable::ReadOnly, &TCTTable::SetReadOnly, false)
          .Property("KeyExclusive", &TCTTable::KeyExclusive, &TCTTable::SetKeyExclusive, false)
          .Property("Exclusive", &TCTTable::Exclusive, &TCTTable::SetExclusive, false)
          .Property("IsSuperFile", &TCTTable::IsSuperFile, &TCTTable::SetIsSuperFile, false)
          .Build();
  return info;
}

Ctdb::TCTConnection& TCTTable::Conn() const {
  if (Connection() == nullptr) CTDbIntf::CtError(kNoConnection);
  return *Connection();
}


void TCTTable::SetTableName(const std::string& Value) {
  CheckInactive();
  if (Value != FTableName) {
    FTableName = Value;
    FIndexDefs->SetUpdated(false);
    FieldDefs()->SetUpdated(false);
  }
}

void TCTTable::SetDatabase(const std::string& Value) {
  if (ComponentState().Contains(fw::csLoading)) {
    // Applied in Loaded, after TableName: a text naming a file must win over the name read.
    FPendingDatabase = Value;
    FHasPendingDatabase = true;
    return;
  }
  FHasPendingDatabase = false;
  FPendingDatabase.clear();
  ApplyDatabase(Value);
}

void TCTTable::ApplyDatabase(const std::string& Value) {
  CheckInactive();
  std::string directory = Value;
  std::string tableName;
  // A directory given without its trailing "/" stays a directory: only a text that names no
  // directory is split into the directory and the table's file name.
  if (!FIsSuperFile && !Value.empty() && Value.back() != fw::PathDelim && !fw::DirectoryExists(Value)) {
    directory = fw::ExtractFilePath(Value);
    tableName = fw::ExtractFileName(Value);
  }
  if (!tableName.empty()) SetTableName(tableName);
  if (directory != FDatabase) {
    FDatabase = directory;
    FIndexDefs->SetUpdated(false);
    FieldDefs()->SetUpdated(false);
  }
}

void TCTTable::SetReadOnly(bool Value) {
  CheckInactive();
  FReadOnly = Value;
}

void TCTTable::SetExclusive(bool Value) {
  CheckInactive();
  FExclusive = Value;
}

void TCTTable::SetIsSuperFile(bool Value) {
  CheckInactive();
  FIsSuperFile = Value;
}

void TCTTable::Loaded() {
  // The database first: the base opens a table streamed as active.
  if (FHasPendingDatabase) {
    FHasPendingDatabase = false;
    ApplyDatabase(std::exchange(FPendingDatabase, std::string()));
  }
  Ctdb::TCTCustomDataSet::Loaded();
  // Passed as a copy: SetMasterFields empties the pending text.
  if (!FPendingMasterFields.empty()) SetMasterFields(std::string(FPendingMasterFields));
  if (Connection() != nullptr && FOnIndexRecord) SetOnIndexRecord(FOnIndexRecord);
}

bool TCTTable::GetCanModify() const { return !FReadOnly; }

void TCTTable::InternalOpen() {
  if (FCursor != nullptr) return;
  const bool loading = ComponentState().Contains(fw::csLoading);
  if (Connection() == nullptr) {
    if (loading) fw::Abort();
    CTDbIntf::CtError(kNoConnection);
  }
  if (FTableName.empty()) {
    if (loading) fw::Abort();
    CTDbIntf::CtError(kNoTableName);
  }
  FOpenFlag = Ctdb::ofOpening;
  FIndexDefs->Clear();
  FIndexDefs->SetUpdated(false);
  Ctdb::TCTConnection& conn = *Connection();
  conn.SetActive(true);

  std::string directory, name;
  StorageNames(directory, name);
  const int32_t opened = conn.OpenCursor(FCursor, name, directory, OpenFlags());
  if (opened == kAlignmentMismatch) CTDbIntf::CtErrorFmt(kAlignmentMismatch, {fw::Variant(FTableName)});
  CTDbIntf::CtError(opened);

  CTDbIntf::CtError(conn.InitIndexes(FCursor.get()));
  if (!FIndexFieldNames.empty()) {
    FIndexDefs->Update();
    FIndexDesc.Name = FIndexDefs->FindIndexForFields(FIndexFieldNames)->Name();
  }
  if (!FIndexDesc.Name.empty() && FCursor->FindIndex(FIndexDesc.Name, -1) < 0) {
    // A name the table does not have opens it without switching index, in the order the cursor
    // has; the name reads back empty, as after setting an unknown name on an open table.
    FIndexDesc = FCursor->GetIndexDesc(FIndexDesc.Name);
  } else if (FCursor->GetIndexCount() > 0) {
    // An index number of -1 makes the driver look the index up by name; "" is the primary one.
    FIndexDesc.IndexId = -1;
    CTDbIntf::CtError(conn.SwitchToIndex(FCursor.get(), &FIndexDesc, false));
  }
  FBookmarkSize = 4;

  FRecordCountValid = false;
  FRecordCountCache = -1;
  InternalInitFieldDefs();
  if (DefaultFields()) CreateFields();
  BindFields(true);

  FCursor->RangeActive = false;
  SetUpMasterRange();
  SetCursorRange();

  CTDbIntf::CtError(conn.SetToBegin(FCursor.get()));
  FRecNoCache = -1;
  FOpenFlag = Ctdb::ofOpen;
  Ctdb::TCTCustomDataSet::InternalOpen();
}

void TCTTable::InternalClose() {
  Ctdb::TCTCustomDataSet::InternalClose();
  FOpenFlag = Ctdb::ofClosing;
  UnlockEditedRecord();
  // Closing the files ends their record locks: the handles no longer hold anything.
  FreeLocks();
  if (FCursor != nullptr && Connection() != nullptr) {
    // Closing never throws; a cursor the driver could not close is dropped with the session.
    static_cast<void>(Connection()->CloseCursor(FCursor));
  }
  FCursor.reset();
  FOpenFlag = Ctdb::ofClosed;
  BindFields(false);
  if (DefaultFields()) DestroyFields();
  FRangeStart.reset();
  FRangeEnd.reset();
  FKeyBuffer.reset();
  FIndexRecord.reset();
  FFilterBuffer = nullptr;
  FFilterProgram.reset();
  FFilterFields.clear();
  FOldRecord.reset();
  FRangeFlag = rfNone;
  FBookmarks.clear();
  FMovedBookmarks.clear();
}

int32_t TCTTable::OpenFlags() const { return (FExclusive ? 0 : kOpenShared) | (FReadOnly ? kOpenReadOnly : 0); }

void TCTTable::OpenTemporaryCursor(std::unique_ptr<Ctdb::TCTCursorDesc>& Cursor) {
  if (FTableName.empty()) CTDbIntf::CtError(kNoTableName);
  Conn().SetActive(true);
  std::string directory, name;
  StorageNames(directory, name);
  CTDbIntf::CtError(Conn().OpenCursor(Cursor, name, directory, OpenFlags()));
}

void TCTTable::StorageNames(std::string& Directory, std::string& Name) const {
  Directory = FDatabase;
  Name = FTableName;
  const bool namesFile = !FDatabase.empty() && FDatabase.back() != fw::PathDelim && !fw::DirectoryExists(FDatabase);
  if (FIsSuperFile && namesFile && FTableName.find('!') == std::string::npos) {
    Directory = fw::ExtractFilePath(FDatabase);
    Name = fw::ExtractFileName(FDatabase) + "!" + FTableName;
  }
}

std::string TCTTable::StorageFileName() const {
  if (Connection() == nullptr || FTableName.empty()) return std::string();
  std::string directory, name;
  StorageNames(directory, name);
  // BuildFullPath may end the name with a NUL where a dot was: the C string is the name.
  const std::string full = Connection()->BuildFullPath(directory, name).c_str();
  // Resolved through links, so that two spellings of one file compare equal.
  std::error_code failed;
  std::filesystem::path resolved = std::filesystem::weakly_canonical(full, failed);
  if (failed) resolved = std::filesystem::absolute(full, failed).lexically_normal();
  return resolved.string();
}

void TCTTable::InternalInitFieldDefs() {
  // Field definitions may be asked for while the table is closed (FieldDefs.Update): read them
  // through a cursor opened only for that.
  if (FCursor != nullptr) {
    LoadFieldDefs(FCursor.get());
    return;
  }
  std::unique_ptr<Ctdb::TCTCursorDesc> temporary;
  OpenTemporaryCursor(temporary);
  try {
    LoadFieldDefs(temporary.get());
  } catch (...) {
    static_cast<void>(Conn().CloseCursor(temporary));
    throw;
  }
  static_cast<void>(Conn().CloseCursor(temporary));
}

void TCTTable::LoadFieldDefs(Ctdb::TCTCursorDesc* Cursor) {
  Ctdb::TFieldDescList descs;
  CTDbIntf::CtError(Conn().GetFieldDescs(Cursor, &descs));
  fw::TFieldDefs* defs = FieldDefs();
  defs->Clear();
  for (const Ctdb::CTFldDesc& desc : descs) {
    const fw::TFieldType type = Ctdb::TCTConnection::BDEToFieldType(desc.FieldType, desc.SubType);
    int size = 0;
    switch (type) {
      case fw::ftString:
      case fw::ftFixedChar:
      case fw::ftBytes:
      case fw::ftVarBytes:
        size = desc.Units1;
        break;
      case fw::ftBCD:
        size = 4;
        break;
      default:
        break;
    }
    defs->Add(desc.Name, type, size, false);
  }
  defs->SetUpdated(true);
}

}  // namespace CTTables
