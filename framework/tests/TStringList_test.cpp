// Tests of TList, TStrings/TStringList and TCollection.
#include "TStringList.h"

#include <gtest/gtest.h>

#include "Exception.h"
#include "TCollection.h"
#include "TList.h"
#include "TMemoryStream.h"

using namespace fw;

TEST(TList, KeepsPointersInOrderAndChecksIndexes) {
  int a = 1, b = 2, c = 3;
  TList list;
  EXPECT_EQ(list.Add(&a), 0);
  list.Add(&b);
  list.Insert(0, &c);
  EXPECT_EQ(list.Items(0), &c);
  EXPECT_EQ(list.IndexOf(&b), 2);
  EXPECT_EQ(list.Remove(&c), 0);
  EXPECT_EQ(list.Remove(&c), -1);
  list.Add(nullptr);
  list.Pack();
  EXPECT_EQ(list.Count(), 2);
  list.Move(0, 1);
  EXPECT_EQ(list.First(), &b);
  EXPECT_EQ(list.Last(), &a);
  list.Sort([](void* x, void* y) { return *static_cast<int*>(x) - *static_cast<int*>(y); });
  EXPECT_EQ(list.First(), &a);
  EXPECT_THROW(list.Items(2), EListError);
  EXPECT_THROW(list.Insert(5, &a), EListError);
  list.Clear();
  EXPECT_THROW(list.First(), EListError);
}

TEST(TStringList, IndexOfIgnoresCaseUnlessCaseSensitive) {
  TStringList l;
  l.Add("CustNo");
  l.Add("Name");
  EXPECT_EQ(l.IndexOf("NAME"), 1);
  EXPECT_EQ(l.IndexOf("x"), -1);
  l.SetCaseSensitive(true);
  EXPECT_EQ(l.IndexOf("NAME"), -1);
  EXPECT_THROW(l.Strings(2), EListError);
}

TEST(TStringList, SortedListsInsertInOrderAndApplyDuplicates) {
  TStringList l;
  l.SetSorted(true);
  l.Add("pear");
  l.Add("Apricot");
  l.Add("banana");
  EXPECT_EQ(l.CommaText(), "Apricot,banana,pear");
  EXPECT_EQ(l.Add("APRICOT"), 0);  // dupIgnore returns the existing index
  EXPECT_EQ(l.Count(), 3);
  l.SetDuplicates(dupError);
  EXPECT_THROW(l.Add("Pear"), EListError);
  l.SetDuplicates(dupAccept);
  l.Add("Pear");
  EXPECT_EQ(l.Count(), 4);
  int index;
  EXPECT_TRUE(l.Find("pear", index));
  EXPECT_EQ(index, 2);
  EXPECT_FALSE(l.Find("cherry", index));
  EXPECT_EQ(index, 2);
  EXPECT_THROW(l.Insert(0, "x"), EListError);
  EXPECT_THROW(l.Put(0, "x"), EListError);
}

TEST(TStringList, NamesAndValues) {
  TStringList l;
  l.SetText("CustNo=CustNo\r\nOrderNo=No=1\nPlain\r");
  EXPECT_EQ(l.Count(), 3);
  EXPECT_EQ(l.Names(1), "OrderNo");
  EXPECT_EQ(l.ValueFromIndex(1), "No=1");
  EXPECT_EQ(l.Values("orderno"), "No=1");
  EXPECT_EQ(l.Names(2), "");
  EXPECT_EQ(l.IndexOfName("custno"), 0);
  l.SetValues("Extra", "5");
  EXPECT_EQ(l.Strings(3), "Extra=5");
  l.SetValues("CUSTNO", "");
  EXPECT_EQ(l.IndexOfName("CustNo"), -1);
  EXPECT_EQ(l.Text(), "OrderNo=No=1\nPlain\nExtra=5\n");
}

