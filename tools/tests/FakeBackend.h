// An in-memory stand-in for the table layer, so that the commands can be tested on their own.
#pragma once

#include <algorithm>
#include <csignal>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "CtError.h"
#include "Exception.h"
#include "StringUtils.h"
#include "TableBackend.h"

namespace ctt::test {

// One table: its definition and its records, each record one text per field.
struct FakeTable {
  std::vector<FieldDefinition> Fields;
  std::vector<IndexDefinition> Indexes;
  std::vector<std::vector<std::string>> Records;
  bool Damaged = false;  // Verify raises 803
};

struct FakeStore {
  std::map<std::string, FakeTable> Tables;
  int Commits = 0;
  int Rollbacks = 0;
  int FailCommitNumber = 0;  // the commit with this number (1-based) fails with error 37
  bool Transactions = true;  // what HasTransactions answers
  std::string Filter;        // the last filter text a cursor was given (not applied)
  int Appends = 0;
  int SignalAtAppend = 0;    // the append with this number (1-based) raises Signal first
  int Signal = 0;
};

class FakeCursor : public TableCursor {
 public:
  FakeCursor(FakeStore& store, FakeTable& table) : FStore(store), FTable(table) { UseIndex(""); }

  TableInfo Info() override {
    return {FTable.Fields, FTable.Indexes, static_cast<std::int64_t>(FTable.Records.size()),
            {"data.dat", "data.idx"}};
  }

  void UseIndex(const std::string& name) override {
    FIndex = nullptr;
    for (const IndexDefinition& index : FTable.Indexes)
      if (name.empty() ? FIndex == nullptr : fw::SameText(index.Name, name)) FIndex = &index;
    if (!name.empty() && !FIndex) CTDbIntf::CtError(1137);
    FFrom.clear();
    FTo.clear();
  }

  void SetRange(const KeyValues& from, const KeyValues& to) override {
    CheckKey(from);
    CheckKey(to);
    FFrom = from;
    FTo = to;
    First();
  }

  void SetFilter(const std::string& text) override {
    FStore.Filter = text;
    First();
  }

  void First() override {
    Order();
    FPos = 0;
  }

  bool FindNearest(const KeyValues& key) override {
    CheckKey(key);
    Order();
    FPos = 0;
    while (FPos < FOrder.size() && Compare(Key(FTable.Records[FOrder[FPos]]), key) < 0) ++FPos;
    return FPos < FOrder.size();
  }

  bool Read(std::vector<std::string>& values) override {
    if (FPos >= FOrder.size()) return false;
    values = FTable.Records[FOrder[FPos++]];
    return true;
  }

  void Append(const std::vector<std::optional<std::string>>& values, const ValueSpellings&) override {
    if (++FStore.Appends == FStore.SignalAtAppend) std::raise(FStore.Signal);
    std::vector<std::string> record;
    for (std::size_t i = 0; i < FTable.Fields.size(); ++i) {
      const std::string text = values[i].value_or("");
      const fw::TFieldType type = FTable.Fields[i].DataType;
      if ((type == fw::ftInteger || type == fw::ftFloat) && !text.empty()) {
        std::size_t used = 0;
        try {
          (void)std::stod(text, &used);
        } catch (const std::exception&) {
        }
        if (used != text.size()) throw fw::EConvertError("'" + text + "' is not a valid number");
      }
      record.push_back(text);
    }
    for (const IndexDefinition& index : FTable.Indexes) {
      if (!index.Unique) continue;
      const IndexDefinition* saved = FIndex;
      FIndex = &index;
      for (const auto& other : FTable.Records)
        if (Compare(Key(other), Key(record)) == 0) {
          FIndex = saved;
          CTDbIntf::CtError(2);
        }
      FIndex = saved;
    }
    FTable.Records.push_back(std::move(record));
  }

