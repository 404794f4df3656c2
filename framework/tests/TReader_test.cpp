// Tests of reading text form files: order, references, deferred activation and bad input.
#include "TReader.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "Exception.h"
#include "TClassInfo.h"
#include "TCollection.h"
#include "TComponent.h"
#include "TStringList.h"
#include "TWriter.h"

using namespace fw;

namespace {

std::vector<std::string> gEvents;
int gLive = 0;

enum TMode : uint8_t { mdFast, mdSafe, mdSlow };
enum TOption : uint8_t { opA, opB, opC };

// A published property: getter, setter and the member F<Name> they use.
#define PLAIN_PROPERTY(Type, Name, Init) \
  Type Name() const { return F##Name; }   \
  void Set##Name(Type v) { F##Name = v; } \
  Type F##Name = Init;

class TTestTable : public TComponent {
 public:
  explicit TTestTable(TComponent* owner) : TComponent(owner) { ++gLive; }
  ~TTestTable() override { --gLive; }
  static const TClassInfo& StaticClass();
  const TClassInfo& ClassType() const override { return StaticClass(); }

  bool Active() const { return FActive; }
  void SetActive(bool v) {
    if (ComponentState().Contains(csLoading)) {
      FStreamedActive = v;
      return;
    }
    if (v && FFailOpen) throw EDatabaseError("cannot open " + Name());
    FActive = v;
    gEvents.push_back("open " + Name() + (FMaster != nullptr ? " master=" + FMaster->Name() : ""));
  }
  TTestTable* Master() const { return FMaster; }
  void SetMaster(TTestTable* v) {
    FMaster = v;
    if (v != nullptr) v->FreeNotification(this);
  }
  PLAIN_PROPERTY(int32_t, Count, 0)
  PLAIN_PROPERTY(std::string, Caption, "")
  PLAIN_PROPERTY(Currency, Limit, 0)
  PLAIN_PROPERTY(double, Ratio, 0)
  PLAIN_PROPERTY(TMode, Mode, mdFast)
  PLAIN_PROPERTY(TSet<TOption>, Options, {})
  PLAIN_PROPERTY(std::string, Data, "")
  PLAIN_PROPERTY(bool, FailOpen, false)
  std::vector<TComponent*> Fields;

  void Notification(TComponent* c, TOperation op) override {
    TComponent::Notification(c, op);
    if (op == opRemove && c == FMaster) FMaster = nullptr;
    if (op == opRemove) Fields.erase(std::remove(Fields.begin(), Fields.end(), c), Fields.end());
  }
  void GetChildren(const std::function<void(TComponent*)>& proc, TComponent* root) const override {
    for (TComponent* f : Fields) proc(f);
  }

 protected:
  void Loaded() override {
    TComponent::Loaded();
    gEvents.push_back("loaded " + Name());
    if (FStreamedActive) SetActive(true);
  }

 private:
  bool FActive = false, FStreamedActive = false;
  TTestTable* FMaster = nullptr;
};

// A child that joins its parent table only after its own properties were read.
class TTestField : public TComponent {
 public:
  using TComponent::TComponent;
  static const TClassInfo& StaticClass();
  const TClassInfo& ClassType() const override { return StaticClass(); }
  PLAIN_PROPERTY(std::string, FieldName, "")
  bool HasParent() const override { return true; }
  TComponent* GetParentComponent() const override { return FTable; }
  void SetParentComponent(TComponent* parent) override { FPendingParent = dynamic_cast<TTestTable*>(parent); }
  TTestTable* Table() const { return FTable; }

 protected:
  void ReadState(TReader& reader) override {
    TComponent::ReadState(reader);
    if (FPendingParent == nullptr) throw EDatabaseError("field " + Name() + " has no table");
    for (TComponent* f : FPendingParent->Fields)
      if (static_cast<TTestField*>(f)->FieldName() == FFieldName) throw EDatabaseError("duplicate field " + FFieldName);
    gEvents.push_back("join " + Name() + " as " + FFieldName);
    FTable = FPendingParent;
    FTable->Fields.push_back(this);
    FTable->FreeNotification(this);
  }
  void Loaded() override {
    TComponent::Loaded();
    gEvents.push_back("loaded " + Name());
  }

 private:
  TTestTable* FTable = nullptr;
  TTestTable* FPendingParent = nullptr;
};

class TTestRoot : public TComponent {
 public:
  using TComponent::TComponent;
  static const TClassInfo& StaticClass() {
    static const TClassInfo info = TClassBuilder<TTestRoot>("TTestRoot", &TComponent::StaticClass()).Creatable().Build();
    return info;
  }
  const TClassInfo& ClassType() const override { return StaticClass(); }

 protected:
  void Loaded() override {
    TComponent::Loaded();
    gEvents.push_back("loaded " + Name());
  }
};

const TClassInfo& TTestTable::StaticClass() {
  static const TClassInfo info =
      TClassBuilder<TTestTable>("TTestTable", &TComponent::StaticClass())
          .Creatable()
          .Reference("Master", &TTestTable::Master, &TTestTable::SetMaster)
          .Property("Count", &TTestTable::Count, &TTestTable::SetCount, 0)
          .Property("Caption", &TTestTable::Caption, &TTestTable::SetCaption, "")
          .Property("Ratio", &TTestTable::Ratio, &TTestTable::SetRatio, 0.0)
          .CurrencyProperty("Limit", &TTestTable::Limit, &TTestTable::SetLimit, 0)
          .Enum("Mode", {"mdFast", "mdSafe", "mdSlow"}, &TTestTable::Mode, &TTestTable::SetMode, mdFast)
          .Set("Options", {"opA", "opB", "opC"}, &TTestTable::Options, &TTestTable::SetOptions, int64_t{0})
          .Binary("Data", &TTestTable::Data, &TTestTable::SetData)
          .Property("FailOpen", &TTestTable::FailOpen, &TTestTable::SetFailOpen, false)
          .Property("Active", &TTestTable::Active, &TTestTable::SetActive, false)
          .Build();
  return info;
}

const TClassInfo& TTestField::StaticClass() {
  static const TClassInfo info = TClassBuilder<TTestField>("TTestField", &TComponent::StaticClass())
                                     .Creatable()
                                     .Property("FieldName", &TTestField::FieldName, &TTestField::SetFieldName, "")
                                     .Build();
  return info;
}

class TColumn : public TCollectionItem {
 public:
  using TCollectionItem::TCollectionItem;
  static const TClassInfo& StaticClass() {
    static const TClassInfo info = TClassBuilder<TColumn>("TColumn", &TCollectionItem::StaticClass())
                                       .Property("Title", &TColumn::Title, &TColumn::SetTitle, "")
                                       .Reference("Source", &TColumn::Source, &TColumn::SetSource)
                                       .Build();
    return info;
  }
  const TClassInfo& ClassType() const override { return StaticClass(); }
  PLAIN_PROPERTY(std::string, Title, "")
  PLAIN_PROPERTY(TTestTable*, Source, nullptr)
};

class TColumns : public TCollection {
 public:
  using TCollection::TCollection;

 protected:
  TCollectionItem* CreateItem() override { return new TColumn(this); }
};

// A component with a string list and a collection as published sub-objects.
class TTestGrid : public TComponent {
 public:
  using TComponent::TComponent;
  static const TClassInfo& StaticClass() {
    static const TClassInfo info = TClassBuilder<TTestGrid>("TTestGrid", &TComponent::StaticClass())
                                       .Creatable()
                                       .Object("Lines", &TTestGrid::Lines)
                                       .Object("Columns", &TTestGrid::Columns)
                                       .Build();
    return info;
  }
  const TClassInfo& ClassType() const override { return StaticClass(); }
  TStringList* Lines() { return &FLines; }
  TColumns* Columns() { return &FColumns; }

 private:
  TStringList FLines;
  TColumns FColumns{this};
};

class TReaderTest : public ::testing::Test {
 protected:
  void SetUp() override {
    RegisterClasses({&TTestRoot::StaticClass(), &TTestTable::StaticClass(), &TTestField::StaticClass(),
                     &TTestGrid::StaticClass()});
    gEvents.clear();
    gLive = 0;
  }
};

const char* const kForm = R"(object Data1: TTestRoot
  object Orders: TTestTable
    Master = Customers
    Count = -12
    Caption = 'Bob''s'#13#10 +
      ' orders'
    Ratio = 1.5E2
    Limit = -12.34c
    Mode = mdSlow
    Options = [opA, opC]
    Data = {00FF
            41}
    Active = True
    object OrdersNo: TTestField
      FieldName = 'OrderNo'
    end
    object OrdersCust: TTestField
      FieldName = 'CustNo'
    end
  end
  object Customers: TTestTable
    Tag = $10
    Active = true
  end
end
)";

}  // namespace