TEST(TStringList, CommaAndDelimitedTextQuoteAndSplit) {
  TStringList l;
  l.SetCommaText(R"(a, "b c" ,"say ""hi""",,d)");
  ASSERT_EQ(l.Count(), 5);
  EXPECT_EQ(l.Strings(1), "b c");
  EXPECT_EQ(l.Strings(2), "say \"hi\"");
  EXPECT_EQ(l.Strings(3), "");
  EXPECT_EQ(l.CommaText(), R"(a,"b c","say ""hi""",,d)");
  l.SetCommaText("x y,");
  EXPECT_EQ(l.Count(), 3);  // a blank splits too, and a trailing delimiter adds an empty item
  l.SetDelimiter(';');
  l.SetStrictDelimiter(true);
  l.SetDelimitedText("A ; B;C");
  ASSERT_EQ(l.Count(), 3);
  EXPECT_EQ(l.Strings(0), "A ");
  EXPECT_EQ(l.DelimitedText(), "\"A \";\" B\";C");
  l.Clear();
  l.Add("");
  EXPECT_EQ(l.CommaText(), "\"\"");
}

TEST(TStringList, ChangeEventsAndUpdateBrackets) {
  TStringList l;
  int changes = 0;
  l.OnChange = [&](TStringList&) { ++changes; };
  l.Add("a");
  l.Add("b");
  EXPECT_EQ(changes, 2);
  l.BeginUpdate();
  l.Add("c");
  l.Delete(0);
  l.EndUpdate();
  EXPECT_EQ(changes, 3);
  TStringList copy;
  copy.Assign(l);
  EXPECT_TRUE(copy.Equals(l));
  TMemoryStream m;
  l.SaveToStream(m);
  m.SetPosition(0);
  TStringList back;
  back.LoadFromStream(m);
  EXPECT_EQ(back.CommaText(), "b,c");
}

TEST(TStringList, CustomSortSeesTheListUnchanged) {
  TStringList l;
  l.SetCommaText("10,9,100");
  l.CustomSort([](TStringList& s, int a, int b) { return std::stoi(s.Strings(a)) - std::stoi(s.Strings(b)); });
  EXPECT_EQ(l.CommaText(), "9,10,100");
}

namespace {

class TItem : public TCollectionItem {
 public:
  using TCollectionItem::TCollectionItem;
  std::string Value;
  void Assign(const TPersistent& source) override { Value = dynamic_cast<const TItem&>(source).Value; }
};

class TItems : public TCollection {
 public:
  using TCollection::TCollection;
  int Updates = 0;

 protected:
  TCollectionItem* CreateItem() override { return new TItem(this); }
  void Update(TCollectionItem*) override { ++Updates; }
};

}  // namespace

TEST(TCollection, OwnsItemsAndKeepsIdsAndOrder) {
  TItems c;
  auto* a = static_cast<TItem*>(c.Add());
  auto* b = static_cast<TItem*>(c.Add());
  auto* first = static_cast<TItem*>(c.Insert(0));
  EXPECT_EQ(c.Count(), 3);
  EXPECT_EQ(c.Items(0), first);
  EXPECT_EQ(b->Index(), 2);
  EXPECT_EQ(first->ID(), 2);
  EXPECT_EQ(c.FindItemID(1), b);
  delete a;  // an item destroyed on its own leaves the collection
  EXPECT_EQ(c.Count(), 2);
  c.Delete(0);
  EXPECT_EQ(c.Items(0), b);
  EXPECT_THROW(c.Items(1), EListError);
  b->Value = "v";
  TItems copy;
  copy.Assign(c);
  EXPECT_EQ(static_cast<TItem*>(copy.Items(0))->Value, "v");
  const int before = c.Updates;
  c.BeginUpdate();
  c.Add();
  c.Add();
  c.EndUpdate();
  EXPECT_EQ(c.Updates, before + 1);
  c.Clear();
  EXPECT_EQ(c.Count(), 0);
}
