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
    using Event = fw::TDataSetNotifyEvent fw::TDataSet::*;
    static const std::pair<Event, const char*> kEvents[] = {
        {&fw::TDataSet::BeforeOpen, "BeforeOpen"},     {&fw::TDataSet::AfterOpen, "AfterOpen"},
        {&fw::TDataSet::BeforeClose, "BeforeClose"},   {&fw::TDataSet::AfterClose, "AfterClose"},
        {&fw::TDataSet::BeforeInsert, "BeforeInsert"}, {&fw::TDataSet::AfterInsert, "AfterInsert"},
        {&fw::TDataSet::BeforeEdit, "BeforeEdit"},     {&fw::TDataSet::AfterEdit, "AfterEdit"},
        {&fw::TDataSet::BeforePost, "BeforePost"},     {&fw::TDataSet::AfterPost, "AfterPost"},
        {&fw::TDataSet::BeforeCancel, "BeforeCancel"}, {&fw::TDataSet::AfterCancel, "AfterCancel"},
        {&fw::TDataSet::BeforeDelete, "BeforeDelete"}, {&fw::TDataSet::AfterDelete, "AfterDelete"},
        {&fw::TDataSet::BeforeScroll, "BeforeScroll"}, {&fw::TDataSet::AfterScroll, "AfterScroll"},
        {&fw::TDataSet::BeforeRefresh, "BeforeRefresh"}, {&fw::TDataSet::AfterRefresh, "AfterRefresh"},
        {&fw::TDataSet::OnNewRecord, "OnNewRecord"}};
    for (const auto& [event, name] : kEvents)
      Table.get()->*event = [this, name = name](fw::TDataSet*) { Events.push_back(name); };
  }

  /// A persistent field of class F named `Name` on the (closed) table.
  template <class F>
  F* Persistent(const std::string& Name) {
    auto* field = new F(Table.get());
    field->SetFieldName(Name);
    field->SetDataSet(Table.get());
    return field;
  }

  /// Attaches a data source and a recording link (of class L) asking for `Rows` rows.
  template <class L = TRecordingLink>
  L& Attach(int Rows) {
    Source = fw::TComponentPtr<fw::TDataSource>(new fw::TDataSource(nullptr));
    auto link = std::make_unique<L>();
    L& result = *link;
    Link = std::move(link);
    Link->SetBufferCount(Rows);
    Link->SetDataSource(Source.get());
    Source->SetDataSet(Table.get());
    Link->Log.clear();
    return result;
  }

  int Id() const { return Table->FieldByName("ID")->AsInteger(); }

  std::string Name() const { return Table->FieldByName("Name")->AsString(); }

  /// IDs in dataset order, walking First..Eof, and backwards Last..Bof.
  std::vector<int> Walk() {
    std::vector<int> ids;
    for (Table->First(); !Table->Eof(); Table->Next()) ids.push_back(Id());
    return ids;
  }
  std::vector<int> WalkBack() {
    std::vector<int> ids;
    for (Table->Last(); !Table->Bof(); Table->Prior()) ids.push_back(Id());
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
