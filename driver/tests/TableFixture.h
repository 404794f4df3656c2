// Fixture of the cursor, record, definition and blob tests: a table of numbered records made by
// the engine, opened through the driver's OpenCursor.
#pragma once

#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "DriverTestSupport.h"

namespace Ctdb::testing {

/// Table "people": id (CT_INT4, unique index 0 "ById"), grp (CT_INT4, index 1 "ByGroup" with
/// duplicates), name (CT_FSTRING 12). Records are 20 bytes: id at 0, grp at 4, name at 8.
class TableTest : public DriverTest {
 protected:
  static constexpr int32_t kRecordLength = 20;

  void SetUp() override {
    Activate();
    Path = MakeTable("people", {{"id", CT_INT4, 4}, {"grp", CT_INT4, 4}, {"name", CT_FSTRING, 12}},
                     {{{{0, 4, SCHSEG}}, false, std::string("ById")},
                      {{{1, 4, SCHSEG}}, true, std::string("ByGroup")}});
  }
  void TearDown() override {
    Buffers.clear();
    FScratch = nullptr;
    if (Cursor) {
      EXPECT_EQ(Conn->CloseCursor(Cursor), 0);
    }
  }

  /// Opens the table as `Cursor` (physical order).
  void Open(int32_t flags = SHARED) { ASSERT_EQ(Conn->OpenCursor(Cursor, "people.dat", Dir.Path(), flags), 0); }

  static std::vector<uint8_t> Record(int32_t id, int32_t grp, const std::string& name = "") {
    std::vector<uint8_t> rec(kRecordLength, 0);
    std::memcpy(rec.data(), &id, 4);
    std::memcpy(rec.data() + 4, &grp, 4);
    std::memcpy(rec.data() + 8, name.data(), std::min<size_t>(name.size(), 12));
    return rec;
  }
  static int32_t IdOf(const TCTCustomRecordBuffer& buffer) {
    int32_t id = 0;
    std::memcpy(&id, buffer.RecordPtr(), 4);
    return id;
  }

  /// Appends record (id, grp, name) through the driver.
  int32_t Append(int32_t id, int32_t grp, const std::string& name = "") {
    TCTCustomRecordBuffer* buffer = NewBuffer();
    buffer->InitRecord();
    const std::vector<uint8_t> rec = Record(id, grp, name);
    std::memcpy(buffer->RecordPtr(), rec.data(), rec.size());
    return Conn->AppendRecord(Cursor.get(), buffer);
  }
  int32_t Count() {
    int32_t count = -1;
    EXPECT_EQ(Conn->GetRecordCount(Cursor.get(), count), 0);
    return count;
  }

  /// The buffer the stepping calls below read into (one per cursor).
  TCTCustomRecordBuffer* Scratch() {
    if (FScratch == nullptr || FScratch->Cursor() != Cursor.get()) FScratch = NewBuffer();
    return FScratch;
  }
  /// Reads the next, prior or current record into Scratch(): its id, or minus the number the
  /// read returned.
  int32_t Next() { return IdOrError(Conn->GetNextRecord(Cursor.get(), dbiNOLOCK, Scratch())); }
  int32_t Prior() { return IdOrError(Conn->GetPriorRecord(Cursor.get(), dbiNOLOCK, Scratch())); }
  int32_t Current() { return IdOrError(Conn->GetCurrentRecord(Cursor.get(), dbiNOLOCK, Scratch())); }
  /// From the start, the id of the n-th record (1-based).
  int32_t NthFromStart(int n) {
    EXPECT_EQ(Conn->SetToBegin(Cursor.get()), 0);
    int32_t id = 0;
    for (int i = 0; i < n; ++i) id = Next();
    return id;
  }
  int32_t IdOrError(int32_t result) { return result == 0 ? IdOf(*Scratch()) : -result; }

  /// Adds records straight through the engine (no lock set needed).
  void Insert(const std::vector<std::pair<int32_t, int32_t>>& rows) {
    for (const auto& [id, grp] : rows) {
      std::vector<uint8_t> rec = Record(id, grp, "n" + std::to_string(id));
      ASSERT_EQ(CTDbIntf::AddRecord(Conn->Alignment(), Cursor->DataFileNo, rec.data()), 0);
    }
  }

  /// A record buffer of the cursor, kept until the test ends.
  TCTCustomRecordBuffer* NewBuffer() {
    Buffers.push_back(std::make_unique<TCTCustomRecordBuffer>(Cursor.get()));
    return Buffers.back().get();
  }
  /// A buffer holding the record (id, grp).
  TCTCustomRecordBuffer* BufferOf(int32_t id, int32_t grp) {
    TCTCustomRecordBuffer* buffer = NewBuffer();
    const std::vector<uint8_t> rec = Record(id, grp);
    buffer->SetRecord(rec.data(), kRecordLength);
    return buffer;
  }

  /// Makes index `name` current.
  void UseIndex(const std::string& name) {
    ASSERT_EQ(Conn->InitIndexes(Cursor.get()), 0);
    CTIdxDesc desc;
    desc.Name = name;
    desc.IndexId = -1;
    ASSERT_EQ(Conn->SwitchToIndex(Cursor.get(), &desc, false), 0);
    ASSERT_EQ(desc.Name, name);
  }

  /// The value part of the ByGroup key of `grp` (the key without its 4-byte position suffix).
  std::vector<uint8_t> GroupKey(int32_t grp) {
    std::vector<uint8_t> key;
    EXPECT_EQ(Conn->ExtractKey(Cursor.get(), BufferOf(0, grp), key), 0);
    key.resize(key.size() - 4);
    return key;
  }
  void SetGroupRange(int32_t low, bool lowInclusive, int32_t high, bool highInclusive) {
    const std::vector<uint8_t> lowKey = GroupKey(low);
    const std::vector<uint8_t> highKey = GroupKey(high);
    Cursor->SetRange(lowKey.data(), static_cast<int32_t>(lowKey.size()), lowInclusive, highKey.data(),
                     static_cast<int32_t>(highKey.size()), highInclusive);
  }

  /// Ids read forward from the start (or backward from the end) until the first failure, whose
  /// number goes to `last`.
  std::vector<int32_t> Walk(bool forward, int32_t* last = nullptr) {
    std::vector<int32_t> ids;
    TCTCustomRecordBuffer* buffer = NewBuffer();
    EXPECT_EQ(forward ? Conn->SetToBegin(Cursor.get()) : Conn->SetToEnd(Cursor.get()), 0);
    for (;;) {
      const int32_t r = forward ? Conn->GetNextRecord(Cursor.get(), dbiNOLOCK, buffer)
                                : Conn->GetPriorRecord(Cursor.get(), dbiNOLOCK, buffer);
      if (r != 0) {
        if (last != nullptr) *last = r;
        return ids;
      }
      ids.push_back(IdOf(*buffer));
    }
  }

  /// True when the engine on the machine implements lock sets (LKISAM), which record changes need.
  bool LockSetsSupported() {
    const CTDbIntf::TLoadAlignment a = Conn->Alignment();
    const int16_t r = CTDbIntf::LockISAM(a, ENABLE);
    if (r == 0) (void)CTDbIntf::LockISAM(a, FREE);
    return r != NSUP_ERR;
  }

  std::string Path;
  std::unique_ptr<TCTCursorDesc> Cursor;
  std::vector<std::unique_ptr<TCTCustomRecordBuffer>> Buffers;

 private:
  TCTCustomRecordBuffer* FScratch = nullptr;
};

}  // namespace Ctdb::testing
