// Tests of field and index definitions, default field creation and reading datasets with
// persistent fields from a form (framework layer).
#include <gtest/gtest.h>

#include "DataSetFixture.h"
#include "TClassInfo.h"
#include "TIndexDefs.h"
#include "TNumericField.h"
#include "TReader.h"

namespace fwtest {
namespace {

using namespace fw;

TEST_F(DataSetTest, FieldDefsUpdateReadsDefinitionsWithoutOpening) {
  EXPECT_FALSE(Table->FieldDefs()->Updated());
  Table->FieldDefs()->Update();
  EXPECT_TRUE(Table->FieldDefs()->Updated());
  EXPECT_FALSE(Table->Active());
  EXPECT_EQ(Table->AllocatedBuffers, 0);
  ASSERT_EQ(Table->FieldDefs()->Count(), 3);
  TFieldDef* name = Table->FieldDefs()->Find("NAME");
  EXPECT_EQ(name->FieldNo(), 2);
  EXPECT_EQ(name->DataType(), ftString);
  EXPECT_EQ(name->Size(), 10);
  EXPECT_EQ(Table->FieldDefs()->IndexOf("amount"), 2);
  EXPECT_EQ(Table->FieldDefs()->IndexOf("none"), -1);
  EXPECT_THROW(Table->FieldDefs()->Find("none"), EDatabaseError);
  EXPECT_THROW(Table->FieldDefs()->Add("id", ftInteger), EDatabaseError);
  EXPECT_THROW(Table->FieldDefs()->Add("", ftInteger), EDatabaseError);
  EXPECT_EQ(Table->FieldDefs()->Count(), 3);
  Table->FieldDefs()->Add("Extra", ftInteger);
  EXPECT_FALSE(Table->FieldDefs()->Updated());  // changed definitions are no longer the storage's
}

TEST_F(DataSetTest, FieldDefsAssignCopiesAndClearsFieldLinks) {
  Fill(1);
  TFieldDefs copy(nullptr);
  copy.Assign(*Table->FieldDefs());
  ASSERT_EQ(copy.Count(), 3);
  EXPECT_EQ(copy.Items(2)->Name(), "Amount");
  EXPECT_EQ(copy.Items(2)->FieldNo(), 3);
  EXPECT_EQ(Table->FieldByName("ID")->FieldDef(), Table->FieldDefs()->Items(0));
  Table->FieldDefs()->Assign(copy);
  EXPECT_EQ(Table->FieldByName("ID")->FieldDef(), nullptr);
}

TEST_F(DataSetTest, CreateFieldRefusesTypesWithoutClassAndAppliesDefinitionAttributes) {
  TFieldDefs defs(Table.get());
  TFieldDef* cursor = defs.Add("Cur", ftCursor);
  EXPECT_THROW(cursor->CreateField(Table.get()), EDatabaseError);
  EXPECT_EQ(Table->FieldCount(), 0);
  TFieldDef* fixed = defs.Add("Code", ftFixedChar, 4, true);
  fixed->SetAttributes(fixed->Attributes() + TFieldAttributes{faReadonly});
  TField* field = fixed->CreateField(Table.get());
  EXPECT_EQ(field->ClassName(), "TStringField");
  EXPECT_EQ(field->DataType(), ftFixedChar);
  EXPECT_EQ(field->Size(), 4);
  EXPECT_TRUE(field->Required());
  EXPECT_TRUE(field->ReadOnly());
  EXPECT_EQ(field->DataSet(), Table.get());
  EXPECT_EQ(field->Owner(), Table.get());
}

/// An index collection whose items carry one more property, as a descendant dataset's would.
class TTaggedIndexDef : public TIndexDef {
 public:
  using TIndexDef::TIndexDef;
  int Tag = 0;
};
class TTaggedIndexDefs : public TIndexDefs {
 public:
  using TIndexDefs::TIndexDefs;

