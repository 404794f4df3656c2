// Shared set-up of the dataset tests: an in-memory table, an event log and a recording link
// (framework layer, tests only).
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "MemDataSet.h"
#include "TDataLink.h"
#include "TDataSource.h"

namespace fwtest {

/// A link that records every notification it receives, by name, without calling the base
/// (whose defaults chain the calls into each other).
class TRecordingLink : public fw::TDataLink {
 public:
  std::vector<std::string> Log;

 protected:
  void ActiveChanged() override { Log.push_back(Active() ? "ActiveChanged(1)" : "ActiveChanged(0)"); }
  void EditingChanged() override { Log.push_back(Editing() ? "EditingChanged(1)" : "EditingChanged(0)"); }
  void CheckBrowseMode() override { Log.push_back("CheckBrowseMode"); }
  void DataSetChanged() override { Log.push_back("DataSetChanged"); }
  void DataSetScrolled(int Distance) override { Log.push_back("DataSetScrolled(" + std::to_string(Distance) + ")"); }
  void LayoutChanged() override { Log.push_back("LayoutChanged"); }
  void RecordChanged(fw::TField* Field) override {
    Log.push_back("RecordChanged(" + (Field != nullptr ? Field->FieldName() : std::string("nil")) + ")");
  }
  void UpdateData() override { Log.push_back("UpdateData"); }
};

/// A table "T" with ID (integer), Name (string, 10) and Amount (float) and an event log.
class DataSetTest : public ::testing::Test {
 protected:
  void SetUp() override {
    Table = fw::TComponentPtr<TMemDataSet>(new TMemDataSet(
        nullptr, {{"ID", fw::ftInteger}, {"Name", fw::ftString, 10}, {"Amount", fw::ftFloat}}));
    Table->SetName("T");
  }

  /// Opens the table and appends `Count` records with ID 1..Count, Name "N<id>", Amount id*1.5.
  void Fill(int Count) {
    Table->Open();
    for (int i = 1; i <= Count; ++i)
      Table->AppendRecord({fw::Variant(i), fw::Variant("N" + std::to_string(i)), fw::Variant(i * 1.5)});
    Table->First();
  }

  /// Records every dataset event into Events.
  void LogEvents() {
    auto add = [this](fw::TDataSetNotifyEvent& event, const char* name) {
      event = [this, name](fw::TDataSet*) { Events.push_back(name); };
    };
    add(Table->BeforeOpen, "BeforeOpen");
    add(Table->AfterOpen, "AfterOpen");
    add(Table->BeforeClose, "BeforeClose");
    add(Table->AfterClose, "AfterClose");
    add(Table->BeforeInsert, "BeforeInsert");
    add(Table->AfterInsert, "AfterInsert");
    add(Table->BeforeEdit, "BeforeEdit");
    add(Table->AfterEdit, "AfterEdit");
    add(Table->BeforePost, "BeforePost");
    add(Table->AfterPost, "AfterPost");
    add(Table->BeforeCancel, "BeforeCancel");
    add(Table->AfterCancel, "AfterCancel");
    add(Table->BeforeDelete, "BeforeDelete");
    add(Table->AfterDelete, "AfterDelete");
    add(Table->BeforeScroll, "BeforeScroll");
    add(Table->AfterScroll, "AfterScroll");
    add(Table->BeforeRefresh, "BeforeRefresh");
    add(Table->AfterRefresh, "AfterRefresh");
    add(Table->OnNewRecord, "OnNewRecord");
  }

  /// Attaches a data source and a recording link asking for `Rows` rows.
  TRecordingLink& Attach(int Rows) {
    Source = fw::TComponentPtr<fw::TDataSource>(new fw::TDataSource(nullptr));
    Link = std::make_unique<TRecordingLink>();
    Link->SetBufferCount(Rows);
    Link->SetDataSource(Source.get());
    Source->SetDataSet(Table.get());
    Link->Log.clear();
    return *Link;
  }

  int Id() const { return Table->FieldByName("ID")->AsInteger(); }

  /// IDs in dataset order, walking First..Eof.
  std::vector<int> Walk() {
    std::vector<int> ids;
    for (Table->First(); !Table->Eof(); Table->Next()) ids.push_back(Id());
    return ids;
  }

  std::vector<std::string> TakeEvents() {
    std::vector<std::string> out;
    out.swap(Events);
    return out;
  }

  // Destroyed in reverse order: the link leaves the source before the source and table go.
  fw::TComponentPtr<TMemDataSet> Table;
  fw::TComponentPtr<fw::TDataSource> Source;
  std::unique_ptr<TRecordingLink> Link;
  std::vector<std::string> Events;
};

/// 1..n
inline std::vector<int> Range(int First, int Last) {
  std::vector<int> out;
  if (First <= Last)
    for (int i = First; i <= Last; ++i) out.push_back(i);
  else
    for (int i = First; i >= Last; --i) out.push_back(i);
  return out;
}

}  // namespace fwtest
