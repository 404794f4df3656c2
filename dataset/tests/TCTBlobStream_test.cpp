// TCTBlobStream through TCTTable: memo and binary fields read, written, posted and cancelled
// over real engine files, the stream's checks, and blob values copied into key buffers.
#include <cstring>
#include <filesystem>

#include "CtRecords.h"
#include "TBlobField.h"
#include "TBcd.h"
#include "TMemoryStream.h"
#include "TNumericField.h"
#include "TableTestSupport.h"

namespace CTTables::testing {
namespace {

// Field numbers of the docs table.
constexpr int32_t kNote = 2, kPhoto = 4;

std::string Bytes(size_t size, int seed) {
  std::string bytes(size, '\0');
  for (size_t i = 0; i < size; ++i) bytes[i] = static_cast<char>(seed + i * 7 + (i >> 8));
  return bytes;
}

std::string ReadAll(fw::TStream& stream) {
  std::string bytes(static_cast<size_t>(stream.Size()), '\0');
  stream.SetPosition(0);
  if (!bytes.empty()) stream.ReadBuffer(bytes.data(), static_cast<int64_t>(bytes.size()));
  return bytes;
}

// A table that lets the test fill key buffers from a master.
class KeyTable : public TCTTable {
 public:
  using TCTTable::CreateRangeBuffer;
  using TCTTable::TCTTable;
};

// The table "docs": ID (integer, primary index), NOTE (memo), NAME (string 20), PHOTO (graphic,
// no size: 4-byte length form), TAG (blob of at most 10: 1-byte length form), AMOUNT (BCD, 2
// decimals). Record 1 holds a memo, a photo and a tag; record 2 only its name.
class BlobTable : public TableTest {
 protected:
  void SetUp() override {
    auto* table = Docs<TCTTable>(false);
    table->FieldDefs()->Add("ID", fw::ftInteger, 0, true);
    table->FieldDefs()->Add("NOTE", fw::ftMemo, 0, false);
    table->FieldDefs()->Add("NAME", fw::ftString, 20, false);
    table->FieldDefs()->Add("PHOTO", fw::ftGraphic, 0, false);
    table->FieldDefs()->Add("TAG", fw::ftBlob, 10, false);
    table->FieldDefs()->Add("AMOUNT", fw::ftBCD, 2, false);
    // Flag4: the engine keeps the keys, also of the raw record the damage test adds.
    table->IndexDefs()->Add("ById", "ID", "", true, false,
                            fw::TIndexOptions{fw::ixPrimary, fw::ixUnique});
    table->CreateTable();
    table->Open();
    table->Insert();
    table->FieldByName("ID")->SetAsInteger(1);
    Note(*table)->SetAsString(kNoteText);
    table->FieldByName("NAME")->SetAsString("Ola");
    fw::TMemoryStream photo;
    photo.WriteBuffer(Photo().data(), static_cast<int64_t>(Photo().size()));
    Blob(*table, "PHOTO")->LoadFromStream(photo);
    Blob(*table, "TAG")->SetAsString("keep");
    table->Post();
    table->Insert();
    table->FieldByName("ID")->SetAsInteger(2);
    table->FieldByName("NAME")->SetAsString("Kari");
    table->Post();
    table->Close();
  }

  template <class T = TCTTable>
  T* Docs(bool open = true) {
    auto* table = new T(Owner.get());
    table->SetConnection(Conn);
    table->SetDatabase(Dir.string());
    table->SetTableName("docs");
    if (open) table->Open();
    return table;
  }
  static fw::TBlobField* Blob(TCTTable& table, const std::string& name) {
    return dynamic_cast<fw::TBlobField*>(table.FieldByName(name));
  }
  static fw::TBlobField* Note(TCTTable& table) { return Blob(table, "NOTE"); }
  static const std::string& Photo() {
    static const std::string photo = Bytes(100000, 3);  // NUL bytes included
    return photo;
  }
  // What a freshly opened table reads for field `name` of record `id`.
  std::string Stored(int32_t id, const std::string& name) {
    TCTTable* table = Docs();
    EXPECT_TRUE(table->FindKey({fw::Variant(id)}));
    std::string value = table->FieldByName(name)->AsString();
    table->Close();
    return value;
  }