 protected:
  TCollectionItem* CreateItem() override { return new TTaggedIndexDef(this); }
};

TEST(IndexDefsTest, FindsIndexesForFieldListsAndCreatesDescendantItems) {
  TTaggedIndexDefs defs(nullptr);
  defs.Add("ByNameCity", "Name;City", TIndexOptions{});
  defs.Add("ByNameDesc", "Name", TIndexOptions{ixDescending});
  defs.Add("ByNameZip", "Name;Zip;Street", TIndexOptions{});
  defs.Add("Primary", "ID", TIndexOptions{ixPrimary, ixUnique});
  EXPECT_NE(dynamic_cast<TTaggedIndexDef*>(defs.Items(0)), nullptr);
  EXPECT_EQ(defs.GetIndexForFields("id", false)->Name(), "Primary");
  EXPECT_EQ(defs.GetIndexForFields("Name", false)->Name(), "ByNameCity");  // shortest extension
  EXPECT_EQ(defs.GetIndexForFields("Name;Zip", false)->Name(), "ByNameZip");
  EXPECT_EQ(defs.GetIndexForFields("Nam", false), nullptr);  // a prefix of a name is no match
  EXPECT_EQ(defs.GetIndexForFields("Name", true), nullptr);
  EXPECT_THROW(defs.FindIndexForFields("City"), EDatabaseError);
  EXPECT_THROW(defs.Find("nope"), EDatabaseError);
  EXPECT_EQ(defs.Find("primary")->Options(), (TIndexOptions{ixPrimary, ixUnique}));
  TIndexDef* auto1 = defs.AddIndexDef();
  EXPECT_EQ(auto1->Name(), "Index5");
  auto1->SetCaseInsFields("Name");
  EXPECT_TRUE(auto1->Options().Contains(ixCaseInsensitive));

  TTaggedIndexDefs copy(nullptr);
  copy.Assign(defs);
  ASSERT_EQ(copy.Count(), 5);
  EXPECT_EQ(copy.Items(2)->Fields(), "Name;Zip;Street");
  EXPECT_NE(dynamic_cast<TTaggedIndexDef*>(copy.Items(4)), nullptr);
  EXPECT_EQ(copy.Items(4)->CaseInsFields(), "Name");
}

/// A table class the form reader can create.
class TFormTable : public TMemDataSet {
 public:
  explicit TFormTable(TComponent* AOwner) : TMemDataSet(AOwner, {{"ID", ftInteger}, {"Name", ftString, 8}}) {}
  static const TClassInfo& StaticClass() {
    static const TClassInfo info =
        TClassBuilder<TFormTable>("TFormTable", &TDataSet::StaticClass()).Creatable().Build();
    return info;
  }
  const TClassInfo& ClassType() const override { return StaticClass(); }
};

TEST(DataSetFormTest, ReadsPersistentFieldsAndOpensInLoaded) {
  RegisterClasses({&TFormTable::StaticClass(), &TIntegerField::StaticClass(), &TDataSource::StaticClass()});
  const char* form = R"(object Form1: TComponent
  object Source1: TDataSource
    DataSet = Table1
  end
  object Table1: TFormTable
    Active = True
    Filtered = False
    object Table1ID: TIntegerField
      FieldName = 'ID'
      Required = True
    end
    object Table1Twice: TIntegerField
      FieldName = 'Twice'
      FieldKind = fkCalculated
    end
  end
end
)";
  TComponentPtr<TComponent> root(new TComponent(nullptr));
  ReadComponentText(form, root.get());
  auto* table = dynamic_cast<TFormTable*>(root->FindComponent("Table1"));
  auto* source = dynamic_cast<TDataSource*>(root->FindComponent("Source1"));
  ASSERT_NE(table, nullptr);
  ASSERT_NE(source, nullptr);
  EXPECT_TRUE(table->Active());
  EXPECT_FALSE(table->DefaultFields());
  ASSERT_EQ(table->FieldCount(), 2);
  EXPECT_EQ(table->Fields()->Fields(0)->Name(), "Table1ID");
  EXPECT_EQ(table->Fields()->Fields(0)->Owner(), root.get());
  EXPECT_TRUE(table->Fields()->Fields(0)->Required());
  EXPECT_EQ(table->Fields()->Fields(1)->FieldKind(), fkCalculated);
  EXPECT_EQ(source->DataSet(), table);
  EXPECT_EQ(source->State(), dsBrowse);
  std::vector<std::string> children;
  table->GetChildren([&children](TComponent* c) { children.push_back(c->Name()); }, root.get());
  EXPECT_EQ(children, (std::vector<std::string>{"Table1ID", "Table1Twice"}));
}

}  // namespace
}  // namespace fwtest
