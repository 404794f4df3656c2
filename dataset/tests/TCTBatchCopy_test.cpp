// TCTBatchCopy: every mode, the checks, errors with Continue, blobs and form files, over real engine files.
#include <map>

#include "TField.h"
#include "TReader.h"
#include "TWriter.h"
#include "TableTestSupport.h"

namespace CTTables::testing {
namespace {

using Amounts = std::map<int32_t, double>;

Amounts PeopleAmounts() {
  Amounts amounts;
  for (const Person& p : People()) amounts[p.Id] = p.Amount;
  return amounts;
}

Amounts Merge(Amounts base, const Amounts& over) {
  for (const auto& [id, amount] : over) base[id] = amount;
  return base;
}

// What "staff" holds before a copy.
const Amounts kStaff = {{1, -1}, {2, -1}, {3, -1}, {4, -1}, {20, -1}};

class BatchCopy : public TableTest {
 protected:
  // "staff": ID, NAME (20), CITY (16), AMOUNT, indexed by ID (unique, `unique` false: not) and
  // holding persons 1 to 4 and 20 with amount -1.
  TCTTable* MakeStaff(bool unique = true) {
    TCTTable* staff = TableOn("staff");
    staff->FieldDefs()->Add("ID", fw::ftInteger);
    staff->FieldDefs()->Add("NAME", fw::ftString, 20);
    staff->FieldDefs()->Add("CITY", fw::ftString, 16);
    staff->FieldDefs()->Add("AMOUNT", fw::ftFloat);
    staff->IndexDefs()->Add("ById", "ID", "", true, false,
                            unique ? fw::TIndexOptions{fw::ixPrimary, fw::ixUnique} : fw::TIndexOptions{});
    staff->CreateTable();
    staff->Open();
    for (int32_t id : {1, 2, 3, 4, 20})
      staff->AppendRecord({fw::Variant(id), fw::Variant("old"), fw::Variant("Narvik"), fw::Variant(-1.0)});
    staff->Close();
    return staff;
  }

  TCTBatchCopy* NewCopy(fw::TDataSet* source, TCTTable* destination, TCTCopyMode mode) {
    auto* copy = new TCTBatchCopy(Owner.get());
    copy->SetSource(source);
    copy->SetDestination(destination);
    copy->SetCopyMode(mode);
    return copy;
  }

