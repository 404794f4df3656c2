// TCTTable: creating and deleting the table's files, adding and removing indexes (dataset).
#include <algorithm>

#include "CTTblDesc.h"
#include "CtError.h"
#include "TCTConnection.h"
#include "TCTTable.h"
#include "TField.h"
#include "TFieldDefs.h"
#include "TFields.h"

namespace CTTables {

namespace {

// Logical type and subtype of each framework field type, by ordinal (the first 36 types; later
// ones are stored as untyped blobs). Strings and variable bytes get their subtype by size.
constexpr int16_t kLogicalType[36] = {
    Ctdb::fldUNKNOWN,  Ctdb::fldZSTRING, Ctdb::fldINT16,     Ctdb::fldINT32, Ctdb::fldUINT16, Ctdb::fldBOOL,
    Ctdb::fldFLOAT,    Ctdb::fldFLOAT,   Ctdb::fldBCD,       Ctdb::fldDATE,  Ctdb::fldTIME,   Ctdb::fldTIMESTAMP,
    Ctdb::fldBYTES,    Ctdb::fldVARBYTES, Ctdb::fldINT32,    Ctdb::fldBLOB,  Ctdb::fldBLOB,   Ctdb::fldBLOB,
    Ctdb::fldBLOB,     Ctdb::fldBLOB,    Ctdb::fldBLOB,      Ctdb::fldBLOB,  Ctdb::fldBLOB,   Ctdb::fldBLOB,
    Ctdb::fldBLOB,     Ctdb::fldBLOB,    Ctdb::fldBLOB,      Ctdb::fldBLOB,  Ctdb::fldBLOB,   Ctdb::fldBLOB,
    Ctdb::fldBLOB,     Ctdb::fldBLOB,    Ctdb::fldBLOB,      Ctdb::fldBLOB,  Ctdb::fldBLOB,   Ctdb::fldBLOB,
};
constexpr int16_t kSubType[36] = {
    0, 0, 0, 0, 0, 0, 0, Ctdb::fldstMONEY, 0, 0, 0, 0, 0, 0, Ctdb::fldstAUTOINC, 0, Ctdb::fldstSTRING, 0,
    Ctdb::fldstSTRING, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0,
};

// Subtype of a variable-length field: the smallest length prefix that holds `size`.
int16_t VariableSubType(int Size) {
  if (Size < 255) return Ctdb::fldstPSTRING;
  return Size >= 65535 ? Ctdb::fldst4STRING : Ctdb::fldst2STRING;
}

// Bytes of the length prefix a string or blob subtype stores in front of its data.
int16_t PrefixOf(int16_t SubType) {
  switch (SubType) {
    case Ctdb::fldstFPSTRING:
    case Ctdb::fldstPSTRING: return 1;
    case Ctdb::fldstF2STRING:
    case Ctdb::fldst2STRING: return 2;
    case Ctdb::fldstF4STRING:
    case Ctdb::fldst4STRING: return 4;
    default: return 0;
  }
}

// The stored width of an encoded field, which the connection lays the record out by: fixed
// types their own width, strings and blobs their units plus length prefix.
int16_t StoredLength(const Ctdb::CTFldDesc& Desc) {
  switch (Desc.FieldType) {
    case Ctdb::fldBOOL: return 1;
    case Ctdb::fldINT16:
    case Ctdb::fldUINT16: return 2;
    case Ctdb::fldINT32:
    case Ctdb::fldUINT32:
    case Ctdb::fldDATE:
    case Ctdb::fldTIME: return 4;
    case Ctdb::fldFLOAT: return Desc.SubType == Ctdb::fldstMONEY ? 4 : 8;
    case Ctdb::fldTIMESTAMP: return 8;
    case Ctdb::fldBCD: return 10;
    case Ctdb::fldBLOB:
      // An empty memo still takes its terminating zero: the fields after it start behind it.
      if (Desc.SubType == Ctdb::fldstSTRING) return static_cast<int16_t>(std::clamp<int>(Desc.Units1, 1, 0x7FFF));
      break;
    case Ctdb::fldZSTRING:
      if (Desc.SubType == Ctdb::fldstCHARU) return 1;
      break;
    default: break;
  }
  return static_cast<int16_t>(std::min<int>(Desc.Units1 + PrefixOf(Desc.SubType), 0x7FFF));
}

}  // namespace

void TCTTable::EncodeFieldDesc(Ctdb::CTFldDesc& Desc, const std::string& Name, fw::TFieldType DataType, int Size) {
  const auto ordinal = static_cast<size_t>(DataType);
  Desc.Name = Name;
  Desc.FieldType = ordinal < 36 ? kLogicalType[ordinal] : static_cast<int16_t>(Ctdb::fldBLOB);
  Desc.SubType = ordinal < 36 ? kSubType[ordinal] : 0;
  const auto units = static_cast<int16_t>(Size);
  switch (DataType) {
    case fw::ftString:
      Desc.SubType = Size == 1    ? Ctdb::fldstCHARU
                     : Size < 255 ? Ctdb::fldstFPSTRING
                     : Size >= 65535 ? Ctdb::fldstF4STRING
                                     : Ctdb::fldstF2STRING;
      Desc.Units1 = units;
      break;
    case fw::ftBCD:
      Desc.Units1 = 32;
      Desc.Units2 = units;
      break;
    case fw::ftBytes: Desc.Units1 = units; break;
    case fw::ftVarBytes:
    case fw::ftBlob:
    case fw::ftGraphic:
    case fw::ftParadoxOle:
    case fw::ftDBaseOle:
    case fw::ftTypedBinary:
      // A binary blob without a size has no bound: it gets the 4-byte length form.
      Desc.SubType = DataType != fw::ftVarBytes && Size <= 0 ? int16_t{Ctdb::fldst4STRING} : VariableSubType(Size);
      Desc.Units1 = units;
      break;
    case fw::ftMemo:
    case fw::ftFmtMemo: Desc.Units1 = units; break;
    default: break;
  }
}

void TCTTable::CreateTable() {
  CheckInactive();
  fw::TFieldDefs& fieldDefs = *FieldDefs();
  if (fieldDefs.Count() == 0) {
    const fw::TFields& fields = *Fields();
    for (int i = 0; i < fields.Count(); ++i) {
      const fw::TField* field = fields.Fields(i);
      // Calculated and lookup fields are computed, not stored.
      if (field->FieldKind() != fw::fkData) continue;
      fieldDefs.Add(field->FieldName(), field->DataType(), field->Size(), field->Required());
    }
  }

  // The new table numbers its fields by position: definitions copied from another layout may
  // still carry their old numbers, which the index keys below are looked up by.
  for (int i = 0; i < fieldDefs.Count(); ++i) fieldDefs.Items(i)->SetFieldNo(i + 1);

  Ctdb::CTTblDesc desc;
  desc.TableType = "CTree";
  desc.Name = FTableName;

  Ctdb::TFieldDescList encoded(static_cast<size_t>(fieldDefs.Count()));
  for (int i = 0; i < fieldDefs.Count(); ++i) {
    const fw::TFieldDef& def = *fieldDefs.Items(i);
    // Types from ftInteger on carry sizes of at most 0xFFFF; BCD carries its scale as the size.
    int size = def.Size();
    if (def.DataType() >= fw::ftInteger) size = std::min(size, 0xFFFF);
    // Fixed-width text and bytes live in the record, whose length the storage keeps in 16 bits:
    // a larger size would be cut to another width here, so it is refused before anything exists.
    if ((def.DataType() == fw::ftString || def.DataType() == fw::ftBytes) && size > Ctdb::kCtMaxRecordLength)
      CTDbIntf::CtError(Ctdb::kCtRecordTooLong);
    Ctdb::CTFldDesc& field = encoded[static_cast<size_t>(i)];
    EncodeFieldDesc(field, def.Name(), def.DataType(), size);
    field.FieldNo = static_cast<uint16_t>(i + 1);
    field.Length = StoredLength(field);
  }
  CTDbIntf::CtError(Ctdb::TCTConnection::TranslateRecordStructure(encoded, static_cast<int32_t>(encoded.size()),
                                                                  desc.Fields));

  // Key fields are looked up in FieldDefs by EncodeIndexDesc.
  const TCTIndexDefs& indexDefs = *IndexDefs();
  desc.Indexes.resize(static_cast<size_t>(indexDefs.Count()));
  for (int i = 0; i < indexDefs.Count(); ++i) {
    const TCTIndexDef& def = *indexDefs.Items(i);
    EncodeIndexDesc(desc.Indexes[static_cast<size_t>(i)], def.Name(), def.GetFields(), def.GetExpression(),
                    def.Flag4(), def.Flag5(), def.Options());
  }

  Conn().SetActive(true);
  // An existing table of the same name is always replaced.
  CTDbIntf::CtError(Conn().CreateTable(FDatabase, true, desc));
}

void TCTTable::DeleteTable() {
  Close();
  Conn().SetActive(true);  // a table that was never opened has not activated it
  std::string directory, name;
  StorageNames(directory, name);
  CTDbIntf::CtError(Conn().DeleteTable(directory, name));
}

void TCTTable::AddIndex(const std::string& Name, const std::string& Fields, const std::string& Expression,
                        bool Flag4, bool Flag5, fw::TIndexOptions Options) {
  IndexDefs()->SetUpdated(false);
  IndexDefs()->Add(Name, Fields, Expression, Flag4, Flag5, Options);
  Ctdb::CTIdxDesc desc;
  EncodeIndexDesc(desc, Name, Fields, Expression, Flag4, Flag5, Options);
  CTDbIntf::CtError(Conn().AddIndex(FCursor.get(), &desc));
}

void TCTTable::OpenIndex(const std::string& IndexFileName) {
  CheckActive();
  IndexDefs()->SetUpdated(false);
  Ctdb::CTIdxDesc opened;
  CTDbIntf::CtError(Conn().OpenIndex(FCursor.get(), IndexFileName, &opened));
  // The driver fills a descriptor of the opened index: it becomes the current one, and the
  // cursor follows, so that IndexName and the order agree.
  SetIndexName(opened.Name);
}

void TCTTable::DeleteIndex(const std::string& Name) {
  // The name is looked up in the index definitions: read them from the open table first, or a
  // call right after Open would find nothing and silently do nothing.
  if (FCursor != nullptr) IndexDefs()->Update();
  const int position = IndexDefs()->IndexOf(Name);
  if (position < 0) return;
  const TCTIndexDef& def = *IndexDefs()->Items(position);
  const std::string deletedName = def.Name();
  IndexDefs()->SetUpdated(false);
  Ctdb::CTIdxDesc desc;
  EncodeIndexDesc(desc, def.Name(), def.GetFields(), def.GetExpression(), def.Flag4(), def.Flag5(), def.Options());
  desc.IndexId = -1;  // no key number: the connection finds the index by its name
  CTDbIntf::CtError(Conn().DeleteIndex(FCursor.get(), &desc));

  if (IndexName() != deletedName) return;
  const int32_t count = FCursor->GetIndexCount();
  std::string next;
  if (position < count) {
    next = FCursor->GetIndexes(position).Name;
  } else if (count >= 1) {
    // The descriptor one past the last: an empty one, so the table is left without a current
    // index name, as applications of the table rely on.
    next = FCursor->GetIndexes(count).Name;
  }
  SetIndexName(next);
}

}  // namespace CTTables
