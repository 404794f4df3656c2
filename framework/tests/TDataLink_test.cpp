// Tests of TDataLink and TDataSource: which notifications a link receives, window sizing,
// switching and disabling sources (framework layer).
#include <gtest/gtest.h>

#include "DataSetFixture.h"

namespace fwtest {
namespace {

using namespace fw;
using Strings = std::vector<std::string>;

TEST_F(DataSetTest, LinkSeesActivationButNoDataEventsOnOpenAndClose) {
  TRecordingLink& link = Attach(1);
  Strings sourceLog;
  Source->OnStateChange = [&](TDataSource* s) { sourceLog.push_back("State" + std::to_string(s->State())); };
  Source->OnDataChange = [&](TDataSource*, TField* f) { sourceLog.push_back(f ? "Data(" + f->FieldName() + ")" : "Data(nil)"); };
  Fill(2);
  EXPECT_EQ(link.Log.front(), "ActiveChanged(1)");
  link.Log.clear();
  sourceLog.clear();
  Table->Close();
  EXPECT_EQ(link.Log, (Strings{"ActiveChanged(0)"}));
  EXPECT_EQ(sourceLog, (Strings{"State0"}));
  Table->Open();
  EXPECT_EQ(link.Log, (Strings{"ActiveChanged(0)", "ActiveChanged(1)"}));
  EXPECT_EQ(sourceLog, (Strings{"State0", "State1", "Data(nil)"}));
  EXPECT_TRUE(link.Active());
  EXPECT_EQ(link.DataSet(), Table.get());
}

TEST_F(DataSetTest, LinkFollowsScrollingWithTheRowsItShows) {
  Fill(6);
  TRecordingLink& link = Attach(3);
  EXPECT_EQ(link.RecordCount(), 3);
  Table->Next();
  Table->Next();
  EXPECT_EQ(link.Log, (Strings{"CheckBrowseMode", "DataSetScrolled(0)", "CheckBrowseMode", "DataSetScrolled(0)"}));
  EXPECT_EQ(link.ActiveRecord(), 2);
  link.Log.clear();
  Table->Next();  // the window slides: the link's view moves by one row
  EXPECT_EQ(link.Log, (Strings{"CheckBrowseMode", "DataSetScrolled(1)"}));
  EXPECT_EQ(link.ActiveRecord(), 2);
  EXPECT_EQ(link.FirstRecord(), 0);
  link.Log.clear();
  Table->First();
  EXPECT_EQ(link.Log, (Strings{"CheckBrowseMode", "DataSetChanged"}));
  EXPECT_EQ(link.ActiveRecord(), 0);
  EXPECT_TRUE(link.Bof());
  link.Log.clear();
  link.SetActiveRecord(2);
  EXPECT_EQ(Id(), 3);  // moves the active row without events or fetching
  EXPECT_TRUE(link.Log.empty());
}

TEST_F(DataSetTest, LinkSeesEditingFieldChangesAndThePost) {
  Fill(2);
  TRecordingLink& link = Attach(1);
  Strings sourceLog;
  Source->OnDataChange = [&](TDataSource*, TField* f) { sourceLog.push_back(f ? "Data(" + f->FieldName() + ")" : "Data(nil)"); };
  Source->OnUpdateData = [&](TDataSource*) { sourceLog.push_back("UpdateData"); };
  EXPECT_TRUE(link.Edit());  // through the source's AutoEdit
  EXPECT_EQ(Table->State(), dsEdit);
  EXPECT_EQ(link.Log, (Strings{"CheckBrowseMode", "EditingChanged(1)", "RecordChanged(nil)"}));
  link.Log.clear();
  Table->FieldByName("Name")->SetAsString("z");
  EXPECT_EQ(link.Log, (Strings{"RecordChanged(Name)"}));
  link.Log.clear();
  Table->Post();
  EXPECT_EQ(link.Log, (Strings{"UpdateData", "CheckBrowseMode", "EditingChanged(0)", "DataSetChanged"}));
  EXPECT_EQ(sourceLog, (Strings{"Data(nil)", "Data(Name)", "UpdateData", "Data(nil)"}));
  link.Log.clear();
  link.SetReadOnly(true);
  EXPECT_FALSE(link.Edit());
  EXPECT_EQ(Table->State(), dsBrowse);
  Source->SetAutoEdit(false);
  link.SetReadOnly(false);
  EXPECT_FALSE(link.Edit());
  EXPECT_EQ(Table->State(), dsBrowse);
  EXPECT_TRUE(link.Log.empty());
}

TEST_F(DataSetTest, LinkUpdateRecordDoesNotEchoItsOwnChanges) {
  Fill(1);
  class Writer : public TRecordingLink {
   protected:
    void UpdateData() override {
      TRecordingLink::UpdateData();
      DataSet()->FieldByName("Name")->SetAsString("ctl");
    }
  };
  Writer& link = Attach<Writer>(1);
  Table->Edit();
  link.Log.clear();
  Table->Post();
  EXPECT_EQ(link.Log, (Strings{"UpdateData", "CheckBrowseMode", "EditingChanged(0)", "DataSetChanged"}));
  EXPECT_EQ(Table->FieldByName("Name")->AsString(), "ctl");
}

TEST_F(DataSetTest, LayoutChangesAndFocusReachLinks) {
  Fill(1);
  class Focus : public TRecordingLink {
   protected:
    void FocusControl(TField** Field) override { Log.push_back("Focus(" + (*Field)->FieldName() + ")"); }
  };
  Focus& link = Attach<Focus>(1);
  Table->FieldByName("Amount")->SetDisplayLabel("Sum");
  Table->FieldByName("Amount")->FocusControl();
  EXPECT_EQ(link.Log, (Strings{"LayoutChanged", "Focus(Amount)"}));
  EXPECT_EQ(Table->FieldByName("Amount")->DisplayName(), "Sum");
}

TEST_F(DataSetTest, WindowFollowsTheLargestLinkAndShrinksWhenItLeaves) {
  Fill(8);
  Table->MoveBy(5);
  TRecordingLink& link = Attach(4);
  EXPECT_EQ(Table->BufferCount(), 4);
  EXPECT_EQ(Table->WindowCount(), 4);
  EXPECT_EQ(Id(), 6);  // growing the window keeps the current record
  TRecordingLink second;
  second.SetBufferCount(2);
  second.SetDataSource(Source.get());
  EXPECT_EQ(Table->BufferCount(), 4);
  link.SetDataSource(nullptr);
  EXPECT_EQ(Table->BufferCount(), 2);
  EXPECT_EQ(Id(), 6);
  EXPECT_EQ(Table->AllocatedBuffers, 3);
  second.SetDataSource(nullptr);
  EXPECT_EQ(Table->BufferCount(), 1);
  EXPECT_EQ(Id(), 6);
}

TEST_F(DataSetTest, SourceSwitchingDatasetsMovesItsLinks) {
  Fill(3);
  TRecordingLink& link = Attach(5);
  TComponentPtr<TMemDataSet> other(new TMemDataSet(nullptr, {{"ID", ftInteger}}));
  other->Open();
  other->AppendRecord({Variant(42)});
  Source->SetDataSet(other.get());
  EXPECT_EQ(link.Log, (Strings{"ActiveChanged(0)", "ActiveChanged(1)"}));
  EXPECT_EQ(Table->BufferCount(), 1);  // the old dataset no longer serves the link
  EXPECT_EQ(other->BufferCount(), 5);
  EXPECT_EQ(link.DataSet()->FieldByName("ID")->AsInteger(), 42);
  link.Log.clear();
  Table->Next();  // the old dataset's events no longer reach the link
  EXPECT_TRUE(link.Log.empty());
  other.reset();  // destroying the dataset detaches the source
  EXPECT_EQ(Source->DataSet(), nullptr);
  EXPECT_EQ(Source->State(), dsInactive);
  EXPECT_EQ(link.Log, (Strings{"ActiveChanged(0)"}));
}

TEST_F(DataSetTest, DisabledSourceDeactivatesLinksWithoutTouchingTheDataset) {
  Fill(3);
  TRecordingLink& link = Attach(1);
  Source->SetEnabled(false);
  EXPECT_EQ(link.Log, (Strings{"ActiveChanged(0)"}));
  EXPECT_EQ(Source->State(), dsInactive);
  EXPECT_TRUE(Table->Active());
  link.Log.clear();
  Table->Next();
  Table->Edit();
  Table->Cancel();
  EXPECT_TRUE(link.Log.empty());
  Source->SetEnabled(true);
  EXPECT_EQ(link.Log, (Strings{"ActiveChanged(1)"}));
  EXPECT_EQ(Id(), 2);
}

TEST_F(DataSetTest, DestroyedLinkAndSourceDetachThemselves) {
  Fill(4);
  Attach(3);
  EXPECT_EQ(Table->BufferCount(), 3);
  Link.reset();
  EXPECT_EQ(Source->DataLinkCount(), 0);
  EXPECT_EQ(Table->BufferCount(), 1);
  auto* extra = new TRecordingLink;
  extra->SetDataSource(Source.get());
  Source.reset();
  EXPECT_EQ(extra->DataSource(), nullptr);
  EXPECT_FALSE(extra->Active());
  delete extra;
  Table->Next();  // no source left to notify
  EXPECT_EQ(Id(), 2);
}

TEST_F(DataSetTest, SourceRefusesACircularLink) {
  Fill(1);
  Attach(1);
  TComponentPtr<TMemDataSet> detail(new TMemDataSet(nullptr, {{"ID", ftInteger}}));
  detail->MasterSource = Source.get();
  EXPECT_THROW(Source->SetDataSet(detail.get()), EDatabaseError);
  EXPECT_EQ(Source->DataSet(), Table.get());
  EXPECT_TRUE(detail->IsLinkedTo(Source.get()));
  detail->MasterSource = nullptr;
}

}  // namespace
}  // namespace fwtest
