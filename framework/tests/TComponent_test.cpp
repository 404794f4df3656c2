// Tests of ownership, names, destruction order and notifications.
#include "TComponent.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "Exception.h"
#include "TClassInfo.h"

using namespace fw;

namespace {

std::vector<std::string> gLog;

// Logs notifications and its destruction; keeps a pointer to a peer cleared on removal.
class TLogged : public TComponent {
 public:
  using TComponent::TComponent;
  ~TLogged() override {
    gLog.push_back("destroy " + Name() + (ComponentState().Contains(csDestroying) ? " (destroying)" : ""));
  }
  void Notification(TComponent* c, TOperation op) override {
    TComponent::Notification(c, op);
    gLog.push_back(Name() + (op == opInsert ? " +" : " -") + (c != nullptr ? c->Name() : "?"));
    if (op == opRemove && c == Peer) Peer = nullptr;
  }
  void SetPeer(TComponent* p) {
    Peer = p;
    if (p != nullptr) p->FreeNotification(this);
  }
  TComponent* Peer = nullptr;
};

template <class T = TLogged>
T* Make(TComponent* owner, const std::string& name) {
  auto* c = new T(owner);
  c->SetName(name);
  return c;
}

}  // namespace

TEST(TComponent, OwnerListsInsertionOrderAndFindsByNameIgnoringCase) {
  TComponentPtr<TComponent> owner(new TComponent(nullptr));
  TComponent* a = Make<TComponent>(owner.get(), "Alpha");
  TComponent* b = Make<TComponent>(owner.get(), "Beta");
  EXPECT_EQ(owner->ComponentCount(), 2);
  EXPECT_EQ(owner->Components(1), b);
  EXPECT_EQ(owner->FindComponent("ALPHA"), a);
  EXPECT_EQ(owner->FindComponent(""), nullptr);
  EXPECT_THROW(owner->Components(2), EListError);
  b->SetComponentIndex(-5);
  EXPECT_EQ(owner->Components(0), b);
  EXPECT_EQ(a->ComponentIndex(), 1);
  EXPECT_EQ(a->Owner(), owner.get());
}

TEST(TComponent, NamesMustBeIdentifiersAndUniqueWithinTheOwner) {
  TComponentPtr<TComponent> owner(new TComponent(nullptr));
  TComponent* a = Make<TComponent>(owner.get(), "Table1");
  TComponent* b = new TComponent(owner.get());
  EXPECT_THROW(b->SetName("table1"), EComponentError);
  EXPECT_EQ(b->Name(), "");
  for (const char* bad : {"1abc", "a-b"}) EXPECT_THROW(b->SetName(bad), EComponentError) << bad;
  a->SetName("TABLE1");  // a change of case only is allowed
  EXPECT_EQ(a->Name(), "TABLE1");
  b->SetName("_x9");
  a->SetName("");
  Make<TComponent>(owner.get(), "");  // empty names never collide
  TComponentPtr<TComponent> loose(Make<TComponent>(nullptr, "_x9"));  // no owner, no duplicate check
}

TEST(TComponent, OwnedComponentsDieLastInsertedFirstWithoutTellingSiblings) {
  gLog.clear();
  TLogged* owner = Make(nullptr, "Owner");
  Make(owner, "A");
  Make(owner, "B");
  Make(owner, "C");
  gLog.clear();
  owner->Free();
  // The owner's own destructor body runs first (as a descendant destructor does before calling
  // the base), then the base destroys the owned components.
  const std::vector<std::string> expected = {"destroy Owner (destroying)", "destroy C (destroying)",
                                             "destroy B (destroying)", "destroy A (destroying)"};
  EXPECT_EQ(gLog, expected);
}

TEST(TComponent, InsertAndRemoveBroadcastToEverythingOwned) {
  TComponentPtr<TLogged> owner(Make(nullptr, "Owner"));
  Make(owner.get(), "A");
  gLog.clear();
  // Inserted from TComponent's constructor: B is not yet a TLogged then, so only A and the
  // owner log the insertion of the still unnamed component.
  auto* b = new TLogged(owner.get());
  b->SetName("B");
  EXPECT_EQ(gLog, (std::vector<std::string>{"A +", "Owner +"}));
  gLog.clear();
  b->Free();  // destroyed on its own: the owner broadcasts the removal
  EXPECT_EQ(gLog, (std::vector<std::string>{"destroy B (destroying)", "A -B", "Owner -B"}));
}

