// TCTConnection: table schema, index descriptors and the companion schema file (driver).
#include <algorithm>
#include <cstring>
#include <limits>
#include <new>

#include "CText.h"
#include "IfilImage.h"
#include "StringUtils.h"
#include "TCTConnection.h"
#include "TCTCursorDesc.h"
#include "ctisam.h"

namespace Ctdb {
namespace {

constexpr int32_t kPermissionMask = 2014;
constexpr int16_t kModeMask = DSCSEG | ALTSEG;
// GETCIDX answers for "no condition": the engine's 401 and a server's 614.
constexpr int32_t kNoConditionErrors[] = {NCON_ERR, 614};
constexpr int16_t kReadOnlyFlag = READFIL;

// Reads a resource image whose size the engine reports first: `read(len, buf)` answers the size
// when buf is null. 0, 408 when the resource is missing or empty, 1116 when the memory cannot be
// had.
template <typename Read>
int32_t ReadImage(Read read, std::vector<uint8_t>& image) {
  const int32_t size = read(0, nullptr);
  if (size <= 0) return kCtNoResource;
  try {
    image.assign(static_cast<size_t>(size), 0);
  } catch (const std::bad_alloc&) {
    return kCtOutOfMemory;
  }
  if (read(size, image.data()) <= 0) return kCtNoResource;
  return 0;
}

// The in-record width that a field's c-tree form moves the running record offset by.
int32_t RecordAdvance(int32_t code, int32_t length) {
  switch (code) {
    case CT_PSTRING: return 1;
    case CT_2STRING: return 2;
    case CT_4STRING: return 4;
    default: return length;  // CT_STRING too: it advances by its full length like a fixed string
  }
}

int32_t FrameworkSize(int32_t code, int32_t length) {
  switch (code) {
    case CT_MONEY:
    case CT_SFLOAT: return 8;
    case CT_CHAR:
    case CT_CHARU: return 1;
    case CT_BCD: return 20;
    default: return length;
  }
}

// Length of the prefix of a fixed string or blob subtype: 0, 1, 2 or 4.
int32_t PrefixOf(int16_t subType) {
  switch (subType) {
    case fldstFPSTRING:
    case fldstPSTRING: return 1;
    case fldstF2STRING:
    case fldst2STRING: return 2;
    case fldstF4STRING:
    case fldst4STRING: return 4;
    default: return 0;
  }
}

}  // namespace

int32_t TCTConnection::LoadIFIL(TCTCursorDesc* cursor) {
  if (const int32_t r = CheckCursor(cursor)) return r;
  cursor->Ifil = IfilDefinition();
  cursor->IfilSize = 0;
  std::vector<uint8_t> image;
  const int16_t datno = cursor->DataFileNo;
  const int32_t r = ReadImage(
      [&](int32_t len, void* buf) { return CTDbIntf::GetIFile(FAlignment, datno, len, buf); }, image);
  if (r != 0) return r;
  IfilDefinition def;
  if (!DecodeIfilImage(image.data(), image.size(), RecordPacking(), def)) return kCtNoResource;
  cursor->IndexCount = static_cast<int32_t>(def.ix.size());
  cursor->Ifil = std::move(def);
  cursor->IfilSize = static_cast<int32_t>(image.size());
  return 0;
}

int32_t TCTConnection::ReadFieldsDescriptions(TCTCursorDesc* cursor) {
  if (const int32_t r = CheckCursor(cursor)) return r;
  const int16_t datno = cursor->DataFileNo;
  // The schema map only tells whether the table has a schema at all; its content is opaque.
  if (CTDbIntf::GetDODA(FAlignment, datno, 0, nullptr, SCHEMA_MAP) <= 0) return kCtNoResource;
  std::vector<uint8_t> image;
  const int32_t r = ReadImage(
      [&](int32_t len, void* buf) { return CTDbIntf::GetDODA(FAlignment, datno, len, buf, SCHEMA_DODA); }, image);
  if (r != 0) return r;
  std::vector<DodaEntry> entries;
  if (!DecodeDodaImage(image.data(), image.size(), RecordPacking(), entries)) return kCtNoResource;

  cursor->ClearFields();
  int64_t offset = 0;
  int32_t blobNo = 0;
  for (const DodaEntry& entry : entries) {
    if (entry.Length > static_cast<uint32_t>(std::numeric_limits<int32_t>::max())) {
      cursor->ClearFields();
      return kCtNoResource;
    }
    const auto length = static_cast<int32_t>(entry.Length);
    const TCTFieldDesc* field = cursor->AddField(entry.Name, entry.Type, FrameworkSize(entry.Type, length), length,
                                                 static_cast<int32_t>(offset), blobNo);
    offset += RecordAdvance(entry.Type, length);
    if (offset > std::numeric_limits<int32_t>::max()) {
      cursor->ClearFields();
      return kCtNoResource;
    }
    if (field->IsBlob) ++blobNo;
  }
  return 0;
}

// The list follows the table's IFIL as the cursor keeps it (AddIndex and DeleteIndex update
// it); indexes keep the key numbers they were given, and index files opened with OpenIndex,
// which are not part of the IFIL, stay at the end.
int32_t TCTConnection::InitIndexes(TCTCursorDesc* cursor) {
  if (cursor == nullptr) return kCtInvalidCursor;
  const std::vector<CTIdxDesc> known = cursor->Indexes;
  cursor->IndexCount = static_cast<int32_t>(cursor->Ifil.ix.size());
  std::vector<CTIdxDesc> rebuilt;
  for (int32_t ordinal = 0; ordinal < cursor->IndexCount; ++ordinal) {
    CTIdxDesc desc;
    if (const int32_t r = GetIndexDesc(cursor, ordinal, desc)) {
      cursor->IndexCount = static_cast<int32_t>(known.size());
      return r;
    }
    rebuilt.push_back(desc);
  }
  for (const CTIdxDesc& index : known) {
    const bool inSet = std::any_of(rebuilt.begin(), rebuilt.end(), [&](const CTIdxDesc& d) {
      return d.Name == index.Name || d.IndexId == index.IndexId;
    });
    if (!inSet) rebuilt.push_back(index);
  }
  cursor->Indexes = std::move(rebuilt);
  cursor->IndexCount = static_cast<int32_t>(cursor->Indexes.size());
  return 0;
}

int32_t TCTConnection::GetIndexDesc(TCTCursorDesc* cursor, int32_t ordinal, CTIdxDesc& desc) {
  if (const int32_t r = CheckCursor(cursor)) return r;
  if (cursor->IndexCount <= 0) return kCtNoIndexes;
  if (ordinal < 0 || ordinal >= cursor->IndexCount || static_cast<size_t>(ordinal) >= cursor->Ifil.ix.size())
    return kCtInvalidIndexDesc;
  const IidxDefinition& index = cursor->Ifil.ix[static_cast<size_t>(ordinal)];

  desc.Name = index.ridxnam && !index.ridxnam->empty() ? *index.ridxnam : std::to_string(ordinal);
  // The set opens its indexes as the numbers after the data file's; an index added later keeps
  // the number it was given, which the cursor's list remembers.
  desc.IndexId = static_cast<int16_t>(cursor->DataFileNo + ordinal + 1);
  for (const CTIdxDesc& listed : cursor->Indexes)
    if (listed.Name == desc.Name) desc.IndexId = listed.IndexId;
  desc.Unique = index.ikeydup == 0 ? kWordTrue : kWordFalse;
  desc.Descending = kWordFalse;
  desc.Maintained = kWordTrue;
  desc.ExpressionIndex = kWordFalse;
  desc.KeyLength = index.ikeylen;
  desc.CaseInsensitive = kWordFalse;
  desc.KeyFields.fill(0);
  desc.DescendingFields.fill(0);

  size_t count = 0;
  auto addKeyField = [&](int32_t fieldNo) {
    if (count < desc.KeyFields.size()) desc.KeyFields[count++] = fieldNo;
  };
  for (size_t s = 0; s < index.seg.size(); ++s) {
    const IsegDefinition& seg = index.seg[s];
    const int16_t mode = static_cast<int16_t>(seg.segmode & ~kModeMask);
    switch (mode) {
      case SRLSEG: {
        const int32_t fieldNo = cursor->FieldByOffset(seg.soffset);
        if (fieldNo > 0) cursor->Fields[static_cast<size_t>(fieldNo - 1)]->AutoInc = true;
        addKeyField(fieldNo);
        break;
      }
      case VARSEG:
      case UVARSEG:
      case SCHSEG:
      case USCHSEG:
      case VSCHSEG:
      case UVSCHSEG: addKeyField(seg.soffset + 1); break;
      default:
        // A byte range of the record: every field starting inside it is part of the key.
        for (size_t f = 0; f < cursor->Fields.size(); ++f) {
          const int32_t at = cursor->Fields[f]->Offset;
          if (at >= seg.soffset && at < seg.soffset + seg.slength) addKeyField(static_cast<int32_t>(f) + 1);
        }
        break;
    }
    if (mode == UREGSEG || mode == UVARSEG || mode == USCHSEG || mode == UVSCHSEG) desc.CaseInsensitive = kWordTrue;
    if (s < desc.DescendingFields.size()) desc.DescendingFields[s] = (seg.segmode & DSCSEG) != 0 ? 1 : 0;
    if ((seg.segmode & DSCSEG) != 0) desc.Descending = kWordTrue;
  }
  desc.FieldsInKey = static_cast<int16_t>(count);
  desc.Primary = ordinal == 0 ? kWordTrue : kWordFalse;

  desc.Condition.clear();
  const int32_t length = CTDbIntf::GetConditionalIndex(FAlignment, desc.IndexId, 0, nullptr);
  const bool none = length < 1 || std::find(std::begin(kNoConditionErrors), std::end(kNoConditionErrors), length) !=
                                      std::end(kNoConditionErrors);
  if (!none) {
    std::vector<char> text(static_cast<size_t>(length) + 1, '\0');
    if (CTDbIntf::GetConditionalIndex(FAlignment, desc.IndexId, length, text.data()) > 0)
      desc.Condition.assign(text.data(), strnlen(text.data(), static_cast<size_t>(length)));
  }
  (void)GetSymbFileName(desc.IndexId, desc.SymbolicName);
  return 0;
}

int32_t TCTConnection::GetFieldDescs(TCTCursorDesc* cursor, TFieldDescList* list) {
  if (const int32_t r = CheckCursor(cursor)) return r;
  if (list == nullptr) return 0;
  list->assign(cursor->Fields.size(), CTFldDesc());
  int32_t offset = 0;
  for (size_t i = 0; i < cursor->Fields.size(); ++i) {
    const TCTFieldDesc& field = *cursor->Fields[i];
    CTFldDesc& desc = (*list)[i];
    desc.FieldNo = static_cast<uint16_t>(i + 1);
    desc.Name = field.Name;
    CTreeFieldsToBDE(field.FieldType, desc);
    if (field.AutoInc) desc.SubType = fldstAUTOINC;
    desc.Offset = static_cast<int16_t>(offset);
    switch (desc.FieldType) {
      case fldZSTRING:
        if (desc.SubType >= fldstFSTRING && desc.SubType <= fldstF4STRING) {
          desc.Units1 = static_cast<int16_t>(field.Length - PrefixOf(desc.SubType));
          offset += field.Length;
        }
        break;
      case fldBLOB:
      case fldVARBYTES:
        if (desc.SubType >= fldstSTRING && desc.SubType <= fldst4STRING) {
          const int32_t prefix = PrefixOf(desc.SubType);
          desc.Units1 = static_cast<int16_t>(field.Length - prefix);
          offset += prefix == 0 ? 1 : prefix;
        }
        break;
      case fldBCD:
        desc.Units1 = 32;
        desc.Units2 = 20;
        offset += field.Length;
        break;
      default:
        desc.Units1 = static_cast<int16_t>(field.Length);
        offset += field.Length;
        break;
    }
    desc.Length = static_cast<int16_t>(field.Size);
  }
  return 0;
}

int32_t TCTConnection::GetCursorProps(TCTCursorDesc* cursor, CTCurProps& props) {
  if (const int32_t r = CheckCursor(cursor)) return r;
  props = CTCurProps();
  std::string name = fw::ExtractFileName(cursor->TableName.c_str());
  if (const auto bang = name.find('!'); bang != std::string::npos) name.erase(0, bang + 1);
  props.Name = fw::ChangeFileExt(name, "");
  props.TableType = "CTree";
  props.FieldCount = static_cast<int16_t>(cursor->FieldCount());
  const int32_t recordLength = CTDbIntf::GetCtFileInfo(FAlignment, cursor->DataFileNo, RECLEN);
  if (recordLength < 0) return CTDbIntf::GetCtIsamErr(FAlignment);
  props.RecordSize = static_cast<int16_t>(recordLength);
  props.RecordBufferSize = props.RecordSize;
  props.IndexCount = static_cast<int16_t>(cursor->IndexCount);
  props.BookmarkSize = 4;
  props.ReadOnly = (cursor->OpenFlags & kReadOnlyFlag) != 0;
  props.SeqNums = 1;
  if (cursor->KeyNo > 0) {
    const int32_t keyLength = CTDbIntf::GetCtFileInfo(FAlignment, cursor->KeyNo, RECLEN);
    cursor->KeyBuffer.assign(static_cast<size_t>(std::max(keyLength, 0)), 0);
  }
  return 0;
}

int32_t TCTConnection::SwitchToIndex(TCTCursorDesc* cursor, CTIdxDesc* desc, bool reposition) {
  if (const int32_t r = CheckCursor(cursor)) return r;
  if (desc == nullptr) return kCtInvalidIndexDesc;
  cursor->ResetRange();
  const int32_t ordinal = cursor->FindIndex(desc->Name, desc->IndexId);
  if (ordinal >= 0) {
    *desc = cursor->Indexes[static_cast<size_t>(ordinal)];
    cursor->SetIndexNo(desc->IndexId);
  }
  if (cursor->Position == cpEof) cursor->Position = cpBof;
  CTCurProps props;
  if (const int32_t r = GetCursorProps(cursor, props)) return r;
  if (!reposition) return 0;
  // Stand the new index on the data file's current record: the record image lets c-tree set
  // the current key of every index from it.
  const int32_t position = CTDbIntf::CurrentFileOffset(FAlignment, cursor->DataFileNo);
  if (position == 0) return 0;
  std::vector<uint8_t> record;
  if (const int32_t r = ReadRecord(cursor, record)) return r;
  return CTDbIntf::SetRecord(FAlignment, cursor->DataFileNo, position, record.data(),
                             static_cast<int32_t>(record.size()));
}

void TCTConnection::FindIndexName(const std::string& tablePath, const std::string& directory, std::string& fileName,
                                  int32_t& number) const {
  const std::string base = fw::ChangeFileExt(fw::ExtractFileName(tablePath.c_str()), "");
  // Characters are counted after the "!" of a superfile member, so the member part keeps the
  // eight-character file name rule.
  const auto bang = base.find('!');
  const size_t p = bang == std::string::npos ? 0 : bang + 1;
  bool exists = true;
  do {
    const size_t keep = number == 0 ? p + 8 : number < 10 ? p + 7 : number < 100 ? p + 6 : p + 5;
    const std::string stem = base.substr(0, keep);
    fileName = number == 0 ? stem + FIndexExt : stem + std::to_string(number) + FIndexExt;
    ++number;
    exists = CheckFileExists(BuildFullPath(directory, fileName));
  } while (exists && number <= 999);
}

int32_t TCTConnection::OpenSchemaFile(TCTCursorDesc* cursor) {
  if (const int32_t r = CheckCursor(cursor)) return r;
  if (!cursor->HasBlobs) return 0;
  const std::string schemaPath = fw::ChangeFileExt(cursor->TableName.c_str(), ".dsf");
  int16_t fileNo = -1;
  int32_t r = OpenTableFiles(schemaPath, static_cast<int16_t>(cursor->OpenFlags), fileNo);
  if (r != 0) {
    // Whatever stands under the name is not a usable schema file: remove it and build anew.
    const int32_t deleted = DeleteTable(std::string(), schemaPath);
    if (deleted == 0 || deleted == FNOP_ERR) {
      r = BuildSchemaFile(cursor, schemaPath);
      if (r == 0) r = OpenTableFiles(schemaPath, static_cast<int16_t>(cursor->OpenFlags), fileNo);
    }
  }
  if (r != 0) {
    const int32_t isamError = CTDbIntf::GetCtIsamErr(FAlignment);
    return isamError != 0 ? isamError : r;
  }
  cursor->SchemaFileNo = fileNo;
  return 0;
}

int32_t TCTConnection::BuildSchemaFile(TCTCursorDesc* cursor, const std::string& schemaPath) {
  const int16_t datno = cursor->DataFileNo;
  std::vector<uint8_t> image;
  int32_t r = ReadImage([&](int32_t len, void* buf) { return CTDbIntf::GetIFile(FAlignment, datno, len, buf); },
                        image);
  if (r == kCtNoResource) {
    const int32_t isamError = CTDbIntf::GetCtIsamErr(FAlignment);
    return isamError != 0 ? isamError : r;
  }
  if (r != 0) return r;
  IfilDefinition def;
  if (!DecodeIfilImage(image.data(), image.size(), RecordPacking(), def)) return kCtNoResource;
  if (CTDbIntf::GetDODA(FAlignment, datno, 0, nullptr, SCHEMA_MAP) <= 0) return kCtNoResource;
  r = ReadImage(
      [&](int32_t len, void* buf) { return CTDbIntf::GetDODA(FAlignment, datno, len, buf, SCHEMA_DODA); }, image);
  if (r != 0) return r;
  std::vector<DodaEntry> fields;
  if (!DecodeDodaImage(image.data(), image.size(), RecordPacking(), fields)) return kCtNoResource;

  // The schema file is a data file only: it carries the table's definition as resources and
  // must not create index files that would clash with the table's own. The engine picks its
  // file number.
  def.pfilnam = fw::ChangeFileExt(schemaPath, "");
  def.dfilno = -1;
  def.tfilno = -1;
  def.ix.clear();
  int16_t fileNo = -1;
  {
    IfilImage create(def, RecordPacking());
    std::string extension = ".dsf";
    r = CTDbIntf::CreateIFileXtd(FAlignment, create.Data(), extension.data(), nullptr, kPermissionMask, nullptr,
                                 CText(FPassword));
    if (r != 0) return r;
    fileNo = create.tfilno();
  }
  def.dfilno = fileNo;
  def.tfilno = fileNo;
  IfilImage stored(def, RecordPacking());
  DodaImage doda(fields, RecordPacking());
  r = CTDbIntf::PutIFile(FAlignment, stored.Data());
  if (r == 0) r = CTDbIntf::PutDODA(FAlignment, fileNo, doda.Data(), static_cast<uint16_t>(fields.size()));
  const int32_t closed = CTDbIntf::CloseRFile(FAlignment, fileNo);
  if (r == 0) r = closed;
  if (r != 0) (void)DeleteTable(std::string(), schemaPath);
  return r;
}

int32_t TCTConnection::DeleteSchemaFile(TCTCursorDesc* cursor) {
  if (const int32_t r = CheckCursor(cursor)) return r;
  if (cursor->SchemaFileNo >= 0) {
    (void)CTDbIntf::CloseRFile(FAlignment, cursor->SchemaFileNo);
    cursor->SchemaFileNo = -1;
  }
  return DeleteTable(std::string(), fw::ChangeFileExt(cursor->TableName.c_str(), ".dsf"));
}

}  // namespace Ctdb
