// Tests of TDataSet: open/close, the buffer window, navigation, editing and bookmarks, driven
// through the in-memory dataset (framework layer).
#include <gtest/gtest.h>

#include "DataSetFixture.h"
#include "Raises.h"
#include "TNumericField.h"
#include "TStringField.h"

namespace fwtest {
namespace {

using namespace fw;
using Strings = std::vector<std::string>;

TEST_F(DataSetTest, OpenAndCloseFireEventsInOrderAndManageFields) {
  LogEvents();
  Table->Open();  // empty: no AfterScroll
  EXPECT_EQ(TakeEvents(), (Strings{"BeforeOpen", "AfterOpen"}));
  EXPECT_TRUE(Table->IsEmpty());
  EXPECT_TRUE(Table->Bof() && Table->Eof());
  EXPECT_TRUE(Table->FieldByName("ID")->IsNull());
  Fill(2);
  Table->Close();
  TakeEvents();
  Table->Open();
  EXPECT_EQ(TakeEvents(), (Strings{"BeforeOpen", "AfterOpen", "AfterScroll"}));
  EXPECT_TRUE(Table->Active());
  EXPECT_EQ(Table->State(), dsBrowse);
  EXPECT_TRUE(Table->DefaultFields());
  EXPECT_EQ(Table->FieldCount(), 3);
  EXPECT_EQ(Table->FieldByName("name")->FieldNo(), 2);
  EXPECT_TRUE(Table->Bof());
  EXPECT_FALSE(Table->Eof());
  EXPECT_EQ(Table->AllocatedBuffers, 2);  // window of one row plus the spare

  Table->Close();
  EXPECT_EQ(TakeEvents(), (Strings{"BeforeClose", "AfterClose"}));
  EXPECT_EQ(Table->FieldCount(), 0);  // default fields die with the cursor
  EXPECT_EQ(Table->AllocatedBuffers, 0);
  EXPECT_TRUE(Table->Bof() && Table->Eof());
}

TEST_F(DataSetTest, FailedOpenLeavesTheDatasetClosedAndFreesItsBuffers) {
  Table->BeforeOpen = [](TDataSet*) { throw EDatabaseError("refused"); };
  EXPECT_THROW(Table->Open(), EDatabaseError);
  EXPECT_FALSE(Table->Active());
  Table->BeforeOpen = nullptr;

  // A persistent field without matching definition fails the binding inside the open.
  Persistent<TIntegerField>("Ghost");
  EXPECT_NE(MessageOf<EDatabaseError>([&] { Table->Open(); }).find("T: Field 'Ghost' not found"), std::string::npos);
  EXPECT_FALSE(Table->Active());
  EXPECT_EQ(Table->State(), dsInactive);
  EXPECT_EQ(Table->AllocatedBuffers, 0);
  EXPECT_EQ(Table->FieldCount(), 1);  // persistent fields survive
}

TEST_F(DataSetTest, PersistentFieldsSurviveCloseAndOpenAndDestroyingOneClosesTheDataset) {
  Fill(3);
  Table->Close();
  auto* id = Persistent<TIntegerField>("ID");
  auto* name = Persistent<TStringField>("Name");
  Table->Open();
  EXPECT_FALSE(Table->DefaultFields());
  EXPECT_EQ(Table->FieldCount(), 2);
  EXPECT_EQ(Walk(), Range(1, 3));
  Table->Close();
  EXPECT_EQ(Table->FieldCount(), 2);
  EXPECT_EQ(id->FieldNo(), 0);
  EXPECT_EQ(id->FieldDef(), nullptr);
  Table->Open();
  EXPECT_EQ(id->FieldNo(), 1);
  EXPECT_EQ(id->AsInteger(), 1);

  name->Free();
  EXPECT_FALSE(Table->Active());
  EXPECT_EQ(Table->FieldCount(), 1);
  Table->Open();
  EXPECT_EQ(id->AsInteger(), 1);
  EXPECT_THROW(id->SetFieldKind(fkCalculated), EDatabaseError);  // only while closed
  auto* other = new TIntegerField(Table.get());
  other->SetFieldName("id");
  EXPECT_THROW(other->SetDataSet(Table.get()), EDatabaseError);  // open, and a duplicate name
  EXPECT_EQ(other->DataSet(), nullptr);
}

TEST_F(DataSetTest, WalkingVisitsEveryRecordOnceWhateverTheWindowSize) {
  Fill(10);
  EXPECT_EQ(Walk(), Range(1, 10));  // window of one row
  Attach(4);                         // window smaller than the record count
  EXPECT_EQ(Table->BufferCount(), 4);
  EXPECT_EQ(Walk(), Range(1, 10));
  EXPECT_EQ(WalkBack(), Range(10, 1));
  Link->SetBufferCount(25);  // window larger than the record count
  EXPECT_EQ(Table->BufferCount(), 25);
  EXPECT_EQ(Table->WindowCount(), 10);
  EXPECT_EQ(Walk(), Range(1, 10));
}

// First and Last scroll (with events) even when already there; Next on the last record sets
// Eof and still scrolls, once.
TEST_F(DataSetTest, FirstLastAndNextScrollEvenWithoutMoving) {
  Fill(3);
  LogEvents();
  Table->First();
  Table->First();
  EXPECT_EQ(TakeEvents(), (Strings{"BeforeScroll", "AfterScroll", "BeforeScroll", "AfterScroll"}));
  Table->Close();
  Table->Open();
  Table->Last();
  EXPECT_TRUE(Table->Eof());
  EXPECT_FALSE(Table->Bof());
  EXPECT_EQ(Id(), 3);
  Table->First();
  Table->MoveBy(2);
  EXPECT_FALSE(Table->Eof());
  TakeEvents();
  EXPECT_EQ(Table->MoveBy(1), 0);
  EXPECT_TRUE(Table->Eof());
  EXPECT_EQ(Id(), 3);
  EXPECT_EQ(TakeEvents(), (Strings{"BeforeScroll", "AfterScroll"}));
  // Already at the end: only BeforeScroll, nothing moves.
  EXPECT_EQ(Table->MoveBy(1), 0);
  EXPECT_EQ(TakeEvents(), (Strings{"BeforeScroll"}));
  EXPECT_EQ(Table->MoveBy(-1), -1);
  EXPECT_FALSE(Table->Eof());
  EXPECT_EQ(Id(), 2);
}

TEST_F(DataSetTest, MoveByReturnsTheDistanceMovedAndStopsAtBothEnds) {
  Fill(10);
  Attach(3);
  const struct { int by, moved, id; } steps[] = {{4, 4, 5}, {100, 5, 10}, {-3, -3, 7}, {-100, -6, 1}, {0, 0, 1}};
  for (const auto& s : steps) {
    EXPECT_EQ(Table->MoveBy(s.by), s.moved) << s.by;
    EXPECT_EQ(Id(), s.id) << s.by;
    if (s.by == 100) EXPECT_TRUE(Table->Eof());
    if (s.by == -100) EXPECT_TRUE(Table->Bof());
  }
  EXPECT_EQ(Table->RecNo(), 1);
  EXPECT_EQ(Table->RecordCount(), 10);
}

TEST_F(DataSetTest, RefreshKeepsTheActiveRecordOnTheSameWindowRow) {
  Fill(12);
  TRecordingLink& link = Attach(5);
  Table->MoveBy(7);  // record 8; the window slid to show 4..8
  ASSERT_EQ(Id(), 8);
  EXPECT_EQ(link.ActiveRecord(), 4);
  Table->Refresh();
  EXPECT_EQ(Id(), 8);
  EXPECT_EQ(link.ActiveRecord(), 4);
  Table->Resync(TResyncMode{rmCenter});
  EXPECT_EQ(Id(), 8);
  EXPECT_EQ(Table->ActiveRecord(), 2);  // (5 - 1) / 2 rows above
}

TEST_F(DataSetTest, ResyncFallsBackToTheNextThenThePreviousRecord) {
  Fill(3);
  Table->MoveBy(1);
  ASSERT_EQ(Id(), 2);
  Table->Delete();  // the cursor stays on the following record
  EXPECT_EQ(Id(), 3);
  Table->Delete();  // the last one went: the previous record becomes current
  EXPECT_EQ(Id(), 1);
  Table->Delete();
  EXPECT_TRUE(Table->IsEmpty());
  EXPECT_EQ(Table->StoredCount(), 0);
}

TEST_F(DataSetTest, EditPostStoresTheValueCancelRestoresItAndScrollingPosts) {
  Fill(3);
  Table->Next();
  LogEvents();
  Table->Edit();
  EXPECT_EQ(Table->State(), dsEdit);
  Table->FieldByName("Name")->SetAsString("changed");
  EXPECT_TRUE(Table->Modified());
  EXPECT_EQ(Table->FieldByName("Name")->OldValue().AsString(), "N2");
  Table->Post();
  EXPECT_EQ(TakeEvents(), (Strings{"BeforeEdit", "AfterEdit", "BeforePost", "AfterPost"}));
  EXPECT_EQ(Table->State(), dsBrowse);
  EXPECT_FALSE(Table->Modified());
  Table->First();
  Table->Next();
  EXPECT_EQ(Name(), "changed");
  TakeEvents();

  Table->Edit();
  Table->FieldByName("Name")->SetAsString("gone");
  Table->Cancel();
  EXPECT_EQ(TakeEvents(), (Strings{"BeforeEdit", "AfterEdit", "BeforeCancel", "AfterCancel"}));
  EXPECT_EQ(Name(), "changed");
  Table->Cancel();  // outside an edit state: nothing
  EXPECT_TRUE(TakeEvents().empty());

  Table->Edit();
  Table->FieldByName("Name")->SetAsString("kept");
  Table->Next();  // leaving a modified record posts it
  EXPECT_EQ(TakeEvents(), (Strings{"BeforeEdit", "AfterEdit", "BeforePost", "AfterPost", "BeforeScroll", "AfterScroll"}));
  Table->Prior();
  EXPECT_EQ(Name(), "kept");
}

TEST_F(DataSetTest, InsertPlacesTheRecordBeforeTheCurrentOne) {
  Fill(3);
  Attach(5);
  Table->Next();
  LogEvents();
  Table->OnNewRecord = [this](TDataSet*) {
    Events.push_back("OnNewRecord");
    Table->FieldByName("Amount")->SetAsFloat(9.5);
  };
  Table->Insert();
  EXPECT_EQ(Table->State(), dsInsert);
  EXPECT_FALSE(Table->Modified());  // OnNewRecord values are defaults
  EXPECT_EQ(Table->FieldByName("Amount")->AsFloat(), 9.5);
  EXPECT_TRUE(Table->FieldByName("ID")->IsNull());
  Table->FieldByName("ID")->SetAsInteger(99);
  Table->Post();
  EXPECT_EQ(TakeEvents(), (Strings{"BeforeInsert", "BeforeScroll", "OnNewRecord", "AfterInsert", "AfterScroll",
                                   "BeforePost", "AfterPost"}));
  EXPECT_EQ(Id(), 99);
  EXPECT_EQ(Table->RecNo(), 2);
  EXPECT_EQ(Walk(), (std::vector<int>{1, 99, 2, 3}));
}

TEST_F(DataSetTest, AppendAddsAtTheEndAndAnUntouchedInsertIsDiscarded) {
  Fill(4);
  Table->Append();
  EXPECT_TRUE(Table->Eof());
  EXPECT_FALSE(Table->Bof());
  Table->FieldByName("ID")->SetAsInteger(50);
  Table->Post();
  EXPECT_EQ(Id(), 50);
  EXPECT_EQ(Walk(), (std::vector<int>{1, 2, 3, 4, 50}));

  Table->OnNewRecord = [this](TDataSet*) { Table->FieldByName("ID")->SetAsInteger(77); };
  Table->First();
  Table->Insert();
  Table->Next();  // untouched: cancelled (back on record 1), not posted, then the move
  EXPECT_EQ(Table->StoredCount(), 5);
  EXPECT_EQ(Id(), 2);
}

TEST_F(DataSetTest, CancellingAnInsertIntoAnEmptyTableLeavesItEmpty) {
  Table->Open();
  TRecordingLink& link = Attach(3);
  Table->Insert();
  EXPECT_FALSE(Table->IsEmpty());
  Table->Cancel();
  EXPECT_TRUE(Table->IsEmpty());
  EXPECT_TRUE(Table->Bof() && Table->Eof());
  EXPECT_EQ(link.RecordCount(), 0);
  Table->Edit();  // editing an empty table inserts
  EXPECT_EQ(Table->State(), dsInsert);
}

TEST_F(DataSetTest, DeleteFiresEventsAndRefusesAnEmptyTable) {
  Fill(2);
  LogEvents();
  Table->Delete();
  EXPECT_EQ(TakeEvents(), (Strings{"BeforeDelete", "BeforeScroll", "AfterDelete", "AfterScroll"}));
  EXPECT_EQ(Id(), 2);
  Table->Delete();
  TakeEvents();
  EXPECT_THROW(Table->Delete(), EDatabaseError);
  EXPECT_TRUE(TakeEvents().empty());
}

TEST_F(DataSetTest, WrongStateCallsRaiseAndLeaveTheDatasetAsItWas) {
  EXPECT_THROW(Table->Edit(), EDatabaseError);
  EXPECT_THROW(Table->Next(), EDatabaseError);
  EXPECT_THROW(Table->Insert(), EDatabaseError);
  EXPECT_EQ(Table->State(), dsInactive);
  Fill(3);
  Table->Next();
  EXPECT_THROW(Table->Post(), EDatabaseError);
  EXPECT_THROW(Table->FieldByName("Name")->SetAsString("x"), EDatabaseError);
  EXPECT_EQ(Name(), "N2");
  EXPECT_THROW(Table->FieldByName("nope"), EDatabaseError);
  EXPECT_EQ(Table->FindField("nope"), nullptr);
  EXPECT_THROW(Table->FieldByName("ID")->SetAsString("x"), EDatabaseError);
  EXPECT_EQ(Table->State(), dsBrowse);
  EXPECT_EQ(Id(), 2);

  Table->Edit();
  EXPECT_THROW(Table->FieldByName("ID")->SetAsString("12x"), EDatabaseError);
  EXPECT_EQ(Table->State(), dsEdit);
  EXPECT_EQ(Id(), 2);
  Table->Cancel();

  Table->ReadOnlyTable = true;
  EXPECT_THROW(Table->Edit(), EDatabaseError);
  EXPECT_THROW(Table->Delete(), EDatabaseError);
  EXPECT_EQ(Table->State(), dsBrowse);
  EXPECT_EQ(Table->StoredCount(), 3);
}

TEST_F(DataSetTest, PostChecksRequiredFieldsAndStaysInInsert) {
  Fill(1);
  Table->FieldByName("Name")->SetRequired(true);
  Table->Append();
  Table->FieldByName("ID")->SetAsInteger(5);
  EXPECT_THROW(Table->Post(), EDatabaseError);
  EXPECT_EQ(Table->State(), dsInsert);
  Table->FieldByName("Name")->SetAsString("ok");
  Table->Post();
  EXPECT_EQ(Table->StoredCount(), 2);
}

TEST_F(DataSetTest, PostErrorEventMayRetryAbortOrFail) {
  Fill(2);
  int calls = 0;
  Table->OnPostError = [&calls](TDataSet*, EDatabaseError&, TDataAction& action) {
    ++calls;
    action = daRetry;
  };
  Table->FailPosts = 2;
  Table->Edit();
  Table->FieldByName("Name")->SetAsString("retried");
  Table->Post();
  EXPECT_EQ(calls, 2);
  EXPECT_EQ(Name(), "retried");

  Table->OnPostError = [](TDataSet*, EDatabaseError&, TDataAction& action) { action = daAbort; };
  Table->FailPosts = 1;
  Table->Edit();
  Table->FieldByName("Name")->SetAsString("aborted");
  EXPECT_THROW(Table->Post(), EAbort);
  EXPECT_EQ(Table->State(), dsEdit);

  Table->OnPostError = nullptr;
  Table->FailPosts = 1;
  EXPECT_THROW(Table->Post(), EDatabaseError);
  EXPECT_EQ(Table->State(), dsEdit);
  Table->Post();
  EXPECT_EQ(Name(), "aborted");
}

TEST_F(DataSetTest, BookmarksFindTheirRecordAcrossEdits) {
  Fill(6);
  Attach(3);
  Table->MoveBy(3);
  const TBookmark mark = Table->GetBookmark();
  ASSERT_EQ(mark.size(), 4u);
  Table->First();
  Table->InsertRecord({Variant(100)});
  Table->Last();
  Table->Edit();
  Table->FieldByName("Name")->SetAsString("last");
  Table->Post();
  LogEvents();
  Table->GotoBookmark(mark);
  EXPECT_EQ(TakeEvents(), (Strings{"BeforeScroll", "AfterScroll"}));
  EXPECT_EQ(Id(), 4);
  EXPECT_TRUE(Table->BookmarkValid(mark));
  EXPECT_EQ(Table->CompareBookmarks(mark, Table->GetBookmark()), 0);
  Table->First();
  EXPECT_EQ(Table->CompareBookmarks(Table->GetBookmark(), mark), -1);
  EXPECT_EQ(Table->CompareBookmarks(TBookmark{}, mark), 1);
  Table->Insert();
  EXPECT_TRUE(Table->GetBookmark().empty());  // an unposted record has no bookmark
  Table->Cancel();
  Table->GotoBookmark(mark);
  Table->Delete();
  EXPECT_FALSE(Table->BookmarkValid(mark));
  EXPECT_THROW(Table->GotoBookmark(mark), EDatabaseError);
}

TEST_F(DataSetTest, DisableControlsHoldsNotificationsUntilEnabled) {
  Fill(5);
  TRecordingLink& link = Attach(1);
  Table->DisableControls();
  Table->DisableControls();
  Table->Next();
  Table->Edit();
  Table->FieldByName("Name")->SetAsString("quiet");
  Table->Post();
  Table->EnableControls();
  EXPECT_TRUE(link.Log.empty());
  Table->EnableControls();
  EXPECT_EQ(link.Log, (Strings{"DataSetChanged"}));
  EXPECT_EQ(Name(), "quiet");
}

TEST_F(DataSetTest, InsertRecordRefusesTooManyValuesBeforeChangingAnything) {
  Fill(1);
  EXPECT_THROW(Table->InsertRecord({Variant(1), Variant("a"), Variant(1.0), Variant(2)}), EDatabaseError);
  EXPECT_EQ(Table->State(), dsBrowse);
  Table->AppendRecord({Variant(2), Variant(), Null()});
  EXPECT_EQ(Id(), 2);
  EXPECT_TRUE(Table->FieldByName("Name")->IsNull());
  EXPECT_TRUE(Table->FieldByName("Amount")->IsNull());
}

TEST_F(DataSetTest, FieldValuesReadAndWriteSeveralFields) {
  Fill(2);
  const Variant values = Table->FieldValues("ID; Name");
  ASSERT_TRUE(VarIsArray(values));
  EXPECT_EQ(values[0].AsInteger(), 1);
  EXPECT_EQ(values[1].AsString(), "N1");
  Table->Edit();
  Table->SetFieldValues("Name;Amount", VarArrayOf({Variant("x"), Variant(2.25)}));
  Table->Post();
  EXPECT_EQ(Name(), "x");
  EXPECT_EQ(Table->FieldByName("Amount")->AsFloat(), 2.25);
  std::vector<TField*> list;
  EXPECT_THROW(Table->GetFieldList(list, "ID;Bogus;Name"), EDatabaseError);
  list.clear();
  Table->GetFieldList(list, "");
  EXPECT_TRUE(list.empty());
  EXPECT_THROW(Table->GetFieldList(list, " "), EDatabaseError);  // a blank name is not no name
  Table->GetFieldList(list, " ID ;Name;");
  EXPECT_EQ(list.size(), 2u);
}

TEST_F(DataSetTest, FilterRecordSkipsRejectedRecordsInBothDirections) {
  Fill(8);
  Attach(3);
  Table->SetOnFilterRecord([](TDataSet* ds, bool& accept) {
    EXPECT_EQ(ds->State(), dsFilter);
    accept = ds->FieldByName("ID")->AsInteger() % 3 == 0;
  });
  Table->SetFiltered(true);
  EXPECT_EQ(Walk(), (std::vector<int>{3, 6}));
  EXPECT_EQ(WalkBack(), (std::vector<int>{6, 3}));
  Table->SetFiltered(false);
  EXPECT_EQ(Walk(), Range(1, 8));
}

TEST_F(DataSetTest, UnidirectionalDatasetRefusesBackwardMoves) {
  Fill(3);
  Table->Close();
  Table->SetUniDirectionalForTest(true);
  Table->Open();
  EXPECT_EQ(Id(), 1);
  Table->Next();
  EXPECT_EQ(Id(), 2);
  EXPECT_THROW(Table->Prior(), EDatabaseError);
  EXPECT_THROW(Table->Last(), EDatabaseError);
  EXPECT_THROW(Table->SetFiltered(true), EDatabaseError);
  EXPECT_TRUE(Table->GetBookmark().empty());
}

TEST_F(DataSetTest, ClosingWhileEditingDiscardsWithoutCancelEvents) {
  Fill(2);
  Table->Edit();
  Table->FieldByName("Name")->SetAsString("lost");
  LogEvents();
  Table->Close();
  EXPECT_EQ(TakeEvents(), (Strings{"BeforeClose", "AfterClose"}));
  EXPECT_FALSE(Table->Modified());
  Table->Open();
  EXPECT_EQ(Name(), "N1");
}

TEST_F(DataSetTest, BlockReadKeepsLinksUninformedUntilItEnds) {
  Fill(4);
  TRecordingLink& link = Attach(1);
  Table->SetBlockReadSize(10);
  EXPECT_EQ(Table->State(), dsBlockRead);
  Table->Next();
  Table->Next();
  EXPECT_EQ(Id(), 3);
  EXPECT_TRUE(link.Log.empty());
  Table->SetBlockReadSize(0);
  EXPECT_EQ(Table->State(), dsBrowse);
  EXPECT_TRUE(link.Log.empty());  // the links never saw the dataset leave dsBrowse
  Table->Close();
  EXPECT_THROW(Table->SetBlockReadSize(5), EDatabaseError);
}

TEST(ExtractFieldNameTest, WalksASemicolonListTrimmingNames) {
  const std::string fields = " A ;B;;C ";
  int pos = 1;
  std::vector<std::string> names;
  while (pos <= static_cast<int>(fields.size())) names.push_back(ExtractFieldName(fields, pos));
  EXPECT_EQ(names, (Strings{"A", "B", "", "C"}));
  pos = 1;
  EXPECT_EQ(ExtractFieldName("", pos), "");
  EXPECT_EQ(pos, 1);
}

/// Random navigation and edits against a plain list of IDs, with the window resized on the
/// way: after every step the current record and every row the link shows must match the list.
TEST_F(DataSetTest, WindowStaysConsistentWithTheRecordsUnderRandomOperations) {
  Fill(6);
  TRecordingLink& link = Attach(3);
  std::vector<int> model = Range(1, 6);
  int pos = 0;
  int nextId = 100;
  uint32_t seed = 12345;
  auto random = [&seed](int n) {
    seed = seed * 1103515245u + 12345u;
    return static_cast<int>((seed >> 16) % static_cast<uint32_t>(n));
  };
  for (int step = 0; step < 600; ++step) {
    const int op = random(9);
    const int size = static_cast<int>(model.size());
    if (op <= 2 && size > 0) {
      const int distance = random(9) - 4;
      Table->MoveBy(distance);
      pos = std::clamp(pos + distance, 0, size - 1);
    } else if (op == 3) {
      Table->Insert();
      Table->FieldByName("ID")->SetAsInteger(nextId);
      Table->Post();
      model.insert(model.begin() + (size == 0 ? 0 : pos), nextId++);
    } else if (op == 4) {
      Table->AppendRecord({Variant(nextId)});
      model.push_back(nextId++);
      pos = static_cast<int>(model.size()) - 1;
    } else if (op == 5 && size > 0) {
      Table->Delete();
      model.erase(model.begin() + pos);
      pos = std::max(std::min(pos, static_cast<int>(model.size()) - 1), 0);
    } else if (op == 6) {
      link.SetBufferCount(1 + random(7));
    } else if (op == 7 && size > 0) {
      const bool first = random(2) == 0;
      first ? Table->First() : Table->Last();
      pos = first ? 0 : size - 1;
    } else if (op == 8 && size > 0) {
      Table->Edit();
      Table->FieldByName("Name")->SetAsString("e" + std::to_string(step));
      random(2) == 0 ? Table->Post() : Table->Cancel();
    }
    SCOPED_TRACE("step " + std::to_string(step) + " op " + std::to_string(op));
    ASSERT_EQ(Table->IsEmpty(), model.empty());
    if (model.empty()) continue;
    ASSERT_EQ(Id(), model[static_cast<std::size_t>(pos)]);
    const int row = link.ActiveRecord();
    ASSERT_GE(row, 0);
    ASSERT_LT(row, link.BufferCount());
    ASSERT_LE(link.RecordCount(), link.BufferCount());
    for (int r = 0; r < link.RecordCount(); ++r) {
      link.SetActiveRecord(r);
      ASSERT_EQ(Id(), model[static_cast<std::size_t>(pos - row + r)]) << "row " << r << " of " << link.RecordCount();
    }
    link.SetActiveRecord(row);
  }
  EXPECT_EQ(Walk(), model);
}

}  // namespace
}  // namespace fwtest
