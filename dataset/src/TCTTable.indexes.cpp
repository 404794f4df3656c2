// TCTTable: index definitions and selection, key seeks, ranges and the index hook (dataset, unit CTTables).
#include <algorithm>
#include <cstring>

#include "CtError.h"
#include "StringUtils.h"
#include "TBcd.h"
#include "TCTConnection.h"
#include "TCTTable.h"

namespace CTTables {

namespace {

constexpr int32_t kNotEditing = 1121;
constexpr int32_t kFieldIndexOutOfRange = 1125;
constexpr int32_t kCannotAccessIndexField = 1126;
constexpr int kMaxKeyFields = 256;

std::string FileNamePart(const std::string& path) {
  const size_t slash = path.find_last_of("/\\");
  return slash == std::string::npos ? path : path.substr(slash + 1);
}

// The name starting at `pos` of a ";"-separated list, trimmed; `pos` moves past its separator.
std::string ExtractFieldName(const std::string& names, size_t& pos) {
  size_t end = names.find(';', pos);
  if (end == std::string::npos) end = names.size();
  std::string name = fw::Trim(names.substr(pos, end - pos));
  pos = end + 1;
  return name;
}

int16_t Word(bool value) { return value ? Ctdb::kWordTrue : Ctdb::kWordFalse; }

}  // namespace

// --- Descriptor coding -------------------------------------------------------------------------

void TCTTable::DecodeIndexDesc(const Ctdb::CTIdxDesc& Desc, std::string& Name, std::string& Fields,
                               std::string& Expression, bool& Flag4, bool& Flag5, fw::TIndexOptions& Options) const {
  Name = FileNamePart(Desc.Name);
  Options = fw::TIndexOptions{};
  if (Desc.Primary != 0) Options.Include(fw::ixPrimary);
  if (Desc.Unique != 0) Options.Include(fw::ixUnique);
  if (Desc.Descending != 0) Options.Include(fw::ixDescending);
  if (Desc.CaseInsensitive != 0) Options.Include(fw::ixCaseInsensitive);
  Fields.clear();
  const int count = std::clamp<int>(Desc.FieldsInKey, 0, kMaxKeyFields);
  for (int i = 0; i < count; ++i) {
    const int number = Desc.KeyFields[static_cast<size_t>(i)];
    if (number < 1 || number > FieldDefs()->Count()) continue;
    if (!Fields.empty()) Fields += ';';
    Fields += FieldDefs()->Items(number - 1)->Name();
  }
  Expression.clear();
  if (Desc.ExpressionIndex != 0) {
    Options.Include(fw::ixExpression);
    Expression = Desc.Expression;
  }
  // Read unsigned: any set bit counts.
  Flag4 = static_cast<uint16_t>(Desc.Maintained) > 0;
  Flag5 = static_cast<uint16_t>(Desc.Subset) > 0;
}

void TCTTable::EncodeIndexDesc(Ctdb::CTIdxDesc& Desc, const std::string& Name, const std::string& Fields,
                               const std::string& Expression, bool Flag4, bool Flag5,
                               fw::TIndexOptions Options) const {
  Desc = Ctdb::CTIdxDesc{};
  Desc.Name = Name;
  Desc.Primary = Word(Options.Contains(fw::ixPrimary));
  Desc.Unique = Word(Options.Contains(fw::ixUnique));
  Desc.Descending = Word(Options.Contains(fw::ixDescending));
  Desc.CaseInsensitive = Word(Options.Contains(fw::ixCaseInsensitive));
  Desc.ExpressionIndex = Word(Options.Contains(fw::ixExpression));
  Desc.Maintained = Word(Flag4);
  Desc.Subset = Word(Flag5);
  if (Options.Contains(fw::ixExpression)) Desc.Expression = Expression;
  size_t pos = 0;
  while (pos < Fields.size() && Desc.FieldsInKey < kMaxKeyFields) {
    const std::string name = ExtractFieldName(Fields, pos);
    const auto n = static_cast<size_t>(Desc.FieldsInKey);
    Desc.KeyFields[n] = FieldDefs()->Find(name)->FieldNo();
    Desc.DescendingFields[n] = Desc.Descending != 0 ? 1 : 0;
    ++Desc.FieldsInKey;
  }
}

// --- Index selection and lists -------------------------------------------------------------------

void TCTTable::AfterIndexSwitch() {
  FRecordCountValid = false;
  FRecNoCache = -1;
}

void TCTTable::SetIndexName(const std::string& Value) {
  if (FCursor == nullptr) {
    FIndexDesc.Name = Value;
    FIndexDesc.IndexId = -1;
    FIndexFieldNames.clear();
    return;
  }
  CheckBrowseMode();
  FIndexFieldNames.clear();
  FIndexDesc = FCursor->GetIndexDesc(Value);
  if (FIndexDesc.IndexId >= 0) {
    CTDbIntf::CtError(Conn().SwitchToIndex(FCursor.get(), &FIndexDesc, true));
    AfterIndexSwitch();
    Resync(fw::TResyncMode{});
  }
}

std::string TCTTable::IndexFieldNames() const {
  if (FCursor == nullptr) return FIndexFieldNames;
  std::string names;
  {
    for (int i = 1; i <= FCursor->GetIndexFieldNo(); ++i) {
      const int number = FCursor->GetIndexFields(i);
      if (number < 1 || number > FieldDefs()->Count()) continue;
      if (!names.empty()) names += ';';
      names += FieldDefs()->Items(number - 1)->Name();
    }
  }
  return names;
}

void TCTTable::SetIndexFieldNames(const std::string& Value) {
  if (FCursor == nullptr) {
    FIndexDesc.Name.clear();
    FIndexDesc.IndexId = -1;
    FIndexFieldNames = Value;
    return;
  }
  if (fw::Trim(Value).empty()) {
    // Back to the primary index; a table without one keeps its order.
    const int32_t primary = FCursor->FindIndex("", -1);
    if (primary >= 0) SetIndexName(FCursor->GetIndexes(primary).Name);
    return;
  }
  FIndexDefs->SetUpdated(false);
  FIndexDefs->Update();
  SetIndexName(FIndexDefs->FindIndexForFields(Value)->Name());
  FIndexFieldNames = Value;  // chosen again by them when the table is reopened
}

void TCTTable::GetIndexNames(fw::TStrings& List) {
  UpdateIndexDefs();
  List.BeginUpdate();
  List.Clear();
  for (int i = 0; i < FIndexDefs->Count(); ++i)
    if (!FIndexDefs->Items(i)->Name().empty()) List.Add(FIndexDefs->Items(i)->Name());
  List.EndUpdate();
}

void TCTTable::UpdateIndexDefs() {
  std::unique_ptr<Ctdb::TCTCursorDesc> temporary;
  Ctdb::TCTCursorDesc* cursor = FCursor.get();
  if (FOpenFlag == Ctdb::ofClosed || cursor == nullptr) {
    OpenTemporaryCursor(temporary);
    cursor = temporary.get();
  }
  try {
    if (temporary != nullptr) CTDbIntf::CtError(Conn().InitIndexes(cursor));
    if (FieldDefs()->Count() == 0) LoadFieldDefs(cursor);
    FIndexDefs->Clear();
    for (int i = 0; i < cursor->GetIndexCount(); ++i) {
      const Ctdb::CTIdxDesc desc = cursor->GetIndexes(i);
      std::string name, fields, expression;
      bool flag4 = false, flag5 = false;
      fw::TIndexOptions options;
      DecodeIndexDesc(desc, name, fields, expression, flag4, flag5, options);
      FIndexDefs->Add(name, fields, expression, flag4, flag5, options);
    }
    FIndexDefs->SetUpdated(true);
  } catch (...) {
    if (temporary != nullptr) static_cast<void>(Conn().CloseCursor(temporary));
    throw;
  }
  if (temporary != nullptr) static_cast<void>(Conn().CloseCursor(temporary));
}

int TCTTable::GetIndexFieldCount() const { return FCursor != nullptr ? FCursor->GetIndexFieldNo() : 0; }

fw::TField* TCTTable::GetIndexField(int Index) const {
  CheckActive();
  if (Index < 0 || Index >= GetIndexFieldCount()) CTDbIntf::CtError(kFieldIndexOutOfRange);
  const int number = FCursor->GetIndexFields(Index + 1);
  if (fw::TField* field = Fields()->FieldByNumber(number)) return field;
  const std::string name = number >= 1 && number <= FieldDefs()->Count() ? FieldDefs()->Items(number - 1)->Name() : std::to_string(number);
  CTDbIntf::CtErrorFmt(kCannotAccessIndexField, {fw::Variant(name)});
  return nullptr;
}

bool TCTTable::GetIsIndexField(const fw::TField* Field) const {
  if (FCursor == nullptr || Field == nullptr) return false;
  for (int i = 1; i <= FCursor->GetIndexFieldNo(); ++i)
    if (FCursor->GetIndexFields(i) == Field->FieldNo()) return true;
  return false;
}

// --- Keys ---------------------------------------------------------------------------------------

void TCTTable::CheckSetKeyMode() const {
  if (State() != fw::dsSetKey) CTDbIntf::CtError(kNotEditing);
}

void TCTTable::EnterKeyMode(TRangeFlag Flag, std::unique_ptr<TCTRecordBuffer>& Buffer) {
  CheckBrowseMode();
  FRangeFlag = Flag;
  CreateRangeBuffer(Buffer, nullptr, nullptr);
  if (Flag == rfNone) FKeyFieldsSet = 0;
  SetState(fw::dsSetKey);
}

void TCTTable::SetKey() { EnterKeyMode(rfNone, FKeyBuffer); }

bool TCTTable::FindPartialKey(TCTRecordBuffer* Key, int Fields) {
  // Seek the first key at or after the given leading fields, then check those fields match.
  Ctdb::TCTConnection& conn = Conn();
  if (conn.GotoGTKey(FCursor.get(), Key, true) != 0) return false;
  TCTRecordBuffer found(FCursor.get());
  if (conn.GetCurrentRecord(FCursor.get(), Ctdb::dbiNOLOCK, &found) != 0) return false;
  std::vector<uint8_t> wanted, got;
  const int32_t length = KeyLengthOf(Key, wanted, Fields);
  if (length < 0 || KeyLengthOf(&found, got, Fields) != length) return false;
  return std::memcmp(wanted.data(), got.data(), static_cast<size_t>(length)) == 0;
}

bool TCTTable::GotoKey() {
  CheckBrowseMode();
  if (FKeyBuffer == nullptr) return false;
  const bool partial = FKeyFieldsSet > 0 && FKeyFieldsSet < GetIndexFieldCount();
  const bool found = partial ? FindPartialKey(FKeyBuffer.get(), FKeyFieldsSet)
                             : Conn().GotoKey(FCursor.get(), FKeyBuffer.get()) == 0;
  if (!found) return false;
  Resync(fw::TResyncMode{fw::rmExact, fw::rmCenter});
  return true;
}

bool TCTTable::GotoNearest(bool Greater) {
  CheckBrowseMode();
  if (FKeyBuffer == nullptr) return false;
  const int32_t code = Greater ? Conn().GotoGTKey(FCursor.get(), FKeyBuffer.get(), !FKeyExclusive)
                               : Conn().GotoLTKey(FCursor.get(), FKeyBuffer.get(), !FKeyExclusive);
  if (code != 0) return false;
  Resync(fw::TResyncMode{fw::rmCenter});
  return true;
}

void TCTTable::AssignKeyValues(const std::vector<fw::Variant>& Values) {
  for (size_t i = 0; i < Values.size(); ++i) GetIndexField(static_cast<int>(i))->AssignValue(Values[i]);
}

bool TCTTable::FindKey(const std::vector<fw::Variant>& KeyValues) {
  SetKey();
  AssignKeyValues(KeyValues);
  return GotoKey();
}

bool TCTTable::FindNearest(const std::vector<fw::Variant>& KeyValues, bool Greater) {
  SetKey();
  AssignKeyValues(KeyValues);
  return GotoNearest(Greater);
}

// --- Ranges -------------------------------------------------------------------------------------

void TCTTable::SetRangeStart() { EnterKeyMode(rfRangeStart, FRangeStart); }
void TCTTable::SetRangeEnd() { EnterKeyMode(rfRangeEnd, FRangeEnd); }
// Editing a range end starts from an empty buffer too, exactly like setting it.
void TCTTable::EditRangeStart() { EnterKeyMode(rfRangeStart, FRangeStart); }
void TCTTable::EditRangeEnd() { EnterKeyMode(rfRangeEnd, FRangeEnd); }

void TCTTable::ApplyRange() {
  CheckBrowseMode();
  if (SetCursorRange()) First();
}

void TCTTable::CancelRange() {
  ResetCursorRange();
  CheckBrowseMode();
  if (Active() && !IsEmpty()) {
    AfterIndexSwitch();
    UpdateCursorPos();
    Resync(fw::TResyncMode{});
  } else if (Active()) {
    First();
  }
}

void TCTTable::SetRange(const std::vector<fw::Variant>& StartValues, const std::vector<fw::Variant>& EndValues) {
  CheckBrowseMode();
  SetState(fw::dsSetKey);
  CreateRangeBuffer(FRangeStart, nullptr, nullptr);
  FRangeFlag = rfRangeStart;
  AssignKeyValues(StartValues);
  CreateRangeBuffer(FRangeEnd, nullptr, nullptr);
  FRangeFlag = rfRangeEnd;
  AssignKeyValues(EndValues);
  ApplyRange();
}

int32_t TCTTable::KeyLengthOf(TCTRecordBuffer* Buffer, std::vector<uint8_t>& Key, int Fields) {
  if (Buffer == nullptr) {
    Key.clear();
    return 0;
  }
  CTDbIntf::CtError(Conn().ExtractKey(FCursor.get(), Buffer, Key));
  // More names than key fields compare the whole key.
  const int used = std::min(Fields, GetIndexFieldCount());
  return used > 0 ? std::min<int32_t>(FCursor->GetKeyLen(used), static_cast<int32_t>(Key.size())) : 0;
}

bool TCTTable::SetCursorRange() {
  if (FCursor == nullptr) return FRangeFlag != rfNone;
  switch (FRangeFlag) {
    case rfRangeStart:
    case rfRangeEnd:
    case rfMasterDetail: {
      // A user range compares as many key fields as names were ever assigned in dsSetKey; a
      // master/detail range compares the master's fields and is inclusive at both ends.
      const bool user = FRangeFlag != rfMasterDetail;
      const int fields = user ? FKeyFieldNames->Count() : FMasterFieldList->Count();
      std::vector<uint8_t> low, high;
      const int32_t lowLength = KeyLengthOf(FRangeStart.get(), low, fields);
      const int32_t highLength = KeyLengthOf(FRangeEnd.get(), high, fields);
      const bool inclusive = user ? !FKeyExclusive : true;
      FCursor->SetRange(low.data(), lowLength, inclusive, high.data(), highLength, inclusive);
      AfterIndexSwitch();
      break;
    }
    case rfNone:
      ResetCursorRange();
      break;
  }
  return FRangeFlag != rfNone;
}

bool TCTTable::ResetCursorRange() {
  FRangeStart.reset();
  FRangeEnd.reset();
  if (FCursor != nullptr) FCursor->ResetRange();
  FRangeFlag = rfNone;
  FRecordCountValid = false;
  return true;
}

void TCTTable::CreateRangeBuffer(std::unique_ptr<TCTRecordBuffer>& Buffer, fw::TDataSet* Master,
                                 const fw::TStrings* FieldPairs) {
  if (Buffer == nullptr) Buffer = std::make_unique<TCTRecordBuffer>(FCursor.get());
  Buffer->InitRecord();
  if (Master == nullptr || FieldPairs == nullptr) return;
  for (int i = 0; i < FieldPairs->Count(); ++i) {
    const std::string entry = FieldPairs->Strings(i);
    const size_t equals = entry.find('=');
    const std::string masterName = equals == std::string::npos ? entry : entry.substr(0, equals);
    const std::string detailName = equals == std::string::npos ? entry : entry.substr(equals + 1);
    fw::TField* master = Master->FieldByName(masterName);
    fw::TField* detail = FieldByName(detailName);
    const int32_t number = detail->FieldNo();
    Ctdb::TCTConnection& conn = Conn();
    switch (detail->DataType()) {
      case fw::ftString: {
        const std::string text = master->AsString();
        std::vector<char> value(static_cast<size_t>(std::max(detail->DataSize(), 1)), '\0');
        std::memcpy(value.data(), text.data(), std::min(text.size(), value.size() - 1));
        CTDbIntf::CtError(conn.SetField(FCursor.get(), number, Buffer.get(), value.data()));
        break;
      }
      case fw::ftSmallint: {
        const auto value = static_cast<int16_t>(master->AsInteger());
        CTDbIntf::CtError(conn.SetField(FCursor.get(), number, Buffer.get(), &value));
        break;
      }
      case fw::ftWord: {
        const auto value = static_cast<uint16_t>(master->AsInteger());
        CTDbIntf::CtError(conn.SetField(FCursor.get(), number, Buffer.get(), &value));
        break;
      }
      case fw::ftInteger: {
        const int32_t value = master->AsInteger();
        CTDbIntf::CtError(conn.SetField(FCursor.get(), number, Buffer.get(), &value));
        break;
      }
      case fw::ftBoolean: {
        const int16_t value = master->AsBoolean() ? -1 : 0;
        CTDbIntf::CtError(conn.SetField(FCursor.get(), number, Buffer.get(), &value));
        break;
      }
      case fw::ftFloat:
      case fw::ftCurrency: {
        const double value = master->AsFloat();
        CTDbIntf::CtError(conn.SetField(FCursor.get(), number, Buffer.get(), &value));
        break;
      }
      case fw::ftBCD: {
        fw::TBcd value{};
        if (!fw::CurrToFMTBCD(master->AsCurrency(), value, 20, 4)) CTDbIntf::CtError(Ctdb::kCtValueDoesNotFit);
        CTDbIntf::CtError(conn.SetField(FCursor.get(), number, Buffer.get(), &value));
        break;
      }
      case fw::ftDate:
      case fw::ftTime:
      case fw::ftDateTime: {
        // Through the detail field's own native form, so each type gets its layout.
        std::vector<uint8_t> native(static_cast<size_t>(std::max(detail->DataSize(), 8)), 0);
        const double value = master->AsDateTime();
        DataConvert(detail, &value, native.data(), true);
        CTDbIntf::CtError(conn.SetField(FCursor.get(), number, Buffer.get(), native.data()));
        break;
      }
      case fw::ftMemo:
      case fw::ftFmtMemo:
        CopyMemoToKey(*Buffer, detail, master);
        break;
      default:
        break;
    }
  }
  Buffer->FillRecord();
}

// --- Index hook -----------------------------------------------------------------------------------

void TCTTable::SetOnIndexRecord(const TCTIndexRecordEvent& Value) {
  FOnIndexRecord = Value;
  if (ComponentState().Contains(fw::csLoading) || ComponentState().Contains(fw::csDesigning)) return;
  if (Connection() == nullptr) return;
  if (FOnIndexRecord) {
    // The hook outlives no table: once this table is gone the token is dead and the hook idle.
    Connection()->OnIndexKey = [token = std::weak_ptr<TCTTable*>(FHookToken)](
                                   Ctdb::TCTCursorDesc*, Ctdb::CTIdxDesc* desc, const void* rec, int32_t len,
                                   bool& accept) {
      if (const auto table = token.lock()) (*table)->DoIndexKey(desc, rec, len, accept);
    };
  } else {
    Connection()->OnIndexKey = nullptr;
  }
}

void TCTTable::DoIndexKey(Ctdb::CTIdxDesc* IndexDesc, const void* RecPtr, int32_t RecLen, bool& Accept) {
  if (!FOnIndexRecord || RecPtr == nullptr) return;
  CreateRangeBuffer(FIndexRecord, nullptr, nullptr);
  FIndexRecord->SetRecord(RecPtr, RecLen);
  TCTRecordBuffer* saved = FFilterBuffer;
  FFilterBuffer = FIndexRecord.get();
  {
    fw::TTempState filtering(this, fw::dsFilter);
    FOnIndexRecord(this, IndexDesc != nullptr ? IndexDesc->Name : std::string(), Accept);
  }
  FFilterBuffer = saved;
}

}  // namespace CTTables
