// The table seam filled by the package's components: TCTConnection and TCTTable (tools layer).
#include "TableLayerBackend.h"

#include <algorithm>
#include <filesystem>

#include "CTTables.h"
#include "CtRecords.h"
#include "ConnectionSetup.h"
#include "FieldText.h"
#include "CtError.h"
#include "CtFiles.h"
#include "CtSession.h"
#include "ECtreeException.h"
#include "StringUtils.h"
#include "TField.h"
#include "TFieldDefs.h"
#include "TFields.h"
#include "ToolError.h"
#include "UnitFilterParser.h"
#include "ctisam.h"

namespace ctt {

namespace {

constexpr std::int32_t kFileNotFound = 12;

std::vector<fw::Variant> Values(const KeyValues& key) { return {key.begin(), key.end()}; }

// Fills the framework's definitions from the tool's. Flag4 set: the engine maintains the keys.
void Define(fw::TFieldDefs& fieldDefs, CTTables::TCTIndexDefs& indexDefs, const std::vector<FieldDefinition>& fields,
            const std::vector<IndexDefinition>& indexes) {
  for (const FieldDefinition& field : fields) {
    fw::TFieldDef* def = fieldDefs.Add(field.Name, field.DataType, field.Size);
    if (field.Precision > 0) def->SetPrecision(field.Precision);
  }
  for (const IndexDefinition& index : indexes)
    indexDefs.Add(index.Name, index.FieldsText(), "", true, false, index.Options());
}

static_assert(static_cast<int>(CopyMode::Copy) == CTTables::cmCopy &&
                  static_cast<int>(CopyMode::AppendUpdate) == CTTables::cmAppendUpdate &&
                  static_cast<int>(CopyMode::Delete) == CTTables::cmDelete,
              "CopyMode follows the batch copy's modes");

// Keeps a BatchResult and a BatchObserver informed from the table layer's progress and error
// events. A field that fails fails its record: the record is offered to the observer whole.
class BatchEvents {
 public:
  BatchEvents(const fw::TDataSet& source, BatchObserver& observer, BatchResult& result, std::uint64_t total)
      : FSource(source), FObserver(observer), FResult(result), FTotal(total) {}

  void Progress(CTTables::TCTProgressStage stage, int32_t recNo) {
    if (stage != CTTables::psRunning) return;
    FResult.Read = static_cast<std::uint64_t>(recNo);
    FObserver.Progress(FResult.Read, FTotal);
  }

  // Called inside the batch's handler of the failure, so the exception is the current one.
  void Error(const fw::TField* field, bool& proceed) {
    if (field != nullptr) return;
    const fw::TField* first = FSource.FieldCount() > 0 ? FSource.Fields()->Fields(0) : nullptr;
    const std::string record = first != nullptr ? first->FieldName() + " " + first->AsString() : std::string();
    proceed = !FObserver.Rejected(FResult.Read + 1, record, DescribeException(std::current_exception()).Message);
    if (!proceed) ++FResult.Rejected;
  }

 private:
  const fw::TDataSet& FSource;
  BatchObserver& FObserver;
  BatchResult& FResult;
  std::uint64_t FTotal;
};

class TableLayerCursor : public TableCursor {
 public:
  explicit TableLayerCursor(std::unique_ptr<CTTables::TCTTable> table) : FTable(std::move(table)) {}