  bool HasTransactions() const override { return FStore.Transactions; }
  void StartTransaction() override { FSnapshot = FTable.Records; }
  void Commit() override {
    if (++FStore.Commits == FStore.FailCommitNumber) CTDbIntf::CtError(37);
  }
  void Rollback() override {
    ++FStore.Rollbacks;
    FTable.Records = FSnapshot;
  }

  void AddIndex(const IndexDefinition& index) override { FTable.Indexes.push_back(index); }
  void Verify() override {
    if (FTable.Damaged) CTDbIntf::CtError(803);
  }
  void DeleteIndex(const std::string& name) override {
    auto& list = FTable.Indexes;
    list.erase(std::remove_if(list.begin(), list.end(), [&](const IndexDefinition& i) { return i.Name == name; }), list.end());
  }

 private:
  std::size_t FieldNo(const std::string& name) const {
    for (std::size_t i = 0; i < FTable.Fields.size(); ++i)
      if (fw::SameText(FTable.Fields[i].Name, name)) return i;
    return 0;
  }
  KeyValues Key(const std::vector<std::string>& record) const {
    KeyValues key;
    if (FIndex)
      for (const std::string& f : FIndex->Fields) key.push_back(record[FieldNo(f)]);
    return key;
  }
  void CheckKey(const KeyValues& key) const {
    if (FIndex && key.size() > FIndex->Fields.size()) CTDbIntf::CtError(1125);
  }
  // Compares the leading fields both keys have; numbers as numbers.
  int Compare(const KeyValues& a, const KeyValues& b) const {
    for (std::size_t i = 0; i < a.size() && i < b.size(); ++i) {
      const fw::TFieldType type = FTable.Fields[FieldNo(FIndex->Fields[i])].DataType;
      int c;
      if (type == fw::ftInteger || type == fw::ftFloat) {
        const double x = a[i].empty() ? 0 : std::stod(a[i]), y = b[i].empty() ? 0 : std::stod(b[i]);
        c = x < y ? -1 : (x > y ? 1 : 0);
      } else {
        c = FIndex->CaseInsensitive ? fw::CompareText(a[i], b[i]) : a[i].compare(b[i]);
        c = c < 0 ? -1 : (c > 0 ? 1 : 0);
      }
      if (c != 0) return FIndex->Descending ? -c : c;
    }
    return 0;
  }
  void Order() {
    FOrder.clear();
    for (std::size_t i = 0; i < FTable.Records.size(); ++i) {
      const KeyValues key = Key(FTable.Records[i]);
      if (!FFrom.empty() && Compare(key, FFrom) < 0) continue;
      if (!FTo.empty() && Compare(key, FTo) > 0) continue;
      FOrder.push_back(i);
    }
    if (FIndex)
      std::stable_sort(FOrder.begin(), FOrder.end(), [this](std::size_t x, std::size_t y) {
        return Compare(Key(FTable.Records[x]), Key(FTable.Records[y])) < 0;
      });
  }

  FakeStore& FStore;
  FakeTable& FTable;
  const IndexDefinition* FIndex = nullptr;
  KeyValues FFrom, FTo;
  std::vector<std::size_t> FOrder;
  std::size_t FPos = 0;
  std::vector<std::vector<std::string>> FSnapshot;
};

class FakeBackend : public TableBackend {
 public:
  explicit FakeBackend(FakeStore& store) : FStore(store) {}

  void CreateTable(const TableRef& table, const std::vector<FieldDefinition>& fields,
                   const std::vector<IndexDefinition>& indexes) override {
    FStore.Tables[table.Display()] = FakeTable{fields, indexes, {}};
  }
  void DeleteTable(const TableRef& table) override {
    if (FStore.Tables.erase(table.Display()) == 0) CTDbIntf::CtError(12);
  }
  std::unique_ptr<TableCursor> Open(const TableRef& table, OpenMode) override {
    auto it = FStore.Tables.find(table.Display());
    if (it == FStore.Tables.end()) CTDbIntf::CtError(12);
    return std::make_unique<FakeCursor>(FStore, it->second);
  }

 private:
  FakeStore& FStore;
};

}  // namespace ctt::test
