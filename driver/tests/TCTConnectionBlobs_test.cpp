// TCTConnection blobs: the four variable forms read from and written back into records, stream
// access by position, and the numbers returned for fields that are not blobs.
#include <gtest/gtest.h>

#include <cstring>

#include "TMemoryStream.h"
#include "TableFixture.h"

namespace Ctdb::testing {
namespace {

constexpr int32_t kMemo = 2, kShort = 3, kMedium = 4, kLong = 5;

std::vector<uint8_t> Pattern(size_t size, uint8_t seed) {
  std::vector<uint8_t> bytes(size);
  for (size_t i = 0; i < size; ++i) bytes[i] = static_cast<uint8_t>(seed + i * 7 + (i >> 8));
  return bytes;
}

// Table "docs": id and one blob of each variable form (TableTest's table is not made).
class BlobTest : public TableTest {
 protected:
  void SetUp() override {
    Activate();
    MakeTable("docs",
              {{"id", CT_INT4, 4}, {"memo", CT_STRING, 500}, {"short", CT_PSTRING, 255},
               {"medium", CT_2STRING, 60000}, {"long", CT_4STRING, 1000000}},
              {{{{0, 4, SCHSEG}}}});
    ASSERT_EQ(Conn->OpenCursor(Cursor, "docs.dat", Dir.Path(), SHARED), 0);
  }
  // Replaces the blob's content with `bytes`.
  void Put(TCTCustomRecordBuffer* buffer, int32_t fieldNo, const std::vector<uint8_t>& bytes) {
    bool isBlob = false;
    ASSERT_EQ(Conn->OpenBlob(Cursor.get(), fieldNo, buffer, isBlob), 0);
    ASSERT_EQ(Conn->TruncateBlob(Cursor.get(), fieldNo, buffer, 0), 0);
    ASSERT_EQ(Conn->PutBlob(Cursor.get(), fieldNo, buffer, 0, static_cast<int32_t>(bytes.size()), bytes.data()), 0);
  }
  std::vector<uint8_t> Get(TCTCustomRecordBuffer* buffer, int32_t fieldNo) {
    int32_t size = -1;
    EXPECT_EQ(Conn->GetBlobSize(Cursor.get(), fieldNo, buffer, size), 0);
    std::vector<uint8_t> bytes(static_cast<size_t>(std::max(size, 0)));
    int32_t read = -1;
    EXPECT_EQ(Conn->GetBlob(Cursor.get(), fieldNo, buffer, read, bytes.data(), size, 0), 0);
    EXPECT_EQ(read, size);
    return bytes;
  }
  // Writes a record with the given blobs through the engine and reads it back into a new buffer.
  TCTCustomRecordBuffer* RoundTrip(int32_t id, const std::vector<std::vector<uint8_t>>& blobs) {
    TCTCustomRecordBuffer* out = NewBuffer();
    out->InitRecord();
    std::memcpy(out->RecordPtr(), &id, 4);
    for (size_t i = 0; i < blobs.size(); ++i) Put(out, kMemo + static_cast<int32_t>(i), blobs[i]);
    EXPECT_TRUE(out->FillRecord());
    EXPECT_EQ(CTDbIntf::AddVRecord(Conn->Alignment(), Cursor->DataFileNo, out->RecordPtr(), out->RecordSize()), 0);
    TCTCustomRecordBuffer* in = NewBuffer();
    EXPECT_EQ(Conn->SetToBegin(Cursor.get()), 0);
    for (;;) {
      EXPECT_EQ(Conn->GetNextRecord(Cursor.get(), dbiNOLOCK, in), 0);
      int32_t readId = 0;
      std::memcpy(&readId, in->RecordPtr(), 4);
      if (readId == id || ::testing::Test::HasFailure()) break;
    }
    EXPECT_EQ(Conn->OpenAllBlobs(Cursor.get(), in), 0);
    return in;
  }
};

TEST_F(BlobTest, EveryFormRoundTripsThroughARecordFullOrEmpty) {
  std::vector<uint8_t> text(300, 'm');
  const std::vector<std::vector<uint8_t>> blobs = {text, Pattern(255, 1), Pattern(40000, 2), Pattern(200000, 3)};
  TCTCustomRecordBuffer* in = RoundTrip(1, blobs);
  for (size_t i = 0; i < blobs.size(); ++i) {
    SCOPED_TRACE(i);
    EXPECT_EQ(Get(in, kMemo + static_cast<int32_t>(i)), blobs[i]);
  }
  // 4 + (300 + 1) + (1 + 255) + (2 + 40000) + (4 + 200000): each form at its actual length.
  EXPECT_EQ(in->RecordSize(), 240567);
  // Empty blobs open as empty streams.
  in = RoundTrip(2, {{}, {}, {}, {}});
  for (int32_t field = kMemo; field <= kLong; ++field) EXPECT_TRUE(Get(in, field).empty());
}

TEST_F(BlobTest, StreamsArePositionedAndSized) {
  TCTCustomRecordBuffer* in = RoundTrip(3, {{'a', 'b', 'c'}, {1, 2, 3, 4}, {}, {}});
  // Unsaved writes are discarded by the next OpenBlob.
  const uint8_t junk[] = {9, 9};
  ASSERT_EQ(Conn->PutBlob(Cursor.get(), kShort, in, 10, 2, junk), 0);
  int32_t size = 0;
  ASSERT_EQ(Conn->GetBlobSize(Cursor.get(), kShort, in, size), 0);
  EXPECT_EQ(size, 12);
  bool isBlob = false;
  ASSERT_EQ(Conn->OpenBlob(Cursor.get(), kShort, in, isBlob), 0);
  EXPECT_EQ(Get(in, kShort), (std::vector<uint8_t>{1, 2, 3, 4}));

  uint8_t part[8] = {};
  int32_t read = -1;
  ASSERT_EQ(Conn->GetBlob(Cursor.get(), kMemo, in, read, part, 8, 1), 0);
  EXPECT_EQ(read, 2);
  EXPECT_EQ(std::memcmp(part, "bc", 2), 0);
  ASSERT_EQ(Conn->GetBlob(Cursor.get(), kMemo, in, read, part, 8, 50), 0);
  EXPECT_EQ(read, 0);

  ASSERT_EQ(Conn->TruncateBlob(Cursor.get(), kMemo, in, 1), 0);
  EXPECT_EQ(Get(in, kMemo), std::vector<uint8_t>{'a'});
  ASSERT_EQ(Conn->TruncateBlob(Cursor.get(), kMemo, in, 4), 0);
  EXPECT_EQ(Get(in, kMemo), (std::vector<uint8_t>{'a', 0, 0, 0}));
  EXPECT_EQ(Conn->CloseBlob(Cursor.get(), kMemo, in), 0);
}

TEST_F(BlobTest, AppendAndModifyWriteTheStreamsBackIntoTheRecord) {
  TCTCustomRecordBuffer* out = NewBuffer();
  out->InitRecord();
  const int32_t id = 9;
  std::memcpy(out->RecordPtr(), &id, 4);
  const std::vector<uint8_t> big = Pattern(70000, 4);
  Put(out, kLong, big);
  Put(out, kMemo, {'x', 'y'});
  ASSERT_EQ(Conn->AppendRecord(Cursor.get(), out), 0);

  TCTCustomRecordBuffer* old = NewBuffer();
  ASSERT_EQ(Conn->SetToBegin(Cursor.get()), 0);
  ASSERT_EQ(Conn->GetNextRecord(Cursor.get(), dbiNOLOCK, old), 0);
  ASSERT_EQ(Conn->OpenAllBlobs(Cursor.get(), old), 0);
  EXPECT_EQ(Get(old, kLong), big);
  EXPECT_EQ(Get(old, kMemo), (std::vector<uint8_t>{'x', 'y'}));

  // The edited copy shrinks the long blob and fills the short one; the memo stays as read.
  TCTCustomRecordBuffer* edited = NewBuffer();
  edited->SetRecord(old->RecordPtr(), old->RecordSize());
  const std::vector<uint8_t> small = Pattern(100, 5);
  Put(edited, kLong, small);
  Put(edited, kShort, {7, 7, 7});
  ASSERT_EQ(Conn->ModifyRecord(Cursor.get(), edited, old, true), 0);

  TCTCustomRecordBuffer* in = NewBuffer();
  ASSERT_EQ(Conn->GetCurrentRecord(Cursor.get(), dbiNOLOCK, in), 0);
  ASSERT_EQ(Conn->OpenAllBlobs(Cursor.get(), in), 0);
  EXPECT_EQ(Get(in, kLong), small);
  EXPECT_EQ(Get(in, kShort), (std::vector<uint8_t>{7, 7, 7}));
  EXPECT_EQ(Get(in, kMemo), (std::vector<uint8_t>{'x', 'y'}));
  ASSERT_EQ(Conn->RemoveRecord(Cursor.get(), in), 0);
  EXPECT_EQ(Count(), 0);
}

TEST_F(BlobTest, BlobsLongerThanTheirLengthFormOrDamagedAreRefused) {
  TCTCustomRecordBuffer* buffer = NewBuffer();
  buffer->InitRecord();
  const std::vector<uint8_t> bytes = Pattern(256, 6);
  EXPECT_EQ(Conn->PutBlob(Cursor.get(), kShort, buffer, 0, 256, bytes.data()), kCtOffsetBeyondData);
  EXPECT_EQ(Conn->PutBlob(Cursor.get(), kShort, buffer, 250, 6, bytes.data()), kCtOffsetBeyondData);
  EXPECT_TRUE(Get(buffer, kShort).empty());
  EXPECT_EQ(Conn->PutBlob(Cursor.get(), kShort, buffer, 0, 255, bytes.data()), 0);
  EXPECT_EQ(Conn->TruncateBlob(Cursor.get(), kMedium, buffer, 65536), kCtOffsetBeyondData);
  EXPECT_EQ(Conn->TruncateBlob(Cursor.get(), kMedium, buffer, 65535), 0);

  // Damaged blobs in a record are reported, not read past its end.
  bool isBlob = false;
  // Text that runs to the end of the record without its zero byte.
  const uint8_t unterminated[] = {1, 0, 0, 0, 'a', 'b', 'c'};
  buffer->SetRecord(unterminated, sizeof unterminated);
  EXPECT_EQ(Conn->OpenBlob(Cursor.get(), kMemo, buffer, isBlob), 1117);
  EXPECT_TRUE(Get(buffer, kMemo).empty());
  // A 1-byte length of 9 with two bytes left.
  const uint8_t shortened[] = {1, 0, 0, 0, 0, 9, 'x', 'y'};
  buffer->SetRecord(shortened, sizeof shortened);
  EXPECT_EQ(Conn->OpenBlob(Cursor.get(), kShort, buffer, isBlob), 1117);
}

TEST_F(BlobTest, FieldsThatAreNotBlobsAndBadInputGiveNumbers) {
  TCTCustomRecordBuffer* buffer = NewBuffer();
  buffer->InitRecord();
  bool isBlob = false;
  EXPECT_EQ(Conn->OpenBlob(Cursor.get(), 1, buffer, isBlob), 1127);
  EXPECT_TRUE(isBlob);
  EXPECT_EQ(Conn->OpenBlob(Cursor.get(), 9, buffer, isBlob), 1127);
  int32_t size = 0;
  EXPECT_EQ(Conn->GetBlobSize(nullptr, kMemo, buffer, size), kCtInvalidCursor);
  EXPECT_EQ(Conn->TruncateBlob(Cursor.get(), 0, buffer, 3), 1127);
  Buffers.clear();
  ASSERT_EQ(Conn->CloseCursor(Cursor), 0);
  Conn->SetActive(false);
  TCTCursorDesc detached("x", 0, 0, 0, Conn.get());
  EXPECT_EQ(Conn->GetBlobSize(&detached, kMemo, nullptr, size), kCtNotActive);
}

}  // namespace
}  // namespace Ctdb::testing