  // ID -> AMOUNT of every record of table `name`, read through a table of its own.
  Amounts AmountsOf(const std::string& name) {
    TCTTable* table = TableOn(name);
    table->Open();
    Amounts amounts;
    for (table->First(); !table->Eof(); table->Next()) {
      const fw::TField* amount = table->FieldByName("AMOUNT");
      amounts[table->FieldByName("ID")->AsInteger()] = amount->IsNull() ? 0 : amount->AsFloat();
    }
    table->Close();
    return amounts;
  }
};

struct ModeCase {
  TCTCopyMode Mode;
  int32_t Copied;
  int32_t Rejected;
  Amounts (*Expected)();
};

class EveryMode : public BatchCopy, public ::testing::WithParamInterface<ModeCase> {};

TEST_P(EveryMode, HandlesMatchingAndOtherRecordsAndReportsEachStage) {
  FillPeople();
  const ModeCase& c = GetParam();
  TCTTable* staff = MakeStaff();
  TCTBatchCopy* copy = NewCopy(NewTable(false), staff, c.Mode);
  std::vector<std::pair<TCTProgressStage, int32_t>> stages;
  copy->SetOnProgress([&](fw::TComponent* sender, TCTProgressStage stage, int32_t recNo, const std::string&) {
    EXPECT_EQ(sender, copy);
    stages.emplace_back(stage, recNo);
  });
  int recordErrors = 0;
  copy->SetOnCopyError([&](fw::TComponent*, fw::TField* from, fw::TField*, const std::exception&, bool& proceed) {
    if (from == nullptr) ++recordErrors;
    proceed = false;
  });
  copy->Execute();

  EXPECT_EQ(AmountsOf("staff"), c.Expected());
  EXPECT_EQ(copy->RecordsCopied(), c.Copied);
  EXPECT_EQ(copy->RecordsRejected(), c.Rejected);
  EXPECT_EQ(recordErrors, c.Rejected);
  std::vector<std::pair<TCTProgressStage, int32_t>> expected = {{psStarting, 0}};
  for (int32_t n = 1; n <= 10; ++n) expected.emplace_back(psRunning, n);
  expected.emplace_back(psEnding, 0);
  EXPECT_EQ(stages, expected);
  EXPECT_FALSE(staff->Active());
  EXPECT_FALSE(copy->Busy());
  if (c.Mode == cmCopy) {
    fw::TStringList names;
    staff->GetIndexNames(names);
    EXPECT_EQ(names.Count(), 3);  // the source's indexes replace the destination's
    EXPECT_GE(names.IndexOf("ByCity"), 0);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Modes, EveryMode,
    ::testing::Values(ModeCase{cmCopy, 10, 0, [] { return PeopleAmounts(); }},
                      ModeCase{cmAppend, 6, 4, [] { return Merge(PeopleAmounts(), kStaff); }},
                      ModeCase{cmUpdate, 4, 0, [] { return Amounts{{1, 10}, {2, 20}, {3, 30}, {4, 40}, {20, -1}}; }},
                      ModeCase{cmAppendUpdate, 10, 0, [] { return Merge(kStaff, PeopleAmounts()); }},
                      ModeCase{cmDelete, 4, 0, [] { return Amounts{{20, -1}}; }}));

TEST_F(BatchCopy, ChecksComeFirstAndChangeNothing) {
  FillPeople();
  TCTTable* people = NewTable(false);
  TCTTable* staff = MakeStaff(false);
  EXPECT_EQ(ErrorOf([&] { NewCopy(people, nullptr, cmAppend)->Execute(); }), 1129);
  EXPECT_EQ(ErrorOf([&] { NewCopy(nullptr, staff, cmAppend)->Execute(); }), 1130);
  EXPECT_EQ(ErrorOf([&] { NewCopy(people, people, cmAppend)->Execute(); }), 1131);
  // Two components on one table: a copy would delete what it reads.
  EXPECT_EQ(ErrorOf([&] { NewCopy(people, NewTable(false), cmCopy)->Execute(); }), 1131);
  EXPECT_EQ(AmountsOf("people"), PeopleAmounts());

  TCTBatchCopy* copy = NewCopy(people, staff, cmDelete);
  std::vector<TCTProgressStage> stages;
  copy->SetOnProgress([&](fw::TComponent*, TCTProgressStage stage, int32_t, const std::string&) {
    stages.push_back(stage);
  });
  EXPECT_EQ(ErrorOf([&] { copy->Execute(); }), 1132);
  EXPECT_EQ(stages, (std::vector<TCTProgressStage>{psStarting, psEnding}));
  EXPECT_EQ(AmountsOf("staff"), kStaff);

  // While it runs, the batch refuses to be changed or started again.
  copy->SetCopyMode(cmAppendUpdate);
  copy->SetDestination(MakeStaff());
  std::vector<int32_t> refused;
  copy->SetOnProgress([&](fw::TComponent*, TCTProgressStage stage, int32_t, const std::string&) {
    if (stage != psStarting) return;
    EXPECT_TRUE(copy->Busy());
    refused.push_back(ErrorOf([&] { copy->SetCopyMode(cmCopy); }));
    refused.push_back(ErrorOf([&] { copy->SetSource(nullptr); }));
    refused.push_back(ErrorOf([&] { copy->Execute(); }));
  });
  copy->Execute();
  EXPECT_EQ(refused, (Ids{1128, 1128, 1128}));
  EXPECT_EQ(copy->CopyMode(), cmAppendUpdate);
  EXPECT_EQ(copy->RecordsCopied(), 10);
}

TEST_F(BatchCopy, AFailingFieldEndsTheBatchOrIsSkippedAsContinueSays) {
  FillPeople();
  // AMOUNT holds whole numbers only (70.5 of person 7 does not fit), NAME five characters
  // ("Dagmar" of person 8 does not). Made anew for each run.
  auto makeNarrow = [this] {
    TCTTable* narrow = TableOn("narrow");
    narrow->FieldDefs()->Add("ID", fw::ftInteger);
    narrow->FieldDefs()->Add("NAME", fw::ftString, 5);
    narrow->FieldDefs()->Add("AMOUNT", fw::ftInteger);
    narrow->IndexDefs()->Add("ById", "ID", "", true, false, {fw::ixPrimary, fw::ixUnique});
    narrow->CreateTable();
    return narrow;
  };
  TCTTable* narrow = makeNarrow();
  TCTTable* people = NewTable(false);
  people->Open();
  TCTBatchCopy* copy = NewCopy(people, narrow, cmAppend);

  // No handler: the first failing field ends the batch; the records before it stay, all of them.
  EXPECT_THROW(copy->Execute(), fw::EConvertError);
  EXPECT_EQ(copy->RecordsCopied(), 6);
  EXPECT_EQ(AmountsOf("narrow").size(), 6u);
  EXPECT_TRUE(people->Active());
  EXPECT_FALSE(narrow->Active());

  // Field errors let through, record errors dropped: the two records are skipped whole.
  copy->SetDestination(makeNarrow());
  std::vector<std::string> fields;
  copy->SetOnCopyError([&](fw::TComponent*, fw::TField* from, fw::TField* to, const std::exception&, bool& proceed) {
    if (from != nullptr) fields.push_back(from->FieldName() + ">" + to->FieldName());
    proceed = from != nullptr;
  });
  copy->Execute();
  EXPECT_EQ(fields, (std::vector<std::string>{"AMOUNT>AMOUNT", "NAME>NAME"}));
  EXPECT_EQ(copy->RecordsRejected(), 2);
  const Amounts copied = AmountsOf("narrow");
  EXPECT_EQ(copied.size(), 8u);
  EXPECT_EQ(copied.count(7), 0u);

  // Field errors dropped: each record is written without the field that failed.
  narrow = makeNarrow();
  copy->SetDestination(narrow);
  copy->SetOnCopyError([](fw::TComponent*, fw::TField*, fw::TField*, const std::exception&, bool& proceed) {
    proceed = false;
  });
  copy->Execute();
  EXPECT_EQ(copy->RecordsCopied(), 10);
  narrow->Open();
  ASSERT_TRUE(narrow->FindKey({V(7)}));
  EXPECT_EQ(narrow->FieldByName("AMOUNT")->AsInteger(), 0);  // integers have no null: the new record's 0
  ASSERT_TRUE(narrow->FindKey({V(8)}));
  EXPECT_TRUE(narrow->FieldByName("NAME")->IsNull());
  EXPECT_EQ(narrow->FieldByName("AMOUNT")->AsInteger(), 80);
}

TEST_F(BatchCopy, CopiesMemoAndBlobFieldsMatchedByName) {
  TCTTable* notes = TableOn("notes");
  notes->FieldDefs()->Add("ID", fw::ftInteger);
  notes->FieldDefs()->Add("TEXT", fw::ftMemo);
  notes->FieldDefs()->Add("DATA", fw::ftBlob);
  notes->FieldDefs()->Add("ONLYHERE", fw::ftString, 5);
  notes->CreateTable();
  notes->Open();
  const std::string text(3000, 'm');
  const std::string data("\0\1\2\0\xff", 5);
  notes->AppendRecord({V(1), fw::Variant(text), fw::VarByteArrayOf(data.data(), data.size())});
  // Fields in another order, one the source lacks (left as a new record has it), ID as a float.
  TCTTable* archive = TableOn("archive");
  archive->FieldDefs()->Add("DATA", fw::ftBlob);
  archive->FieldDefs()->Add("STAMP", fw::ftInteger);
  archive->FieldDefs()->Add("ID", fw::ftFloat);
  archive->FieldDefs()->Add("TEXT", fw::ftMemo);
  archive->CreateTable();
  NewCopy(notes, archive, cmAppend)->Execute();
  archive->Open();
  EXPECT_EQ(archive->FieldByName("ID")->AsInteger(), 1);
  EXPECT_EQ(archive->FieldByName("TEXT")->AsString(), text);
  EXPECT_EQ(archive->FieldByName("DATA")->AsString(), data);
  EXPECT_EQ(archive->FieldByName("STAMP")->AsInteger(), 0);
}

TEST_F(BatchCopy, FormFilesKeepItsPropertiesAndFreedTablesAreLetGo) {
  FillPeople();
  MakeStaff();
  const std::string table = "    Connection = Db\n    Database = '" + Dir.string() + "'\n";
  fw::ReadComponentText("object Root: TComponent\n  object Db: TCTConnection\n  end\n"
                        "  object People: TCTTable\n" + table + "    TableName = 'people'\n  end\n"
                        "  object Staff: TCTTable\n" + table + "    TableName = 'staff'\n  end\n"
                        "  object Copy: TCTBatchCopy\n    CopyMode = cmAppendUpdate\n"
                        "    Destination = Staff\n    Source = People\n  end\nend\n",
                        Owner.get());
  auto* copy = dynamic_cast<TCTBatchCopy*>(Owner->FindComponent("Copy"));
  ASSERT_NE(copy, nullptr);
  EXPECT_EQ(copy->CopyMode(), cmAppendUpdate);
  EXPECT_EQ(copy->Source(), Owner->FindComponent("People"));
  copy->Execute();
  EXPECT_EQ(AmountsOf("staff"), Merge(kStaff, PeopleAmounts()));

  copy->SetCopyMode(cmCopy);  // the first mode is written too
  const std::string written = fw::WriteComponentText(*Owner);
  EXPECT_NE(written.find("CopyMode = cmCopy\n    Destination = Staff\n    Source = People"), std::string::npos)
      << written;
  Owner->FindComponent("People")->Free();
  Owner->FindComponent("Staff")->Free();
  EXPECT_EQ(copy->Source(), nullptr);
  EXPECT_EQ(copy->Destination(), nullptr);
}

}  // namespace
}  // namespace CTTables::testing