TEST_F(TReaderTest, ReadsPropertiesAndResolvesForwardReferences) {
  TComponentPtr<TComponent> root(ReadComponentText(kForm));
  ASSERT_EQ(root->ClassName(), "TTestRoot");
  EXPECT_EQ(root->Name(), "Data1");
  auto* orders = dynamic_cast<TTestTable*>(root->FindComponent("Orders"));
  auto* customers = dynamic_cast<TTestTable*>(root->FindComponent("Customers"));
  ASSERT_NE(orders, nullptr);
  ASSERT_NE(customers, nullptr);
  EXPECT_EQ(orders->Master(), customers);
  EXPECT_EQ(orders->Count(), -12);
  EXPECT_EQ(orders->Caption(), "Bob's\r\n orders");
  EXPECT_EQ(orders->Ratio(), 150);
  EXPECT_EQ(orders->Limit(), -123400);
  EXPECT_EQ(orders->Mode(), mdSlow);
  EXPECT_EQ(orders->Options(), (TSet<TOption>{opA, opC}));
  EXPECT_EQ(orders->Data(), std::string("\x00\xff" "A", 3));
  EXPECT_EQ(customers->Tag(), 16);
  // Nested objects are owned by the root, fields joined their table.
  EXPECT_EQ(root->ComponentCount(), 4);
  ASSERT_EQ(orders->Fields.size(), 2u);
  EXPECT_EQ(static_cast<TTestField*>(orders->Fields[1])->Table(), orders);
  EXPECT_EQ(root->FindComponent("OrdersCust")->Owner(), root.get());
  for (int i = 0; i < root->ComponentCount(); ++i)
    EXPECT_FALSE(root->Components(i)->ComponentState().Contains(csLoading));
}