  TableInfo Info() override {
    TableInfo info;
    const fw::TFieldDefs& defs = *FTable->FieldDefs();
    for (int i = 0; i < defs.Count(); ++i) {
      const fw::TFieldDef& d = *defs.Items(i);
      info.Fields.push_back({d.Name(), d.DataType(), d.Size(), d.Precision() > 0 ? d.Precision() : 0});
    }
    FTable->UpdateIndexDefs();
    const CTTables::TCTIndexDefs& indexes = *FTable->IndexDefs();
    for (int i = 0; i < indexes.Count(); ++i) {
      const fw::TIndexDef& d = *indexes.Items(i);
      IndexDefinition entry;
      entry.Name = d.Name();
      std::size_t start = 0;
      const std::string& fields = d.Fields();
      while (start <= fields.size() && !fields.empty()) {
        const std::size_t end = fields.find(';', start);
        entry.Fields.push_back(fields.substr(start, end == std::string::npos ? std::string::npos : end - start));
        if (end == std::string::npos) break;
        start = end + 1;
      }
      entry.Primary = d.Options().Contains(fw::ixPrimary);
      entry.Unique = entry.Primary || d.Options().Contains(fw::ixUnique);
      entry.Descending = d.Options().Contains(fw::ixDescending);
      entry.CaseInsensitive = d.Options().Contains(fw::ixCaseInsensitive);
      info.Indexes.push_back(std::move(entry));
    }
    // The data file's own count: an index that leaves blank keys out counts fewer records.
    const Ctdb::TCTCursorDesc* cursor = FTable->Cursor();
    const CTDbIntf::TLoadAlignment alignment = Connection().Alignment();
    info.RecordCount =
        cursor != nullptr ? CTDbIntf::NbrOfRecords(alignment, cursor->DataFileNo) : FTable->RecordCount();
    for (const IndexDefinition& index : info.Indexes) {
      const int ordinal = cursor != nullptr ? cursor->FindIndex(index.Name, -1) : -1;
      if (ordinal < 0) {
        info.IndexKeys.clear();
        break;
      }
      const int16_t keyNo = cursor->Indexes[static_cast<size_t>(ordinal)].IndexId;
      info.IndexKeys.push_back(CTDbIntf::NbrOfKeyEntries(alignment, keyNo));
    }
    if (cursor != nullptr) {
      info.Files.push_back(std::filesystem::path(cursor->TableName).lexically_normal().string());
      // Each index file once, as the engine opened it (several indexes may share one).
      for (const Ctdb::CTIdxDesc& index : cursor->Indexes) {
        char name[1024] = {};
        if (CTDbIntf::GetSymbolicNames(alignment, index.IndexId, name, sizeof name, 0) != 0) continue;
        const std::string file = std::filesystem::path(name).lexically_normal().string();
        if (std::find(info.Files.begin(), info.Files.end(), file) == info.Files.end()) info.Files.push_back(file);
      }
    }
    return info;
  }

  void UseIndex(const std::string& name) override {
    FTable->CancelRange();
    FFrom.clear();
    FTable->SetIndexName(name);
  }

  void SetRange(const KeyValues& from, const KeyValues& to) override {
    FFrom.clear();
    if (to.empty()) {
      // Open at the end: every key from `from` on, found by the nearest-key search in First.
      FTable->CancelRange();
      FFrom = from;
    } else if (from.empty()) {
      // Open at the start: the range begins at the key of the index's first record. An empty
      // table has nothing to restrict.
      FTable->CancelRange();
      FTable->First();
      if (!FTable->Eof()) {
        std::vector<fw::Variant> start;
        const int count = std::min(FTable->GetIndexFieldCount(), static_cast<int>(to.size()));
        for (int i = 0; i < count; ++i) start.push_back(FTable->GetIndexField(i)->AsVariant());
        FTable->SetRange(start, Values(to));
      }
    } else {
      FTable->SetRange(Values(from), Values(to));
    }
    First();
  }

  void SetFilter(const std::string& text) override {
    // Each of the two re-opens the table, which forgets a range and a nearest-key start.
    FTable->SetFilter(text);
    FTable->SetFiltered(!text.empty());
    FFrom.clear();
  }

  void First() override {
    FTable->First();
    if (!FFrom.empty()) {
      FTable->FindNearest(Values(FFrom));
      SkipFilteredOut();
    }
  }

  bool FindNearest(const KeyValues& key) override {
    const bool found = FTable->FindNearest(Values(key));
    SkipFilteredOut();
    return found && !FTable->Eof();
  }

  bool Read(std::vector<std::string>& values) override {
    if (FTable->Eof()) return false;
    const fw::TFields& fields = *FTable->Fields();
    values.resize(static_cast<std::size_t>(fields.Count()));
    for (int i = 0; i < fields.Count(); ++i) values[static_cast<std::size_t>(i)] = FieldText(*fields.Fields(i));
    FTable->Next();
    return true;
  }

