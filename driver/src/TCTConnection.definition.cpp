// TCTConnection: creating, rebuilding, renaming tables and plain files; adding, opening,
// deleting and rebuilding indexes; package-maintained keys (driver).
#include <algorithm>
#include <cstring>
#include <new>

#include "CText.h"
#include "CursorKeys.h"
#include "IfilImage.h"
#include "StringUtils.h"
#include "TCTConnection.h"
#include "TCTCursorDesc.h"
#include "TCTCustomRecordBuffer.h"
#include "ctisam.h"

namespace Ctdb {

using namespace cursorkeys;

namespace {

constexpr int32_t kPermissionMask = 2014;
// Records of a created table are this much longer than their fields.
constexpr int16_t kRecordSlack = 10;

int32_t Check(const TCTConnection& connection, const TCTCursorDesc* cursor) {
  if (!connection.Active()) return kCtNotActive;
  if (cursor == nullptr) return kCtInvalidCursor;
  return 0;
}

bool IsVariable(const CTFldDesc& field) {
  return field.FieldType == fldBLOB || field.FieldType == fldVARBYTES;
}

// The index definition of descriptor `desc` over fields numbered from 1; `segmentLength` gives the
// length of the segment of a field number. Segments name fields by number (modes 14/15, plus 16
// for a descending index). False when the descriptor names no field or a field out of range.
template <typename SegmentLength>
bool BuildIndex(const CTIdxDesc& desc, int32_t fieldCount, const TCTConnection& conn, SegmentLength segmentLength,
                IidxDefinition& out) {
  if (desc.FieldsInKey <= 0 || desc.FieldsInKey > static_cast<int16_t>(desc.KeyFields.size())) return false;
  out = IidxDefinition();
  out.ikeydup = desc.Unique == 0 ? 1 : 0;
  out.inulkey = conn.NullKeys() ? 0 : 1;
  out.iempchr = static_cast<uint8_t>(conn.EmptyChar());
  int32_t keyLength = 0;
  for (int16_t i = 0; i < desc.FieldsInKey; ++i) {
    const int32_t fieldNo = desc.KeyFields[static_cast<size_t>(i)];
    if (fieldNo < 1 || fieldNo > fieldCount) return false;
    IsegDefinition seg;
    seg.soffset = static_cast<int16_t>(fieldNo - 1);
    seg.slength = static_cast<int16_t>(segmentLength(fieldNo));
    seg.segmode = static_cast<int16_t>((desc.CaseInsensitive == 0 ? VSCHSEG : UVSCHSEG) |
                                       (desc.Descending != 0 ? DSCSEG : 0));
    keyLength += seg.slength;
    out.seg.push_back(seg);
  }
  out.ikeylen = static_cast<int16_t>(keyLength + 4 * out.ikeydup);
  out.ridxnam = desc.Name.empty() ? std::string("Primary") : desc.Name;
  return true;
}

// The condition text of an index descriptor: its expression, else its condition.
const std::string& ConditionOf(const CTIdxDesc& desc) {
  return desc.Expression.empty() ? desc.Condition : desc.Expression;
}

}  // namespace

int32_t TCTConnection::CreateTable(const std::string& path, bool overwrite, CTTblDesc& desc) {
  if (!Active()) return kCtNotActive;
  if (desc.Fields.empty()) return kCtNoFields;
  const CTDbIntf::TLoadAlignment a = Alignment();
  const int32_t fieldCount = static_cast<int32_t>(desc.Fields.size());
  // The definition keeps the record length in 16 bits: a longer record would be cut to a
  // different length, so it is refused before anything is deleted or created.
  int64_t recordLength = kRecordSlack;
  for (int32_t i = 0; i < fieldCount; ++i) {
    const CTFldDesc& field = desc.Fields[static_cast<size_t>(i)];
    if (IsVariable(field)) break;  // as GetCTreeRecLength: the variable part is not counted
    const int32_t length = field.FieldType == fldDATE ? field.Length : GetCTreeFieldLength(i + 1, desc.Fields);
    recordLength += std::max(length, 0);
  }
  if (recordLength > kCtMaxRecordLength) return kCtRecordTooLong;

  // `path` names a superfile host when it ends in a file name that is not a directory; the table
  // then becomes the member host!name.
  std::string dir = path.empty() ? fw::GetCurrentDir() : path;
  std::string tableName = desc.Name;
  if (!path.empty() && !fw::ExtractFileName(path).empty() && !fw::DirectoryExists(path)) {
    dir = fw::ExcludeTrailingPathDelimiter(fw::ExtractFilePath(path));
    if (dir.empty()) dir = fw::GetCurrentDir();
    tableName = fw::ExtractFileName(path) + "!" + fw::ExtractFileName(desc.Name);
  }
  // The files are created with the table's folder made current, so a relative folder is
  // resolved against the caller's folder first: otherwise it would be applied twice.
  if (ServerName().empty() && dir.front() != fw::PathDelim)
    dir = fw::IncludeTrailingPathDelimiter(fw::GetCurrentDir()) + dir;
  std::string fullName = BuildFullPath(dir, tableName);
  fullName = fullName.c_str();
  // The data extension is what BuildFullPath put at the end of the name: the member's or
  // table's own extension, or DataExt appended as stored. The engine appends it to pfilnam.
  const std::string nameExt = fw::ExtractFileExt(fw::ExtractFileName(tableName.substr(tableName.find('!') + 1)));
  std::string ext = nameExt.empty() ? DataExt() : nameExt;
  if (!fullName.ends_with(ext)) ext.clear();
  const std::string base = fullName.substr(0, fullName.size() - ext.size());

  if (overwrite) {
    const int32_t deleted = DeleteTable(dir, tableName);
    if (deleted != 0 && deleted != FNOP_ERR) return deleted;
  }

  IfilDefinition ifil;
  bool variable = false;
  for (const CTFldDesc& field : desc.Fields) variable = variable || IsVariable(field);
  ifil.pfilnam = base;
  ifil.dfilno = -1;
  ifil.dreclen = static_cast<int16_t>(GetCTreeRecLength(fieldCount, desc.Fields) + kRecordSlack);
  ifil.dxtdsiz = 0;
  int16_t mode = static_cast<int16_t>(SHARED | (variable ? VLENGTH : 0));
  if (desc.TableFlags & 0x10) mode |= 0x10;
  if (desc.TableFlags & 0x30) mode |= 0x30;
  if (desc.TableFlags & 0x80) mode |= 0x80;
  if (desc.TableFlags & 0x400) mode |= 0x400;
  ifil.dfilmod = mode;
  ifil.ixtdsiz = ifil.dreclen;
  ifil.ifilmod = SHARED;
  ifil.tfilno = -1;
  for (const CTIdxDesc& index : desc.Indexes) {
    IidxDefinition def;
    if (!BuildIndex(index, fieldCount, *this,
                    [&](int32_t fieldNo) { return GetCTreeFieldLength(fieldNo, desc.Fields); }, def))
      return kCtInvalidIndexDesc;
    ifil.ix.push_back(std::move(def));
  }
  std::vector<DodaEntry> doda;
  for (int32_t i = 0; i < fieldCount; ++i) {
    const int32_t code = BDEFieldsToCTree(desc.Fields[static_cast<size_t>(i)]);
    if (code < 0) return CT_EBADDEF;
    doda.push_back({desc.Fields[static_cast<size_t>(i)].Name, static_cast<uint16_t>(code),
                    static_cast<uint32_t>(GetCTreeFieldLength(i + 1, desc.Fields))});
  }

  int32_t result = 0;
  int16_t fileNo = -1;
  try {
    IfilImage image(ifil, RecordPacking());
    std::string oldDir;
    ChangeToFileDir(fullName, oldDir);
    std::string dataExt = ext;
    std::string indexExt;
    result = CTDbIntf::CreateIFileXtd(a, image.Data(), dataExt.data(), indexExt.data(), kPermissionMask, nullptr,
                                      CText(Password()));
    if (ServerName().empty()) fw::ChDir(oldDir);
    if (result != 0) return result;  // nothing was made: an existing table is left alone
    fileNo = image.tfilno();
    DodaImage dodaImage(doda, RecordPacking());
    result = CTDbIntf::PutDODA(a, fileNo, dodaImage.Data(), static_cast<uint16_t>(doda.size()));
    for (size_t i = 0; result == 0 && i < desc.Indexes.size(); ++i) {
      const CTIdxDesc& index = desc.Indexes[i];
      if (index.ExpressionIndex == 0 || ConditionOf(index).empty()) continue;
      result = CTDbIntf::UpdateConditionalIndex(a, static_cast<int16_t>(fileNo + 1 + static_cast<int>(i)),
                                                CText(ConditionOf(index)));
    }
  } catch (const std::bad_alloc&) {
    result = kCtOutOfMemory;
  } catch (const std::exception&) {
    result = FNOP_ERR;  // the table's directory could not be made current
  }
  if (fileNo >= 0) (void)CTDbIntf::CloseRFile(a, fileNo);
  // A table made only half way is removed again.
  if (result != 0 && fileNo >= 0) (void)DeleteTable(dir, tableName);
  return result;
}

namespace {

// RBLIFIL or CMPIFIL (compact), plain or with the data extension and the connection's password.
int32_t RebuildFiles(TCTConnection& conn, const IfilDefinition& ifil, const std::optional<std::string>& dataExt,
                     bool compact) {
  if (!conn.Active()) return kCtNotActive;
  try {
    IfilImage image(ifil, conn.RecordPacking());
    const CTDbIntf::TLoadAlignment a = conn.Alignment();
    if (!dataExt) return compact ? CTDbIntf::CompactIFile(a, image.Data()) : CTDbIntf::RebuildIFile(a, image.Data());
    std::string extension = *dataExt;
    std::string indexExt;
    return compact ? CTDbIntf::CompactIFileXtd(a, image.Data(), extension.data(), indexExt.data(), kPermissionMask,
                                               nullptr, CText(conn.Password()))
                   : CTDbIntf::RebuildIFileXtd(a, image.Data(), extension.data(), indexExt.data(), kPermissionMask,
                                               nullptr, CText(conn.Password()));
  } catch (const std::bad_alloc&) {
    return kCtOutOfMemory;
  }
}

}  // namespace

int32_t TCTConnection::RebuildTable(const IfilDefinition& ifil, const std::optional<std::string>& dataExt) {
  return RebuildFiles(*this, ifil, dataExt, false);
}

int32_t TCTConnection::CompactTable(const IfilDefinition& ifil, const std::optional<std::string>& dataExt) {
  return RebuildFiles(*this, ifil, dataExt, true);
}

int32_t TCTConnection::AddIndexKey(TCTCursorDesc* cursor, CTIdxDesc* index, TCTCustomRecordBuffer* buffer) {
  if (const int32_t r = Check(*this, cursor)) return r;
  if (index == nullptr) return kCtInvalidIndexDesc;
  if (buffer == nullptr || buffer->RecordPtr() == nullptr) return ICUR_ERR;
  bool accept = true;
  if (OnIndexKey) OnIndexKey(cursor, index, buffer->RecordPtr(), buffer->RecordSize(), accept);
  if (!accept) return 0;
  const CTDbIntf::TLoadAlignment a = Alignment();
  const int32_t pos = CTDbIntf::CurrentFileOffset(a, cursor->DataFileNo);
  if (pos == 0) return NotFound(a);
  try {
    return AddKeyAt(a, index->IndexId, RecordOf(buffer), pos);
  } catch (const std::bad_alloc&) {
    return kCtOutOfMemory;
  }
}

int32_t TCTConnection::DeleteIndexKey(TCTCursorDesc* cursor, CTIdxDesc* index, TCTCustomRecordBuffer* buffer) {
  if (const int32_t r = Check(*this, cursor)) return r;
  if (index == nullptr) return kCtInvalidIndexDesc;
  if (buffer == nullptr || buffer->RecordPtr() == nullptr) return ICUR_ERR;
  const CTDbIntf::TLoadAlignment a = Alignment();
  const int32_t pos = CTDbIntf::CurrentFileOffset(a, cursor->DataFileNo);
  if (pos == 0) return NotFound(a);
  try {
    return DeleteKeyAt(a, index->IndexId, RecordOf(buffer), pos);
  } catch (const std::bad_alloc&) {
    return kCtOutOfMemory;
  }
}

// The new index gets a file of its own, named by FindIndexName beside the table, and the key
// number the engine hands out for it (AVLFILNUM). Both flag words add the index to the open
// table's files; the table is not reopened.
int32_t TCTConnection::AddIndex(TCTCursorDesc* cursor, CTIdxDesc* index) {
  if (!Active()) return kCtNotActive;
  if (index == nullptr) return kCtInvalidIndexDesc;
  if (cursor == nullptr) return kCtInvalidCursor;
  const CTDbIntf::TLoadAlignment a = Alignment();
  try {
    IidxDefinition def;
    if (!BuildIndex(*index, cursor->FieldCount(), *this,
                    [&](int32_t fieldNo) { return cursor->FieldDescByIndex(fieldNo - 1)->GetMaxSize(); }, def))
      return kCtInvalidIndexDesc;
    std::string fileName;
    int32_t number = 0;
    const std::string dir = fw::ExcludeTrailingPathDelimiter(fw::ExtractFilePath(cursor->TableName));
    // FindIndexName probes the name as c-tree sees it; the engine appends its index extension
    // to the name it is given, so a name whose index file is already there is passed over too.
    const std::string prefix = fw::IncludeTrailingPathDelimiter(dir);
    do {
      FindIndexName(cursor->TableName, dir, fileName, number);
    } while (number <= 999 && fw::FileExists(prefix + fw::ChangeFileExt(fileName, "") + ".idx"));
    def.aidxnam = prefix + fw::ChangeFileExt(fileName, "");
    const int16_t wanted = CTDbIntf::AvailableFileNbr(a, 1);
    if (wanted < 0) return NotFound(a);

    IfilDefinition ifil = cursor->Ifil;
    ifil.pfilnam = fw::ChangeFileExt(cursor->TableName, "");
    ifil.dfilno = cursor->DataFileNo;
    ifil.tfilno = wanted;
    ifil.ix.assign(1, def);
    IfilImage image(ifil, RecordPacking());
    if (const int32_t r = CTDbIntf::TempIIndexXtd(a, image.Data(), kPermissionMask, nullptr, CText(Password())))
      return r;
    if (const int32_t r = CTDbIntf::PermIIndex(a, image.Data())) return r;
    // The engine writes the key number it gave the index back into tfilno.
    const int16_t keyNo = image.tfilno();
    if (index->ExpressionIndex != 0 && !ConditionOf(*index).empty()) {
      if (const int32_t r = CTDbIntf::UpdateConditionalIndex(a, keyNo, CText(ConditionOf(*index)))) return r;
    }
    CTIdxDesc added = *index;
    added.IndexId = keyNo;
    added.KeyLength = def.ikeylen;
    added.Name = *def.ridxnam;
    added.Primary = cursor->Indexes.empty() ? kWordTrue : kWordFalse;
    (void)GetSymbFileName(keyNo, added.SymbolicName);
    cursor->AddIndexToList(added);
    // The index is now part of the table's IFIL.
    cursor->Ifil.ix.push_back(def);
    cursor->IfilSize = std::max(cursor->IfilSize, CTDbIntf::GetIFile(a, cursor->DataFileNo, 0, nullptr));
    *index = added;
  } catch (const std::bad_alloc&) {
    return kCtOutOfMemory;
  }
  return 0;
}

int32_t TCTConnection::OpenIndex(TCTCursorDesc* cursor, const std::string& fileName, CTIdxDesc* index) {
  if (!Active()) return kCtNotActive;
  if (index == nullptr) return kCtInvalidIndexDesc;
  if (cursor == nullptr) return kCtInvalidCursor;
  const CTDbIntf::TLoadAlignment a = Alignment();
  try {
    std::string path = fileName;
    if (fw::ExtractFilePath(path).empty()) path = fw::ExtractFilePath(cursor->TableName) + path;
    const int16_t keyNo = CTDbIntf::AvailableFileNbr(a, 1);
    if (keyNo < 0) return NotFound(a);
    if (const int32_t r =
            CTDbIntf::OpenCtFileXtd(a, keyNo, CText(path), static_cast<int16_t>(cursor->OpenFlags), CText(Password())))
      return r;
    std::vector<uint8_t> image(static_cast<size_t>(std::max(cursor->IfilSize, 0)), 0);
    int32_t result = image.empty() ? kCtNoResource : 0;
    if (result == 0 && CTDbIntf::GetIFile(a, cursor->DataFileNo, static_cast<int32_t>(image.size()), image.data()) <= 0)
      result = NotFound(a);
    if (result == 0) result = CTDbIntf::SetIndexMap(a, keyNo, image.data(), cursor->DataFileNo, 0);
    if (result != 0) {
      (void)CTDbIntf::CloseCtFile(a, keyNo, 0);
      return result;
    }
    CTIdxDesc opened;
    opened.Name = fw::ChangeFileExt(fw::ExtractFileName(path), "");
    opened.IndexId = keyNo;
    opened.Unique = CTDbIntf::GetCtFileInfo(a, keyNo, KEYDUP) == 1 ? kWordFalse : kWordTrue;
    opened.Maintained = kWordTrue;
    opened.KeyLength = static_cast<int16_t>(CTDbIntf::GetCtFileInfo(a, keyNo, RECLEN));
    std::vector<char> text(1024, '\0');
    const int32_t length = CTDbIntf::GetConditionalIndex(a, keyNo, static_cast<int32_t>(text.size() - 1), text.data());
    if (length > 0) opened.Condition.assign(text.data(), strnlen(text.data(), text.size()));
    (void)GetSymbFileName(keyNo, opened.SymbolicName);
    cursor->AddIndexToList(opened);
    *index = opened;
  } catch (const std::bad_alloc&) {
    return kCtOutOfMemory;
  }
  return 0;
}

int32_t TCTConnection::DeleteIndex(TCTCursorDesc* cursor, CTIdxDesc* index) {
  if (!Active()) return kCtNotActive;
  if (index == nullptr) return kCtInvalidIndexDesc;
  if (cursor == nullptr) return kCtInvalidCursor;
  const int32_t ordinal = cursor->FindIndex(index->Name, index->IndexId >= 0 ? index->IndexId : -1);
  if (ordinal < 0) return kCtInvalidIndexDesc;
  const CTDbIntf::TLoadAlignment a = Alignment();
  const CTIdxDesc victim = cursor->Indexes[static_cast<size_t>(ordinal)];
  // An index of the table's IFIL is found there by name (an unnamed one by its place).
  int32_t setOrdinal = -1;
  for (size_t i = 0; i < cursor->Ifil.ix.size() && setOrdinal < 0; ++i) {
    const IidxDefinition& ix = cursor->Ifil.ix[i];
    const std::string name = ix.ridxnam && !ix.ridxnam->empty() ? *ix.ridxnam : std::to_string(i);
    if (name == victim.Name) setOrdinal = static_cast<int32_t>(i);
  }
  try {
    if (setOrdinal >= 0) {
      // Its definition goes from the stored IFIL; the engine drops its keys (and its index file
      // when no other index uses it).
      IfilDefinition ifil = cursor->Ifil;
      ifil.ix.erase(ifil.ix.begin() + setOrdinal);
      ifil.dfilno = cursor->DataFileNo;
      ifil.tfilno = cursor->DataFileNo;
      IfilImage image(ifil, RecordPacking());
      if (const int32_t r = CTDbIntf::PutIFile(a, image.Data())) return r;
      cursor->Ifil = ifil;
      // An unnamed index is known by its place in the set: those after the deleted one move up
      // a place, and their names with them (the engine keeps their numbers).
      for (size_t i = static_cast<size_t>(setOrdinal); i < ifil.ix.size(); ++i) {
        if (ifil.ix[i].ridxnam && !ifil.ix[i].ridxnam->empty()) continue;
        for (size_t l = 0; l < cursor->Indexes.size(); ++l)
          if (static_cast<int32_t>(l) != ordinal && cursor->Indexes[l].Name == std::to_string(i + 1)) {
            cursor->Indexes[l].Name = std::to_string(i);
            break;
          }
      }
    } else {
      // An index file of its own: closed, then opened alone and exclusively to be deleted.
      std::string name;
      (void)GetSymbFileName(victim.IndexId, name);
      if (const int32_t r = CTDbIntf::CloseCtFile(a, victim.IndexId, 0)) return r;
      if (!name.empty() && CTDbIntf::OpenCtFileXtd(a, victim.IndexId, CText(name), EXCLUSIVE, CText(Password())) == 0)
        (void)CTDbIntf::DeleteCtFile(a, victim.IndexId);
    }
  } catch (const std::bad_alloc&) {
    return kCtOutOfMemory;
  }
  cursor->Indexes.erase(cursor->Indexes.begin() + ordinal);
  cursor->IndexCount = std::max(cursor->IndexCount - 1, 0);
  if (cursor->KeyNo == victim.IndexId) cursor->SetIndexNo(cursor->DataFileNo);
  return 0;
}

// RBLIFILX works on a closed file set: the table is closed, rebuilt and opened again under the
// same file numbers, so the cursor stays valid; its position goes back to the start.
int32_t TCTConnection::RebuildIndex(TCTCursorDesc* cursor, CTIdxDesc* index) {
  if (!Active()) return kCtNotActive;
  if (index == nullptr) return kCtInvalidIndexDesc;
  if (cursor == nullptr) return kCtInvalidCursor;
  const CTDbIntf::TLoadAlignment a = Alignment();
  try {
    IfilDefinition ifil = cursor->Ifil;
    const std::string ext = fw::ExtractFileExt(cursor->TableName);
    ifil.pfilnam = cursor->TableName.substr(0, cursor->TableName.size() - ext.size());
    ifil.dfilno = cursor->DataFileNo;
    ifil.tfilno = cursor->DataFileNo;
    IfilImage image(ifil, RecordPacking());
    std::string dataExt = ext;
    std::string indexExt;
    if (const int32_t r = CTDbIntf::CloseRFile(a, cursor->DataFileNo)) return r;
    int32_t result = CTDbIntf::RebuildIFileXtd(a, image.Data(), dataExt.data(), indexExt.data(), kPermissionMask,
                                               nullptr, CText(Password()));
    const int32_t reopened = CTDbIntf::OpenFileWithResourceXtd(a, cursor->DataFileNo, CText(cursor->TableName),
                                                               static_cast<int16_t>(cursor->OpenFlags),
                                                               CText(Password()));
    if (result == 0) result = reopened;
    if (result != 0) return result;
    cursor->Position = cpBof;
    const int32_t ordinal = cursor->FindIndex(index->Name, index->IndexId >= 0 ? index->IndexId : -1);
    const int16_t keyNo = ordinal >= 0 ? cursor->Indexes[static_cast<size_t>(ordinal)].IndexId : index->IndexId;
    if (index->ExpressionIndex != 0 && !ConditionOf(*index).empty()) {
      if (const int32_t r = CTDbIntf::UpdateConditionalIndex(a, keyNo, CText(ConditionOf(*index)))) return r;
    }
    if (!OnIndexKey || ordinal < 0) return 0;
    // Offer every record to the hook: the records it refuses leave the index.
    CTIdxDesc& entry = cursor->Indexes[static_cast<size_t>(ordinal)];
    TCTCustomRecordBuffer buffer(cursor);
    std::vector<uint8_t> record(static_cast<size_t>(std::max(cursor->FixedRecLength, 1)), 0);
    for (int32_t r = CTDbIntf::FirstRecord(a, cursor->DataFileNo, record.data()); r == 0;
         r = CTDbIntf::NextRecord(a, cursor->DataFileNo, record.data())) {
      std::vector<uint8_t> data;
      if (const int32_t read = ReadRecord(cursor, data)) return read;
      buffer.SetRecord(data.data(), static_cast<int32_t>(data.size()));
      bool accept = true;
      OnIndexKey(cursor, &entry, data.data(), static_cast<int32_t>(data.size()), accept);
      if (!accept) {
        const int32_t pos = CTDbIntf::CurrentFileOffset(a, cursor->DataFileNo);
        const int32_t deleted = DeleteKeyAt(a, keyNo, data, pos);
        if (deleted != 0 && deleted != INOT_ERR) return deleted;
      }
    }
  } catch (const std::bad_alloc&) {
    return kCtOutOfMemory;
  }
  return 0;
}

int32_t TCTConnection::RenameTable(TCTCursorDesc* cursor, const std::string& newName) {
  if (!Active()) return kCtNotActive;
  if (cursor == nullptr || cursor->DataFileNo < 0) return kCtInvalidCursor;
  const CTDbIntf::TLoadAlignment a = Alignment();
  std::string target = newName;
  if (fw::ExtractFilePath(target).empty()) target = fw::ExtractFilePath(cursor->TableName) + target;
  if (fw::ExtractFileExt(fw::ExtractFileName(target)).empty()) target += fw::ExtractFileExt(cursor->TableName);
  if (const int32_t r = CTDbIntf::RenameFile(a, cursor->DataFileNo, CText(target))) return r;
  if (cursor->SchemaFileNo >= 0) (void)CTDbIntf::CloseRFile(a, cursor->SchemaFileNo);
  const int32_t result = CTDbIntf::CloseRFile(a, cursor->DataFileNo);
  // The files are closed: the cursor only waits for CloseCursor now.
  cursor->TableName = target;
  cursor->SchemaFileNo = -1;
  cursor->DataFileNo = -1;
  cursor->KeyNo = -1;
  return result;
}

int32_t TCTConnection::CreateFile(const std::string& fileName, int32_t recordLength, int16_t fileMode) {
  if (!Active()) return kCtNotActive;
  if (recordLength <= 0 || recordLength > 0xFFFF) return CT_EBADARG;
  const CTDbIntf::TLoadAlignment a = Alignment();
  const int16_t fileNo = CTDbIntf::AvailableFileNbr(a, 1);
  if (fileNo < 0) return NotFound(a);
  const int32_t result =
      CTDbIntf::CreateDataFileXtd(a, fileNo, CText(fileName), static_cast<uint16_t>(recordLength), 0, fileMode,
                                  kPermissionMask, nullptr, CText(Password()));
  if (result != 0) return result;
  return CTDbIntf::CloseCtFile(a, fileNo, 0);
}

}  // namespace Ctdb