TEST_F(TReaderTest, LoadedRunsRootFirstThenNestedBeforeEnclosingAndActivatesOnlyThere) {
  TComponentPtr<TComponent> root(ReadComponentText(kForm));
  const std::vector<std::string> expected = {
      "join OrdersNo as OrderNo", "join OrdersCust as CustNo",
      "loaded Data1", "loaded OrdersNo", "loaded OrdersCust",
      "loaded Orders", "open Orders master=Customers",  // the reference was resolved before any Loaded
      "loaded Customers", "open Customers"};
  EXPECT_EQ(gEvents, expected);
}

TEST_F(TReaderTest, ReadsIntoASuppliedRoot) {
  TComponentPtr<TTestRoot> root(new TTestRoot(nullptr));
  EXPECT_EQ(ReadComponentText("object Form9: TComponent\n object T: TTestTable\n end\nend\n", root.get()), root.get());
  EXPECT_EQ(root->Name(), "Form9");
  EXPECT_NE(root->FindComponent("T"), nullptr);
  EXPECT_THROW(ReadComponentText("object F: TTestTable\nend\n", root.get()), EParserError);
}

TEST_F(TReaderTest, ReferencesToAnotherLoadedRootUseDottedNames) {
  TComponentPtr<TComponent> other(ReadComponentText("object Shared: TTestRoot\n object Cust: TTestTable\n end\nend\n"));
  TComponentPtr<TComponent> root(
      ReadComponentText("object Local: TTestRoot\n object T: TTestTable\n Master = Shared.Cust\n end\n"
                        " object U: TTestTable\n Master = Missing.Cust\n end\nend\n"));
  auto* t = static_cast<TTestTable*>(root->FindComponent("T"));
  EXPECT_EQ(t->Master(), other->FindComponent("Cust"));
  EXPECT_EQ(static_cast<TTestTable*>(root->FindComponent("U"))->Master(), nullptr);
  other.reset();
  EXPECT_EQ(t->Master(), nullptr);
  EXPECT_EQ(FindGlobalComponent("Shared"), nullptr);
}

namespace {

std::string ErrorOf(const std::string& text) {
  try {
    TComponentPtr<TComponent> root(ReadComponentText(text));
  } catch (const EParserError& e) {
    return e.Message();
  }
  return "no error";
}

// A form whose root holds one object (default: table T) with the given line in its body, on line 3.
std::string InObject(const std::string& line, const std::string& object = "T: TTestTable") {
  return "object R: TTestRoot\n object " + object + "\n  " + line + "\n end\nend\n";
}

}  // namespace

