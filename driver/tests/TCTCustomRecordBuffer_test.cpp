// TCTCustomRecordBuffer: fixed and variable record layouts, blob streams written back, and
// buffers that outlive their cursor.
#include "TCTCustomRecordBuffer.h"

#include <gtest/gtest.h>

#include <cstring>

#include "TCTCursorDesc.h"
#include "TMemoryStream.h"
#include "ctisam.h"

namespace Ctdb {
namespace {

// A cursor without connection: blob fields then report their full length as maximum size.
std::unique_ptr<TCTCursorDesc> CursorWith(const std::vector<std::pair<int32_t, int32_t>>& fields) {
  auto cursor = std::make_unique<TCTCursorDesc>("t", 0, 0, SHARED, nullptr);
  int32_t offset = 0;
  int32_t blobNo = 0;
  for (const auto& [code, length] : fields) {
    const TCTFieldDesc* field = cursor->AddField("f" + std::to_string(cursor->FieldCount() + 1), code, length, length,
                                                 offset, blobNo);
    offset += field->IsBlob ? field->GetDefSize() : length;
    if (field->IsBlob) ++blobNo;
  }
  return cursor;
}

void Write(fw::TMemoryStream* stream, const std::string& bytes) {
  stream->Write(bytes.data(), static_cast<int32_t>(bytes.size()));
}

TEST(RecordBufferTest, FixedLayoutUsesTheTemplateOffsetsAndTheTableRecordLength) {
  auto cursor = CursorWith({{CT_FSTRING, 10}});
  TCTCustomRecordBuffer buffer(cursor.get());
  EXPECT_EQ(buffer.RecordPtr(), nullptr) << "no record before InitRecord";
  buffer.InitRecord();
  ASSERT_NE(buffer.RecordPtr(), nullptr);
  EXPECT_EQ(buffer.RecordSize(), 10);
  EXPECT_EQ(std::memcmp(buffer.RecordPtr(), std::string(10, '\0').data(), 10), 0);
  EXPECT_EQ(buffer.PresentFieldCount(), 0);
  EXPECT_EQ(buffer.GetFieldOffset(1), 0);
  EXPECT_EQ(buffer.GetFieldOffset(2), -1);
  EXPECT_EQ(buffer.GetFieldOffset(0), -1);

  auto three = CursorWith({{CT_INT4, 4}, {CT_FSTRING, 6}, {CT_INT2, 2}});
  TCTCustomRecordBuffer record(three.get());
  record.SetRecord("abcdefghijkl", 12);
  EXPECT_EQ(record.PresentFieldCount(), 3);
  EXPECT_EQ(record.GetFieldOffset(3), 10);
  EXPECT_EQ(std::string(reinterpret_cast<char*>(record.RecordPtr()), 12), "abcdefghijkl");
  ASSERT_TRUE(record.FillRecord());
  EXPECT_EQ(std::string(reinterpret_cast<char*>(record.RecordPtr()), 12), "abcdefghijkl");

  // The table's record length is the least the buffer holds.
  auto longer = CursorWith({{CT_INT4, 4}});
  longer->FixedRecLength = 14;
  TCTCustomRecordBuffer padded(longer.get());
  padded.InitRecord();
  EXPECT_EQ(padded.RecordSize(), 14);
  padded.SetRecord("abcd", 4);
  ASSERT_TRUE(padded.FillRecord());
  EXPECT_EQ(padded.RecordSize(), 14);
  EXPECT_EQ(std::memcmp(padded.RecordPtr(), "abcd", 4), 0);
}

TEST(RecordBufferTest, VariableFieldsMoveTheFieldsAfterThem) {
  // int4, text (146), int2, 2-byte-prefixed blob (162), 1-byte char
  auto cursor = CursorWith({{CT_INT4, 4}, {CT_STRING, 50}, {CT_INT2, 2}, {CT_2STRING, 1000}, {CT_CHAR, 1}});
  TCTCustomRecordBuffer buffer(cursor.get());
  EXPECT_EQ(buffer.BlobCount(), 2);
  EXPECT_EQ(buffer.FixedSize(), 4 + 1 + 2 + 2 + 1);
  buffer.InitRecord();
  EXPECT_EQ(buffer.GetFieldOffset(3), 5);

  std::string record("\x01\x00\x00\x00" "abc\0" "\x07\x00" "\x03\x00xyz" "Q", 4 + 4 + 2 + 5 + 1);
  buffer.SetRecord(record.data(), static_cast<int32_t>(record.size()));
  EXPECT_EQ(buffer.GetFieldOffset(2), 4);
  EXPECT_EQ(buffer.GetFieldOffset(3), 8) << "after the text abc and its zero";
  EXPECT_EQ(buffer.GetFieldOffset(4), 10);
  EXPECT_EQ(buffer.GetFieldOffset(5), 15) << "after a 2-byte prefix and 3 bytes";
  EXPECT_EQ(buffer.GetDataSize(2, buffer.RecordPtr() + 4, 12), 4);
  EXPECT_EQ(buffer.GetSize(4), 5);

  // Rebuilding without open streams gives the same record.
  ASSERT_TRUE(buffer.FillRecord());
  EXPECT_EQ(std::string(reinterpret_cast<char*>(buffer.RecordPtr()), buffer.RecordSize()), record);
}

TEST(RecordBufferTest, OpenStreamsAreWrittenBackInTheirForm) {
  auto cursor = CursorWith({{CT_STRING, 50}, {CT_PSTRING, 300}, {CT_2STRING, 1000}, {CT_4STRING, 10}, {CT_INT2, 2}});
  TCTCustomRecordBuffer buffer(cursor.get());
  buffer.InitRecord();
  EXPECT_EQ(buffer.OpenBlob(5), nullptr) << "not a blob";
  EXPECT_EQ(buffer.BlobStream(1), nullptr);
  Write(buffer.OpenBlob(1), "abc");
  Write(buffer.OpenBlob(3), std::string(300, 'x'));
  Write(buffer.OpenBlob(4), "0123456789ABCDEF");
  EXPECT_EQ(buffer.GetSize(1), 4);
  EXPECT_EQ(buffer.GetSize(3), 302);
  std::memcpy(buffer.RecordPtr() + buffer.GetFieldOffset(5), "\x2A\x00", 2);

  ASSERT_TRUE(buffer.FillRecord());
  const uint8_t* p = buffer.RecordPtr();
  ASSERT_EQ(buffer.RecordSize(), 4 + 1 + 302 + 20 + 2);
  EXPECT_EQ(std::string(reinterpret_cast<const char*>(p), 4), std::string("abc\0", 4));
  EXPECT_EQ(p[4], 0) << "a 154 blob without stream keeps its empty prefix";
  EXPECT_EQ(p[5] | p[6] << 8, 300);
  EXPECT_EQ(std::string(reinterpret_cast<const char*>(p + 7), 300), std::string(300, 'x'));
  EXPECT_EQ(p[307] | p[308] << 8 | p[309] << 16 | p[310] << 24, 16);
  EXPECT_EQ(std::string(reinterpret_cast<const char*>(p + 311), 16), "0123456789ABCDEF");
  EXPECT_EQ(p[327], 0x2A) << "fixed fields are carried over";
  EXPECT_EQ(buffer.GetFieldOffset(5), 327) << "offsets follow the rebuilt record";
  EXPECT_EQ(buffer.GetDataSize(1, p, buffer.RecordSize()), 4);

  // Loading a record drops the streams.
  const std::vector<uint8_t> copy(p, p + buffer.RecordSize());
  buffer.SetRecord(copy.data(), static_cast<int32_t>(copy.size()));
  EXPECT_EQ(buffer.BlobStream(1), nullptr);
  EXPECT_EQ(buffer.GetFieldOffset(5), 327);

  // A 1-byte prefix counts at most 255 bytes.
  auto pstring = CursorWith({{CT_PSTRING, 1000}});
  TCTCustomRecordBuffer counted(pstring.get());
  counted.InitRecord();
  Write(counted.OpenBlob(1), std::string(300, 'y'));
  EXPECT_EQ(counted.GetSize(1), 256);
  ASSERT_TRUE(counted.FillRecord());
  EXPECT_EQ(counted.RecordSize(), 256);
  EXPECT_EQ(counted.RecordPtr()[0], 255);
}

TEST(RecordBufferTest, DamagedPrefixesDoNotReachOutsideTheRecord) {
  auto cursor = CursorWith({{CT_4STRING, 10}, {CT_INT4, 4}});
  TCTCustomRecordBuffer buffer(cursor.get());
  const uint8_t record[8] = {0xFF, 0xFF, 0xFF, 0x7F, 1, 2, 3, 4};
  buffer.SetRecord(record, 8);
  EXPECT_GT(buffer.GetFieldOffset(2), buffer.RecordSize());
  EXPECT_FALSE(buffer.FillRecord()) << "the record it would build does not fit 32 bits";
  EXPECT_EQ(buffer.RecordSize(), 8);
  EXPECT_EQ(buffer.RecordPtr()[4], 1);
  buffer.SetRecord(nullptr, 5);
  EXPECT_EQ(buffer.RecordSize(), 0);
  EXPECT_EQ(buffer.GetDataSize(1, nullptr, 0), 4);
}

TEST(RecordBufferTest, BookmarksAndCursorLifetime) {
  auto cursor = CursorWith({{CT_INT4, 4}, {CT_STRING, 8}});
  auto buffer = std::make_unique<TCTCustomRecordBuffer>(cursor.get());
  const uint8_t mark[4] = {0x10, 0x20, 0x30, 0x40};
  buffer->SetBookmark(mark);
  EXPECT_EQ(std::memcmp(buffer->GetBookmark(), mark, 4), 0);
  buffer->InitRecord();
  Write(buffer->OpenBlob(2), "kept");
  cursor.reset();  // the cursor goes first: the buffer forgets its fields
  EXPECT_EQ(buffer->Cursor(), nullptr);
  EXPECT_EQ(buffer->GetFieldOffset(1), -1);
  EXPECT_EQ(buffer->FieldCount(), 0);
  EXPECT_NE(buffer->RecordPtr(), nullptr);
  buffer.reset();

  auto again = CursorWith({{CT_INT4, 4}});
  { TCTCustomRecordBuffer shortLived(again.get()); }
  again.reset();  // the buffer removed itself: nothing dangles
}

}  // namespace
}  // namespace Ctdb