  void Append(const std::vector<std::optional<std::string>>& values, const ValueSpellings& spellings) override {
    FTable->Append();
    try {
      const fw::TFields& fields = *FTable->Fields();
      for (int i = 0; i < fields.Count() && static_cast<std::size_t>(i) < values.size(); ++i)
        if (const auto& value = values[static_cast<std::size_t>(i)]) SetFieldText(*fields.Fields(i), *value, spellings);
      FTable->Post();
    } catch (...) {
      // The rejected record is dropped, so that the next one starts from a clean buffer.
      FTable->Cancel();
      throw;
    }
  }
  bool HasTransactions() const override { return true; }
  void StartTransaction() override { Connection().StartTransaction(); }
  void Commit() override { Connection().Commit(); }
  void Rollback() override {
    // A commit the engine refused has already discarded the transaction: nothing is left to undo.
    if (Connection().InTransaction()) Connection().Rollback();
  }
  void AddIndex(const IndexDefinition& index) override {
    // Flag4 set: the engine maintains the index's keys itself.
    FTable->AddIndex(index.Name, index.FieldsText(), "", true, false, index.Options());
  }
  void DeleteIndex(const std::string& name) override {
    FTable->DeleteIndex(name);
    // Read the definitions back from the files: an index the engine kept must not be reported
    // as deleted.
    FTable->Close();
    FTable->Open();
    FTable->UpdateIndexDefs();
    if (FTable->IndexDefs()->IndexOf(name) >= 0)
      throw ToolError(kExitStorage, "index " + name +
                                        " is still in the table: the storage engine of this build cannot "
                                        "delete it (error 454)");
  }
  // The engine walks the file in a child process (GETFIL with FILVERIFY).
  void Verify() override {
    const CTDbIntf::TLoadAlignment alignment = FTable->Connection()->Alignment();
    if (CTDbIntf::GetCtFileInfo(alignment, FTable->Cursor()->DataFileNo, FILVERIFY) < 0)
      CTDbIntf::CtError(CTDbIntf::GetCtIsamErr(alignment));
  }


 private:
  Ctdb::TCTConnection& Connection() const { return *FTable->Connection(); }

  // A key seek lands on its record whether or not the filter passes it (the table filters the
  // records it steps to, not the one it is put on): step on when this one does not pass.
  void SkipFilteredOut() {
    if (FTable->Filtered() && !FTable->Filter().empty() && !FTable->Eof() &&
        !UnitFilterParser::ParseFilter(FTable->BuildparsString()))
      FTable->Next();
  }

  std::unique_ptr<CTTables::TCTTable> FTable;
  KeyValues FFrom;
};

class TableLayerBackend : public TableBackend {
 public:
  explicit TableLayerBackend(const ConnectionOptions& options) : FSetup(options) {}

  void CreateTable(const TableRef& ref, const std::vector<FieldDefinition>& fields,
                   const std::vector<IndexDefinition>& indexes) override {
    std::unique_ptr<CTTables::TCTTable> table = NewTable(ref);
    Define(*table->FieldDefs(), *table->IndexDefs(), fields, indexes);
    table->CreateTable();
  }

  void CopyTable(const TableRef& sourceRef, const TableRef& destinationRef, CopyMode mode, BatchObserver& observer,
                 BatchResult& result) override {
    std::unique_ptr<CTTables::TCTTable> source = NewTable(sourceRef);
    std::unique_ptr<CTTables::TCTTable> destination = NewTable(destinationRef);
    source->Open();
    BatchEvents events(*source, observer, result, static_cast<std::uint64_t>(std::max(source->RecordCount(), 0)));
    CTTables::TCTBatchCopy copy(nullptr);
    copy.SetSource(source.get());
    copy.SetDestination(destination.get());
    copy.SetCopyMode(static_cast<CTTables::TCTCopyMode>(mode));  // the same members in the same order
    copy.SetOnProgress([&events](fw::TComponent*, CTTables::TCTProgressStage stage, int32_t recNo,
                                 const std::string&) { events.Progress(stage, recNo); });
    copy.SetOnCopyError([&events](fw::TComponent*, fw::TField* field, fw::TField*, const std::exception&,
                                  bool& proceed) { events.Error(field, proceed); });
    try {
      copy.Execute();
    } catch (...) {
      result.Written = static_cast<std::uint64_t>(copy.RecordsCopied());
      throw;
    }
    result.Written = static_cast<std::uint64_t>(copy.RecordsCopied());
  }

  void RebuildTable(const TableRef& ref, bool compact) override {
    const std::unique_ptr<CTTables::TCTTable> table = NewTable(ref);
    if (compact)
      table->CompactLow();
    else
      table->RebuildLow();
  }

  void AlterTable(const TableRef& ref, const std::vector<FieldDefinition>& fields,
                  const std::vector<IndexDefinition>& indexes, BatchObserver& observer, BatchResult& result) override {
    std::unique_ptr<CTTables::TCTTable> table = NewTable(ref);
    fw::TFieldDefs fieldDefs(nullptr);
    CTTables::TCTIndexDefs indexDefs(nullptr);
    Define(fieldDefs, indexDefs, fields, indexes);
    table->Open();
    BatchEvents events(*table, observer, result, static_cast<std::uint64_t>(std::max(table->RecordCount(), 0)));
    table->SetOnRebuildProgress([&events](fw::TComponent*, CTTables::TCTProgressStage stage, int32_t recNo,
                                          const std::string&) { events.Progress(stage, recNo); });
    table->SetOnRebuildError([&events](fw::TComponent*, fw::TField* field, fw::TField*, const std::exception&,
                                       bool& proceed) { events.Error(field, proceed); });
    table->Rebuild(fieldDefs, indexDefs);
    result.Written = static_cast<std::uint64_t>(std::max(table->RecordCount(), 0));
  }