TEST_F(TReaderTest, MalformedFormsNameTheLineAndCreateNothing) {
  const std::pair<std::string, const char*> cases[] = {
      {"object R: TTestRoot\n  object T: TNoSuchClass\n  end\nend\n", "Line 2: class TNoSuchClass not found"},
      {InObject("Colour = 1"), "Line 3: class TTestTable has no property 'Colour'"},
      {InObject("Count = 'x'"), "Line 3: invalid value for property Count"},
      {InObject("Count = 99999999999"), "Line 3: error reading property Count: Value 99999999999 out of range"},
      {InObject("Mode = mdWarp"), "Line 3: 'mdWarp' is not a valid value for property Mode"},
      {InObject("Options = [opA, opZ]"), "Line 3: 'opZ' is not a member of property Options"},
      {InObject("Master = Nobody"), "Line 3: reference to unknown component 'Nobody'"},
      {"object R: TTestRoot\n object T: TTestTable\n  Count = 1\n", "Line 2: object 'T' is not terminated by 'end'"},
      {InObject("Caption = 'abc"), "Line 3: unterminated string"},
      {InObject("Count 1"), "Line 3: '=' expected but a number found"},
      {"object R: TTestRoot\nend\nend\n", "Line 3: unexpected text after the final 'end'"},
      {"object R: TTestRoot\n object T: TTestTable\n end\n object t: TTestTable\n end\nend\n",
       "Line 4: A component named t already exists"},
      {"object R: TTestRoot\n object T: TTestTable\n  object F: TTestField\n   FieldName = 'A'\n  end\n"
       "  object G: TTestField\n   FieldName = 'A'\n  end\n end\nend\n",
       "Line 6: error reading TTestField G: duplicate field A"},
      {InObject("Data = {0F1}"), "Line 3: odd number of hex digits in binary value"},
      {InObject("Lines = (1)", "G: TTestGrid"), "Line 3: string expected in list of property Lines"},
      {InObject("Columns = <item Width = 3 end>", "G: TTestGrid"), "Line 3: class TColumn has no property 'Width'"},
      {InObject("Columns = 'x'", "G: TTestGrid"), "Line 3: invalid value for property Columns"}};
  for (const auto& [text, message] : cases) EXPECT_EQ(ErrorOf(text), message) << text;
  EXPECT_EQ(gLive, 0);
}

TEST_F(TReaderTest, FailureAfterCreationDestroysWhatTheReaderMadeButKeepsASuppliedRoot) {
  TComponentPtr<TTestRoot> root(new TTestRoot(nullptr));
  TComponent* mine = new TTestTable(root.get());
  mine->SetName("Mine");
  EXPECT_THROW(ReadComponentText("object R: TTestRoot\n object A: TTestTable\n end\n object B: TTestTable\n"
                                 "  Master = Ghost\n end\nend\n",
                                 root.get()),
               EParserError);
  EXPECT_EQ(root->ComponentCount(), 1);
  EXPECT_EQ(root->Components(0), mine);
  EXPECT_FALSE(root->ComponentState().Contains(csLoading));
  EXPECT_EQ(gLive, 1);
}

TEST_F(TReaderTest, AnExceptionFromADeferredOpenPropagatesAfterCleanUp) {
  EXPECT_THROW(ReadComponentText("object R: TTestRoot\n object A: TTestTable\n  FailOpen = True\n  Active = True\n"
                                 " end\nend\n"),
               EDatabaseError);
  EXPECT_EQ(gLive, 0);
}

