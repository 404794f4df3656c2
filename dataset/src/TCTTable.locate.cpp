// TCTTable: Locate and Lookup, by an index's key range or by reading the table (dataset, unit CTTables).
#include <algorithm>
#include <cstring>

#include "CtError.h"
#include "LocateMatch.h"
#include "TCTConnection.h"
#include "TCTTable.h"

namespace CTTables {

namespace {

constexpr int32_t kNoRecord = 101;

fw::TRecordBuffer AsRecordBuffer(TCTRecordBuffer* Buffer) { return reinterpret_cast<fw::TRecordBuffer>(Buffer); }

// The cursor as a search found it. The search moves in a c-tree context of its own and may switch
// the index and set a key range; Restore puts back the context, the index, the range and the
// cursor's own position and sequence number, so the table stands where it stood.
class SearchState {
 public:
  SearchState(Ctdb::TCTConnection& Conn, Ctdb::TCTCursorDesc* Cursor, const Ctdb::CTIdxDesc& TableIndex)
      : FConn(Conn),
        FCursor(Cursor),
        FTableIndex(TableIndex),
        FPosition(Cursor->Position),
        FSeqNo(Cursor->SeqNo),
        FRangeActive(Cursor->RangeActive),
        FRangeLow(Cursor->RangeLow),
        FRangeLowInclusive(Cursor->RangeLowInclusive),
        FRangeHigh(Cursor->RangeHigh),
        FRangeHighInclusive(Cursor->RangeHighInclusive) {
    CTDbIntf::CtError(FConn.SetContext(FCursor));
  }
  ~SearchState() {
    try {
      Restore();
    } catch (...) {
      // Only reached while another exception is on its way; that one is the one to report.
    }
  }
  SearchState(const SearchState&) = delete;
  SearchState& operator=(const SearchState&) = delete;

  void SwitchTo(Ctdb::CTIdxDesc Index) {
    FSwitched = true;
    CTDbIntf::CtError(FConn.SwitchToIndex(FCursor, &Index, false));
  }

  void Restore() {
    if (FRestored) return;
    FRestored = true;
    const int32_t context = FConn.RestoreContext(FCursor);
    int32_t index = 0;
    if (FSwitched) {
      Ctdb::CTIdxDesc desc = FTableIndex;
      index = FConn.SwitchToIndex(FCursor, &desc, false);
    }
    FCursor->ResetRange();
    if (FRangeActive)
      FCursor->SetRange(FRangeLow.data(), static_cast<int32_t>(FRangeLow.size()), FRangeLowInclusive,
                        FRangeHigh.data(), static_cast<int32_t>(FRangeHigh.size()), FRangeHighInclusive);
    FCursor->Position = FPosition;
    FCursor->SeqNo = FSeqNo;
    CTDbIntf::CtError(context);
    CTDbIntf::CtError(index);
  }