TEST(TComponent, FreeNotificationClearsReferencesAcrossOwners) {
  TComponentPtr<TLogged> form1(Make(nullptr, "Form1"));
  TComponentPtr<TLogged> form2(Make(nullptr, "Form2"));
  TLogged* user = Make(form1.get(), "User");
  TLogged* target = Make(form2.get(), "Target");
  user->SetPeer(target);
  user->SetPeer(target);  // idempotent
  EXPECT_TRUE(target->ComponentState().Contains(csFreeNotification));
  form2.reset();
  EXPECT_EQ(user->Peer, nullptr);
  // The other direction: the holder dies first, the target must not keep a dangling entry.
  TComponentPtr<TLogged> t2(Make(nullptr, "T2"));
  TLogged* holder = Make(form1.get(), "Holder");
  holder->SetPeer(t2.get());
  holder->Free();
  gLog.clear();
  t2.reset();
  EXPECT_EQ(gLog, (std::vector<std::string>{"destroy T2 (destroying)"}));
}

TEST(TComponent, SiblingsWithFreeNotificationAreRemovedWithABroadcastDuringTeardown) {
  TLogged* owner = Make(nullptr, "Owner");
  TLogged* user = Make(owner, "User");
  TLogged* target = Make(owner, "Target");
  user->SetPeer(target);
  EXPECT_TRUE(target->ComponentState().Contains(csFreeNotification));
  gLog.clear();
  owner->Free();
  // Target is destroyed first (last inserted) and, being marked, is removed with a broadcast
  // that clears User's pointer before User dies.
  const std::vector<std::string> expected = {"destroy Owner (destroying)", "Target -Target", "User -Target",
                                             "destroy Target (destroying)", "destroy User (destroying)"};
  EXPECT_EQ(gLog, expected);
}

TEST(TComponent, RemoveFreeNotificationUndoesBothSides) {
  TComponentPtr<TLogged> a(Make(nullptr, "A"));
  TComponentPtr<TLogged> b(Make(nullptr, "B"));
  a->SetPeer(b.get());
  b->RemoveFreeNotification(a.get());
  EXPECT_FALSE(b->ComponentState().Contains(csFreeNotification));
  gLog.clear();
  b.reset();
  EXPECT_EQ(gLog, (std::vector<std::string>{"destroy B (destroying)"}));
  a->Peer = nullptr;
}

TEST(TComponent, DesigningPropagatesToOwnedAndLaterInserted) {
  TComponentPtr<TComponent> owner(new TComponent(nullptr));
  TComponent* a = new TComponent(owner.get());
  owner->SetDesigning(true);
  EXPECT_TRUE(a->ComponentState().Contains(csDesigning));
  TComponent* b = new TComponent(owner.get());
  EXPECT_TRUE(b->ComponentState().Contains(csDesigning));
  owner->RemoveComponent(b);
  EXPECT_FALSE(b->ComponentState().Contains(csDesigning));
  EXPECT_EQ(b->Owner(), nullptr);
  b->Free();
}

TEST(TComponent, MovingToAnotherOwnerLeavesTheFirstUnlessTheNameIsTaken) {
  TComponentPtr<TComponent> o1(new TComponent(nullptr));
  TComponentPtr<TComponent> o2(new TComponent(nullptr));
  TComponent* c = Make<TComponent>(o1.get(), "C");
  o2->InsertComponent(c);
  EXPECT_EQ(o1->ComponentCount(), 0);
  EXPECT_EQ(o2->FindComponent("c"), c);
  Make<TComponent>(o2.get(), "D");
  TComponent* d1 = Make<TComponent>(o1.get(), "D");
  EXPECT_THROW(o2->InsertComponent(d1), EComponentError);
  EXPECT_EQ(d1->Owner(), o1.get());
}

TEST(TClassInfo, RegistryFindsClassesByNameIgnoringCase) {
  RegisterClass(TComponent::StaticClass());
  RegisterClass(TComponent::StaticClass());
  EXPECT_EQ(GetClass("tcomponent"), &TComponent::StaticClass());
  EXPECT_EQ(GetClass("TNothing"), nullptr);
  EXPECT_THROW(FindClass("TNothing"), EClassNotFound);
  static const TClassInfo impostor("TComponent", nullptr);
  EXPECT_THROW(RegisterClass(impostor), EComponentError);
  const TPropInfo* tag = TComponent::StaticClass().FindProperty("TAG");
  ASSERT_NE(tag, nullptr);
  EXPECT_EQ(tag->Kind, pkInteger);
  TComponentPtr<TComponent> c(FindClass("TComponent").Create(nullptr));
  tag->Set(*c, Variant(12));
  EXPECT_EQ(c->Tag(), 12);
  EXPECT_THROW(tag->Set(*c, Variant(int64_t{1} << 40)), EConvertError);
  EXPECT_TRUE(c->InheritsFrom(TPersistent::StaticClass()));
  EXPECT_EQ(c->ClassName(), "TComponent");
}