TEST_F(TReaderTest, ListsFillStringListsAndCollectionsCreateItems) {
  TComponentPtr<TComponent> root(ReadComponentText(R"(object R: TTestRoot
  object G: TTestGrid
    Lines.Strings = (
      'first'
      'second'#9'tab')
    Columns = <
      item
        Title = 'No'
        Source = T
      end
      item
      end>
  end
  object T: TTestTable
  end
end
)"));
  auto* grid = static_cast<TTestGrid*>(root->FindComponent("G"));
  EXPECT_EQ(grid->Lines()->Text(), "first\nsecond\ttab\n");
  ASSERT_EQ(grid->Columns()->Count(), 2);
  auto* col = static_cast<TColumn*>(grid->Columns()->Items(0));
  EXPECT_EQ(col->Title(), "No");
  EXPECT_EQ(col->Source(), root->FindComponent("T"));
}

TEST_F(TReaderTest, WriterOutputReadsBackToTheSameText) {
  TComponentPtr<TComponent> root(ReadComponentText(kForm));
  const std::string text = WriteComponentText(*root);
  const std::string expected = R"(object Data1: TTestRoot
  object Orders: TTestTable
    Master = Customers
    Count = -12
    Caption = 'Bob''s'#13#10' orders'
    Ratio = 150
    Limit = -12.34c
    Mode = mdSlow
    Options = [opA, opC]
    Data = {00FF41}
    Active = True
    object OrdersNo: TTestField
      FieldName = 'OrderNo'
    end
    object OrdersCust: TTestField
      FieldName = 'CustNo'
    end
  end
  object Customers: TTestTable
    Tag = 16
    Active = True
  end
end
)";
  // The fields have a parent, so they are written inside their table and not again in the root.
  EXPECT_EQ(text, expected);
  gEvents.clear();
  TComponentPtr<TComponent> again(ReadComponentText(text));
  EXPECT_EQ(WriteComponentText(*again), text);
  auto* orders = static_cast<TTestTable*>(again->FindComponent("Orders"));
  EXPECT_EQ(orders->Caption(), "Bob's\r\n orders");
  EXPECT_EQ(orders->Master(), again->FindComponent("Customers"));
  EXPECT_TRUE(orders->Active());
}

TEST_F(TReaderTest, WriterWritesStringListsCollectionsAndSetsCsWriting) {
  TComponentPtr<TTestRoot> root(new TTestRoot(nullptr));
  root->SetName("R");
  auto* grid = new TTestGrid(root.get());
  grid->SetName("G");
  grid->Lines()->Add("a'b");
  grid->Lines()->Add("");
  auto* table = new TTestTable(root.get());
  table->SetName("T");
  table->SetRatio(0.1);
  static_cast<TColumn*>(grid->Columns()->Add())->SetSource(table);
  grid->Columns()->Add();
  const std::string text = WriteComponentText(*root);
  EXPECT_EQ(text, R"(object R: TTestRoot
  object G: TTestGrid
    Lines.Strings = (
      'a''b'
      '')
    Columns = <
      item
        Source = T
      end
      item
      end>
  end
  object T: TTestTable
    Ratio = 0.1
  end
end
)");
  TComponentPtr<TComponent> back(ReadComponentText(text));
  EXPECT_EQ(WriteComponentText(*back), text);
  EXPECT_FALSE(root->ComponentState().Contains(csWriting));
}

TEST_F(TReaderTest, DeepNestingIsRefusedWithTheLineInsteadOfExhaustingTheStack) {
  const std::string lists = "object R: TTestRoot\n  Tag =\n" + std::string(20000, '(') + "\nend\n";
  EXPECT_EQ(ErrorOf(lists), "Line 3: nesting deeper than 200 levels");
  std::string objects;
  for (int i = 0; i < 20000; ++i) objects += "object O: TComponent\n";
  EXPECT_EQ(ErrorOf(objects), "Line 201: nesting deeper than 200 levels");
}

TEST_F(TReaderTest, DamagedFormsEitherLoadOrRaiseParserErrorsWithoutLeaks) {
  // Deterministic damage: truncations and single-byte changes of a valid form.
  const std::string form = kForm;
  const char replacements[] = {'\'', '#', '=', '[', '(', '<', '{', '}', 'x', '\n', '-', '$', '.'};
  uint32_t seed = 12345;
  auto next = [&seed]() { return seed = seed * 1103515245u + 12345u; };
  for (int round = 0; round < 600; ++round) {
    std::string text = form;
    if (round % 3 == 0) text.resize(next() % form.size());
    else text[next() % text.size()] = replacements[next() % sizeof replacements];
    gLive = 0;
    try {
      TComponentPtr<TComponent> root(ReadComponentText(text));
    } catch (const EParserError& e) {
      EXPECT_EQ(e.Message().rfind("Line ", 0), 0u) << e.Message();
    } catch (const EDatabaseError&) {
      // A damaged form may still load and fail in a deferred open; that error is the table's.
    }
    ASSERT_EQ(gLive, 0) << text;
  }
}
