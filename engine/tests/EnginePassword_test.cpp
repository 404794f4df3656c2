// EnginePassword_test: a table created with a password opens, rebuilds and compacts only with
// that password, through every call that reaches its files, and a refused call leaves nothing
// open.
#include <fstream>
#include <functional>

#include "EngineFixture.h"

namespace {

constexpr char kWord[] = "Brindle-7";

struct Opener {
  const char* name;
  bool takesPassword;  // calls without a password argument must always be refused
  std::function<COUNT(EngineApi&, IFIL&, char* password)> open;
};

const Opener kOpeners[] = {
    {"OPNFIL", false, [](EngineApi& a, IFIL&, char*) { return a.OPNFIL(0, (pTEXT) "customers.dat", SHARED); }},
    {"OPNFILX", true, [](EngineApi& a, IFIL&, char* w) { return a.OPNFILX(0, (pTEXT) "customers.dat", SHARED, w); }},
    {"OPNRFIL", false, [](EngineApi& a, IFIL&, char*) { return a.OPNRFIL(0, (pTEXT) "customers.dat", SHARED); }},
    {"OPNRFILX", true, [](EngineApi& a, IFIL&, char* w) { return a.OPNRFILX(0, (pTEXT) "customers.dat", SHARED, w); }},
    {"OPNIFIL", false, [](EngineApi& a, IFIL& f, char*) { return a.OPNIFIL(&f); }},
    {"OPNIFILX", true, [](EngineApi& a, IFIL& f, char* w) { return a.OPNIFILX(&f, nullptr, nullptr, w); }},
    {"RBLIFIL", false, [](EngineApi& a, IFIL& f, char*) { return a.RBLIFIL(&f); }},
    {"RBLIFILX", true, [](EngineApi& a, IFIL& f, char* w) { return a.RBLIFILX(&f, nullptr, nullptr, 0, nullptr, w); }},
    {"CMPIFIL", false, [](EngineApi& a, IFIL& f, char*) { return a.CMPIFIL(&f); }},
    {"CMPIFILX", true, [](EngineApi& a, IFIL& f, char* w) { return a.CMPIFILX(&f, nullptr, nullptr, 0, nullptr, w); }},
    {"OPNISAM", false,
     [](EngineApi& a, IFIL&, char*) {
       a.CLISAM();
       std::ofstream("tables.prm") << "table name=customers number=0 reclen=66 mode=SHARED\n";
       const COUNT rc = a.OPNISAM((pTEXT) "tables.prm");
       if (rc != 0) a.INTISAMX(10, 64, 16, 10, 0, nullptr, nullptr, nullptr);
       return rc;
     }},
    {"OPNFILX on the index file", true, [](EngineApi& a, IFIL&, char* w) { return a.OPNFILX(5, (pTEXT) "customers.idx", SHARED, w); }},
};

using EnginePassword = EngineTest;

TEST_F(EnginePassword, EveryCallThatOpensTheFilesNeedsThePassword) {
  def_.ifil.dfilmod = def_.ifil.ifilmod = SHARED;
  ASSERT_EQ(api.CREIFILX(&def_.ifil, nullptr, nullptr, 0, nullptr, (pTEXT) kWord), 0);
  ASSERT_EQ(Add(0, 1, "Ada Quill", "Quenby"), 0);
  ASSERT_EQ(api.CLRFIL(0), 0);
  char wrong[] = "brindle-7", empty[] = "", right[sizeof kWord];
  std::strcpy(right, kWord);
  for (const Opener& opener : kOpeners) {
    for (char* word : {static_cast<char*>(nullptr), empty, wrong, right}) {
      SCOPED_TRACE(std::string(opener.name) + " with " + (word ? "\"" + std::string(word) + "\"" : "no password"));
      def_.ifil.tfilno = -1;
      const COUNT rc = opener.open(api, def_.ifil, word);
      if (word != right || !opener.takesPassword) {
        EXPECT_EQ(rc, BPWD_ERR);
        EXPECT_EQ(api.AVLFILNUM(8), 0) << "a refused call left a file open";
        continue;
      }
      EXPECT_EQ(rc, 0);
      api.CLISAM();
      ASSERT_EQ(api.INTISAMX(10, 64, 16, 10, 0, nullptr, nullptr, nullptr), 0);
    }
  }
  ASSERT_EQ(api.OPNRFILX(0, (pTEXT) "customers.dat", EXCLUSIVE, right), 0);
  EXPECT_EQ(api.DATENT(0), 1);
}

}  // namespace

namespace {

// SECURITY gives the set's index files the new password too, so that none opens with the old.
TEST_F(EnginePassword, ChangedPasswordGuardsTheIndexFileToo) {
  COUNT dat = CreateCustomers(EXCLUSIVE);
  ASSERT_EQ(api.SECURITY(dat, (pVOID) kWord, sizeof kWord, SEC_PASSWORD), 0);
  ASSERT_EQ(api.CLRFIL(dat), 0);
  EXPECT_EQ(api.OPNFIL(5, (pTEXT) "customers.idx", SHARED), BPWD_ERR);
  ASSERT_EQ(api.OPNFILX(5, (pTEXT) "customers.idx", SHARED, (pTEXT) kWord), 0);
  ASSERT_EQ(api.CLSFIL(5, 0), 0);
  ASSERT_EQ(api.OPNRFILX(dat, (pTEXT) "customers.dat", EXCLUSIVE, (pTEXT) kWord), 0);
  ASSERT_EQ(api.SECURITY(dat, nullptr, 0, SEC_PASSWORD), 0);
  ASSERT_EQ(api.CLRFIL(dat), 0);
  EXPECT_EQ(api.OPNFIL(5, (pTEXT) "customers.idx", SHARED), 0);
}

}  // namespace