  void DeleteTable(const TableRef& ref) override { NewTable(ref)->DeleteTable(); }

  std::vector<TableRef> ListTables(const std::string& directory) override {
    const std::string folder = directory.empty() ? "." : directory;
    if (!fw::DirectoryExists(folder)) throw ToolError(kExitNotFound, "folder " + folder + " does not exist");
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
      if (entry.is_regular_file()) names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    const std::string& indexExt = FSetup.Connection().IndexExt();
    const std::string indexSuffix = "." + (indexExt.empty() ? std::string("idx") : indexExt);
    const std::string& dataExt = FSetup.Connection().DataExt();
    const std::string dataSuffix = dataExt.empty() ? std::string() : "." + dataExt;
    std::vector<TableRef> tables;
    for (const std::string& name : names) {
      // The engine's companions of a file: its index file, lock files and spill files.
      if (name.ends_with(indexSuffix) || name.ends_with("-lock") || name.ends_with("-rlock") ||
          name.find(".setspill") != std::string::npos || name.find(".partial") != std::string::npos)
        continue;
      const std::string path = (std::filesystem::path(folder) / name).string();
      const std::vector<std::string> members = FSetup.Connection().SuperFileMembers(path);
      for (const std::string& member : members) tables.push_back({directory, member, name});
      if (!members.empty()) continue;
      // With a DataExt the table is named without it, as commands take it.
      if (!dataSuffix.empty() && !name.ends_with(dataSuffix)) continue;
      const std::string table = name.substr(0, name.size() - dataSuffix.size());
      try {
        Open({directory, table, {}}, OpenMode::ReadOnly);
        tables.push_back({directory, table, {}});
      } catch (const std::exception&) {
        // Not a table this connection can open: not listed.
      }
    }
    return tables;
  }

  std::unique_ptr<TableCursor> Open(const TableRef& ref, OpenMode mode) override {
    std::unique_ptr<CTTables::TCTTable> table = NewTable(ref);
    // Indexes are added and removed with the table opened for this program alone.
    table->SetExclusive(mode == OpenMode::Exclusive);
    // Reading commands open the files read-only, so that a user who may not write them can
    // still list and export (key entry for --find and --from works on a read-only table).
    table->SetReadOnly(mode == OpenMode::ReadOnly);
    try {
      table->Open();
    } catch (const CTDbIntf::ECtreeException& e) {
      if (e.ErrorCode != kFileNotFound) throw;
      // "Not there or locked": say which file, and which of the two it is.
      const std::string& ext = FSetup.Connection().DataExt();
      const std::string file = (ref.Directory.empty() ? std::string() : ref.Directory + "/") +
                               (ref.SuperFile.empty() ? ref.Name + (ext.empty() ? "" : "." + ext) : ref.SuperFile);
      if (!fw::FileExists(file))
        throw CTDbIntf::ECtreeException("table " + ref.Display() + " does not exist (no file " + file +
                                            "; ctt create makes one)",
                                        e.ErrorCode);
      throw CTDbIntf::ECtreeException("table " + ref.Display() + " (file " + file + "): " + e.Message(), e.ErrorCode);
    }
    return std::make_unique<TableLayerCursor>(std::move(table));
  }

 private:
  // A closed table on the connection for `ref`.
  std::unique_ptr<CTTables::TCTTable> NewTable(const TableRef& ref) {
    // The connection drops a local folder that does not exist and takes the name relative to the
    // current folder instead, and create would even make the folder's name a superfile there.
    if (!ref.Directory.empty() && FSetup.Connection().ServerName().empty() && !fw::DirectoryExists(ref.Directory))
      throw ToolError(kExitNotFound, "folder " + ref.Directory + " does not exist");
    auto table = std::make_unique<CTTables::TCTTable>(nullptr);
    table->SetConnection(&FSetup.Connection());
    if (!ref.SuperFile.empty()) {
      table->SetIsSuperFile(true);
      table->SetTableName(ref.SuperFile + "!" + ref.Name);
    } else {
      table->SetTableName(ref.Name);
    }
    table->SetDatabase(ref.Directory);
    return table;
  }

  ConnectionSetup FSetup;
};

}  // namespace

std::unique_ptr<TableBackend> MakeTableLayerBackend(const ConnectionOptions& options) {
  return std::make_unique<TableLayerBackend>(options);
}

}  // namespace ctt
