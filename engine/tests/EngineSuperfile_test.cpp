// EngineSuperfile_test: tables held as members of one superfile, through the library.
#include "EngineFixture.h"

namespace {

using EngineSuperfile = EngineTest;

std::vector<std::string> Members(EngineApi& api, COUNT host) {
  std::vector<std::string> names;
  char buf[128];
  for (COUNT mode = 0; api.GETMNAME(host, buf, sizeof buf, mode) == 0; mode = 1) names.push_back(buf);
  return names;
}

TEST_F(EngineSuperfile, MembersAreCreatedOpenedListedAndDeletedIndependently) {
  def_.ifil.pfilnam = (pTEXT) "store.sup!customers";
  COUNT cust = CreateCustomers();
  ASSERT_GE(cust, 0);
  ASSERT_EQ(Add(cust, 1, "one", "Oslo"), 0);
  ASSERT_EQ(Add(cust, 2, "two", "Rome"), 0);
  CustomersDef orders;
  orders.ifil.pfilnam = (pTEXT) "store.sup!orders";
  ASSERT_EQ(api.CREIFIL(&orders.ifil), 0);
  COUNT ord = orders.ifil.tfilno;
  ASSERT_EQ(Add(ord, 1, "order", "Bern"), 0);
  EXPECT_TRUE(std::filesystem::exists("store.sup"));
  EXPECT_FALSE(std::filesystem::exists("customers.dat"));

  // The same position in two members is two different records, locked apart.
  Customer c{};
  ASSERT_EQ(api.FRSREC(cust, &c), 0);
  ASSERT_EQ(api.FRSREC(ord, &c), 0);
  ASSERT_EQ(api.GETCURP(cust), api.GETCURP(ord));
  ASSERT_EQ(api.LOKREC(cust, ENABLE, api.GETCURP(cust)), 0);
  EXPECT_EQ(api.LOKREC(ord, ENABLE, api.GETCURP(ord)), 0);

  COUNT host = api.AVLFILNUM(1);
  ASSERT_EQ(api.OPNFIL(host, (pTEXT) "store.sup", SHARED | SUPERFILE), 0);
  EXPECT_EQ(api.GETFIL(host, FILTYP), 2);
  EXPECT_EQ(Members(api, host),
            (std::vector<std::string>{"customers.dat", "customers.idx", "orders.dat", "orders.idx"}));
  EXPECT_EQ(LastError(), INOT_ERR);
  EXPECT_EQ(api.ADDREC(host, &c), CT_ENOTDAT);

  EXPECT_EQ(api.CREIFIL(&orders.ifil), DCRAT_ERR);
  ASSERT_EQ(api.CLRFIL(ord), 0);
  ASSERT_EQ(api.OPNRFIL(ord, (pTEXT) "store.sup!orders.dat", EXCLUSIVE), 0);
  // An exclusive member excludes other opens of it, not of its neighbours.
  EXPECT_EQ(api.OPNRFIL(40, (pTEXT) "store.sup!orders.dat", SHARED), FNOP_ERR);
  EXPECT_EQ(api.OPNRFIL(40, (pTEXT) "store.sup!customers.dat", SHARED), 0);
  ASSERT_EQ(api.CLRFIL(40), 0);
  EXPECT_EQ(api.DATENT(ord), 1);
  ASSERT_EQ(api.DELRFIL(ord), 0);
  EXPECT_EQ(Members(api, host), (std::vector<std::string>{"customers.dat", "customers.idx"}));
  EXPECT_EQ(api.OPNRFIL(ord, (pTEXT) "store.sup!orders.dat", SHARED), FNOP_ERR);

  // The remaining member is untouched and reopens with its index.
  ASSERT_EQ(api.CLRFIL(cust), 0);
  ASSERT_EQ(api.CLSFIL(host, 0), 0);
  ASSERT_EQ(api.OPNRFIL(0, (pTEXT) "store.sup!customers.dat", SHARED), 0);
  EXPECT_EQ(api.DATENT(0), 2);
  ASSERT_EQ(api.LSTREC(1, &c), 0);
  EXPECT_EQ(c.id, 2);
  ASSERT_EQ(api.UPDCIDX(2, (pTEXT) "id > 1"), RNOT_ERR);  // no schema yet
}

TEST_F(EngineSuperfile, AWalkListsTheMembersAsItBegan) {
  def_.ifil.pfilnam = (pTEXT) "walk.sup!b";
  ASSERT_GE(CreateCustomers(), 0);
  COUNT host = api.AVLFILNUM(1);
  ASSERT_EQ(api.OPNFIL(host, (pTEXT) "walk.sup", SHARED | SUPERFILE), 0);
  char buf[64];
  ASSERT_EQ(api.GETMNAME(host, buf, sizeof buf, 0), 0);
  EXPECT_STREQ(buf, "b.dat");
  CustomersDef more;
  more.ifil.pfilnam = (pTEXT) "walk.sup!a";
  ASSERT_EQ(api.CREIFIL(&more.ifil), 0);
  ASSERT_EQ(api.GETMNAME(host, buf, sizeof buf, 1), 0);
  EXPECT_STREQ(buf, "b.idx");
  EXPECT_EQ(api.GETMNAME(host, buf, sizeof buf, 1), INOT_ERR);
  EXPECT_EQ(Members(api, host), (std::vector<std::string>{"a.dat", "a.idx", "b.dat", "b.idx"}));
}

TEST_F(EngineSuperfile, HostsAreMadeAndRecognised) {
  ASSERT_EQ(api.CREDAT(0, (pTEXT) "empty.sup", 1, 0, EXCLUSIVE | SUPERFILE), 0);
  EXPECT_EQ(api.GETFIL(0, FILTYP), 2);
  char buf[64];
  EXPECT_EQ(api.GETMNAME(0, buf, sizeof buf, 0), INOT_ERR);
  EXPECT_EQ(api.CREDAT(1, (pTEXT) "empty.sup", 1, 0, EXCLUSIVE | SUPERFILE), DCRAT_ERR);
  ASSERT_EQ(api.CREDAT(2, (pTEXT) "plain.dat", 8, 0, SHARED), 0);
  EXPECT_EQ(api.CREDAT(3, (pTEXT) "plain.dat!member", 8, 0, SHARED), CT_EDAMAGED);
  EXPECT_EQ(api.GETMNAME(2, buf, sizeof buf, 0), CT_ENOTDAT);
  ASSERT_EQ(api.DELFIL(0), 0);
  EXPECT_FALSE(std::filesystem::exists("empty.sup"));
}

// A member renames within its host only: a move to another host or out of it is refused before
// anything changes, and the member still opens with its index under its old name.
TEST_F(EngineSuperfile, ARefusedRenameOfAMemberChangesNothing) {
  def_.ifil.pfilnam = (pTEXT) "store.sup!customers";
  COUNT cust = CreateCustomers(EXCLUSIVE);
  ASSERT_GE(cust, 0);
  ASSERT_EQ(Add(cust, 1, "one", "Oslo"), 0);
  EXPECT_EQ(api.ctRENFIL(cust, (pTEXT) "other.sup!clients.dat"), NSUP_ERR);
  EXPECT_EQ(api.ctRENFIL(cust, (pTEXT) "clients.dat"), NSUP_ERR);
  EXPECT_EQ(api.DATENT(cust), 1);
  ASSERT_EQ(api.CLRFIL(cust), 0);
  ASSERT_EQ(api.OPNRFIL(0, (pTEXT) "store.sup!customers.dat", SHARED), 0);
  EXPECT_EQ(api.IDXENT(1), 1);
  Customer c{};
  ASSERT_EQ(api.FRSREC(2, &c), 0);
  EXPECT_EQ(c.id, 1);
  EXPECT_FALSE(std::filesystem::exists("clients.dat"));
  EXPECT_FALSE(std::filesystem::exists("other.sup"));
}

}  // namespace