 private:
  Ctdb::TCTConnection& FConn;
  Ctdb::TCTCursorDesc* FCursor;
  Ctdb::CTIdxDesc FTableIndex;
  Ctdb::TCTPosition FPosition;
  int32_t FSeqNo;
  bool FRangeActive;
  std::vector<uint8_t> FRangeLow;
  bool FRangeLowInclusive;
  std::vector<uint8_t> FRangeHigh;
  bool FRangeHighInclusive;
  bool FSwitched = false;
  bool FRestored = false;
};

}  // namespace

bool TCTTable::Locate(const std::string& KeyFields, const fw::Variant& KeyValues, fw::TLocateOptions Options) {
  CheckBiDirectional();
  DoBeforeScroll();
  const bool found = LocateRecord(KeyFields, KeyValues, Options, true);
  if (found) {
    Resync(fw::TResyncMode{fw::rmExact, fw::rmCenter});
    DoAfterScroll();
  }
  return found;
}

bool TCTTable::LocateRecord(const std::string& KeyFields, const fw::Variant& KeyValues, fw::TLocateOptions Options,
                            bool SyncCursor) {
  CheckBrowseMode();
  TCTRecordBuffer found(FCursor.get());
  if (!FindRecord(KeyFields, KeyValues, Options, found)) return false;
  if (SyncCursor) {
    int32_t position = 0;
    std::memcpy(&position, found.GetBookmark(), sizeof position);
    CTDbIntf::CtError(Conn().SetToBookMark(FCursor.get(), position));
    CursorPosChanged();
  }
  return true;
}

fw::Variant TCTTable::Lookup(const std::string& KeyFields, const fw::Variant& KeyValues,
                             const std::string& ResultFields) {
  CheckBiDirectional();
  CheckActive();
  // A pending edit is left alone (the search reads what is stored): a lookup field of a record
  // being edited asks this while its own table is in dsEdit, which must not post it.
  TCTRecordBuffer found(FCursor.get());
  if (!FindRecord(KeyFields, KeyValues, fw::TLocateOptions{}, found)) return fw::Null();
  GetCalcFields(AsRecordBuffer(&found));
  TCTRecordBuffer* saved = FFilterBuffer;
  FFilterBuffer = &found;
  fw::Variant result;
  try {
    fw::TTempState reading(this, fw::dsFilter);
    result = FieldValues(ResultFields);
  } catch (...) {
    FFilterBuffer = saved;
    throw;
  }
  FFilterBuffer = saved;
  return result;
}

bool TCTTable::FindRecord(const std::string& KeyFields, const fw::Variant& KeyValues, fw::TLocateOptions Options,
                          TCTRecordBuffer& Found) {
  std::vector<fw::TField*> fields;
  GetFieldList(fields, KeyFields);
  if (fields.empty()) return false;
  std::vector<fw::Variant> values;
  if (fields.size() == 1) {
    values.push_back(KeyValues.IsArray() && KeyValues.ArrayLength() == 1 ? KeyValues[0] : KeyValues);
  } else {
    if (!KeyValues.IsArray() || KeyValues.ArrayLength() < static_cast<int>(fields.size()))
      fw::DatabaseError("Searching " + std::to_string(fields.size()) + " fields needs an array of " +
                            std::to_string(fields.size()) + " key values",
                        this);
    for (size_t i = 0; i < fields.size(); ++i) values.push_back(KeyValues[static_cast<int>(i)]);
  }
  LocateMatch match(this, fields, values, Options);
  Found.InitRecord();
  Found.CalcFields().Clear(CalcFieldsSize());
  if (!match.Satisfiable()) return false;
  // With a range in force the records the table shows are those of its range: they are read in
  // the table's order, so the range stays as it is.
  int best = 0;
  const int ordinal = FCursor->RangeActive ? -1 : ChooseLocateIndex(match, best);
  const bool found = ordinal >= 0 ? FindByIndex(match, ordinal, best, Found) : FindByScan(match, Found);
  if (found) Found.SetBookmarkFlag(fw::bfCurrent);
  return found;
}

int TCTTable::ChooseLocateIndex(const LocateMatch& Match, int& BestCount) const {
  const std::vector<LocateCondition>& conditions = Match.Conditions();
  int chosen = -1;
  BestCount = 0;
  for (size_t i = 0; i < FCursor->Indexes.size(); ++i) {
    const Ctdb::CTIdxDesc& index = FCursor->Indexes[i];
    // Only indexes that hold a key for every record will do: c-tree keeps them (not the
    // index-record hook) and no condition leaves records out.
    if (index.Maintained == 0 || !index.Condition.empty() || index.IndexId < 0) continue;
    int count = 0;
    // A null key value ends the fields an index can find: the records holding it may have no key.
    while (count < static_cast<int>(conditions.size()) && count < index.FieldsInKey) {
      const LocateCondition& c = conditions[static_cast<size_t>(count)];
      if (c.Kind == lkNull || c.Field->FieldKind() != fw::fkData || c.Field->IsBlob() ||
          index.KeyFields[static_cast<size_t>(count)] != c.Field->FieldNo())
        break;
      ++count;
    }
    // Ties keep the lower ordinal.
    if (count > BestCount) {
      BestCount = count;
      chosen = static_cast<int>(i);
    }
  }
  return chosen;
}

bool TCTTable::FindByIndex(LocateMatch& Match, int Ordinal, int BestCount, TCTRecordBuffer& Found) {
  Ctdb::TCTConnection& conn = Conn();
  Ctdb::TCTCursorDesc* cursor = FCursor.get();
  const std::vector<LocateCondition>& conditions = Match.Conditions();
  const Ctdb::CTIdxDesc index = cursor->Indexes[static_cast<size_t>(Ordinal)];

  // The key values of the covered fields, in their stored form, make the range's key.
  TCTRecordBuffer keyRecord(cursor);
  keyRecord.InitRecord();
  for (int i = 0; i < BestCount; ++i) {
    const LocateCondition& c = conditions[static_cast<size_t>(i)];
    CTDbIntf::CtError(conn.SetField(cursor, c.Field->FieldNo(), &keyRecord, c.Native.data()));
  }

  SearchState state(conn, cursor, FIndexDesc);
  if (index.IndexId != cursor->KeyNo) state.SwitchTo(index);
  std::vector<uint8_t> key;
  CTDbIntf::CtError(conn.ExtractKey(cursor, &keyRecord, key));
  // The range spans every key that starts with the covered fields' bytes (the range test
  // compares over the shorter length); a partial text field contributes only its key text.
  const LocateCondition& last = conditions[static_cast<size_t>(BestCount - 1)];
  int32_t length = last.Partial ? cursor->GetKeyLen(BestCount - 1) + static_cast<int32_t>(last.Text.size())
                                : cursor->GetKeyLen(BestCount);
  length = std::min<int32_t>(length, static_cast<int32_t>(key.size()));

  // An index that stores no key made only of its pad byte has none for records whose covered
  // fields are all blank: those are found by reading the table instead.
  const size_t ifilOrdinal = static_cast<size_t>(index.IndexId - cursor->DataFileNo - 1);
  if (ifilOrdinal < cursor->Ifil.ix.size() && cursor->Ifil.ix[ifilOrdinal].inulkey != 0) {
    const auto pad = static_cast<uint8_t>(cursor->Ifil.ix[ifilOrdinal].iempchr);
    if (std::all_of(key.begin(), key.begin() + length, [pad](uint8_t b) { return b == pad; })) {
      state.Restore();
      return FindByScan(Match, Found);
    }
  }

  cursor->SetRange(key.data(), length, true, key.data(), length, true);
  CTDbIntf::CtError(conn.SetToBegin(cursor));
  bool found = false;
  // The index decides the covered fields with its own key comparison; the others are compared.
  while (!found && conn.GetNextRecord(cursor, Ctdb::dbiNOLOCK, &Found) == 0)
    found = CandidateMatches(Match, static_cast<size_t>(BestCount), Found);
  state.Restore();
  return found;
}

bool TCTTable::FindByScan(LocateMatch& Match, TCTRecordBuffer& Found) {
  Ctdb::TCTConnection& conn = Conn();
  Ctdb::TCTCursorDesc* cursor = FCursor.get();
  if (Match.DecodesRecords() && !cursor->RangeActive && !cursor->HasBlobs) {
    // The bulk scan: record bytes straight from the engine, fields decoded and compared in
    // place; only a record that matches is loaded and shown to the filter.
    Ctdb::TCTCustomRecordBuffer scratch(cursor);
    int32_t position = 0;
    const int32_t result = conn.ScanRecords(
        cursor,
        [&](const uint8_t* record, int32_t length) {
          if (!Match.MatchesRecord(conn, cursor, scratch, record, length)) return false;
          Found.SetRecord(record, length);
          return FoundRecordPassesFilter(&Found);
        },
        position);
    if (result == kNoRecord) return false;
    CTDbIntf::CtError(result);
    Found.SetBookmark(&position);
    return true;
  }
  SearchState state(conn, cursor, FIndexDesc);
  CTDbIntf::CtError(conn.SetToBegin(cursor));
  bool found = false;
  while (!found && conn.GetNextRecord(cursor, Ctdb::dbiNOLOCK, &Found) == 0) found = CandidateMatches(Match, 0, Found);
  state.Restore();
  return found;
}

bool TCTTable::CandidateMatches(const LocateMatch& Match, size_t From, TCTRecordBuffer& Candidate) {
  if (From < Match.Conditions().size()) {
    const bool calculated = std::any_of(Match.Conditions().begin(), Match.Conditions().end(),
                                        [](const LocateCondition& c) { return c.Field->FieldNo() < 0; });
    if (calculated) GetCalcFields(AsRecordBuffer(&Candidate));
    TCTRecordBuffer* saved = FFilterBuffer;
    FFilterBuffer = &Candidate;
    bool match = false;
    try {
      fw::TTempState reading(this, fw::dsFilter);
      match = Match.MatchesFields(From);
    } catch (...) {
      FFilterBuffer = saved;
      throw;
    }
    FFilterBuffer = saved;
    if (!match) return false;
  }
  return FoundRecordPassesFilter(&Candidate);
}

bool TCTTable::FoundRecordPassesFilter(TCTRecordBuffer* Candidate) {
  if (!Filtered()) return true;
  GetCalcFields(AsRecordBuffer(Candidate));
  return RecordFilter(Candidate);
}

}  // namespace CTTables
