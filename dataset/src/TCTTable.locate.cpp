// TCTTable: Locate and Lookup, by an index's key range or by reading the table (dataset, unit CTTables).
#include <algorithm>
#include <cstring>
#include <utility>

#include "CtError.h"
#include "LocateMatch.h"
#include "TCTConnection.h"
#include "TCTTable.h"

namespace CTTables {

namespace {

constexpr int32_t kNoRecord = 101;

fw::TRecordBuffer AsRecordBuffer(TCTRecordBuffer* Buffer) { return reinterpret_cast<fw::TRecordBuffer>(Buffer); }

// The cursor as a search found it. A search moves the cursor and may switch the index and set a
// key range; Restore puts back the index, the range and the cursor's own position and sequence
// number. The c-tree position is kept in a context of its own while the search moves, or, for a
// search that is to leave the cursor on what it finds in the table's own index (Locate), by the
// bookmark of the record the table stood on: then a successful search costs no context and no
// second positioning, and only a failed one goes back.
class SearchState {
 public:
  SearchState(Ctdb::TCTConnection& Conn, Ctdb::TCTCursorDesc* Cursor, const Ctdb::CTIdxDesc& TableIndex,
              bool KeepFound)
      : FConn(Conn),
        FCursor(Cursor),
        FTableIndex(TableIndex),
        FKeepFound(KeepFound),
        FPosition(Cursor->Position),
        FSeqNo(Cursor->SeqNo),
        FRangeActive(Cursor->RangeActive),
        FRangeLow(Cursor->RangeLow),
        FRangeLowInclusive(Cursor->RangeLowInclusive),
        FRangeHigh(Cursor->RangeHigh),
        FRangeHighInclusive(Cursor->RangeHighInclusive) {
    if (FKeepFound) {
      if (FConn.GetBookMark(FCursor, FBookmark) != 0) FBookmark = 0;
    } else {
      CTDbIntf::CtError(FConn.SetContext(FCursor));
    }
  }
  ~SearchState() {
    try {
      Restore(false);
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

  /// Puts the cursor back; with `Found` in the keeping mode it stays on the record found.
  void Restore(bool Found) {
    if (FRestored) return;
    FRestored = true;
    int32_t position = FKeepFound ? 0 : FConn.RestoreContext(FCursor);
    int32_t index = 0;
    if (FSwitched) {
      Ctdb::CTIdxDesc desc = FTableIndex;
      index = FConn.SwitchToIndex(FCursor, &desc, false);
    }
    FCursor->ResetRange();
    if (FKeepFound && !Found && FBookmark != 0) position = FConn.SetToBookMark(FCursor, FBookmark);
    if (FRangeActive)
      FCursor->SetRange(FRangeLow.data(), static_cast<int32_t>(FRangeLow.size()), FRangeLowInclusive,
                        FRangeHigh.data(), static_cast<int32_t>(FRangeHigh.size()), FRangeHighInclusive);
    if (!(FKeepFound && Found)) {
      FCursor->Position = FPosition;
      FCursor->SeqNo = FSeqNo;
    }
    CTDbIntf::CtError(position);
    CTDbIntf::CtError(index);
  }

 private:
  Ctdb::TCTConnection& FConn;
  Ctdb::TCTCursorDesc* FCursor;
  const Ctdb::CTIdxDesc& FTableIndex;
  bool FKeepFound;
  int32_t FBookmark = 0;
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

// Runs an action when the scope ends (giving a search buffer back to the table's pool).
template <class F>
class AtScopeEnd {
 public:
  explicit AtScopeEnd(F Action) : FAction(std::move(Action)) {}
  ~AtScopeEnd() { FAction(); }
  AtScopeEnd(const AtScopeEnd&) = delete;
  AtScopeEnd& operator=(const AtScopeEnd&) = delete;

 private:
  F FAction;
};

}  // namespace

TCTRecordBuffer& TCTTable::AcquireSearchBuffer() {
  if (FSearchDepth == FSearchBuffers.size()) FSearchBuffers.push_back(nullptr);
  std::unique_ptr<TCTRecordBuffer>& buffer = FSearchBuffers[FSearchDepth++];
  // A buffer of an earlier opening lost its cursor when the table closed.
  if (buffer == nullptr || buffer->Cursor() != FCursor.get()) {
    // Made like the window's buffers: one blank entry per calculated or lookup field.
    const fw::TRecordBuffer made = AllocRecordBuffer();
    buffer.reset(reinterpret_cast<TCTRecordBuffer*>(made));
  }
  return *buffer;
}

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
  TCTRecordBuffer& found = AcquireSearchBuffer();
  const AtScopeEnd release([this] { ReleaseSearchBuffer(); });
  bool positioned = SyncCursor;
  bool byIndex = false;
  const bool ranged = FCursor->RangeActive;
  const bool located = FindRecord(KeyFields, KeyValues, Options, found, positioned, byIndex);
  // A search through an index ends by cancelling the range it set, and with it the range the
  // table had: applications rely on a Locate by key leaving the whole table in view.
  if (byIndex) {
    ResetCursorRange();
    if (ranged && !(located && SyncCursor)) {
      AfterIndexSwitch();
      UpdateCursorPos();
      Resync(fw::TResyncMode{});
    }
  }
  if (!located) return false;
  if (SyncCursor && !positioned) {
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
  TCTRecordBuffer& found = AcquireSearchBuffer();
  const AtScopeEnd release([this] { ReleaseSearchBuffer(); });
  bool positioned = false;
  // Unlike Locate, a lookup keeps the table's range: it is asked while the table is browsed (a
  // lookup field per shown record) and must leave what the table shows as it was.
  bool byIndex = false;
  if (!FindRecord(KeyFields, KeyValues, fw::TLocateOptions{}, found, positioned, byIndex)) return fw::Null();
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
                          TCTRecordBuffer& Found, bool& Positioned, bool& ByIndex) {
  ByIndex = false;
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
  Found.CalcFields().ClearFields();
  const bool keep = Positioned;
  Positioned = false;
  if (!match.Satisfiable()) return false;
  // The index is chosen whatever range the table has: the search's own range replaces it.
  int best = 0;
  const int ordinal = ChooseLocateIndex(match, best);
  bool found = false;
  if (ordinal < 0) {
    found = FindByScan(match, Found);
  } else {
    // Locate in the table's own index leaves the cursor where the search finds the record.
    Positioned = keep && FCursor->Indexes[static_cast<size_t>(ordinal)].IndexId == FCursor->KeyNo;
    found = FindByIndex(match, ordinal, best, Found, Positioned, ByIndex);
  }
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

bool TCTTable::FindByIndex(LocateMatch& Match, int Ordinal, int BestCount, TCTRecordBuffer& Found,
                           bool& Positioned, bool& ByIndex) {
  Ctdb::TCTConnection& conn = Conn();
  Ctdb::TCTCursorDesc* cursor = FCursor.get();
  const std::vector<LocateCondition>& conditions = Match.Conditions();
  const Ctdb::CTIdxDesc& index = cursor->Indexes[static_cast<size_t>(Ordinal)];

  // The key values of the covered fields, in their stored form, make the range's key.
  TCTRecordBuffer& keyRecord = AcquireSearchBuffer();
  const AtScopeEnd release([this] { ReleaseSearchBuffer(); });
  keyRecord.InitRecord();
  for (int i = 0; i < BestCount; ++i) {
    const LocateCondition& c = conditions[static_cast<size_t>(i)];
    CTDbIntf::CtError(conn.SetField(cursor, c.Field->FieldNo(), &keyRecord, c.Native.data()));
  }

  SearchState state(conn, cursor, FIndexDesc, Positioned);
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
      state.Restore(false);
      Positioned = false;
      return FindByScan(Match, Found);
    }
  }

  ByIndex = true;
  cursor->SetRange(key.data(), length, true, key.data(), length, true);
  CTDbIntf::CtError(conn.SetToBegin(cursor));
  bool found = false;
  // The index decides the covered fields with its own key comparison; the others are compared.
  // A Locate that the index alone decides needs no record read.
  TCTRecordBuffer* record = Positioned && BestCount == static_cast<int>(conditions.size()) ? nullptr : &Found;
  while (!found && conn.GetNextRecord(cursor, Ctdb::dbiNOLOCK, record) == 0)
    found = record == nullptr || CandidateMatches(Match, static_cast<size_t>(BestCount), Found);
  state.Restore(found);
  Positioned = Positioned && found;
  return found;
}

bool TCTTable::FindByScan(LocateMatch& Match, TCTRecordBuffer& Found) {
  Ctdb::TCTConnection& conn = Conn();
  Ctdb::TCTCursorDesc* cursor = FCursor.get();
  if (Match.DecodesRecords() && !cursor->RangeActive && !cursor->HasBlobs) {
    // The bulk scan: record bytes straight from the engine, fields decoded and compared in
    // place; only a record that matches is loaded.
    Ctdb::TCTCustomRecordBuffer scratch(cursor);
    const auto accepts = [&](const uint8_t* record, int32_t length) {
      if (!Match.MatchesRecord(conn, cursor, scratch, record, length)) return false;
      Found.SetRecord(record, length);
      return true;
    };
    int32_t position = 0;
    int32_t result = 0;
    if (cursor->KeyNo <= cursor->DataFileNo) {
      result = conn.ScanRecords(cursor, accepts, position);
    } else {
      // In index order the engine fetches each record by its position; in physical order it
      // reads them as they are stored, several times faster. A value many records hold shows up
      // at the head of the index, so the head is read in index order; after that the whole table
      // is read in physical order and, of the records that match, the one whose key comes first
      // in the index is the one the index order would have found.
      constexpr size_t kHead = 2048;
      size_t seen = 0;
      result = conn.ScanRecords(
          cursor, [&](const uint8_t* record, int32_t length) { return ++seen > kHead || accepts(record, length); },
          position);
      if (result == 0 && seen > kHead) {
        if (!FindFirstInIndexOrder(scratch, accepts, Found, position)) return false;
        result = 0;
      }
    }
    if (result == kNoRecord) return false;
    CTDbIntf::CtError(result);
    Found.SetBookmark(&position);
    return true;
  }
  SearchState state(conn, cursor, FIndexDesc, false);
  CTDbIntf::CtError(conn.SetToBegin(cursor));
  bool found = false;
  while (!found && conn.GetNextRecord(cursor, Ctdb::dbiNOLOCK, &Found) == 0) found = CandidateMatches(Match, 0, Found);
  state.Restore(false);
  return found;
}

bool TCTTable::FindFirstInIndexOrder(Ctdb::TCTCustomRecordBuffer& Scratch, const Ctdb::TCTRecordTest& Accepts,
                                     TCTRecordBuffer& Found, int32_t& Position) {
  Ctdb::TCTConnection& conn = Conn();
  Ctdb::TCTCursorDesc* cursor = FCursor.get();
  // Index order is key order, and among equal values (an index allowing duplicates) position
  // order. An index that stores no key made only of its pad byte may lack some records: then
  // every candidate is kept and the first that the index holds wins.
  const size_t ifilOrdinal = static_cast<size_t>(cursor->KeyNo - cursor->DataFileNo - 1);
  const bool mayLack = ifilOrdinal >= cursor->Ifil.ix.size() || cursor->Ifil.ix[ifilOrdinal].inulkey != 0;
  struct Candidate {
    std::vector<uint8_t> Key;
    int32_t Position;
    bool operator<(const Candidate& other) const {
      return Key != other.Key ? Key < other.Key : Position < other.Position;
    }
  };
  std::vector<Candidate> candidates;
  Candidate next;
  int32_t unused = 0;
  const int32_t result = conn.ScanRecords(
      cursor,
      [&](const uint8_t* record, int32_t length) {
        if (!Accepts(record, length)) return false;
        CTDbIntf::CtError(conn.GetBookMark(cursor, next.Position));
        CTDbIntf::CtError(conn.ExtractKey(cursor, &Scratch, next.Key));
        if (mayLack || candidates.empty())
          candidates.push_back(next);
        else if (next < candidates.front())
          candidates.front() = next;
        return false;
      },
      unused, true);
  if (result != kNoRecord) CTDbIntf::CtError(result);
  std::sort(candidates.begin(), candidates.end());
  SearchState state(conn, cursor, FIndexDesc, false);
  for (const Candidate& c : candidates) {
    // Standing on the record through the index is what proves the index holds it.
    if (conn.SetToBookMark(cursor, c.Position) != 0) continue;
    CTDbIntf::CtError(conn.GetCurrentRecord(cursor, Ctdb::dbiNOLOCK, &Found));
    Position = c.Position;
    state.Restore(false);
    return true;
  }
  state.Restore(false);
  return false;
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
  return true;
}

}  // namespace CTTables