  static constexpr const char* kNoteText = "first line\r\nsecond line";
};

TEST_F(BlobTable, MemoAndBinaryFieldsRoundTripAndSurviveEditsOfOtherFields) {
  TCTTable* table = Docs();
  EXPECT_EQ(Note(*table)->AsString(), kNoteText);
  EXPECT_EQ(table->FieldByName("NAME")->AsString(), "Ola");  // laid out after the memo
  fw::TMemoryStream photo;
  Blob(*table, "PHOTO")->SaveToStream(photo);
  EXPECT_EQ(
      std::string(static_cast<const char*>(photo.Memory()), static_cast<size_t>(photo.Size())),
      Photo());
  table->Next();
  EXPECT_TRUE(Note(*table)->IsNull());
  EXPECT_EQ(Blob(*table, "PHOTO")->BlobSize(), 0);

  table->First();
  table->Edit();
  table->FieldByName("NAME")->SetAsString("Per");
  table->Post();
  EXPECT_EQ(Stored(1, "NOTE"), kNoteText);
  EXPECT_EQ(Stored(1, "PHOTO"), Photo());
  EXPECT_EQ(Stored(1, "NAME"), "Per");

  const std::string file = (Dir / "tag.bin").string();
  Blob(*table, "TAG")->SaveToFile(file);
  table->Edit();
  Note(*table)->LoadFromFile(file);
  table->Post();
  EXPECT_EQ(Stored(1, "NOTE"), "keep");
  EXPECT_EQ(Stored(1, "PHOTO"), Photo());
}

TEST_F(BlobTable, CancelDiscardsWrittenBlobsAndAModifiedOneIsNotReloaded) {
  TCTTable* table = Docs();
  table->Edit();
  Note(*table)->SetAsString("changed");
  Blob(*table, "PHOTO")->Clear();
  EXPECT_TRUE(Blob(*table, "PHOTO")->IsNull());
  table->Cancel();
  EXPECT_FALSE(Note(*table)->Modified());
  EXPECT_EQ(Note(*table)->AsString(), kNoteText);
  EXPECT_EQ(Blob(*table, "PHOTO")->BlobSize(), static_cast<int64_t>(Photo().size()));

  table->Insert();
  table->FieldByName("ID")->SetAsInteger(3);
  Note(*table)->SetAsString("never posted");
  table->Cancel();
  EXPECT_EQ(table->RecordCount(), 2);
  EXPECT_EQ(Stored(1, "NOTE"), kNoteText);

  // A modified field is not reloaded, and write mode empties it at once.
  table->First();
  table->Edit();
  {
    std::unique_ptr<fw::TStream> stream = table->CreateBlobStream(Note(*table), fw::bmWrite);
    EXPECT_EQ(stream->Size(), 0);
  }
  EXPECT_TRUE(Note(*table)->Modified());
  EXPECT_TRUE(Note(*table)->IsNull());

  Note(*table)->SetAsString("unsaved");
  EXPECT_EQ(Note(*table)->AsString(), "unsaved");  // a reload would give the stored text
  std::unique_ptr<fw::TStream> keep = table->CreateBlobStream(Note(*table), fw::bmReadWrite);
  EXPECT_EQ(keep->Seek(0, fw::soEnd), 7);
  keep.reset();
  table->Post();
  EXPECT_FALSE(Note(*table)->Modified());
  EXPECT_EQ(Stored(1, "NOTE"), "unsaved");
}

TEST_F(BlobTable, SeekIsNotClampedAndTruncateCutsAtThePosition) {
  TCTTable* table = Docs();
  table->Next();
  table->Edit();
  std::unique_ptr<fw::TStream> stream =
      table->CreateBlobStream(Blob(*table, "PHOTO"), fw::bmReadWrite);
  stream->WriteBuffer("abc", 3);
  EXPECT_EQ(stream->Seek(5, fw::soBeginning), 5);
  stream->WriteBuffer("x", 1);
  EXPECT_EQ(ReadAll(*stream), std::string("abc\0\0x", 6));
  EXPECT_EQ(stream->Seek(-2, fw::soEnd), 4);
  dynamic_cast<TCTBlobStream&>(*stream).Truncate();
  EXPECT_EQ(stream->Seek(10, fw::soCurrent), 14);
  char byte = 0;
  EXPECT_EQ(stream->Read(&byte, 1), 0);
  stream.reset();
  table->Post();
  EXPECT_EQ(Stored(2, "PHOTO"), std::string("abc\0", 4));
}

TEST_F(BlobTable, OnlyWrittenStreamsSendAFieldChangeAndWritableOnesNeedAnEditableField) {
  TCTTable* table = Docs();
  int changes = 0;
  Note(*table)->OnChange = [&changes](fw::TField*) { ++changes; };
  EXPECT_EQ(Note(*table)->AsString(), kNoteText);
  table->Edit();
  table->CreateBlobStream(Note(*table), fw::bmReadWrite).reset();
  EXPECT_EQ(changes, 0);
  EXPECT_FALSE(table->Modified());
  Note(*table)->SetAsString("x");
  EXPECT_EQ(changes, 1);
  EXPECT_TRUE(table->Modified());
  table->Cancel();

  // Writable streams need an editing state and a writable field.
  EXPECT_EQ(ErrorOf([&] { table->CreateBlobStream(Note(*table), fw::bmWrite); }), 1121);
  EXPECT_EQ(ErrorOf([&] { table->CreateBlobStream(Note(*table), fw::bmReadWrite); }), 1121);
  table->Edit();
  Note(*table)->SetReadOnly(true);
  EXPECT_EQ(ErrorOf([&] { table->CreateBlobStream(Note(*table), fw::bmWrite); }), 1122);
  EXPECT_EQ(table->CreateBlobStream(Note(*table), fw::bmRead)->Size(),
            static_cast<int64_t>(std::strlen(kNoteText)));
  table->Cancel();

  // An empty table has no record buffer: the stream is closed.
  table->SetRange({fw::Variant(7)}, {fw::Variant(8)});
  ASSERT_TRUE(table->IsEmpty());
  std::unique_ptr<fw::TStream> stream = table->CreateBlobStream(Note(*table), fw::bmRead);
  char byte = 0;
  EXPECT_EQ(stream->Read(&byte, 1), 0);
  EXPECT_EQ(stream->Write("x", 1), 0);
  EXPECT_EQ(stream->Size(), 0);
}

TEST_F(BlobTable, ABlobLongerThanItsLengthFormLeavesTheFieldAsItWas) {
  TCTTable* table = Docs();
  table->Edit();
  EXPECT_EQ(ErrorOf([&] { Blob(*table, "TAG")->SetAsString(std::string(256, 't')); }), 1112);
  EXPECT_FALSE(Blob(*table, "TAG")->Modified());
  EXPECT_EQ(Blob(*table, "TAG")->AsString(), "keep");
  table->Post();
  EXPECT_EQ(Stored(1, "TAG"), "keep");

  table->Edit();
  Blob(*table, "TAG")->SetAsString(std::string(255, 't'));  // the most the 1-byte form counts
  table->Post();
  EXPECT_EQ(Stored(1, "TAG"), std::string(255, 't'));
}

TEST_F(BlobTable, ADamagedBlobLengthIsReportedNotReadPastTheRecord) {
  std::unique_ptr<Ctdb::TCTCursorDesc> cursor;
  ASSERT_EQ(Conn->OpenCursor(cursor, "docs", Dir.string(), 0), 0);
  {
    Ctdb::TCTCustomRecordBuffer record(cursor.get());
    record.InitRecord();
    const int32_t id = 9;
    ASSERT_EQ(Conn->SetField(cursor.get(), 1, &record, &id), 0);
    ASSERT_TRUE(record.FillRecord());
    const uint32_t length = 5000;  // the record ends long before
    std::memcpy(record.RecordPtr() + record.GetFieldOffset(kPhoto), &length, 4);
    ASSERT_EQ(CTDbIntf::AddVRecord(Conn->Alignment(), cursor->DataFileNo, record.RecordPtr(),
                                   record.RecordSize()),
              0);
  }
  ASSERT_EQ(Conn->CloseCursor(cursor), 0);
  TCTTable* table = Docs();
  ASSERT_TRUE(table->FindKey({fw::Variant(9)}));
  EXPECT_EQ(ErrorOf([&] { Blob(*table, "PHOTO")->AsString(); }), 1117);
  EXPECT_TRUE(Note(*table)->AsString().empty());
}

TEST_F(BlobTable, KeyBuffersTakeTheMastersMemoAndBcdValues) {
  TCTTable* master = Docs();
  master->Edit();
  master->FieldByName("AMOUNT")->SetAsCurrency(123400);  // 12.34
  master->Post();
  auto* detail = Docs<KeyTable>();
  fw::TStringList pairs;
  pairs.Add("NOTE");
  pairs.Add("AMOUNT=AMOUNT");
  std::unique_ptr<TCTRecordBuffer> key;
  detail->CreateRangeBuffer(key, master, &pairs);

  bool isBlob = false;
  ASSERT_EQ(Conn->OpenBlob(detail->Cursor(), kNote, key.get(), isBlob), 0);
  std::string note(64, '\0');
  int32_t read = 0;
  ASSERT_EQ(Conn->GetBlob(detail->Cursor(), kNote, key.get(), read, note.data(), 64, 0), 0);
  EXPECT_EQ(note.substr(0, static_cast<size_t>(read)), kNoteText);
  fw::TBcd bcd{};
  bool blank = true;
  ASSERT_EQ(Conn->GetField(detail->Cursor(), 6, key.get(), &bcd, blank), 0);
  fw::Currency amount = 0;
  ASSERT_TRUE(fw::BCDToCurr(bcd, amount));
  EXPECT_EQ(amount, master->FieldByName("AMOUNT")->AsCurrency());
  // The detail's own record is not taken for edited.
  EXPECT_FALSE(Note(*detail)->Modified());
  EXPECT_FALSE(detail->Modified());
  EXPECT_EQ(detail->State(), fw::dsBrowse);
}

TEST_F(BlobTable, CalculatedFieldsReadBlobsOfTheRecordBeingCalculated) {
  TCTTable* table = Docs<TCTTable>(false);
  table->FieldDefs()->Update();
  for (int i = 0; i < table->FieldDefs()->Count(); ++i)
    table->FieldDefs()->Items(i)->CreateField(table);
  fw::TField* length = new fw::TIntegerField(table);
  length->SetFieldName("NOTE_LENGTH");
  length->SetFieldKind(fw::fkCalculated);
  length->SetDataSet(table);
  table->OnCalcFields = [](fw::TDataSet* ds) {
    ds->FieldByName("NOTE_LENGTH")
        ->SetAsInteger(static_cast<int>(ds->FieldByName("NOTE")->AsString().size()));
  };
  table->Open();
  EXPECT_EQ(length->AsInteger(), static_cast<int>(std::strlen(kNoteText)));
  table->Next();
  EXPECT_EQ(length->AsInteger(), 0);
  table->Edit();
  Note(*table)->SetAsString("four");
  EXPECT_EQ(length->AsInteger(), 4);
}

}  // namespace
}  // namespace CTTables::testing
