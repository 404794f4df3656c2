// EngineFiles_test: files, IFIL sets, resources, file numbers and bad input.
#include <fstream>

#include "EngineFixture.h"

namespace {

using EngineFiles = EngineTest;

bool Exists(const char* name) { return std::filesystem::exists(name); }

TEST_F(EngineFiles, SetReopensWithItsDefinitionAndRecords) {
  COUNT dat = CreateCustomers();
  ASSERT_EQ(Add(dat, 9, "nine", "Nice"), 0);
  DATOBJ doda[2] = {{(pTEXT) "id", nullptr, CT_INT4, 4, 0}, {(pTEXT) "name", nullptr, CT_FSTRING, 30, 0}};
  ASSERT_EQ(api.PUTDODA(dat, doda, 2), 0);
  ASSERT_EQ(api.CLRFIL(dat), 0);
  EXPECT_TRUE(Exists("customers.dat"));
  EXPECT_TRUE(Exists("customers.idx"));

  ASSERT_EQ(api.OPNRFILX(5, (pTEXT) "customers.dat", SHARED, nullptr), 0);
  EXPECT_EQ(api.DATENT(5), 1);
  EXPECT_EQ(api.IDXENT(7), 1);
  EXPECT_EQ(api.GETFIL(5, RECLEN), (LONG) sizeof(Customer));
  EXPECT_EQ(api.GETFIL(7, RECLEN), 54);
  EXPECT_EQ(api.GETFIL(7, KEYDUP), 1);
  EXPECT_EQ(api.GETFIL(5, FILALIGN), 1);

  LONG size = api.GETIFIL(5, 0, nullptr);
  ASSERT_GT(size, (LONG) sizeof(IFIL));
  std::vector<char> image(size);
  EXPECT_EQ(api.GETIFIL(5, size - 1, image.data()), 0);
  EXPECT_EQ(LastError(), CT_EBADARG);
  ASSERT_EQ(api.GETIFIL(5, size, image.data()), size);
  IFIL* f = reinterpret_cast<IFIL*>(image.data());
  EXPECT_STREQ(f->pfilnam, "customers");
  EXPECT_EQ(f->dnumidx, 2);
  EXPECT_STREQ(f->ix[1].ridxnam, "by_city");
  EXPECT_EQ(f->ix[1].inumseg, 2);
  EXPECT_EQ(f->ix[1].seg[1].soffset, 4);

  LONG dsize = api.GETDODA(5, 0, nullptr, SCHEMA_DODA);
  std::vector<char> d(dsize);
  ASSERT_EQ(api.GETDODA(5, dsize, d.data(), SCHEMA_DODA), dsize);
  DATOBJ* fields = reinterpret_cast<DATOBJ*>(d.data());
  EXPECT_STREQ(fields[1].fsymb, "name");
  EXPECT_EQ(+fields[1].ftype, CT_FSTRING);  // + reads the packed members by value
  EXPECT_EQ(+fields[1].flen, 30u);
  EXPECT_GT(api.GETDODA(5, 0, nullptr, SCHEMA_MAP), 0);
}

TEST_F(EngineFiles, MissingResourcesReport408) {
  ASSERT_EQ(api.CREDAT(0, (pTEXT) "plain.dat", 10, 0, EXCLUSIVE), 0);
  EXPECT_EQ(api.GETIFIL(0, 0, nullptr), 0);
  EXPECT_EQ(LastError(), RNOT_ERR);
  EXPECT_EQ(api.GETDODA(0, 0, nullptr, SCHEMA_DODA), 0);
  EXPECT_EQ(LastError(), RNOT_ERR);
  char rec[10] = "abcdefghi";
  ASSERT_EQ(api.ADDREC(0, rec), 0);
  ASSERT_EQ(api.CLSFIL(0, 0), 0);
  EXPECT_EQ(api.OPNRFIL(0, (pTEXT) "plain.dat", EXCLUSIVE), RNOT_ERR);
  ASSERT_EQ(api.OPNFIL(0, (pTEXT) "plain.dat", EXCLUSIVE), 0);
  char back[10];
  ASSERT_EQ(api.FRSREC(0, back), 0);
  EXPECT_STREQ(back, "abcdefghi");
}

TEST_F(EngineFiles, OtherResourcesAreAddedFoundUpdatedDeleted) {
  COUNT dat = CreateCustomers();
  struct {
    ULONG type, number;
    char rest[16];
  } res = {300, 1, "note\0hello"}, back{};
  const LONG len = 8 + 11;
  ASSERT_EQ(api.ADDRES(dat, &res, len), 0);
  EXPECT_EQ(api.ADDRES(dat, &res, len), CT_ERESDUP);
  EXPECT_EQ(api.GETRES(dat, &res, &back, sizeof back, 0), &back);
  EXPECT_STREQ(back.rest + 5, "hello");
  std::memcpy(res.rest + 5, "world", 5);
  ASSERT_EQ(api.UPDRES(dat, &res, len), 0);
  api.GETRES(dat, &res, &back, sizeof back, 0);
  EXPECT_STREQ(back.rest + 5, "world");
  ASSERT_EQ(api.DELRES(dat, &res), 0);
  EXPECT_EQ(api.GETRES(dat, &res, &back, sizeof back, 0), nullptr);
  EXPECT_EQ(LastError(), RNOT_ERR);
  EXPECT_EQ(api.ENARES(dat), 0);
}

TEST_F(EngineFiles, ExclusiveOpenExcludesOthersAndDeleteNeedsIt) {
  COUNT dat = CreateCustomers(EXCLUSIVE);
  EXPECT_EQ(api.OPNRFIL(20, (pTEXT) "customers.dat", SHARED), FNOP_ERR);
  ASSERT_EQ(api.CLRFIL(dat), 0);
  ASSERT_EQ(api.OPNRFIL(20, (pTEXT) "customers.dat", SHARED), 0);
  ASSERT_EQ(api.OPNRFIL(30, (pTEXT) "customers.dat", SHARED), 0);
  EXPECT_EQ(api.DELRFIL(20), FMOD_ERR);
  ASSERT_EQ(Add(20, 1, "one", "x"), 0);
  EXPECT_EQ(api.DATENT(30), 1);
  ASSERT_EQ(api.CLRFIL(20), 0);
  ASSERT_EQ(api.CLRFIL(30), 0);
  ASSERT_EQ(api.OPNRFIL(20, (pTEXT) "customers.dat", EXCLUSIVE), 0);
  ASSERT_EQ(api.DELRFIL(20), 0);
  EXPECT_FALSE(Exists("customers.dat"));
  EXPECT_FALSE(Exists("customers.idx"));
}

TEST_F(EngineFiles, ReadOnlyRefusesWritesAndPasswordsAreChecked) {
  OneIndexDef f("secret", 8, SHARED, {{0, 4, SGNSEG}});
  ASSERT_EQ(api.CREIFILX(&f.ifil, nullptr, nullptr, 0, nullptr, (pTEXT) "pw"), 0);
  ASSERT_EQ(api.CLRFIL(f.ifil.tfilno), 0);
  EXPECT_EQ(api.OPNRFILX(0, (pTEXT) "secret.dat", SHARED, (pTEXT) "wrong"), BPWD_ERR);
  EXPECT_EQ(api.OPNRFILX(0, (pTEXT) "secret.dat", SHARED, nullptr), BPWD_ERR);
  ASSERT_EQ(api.OPNRFILX(0, (pTEXT) "secret.dat", SHARED | READFIL, (pTEXT) "pw"), 0);
  char rec[8] = {};
  EXPECT_EQ(api.ADDREC(0, rec), CT_EREADONLY);
  EXPECT_EQ(api.DATENT(0), 0);
}

TEST_F(EngineFiles, CreateRefusesExistingFilesAndMalformedDefinitions) {
  CreateCustomers();
  CustomersDef again;
  EXPECT_EQ(api.CREIFIL(&again.ifil), DCRAT_ERR);

  const std::pair<void (*)(CustomersDef&), COUNT> spoilt[] = {
      {[](CustomersDef& d) { d.ifil.pfilnam = nullptr; }, CT_EBADDEF},
      {[](CustomersDef& d) { d.ifil.pfilnam = (pTEXT) "nosegs"; d.idx[1].inumseg = 0; }, CT_EBADDEF},
      {[](CustomersDef& d) { d.ifil.pfilnam = (pTEXT) "beyond"; d.cityName[0].soffset = 60; }, CT_EBADDEF},
      {[](CustomersDef& d) { d.ifil.pfilnam = (pTEXT) "toolong"; d.idx[0].ikeylen = CT_MAXKEYLEN + 1; }, CT_EKEYLEN}};
  for (const auto& [spoil, rc] : spoilt) {
    CustomersDef def;
    spoil(def);
    EXPECT_EQ(api.CREIFIL(&def.ifil), rc) << (def.ifil.pfilnam ? def.ifil.pfilnam : "(no name)");
  }
  EXPECT_EQ(api.CREIFIL(nullptr), CT_EBADARG);
  for (const char* n : {"nosegs.dat", "beyond.dat", "toolong.dat", "nosegs.idx", "beyond.idx"})
    EXPECT_FALSE(Exists(n)) << n;
}

TEST_F(EngineFiles, BadNumbersAndBuffersGiveErrorsNotCrashes) {
  COUNT dat = CreateCustomers();
  Customer c{};
  EXPECT_EQ(api.ADDREC(-1, &c), FNUM_ERR);
  EXPECT_EQ(api.ADDREC(64, &c), FNUM_ERR);
  EXPECT_EQ(api.ADDREC(40, &c), CT_ENOTOPEN);
  EXPECT_EQ(api.ADDREC(dat + 1, &c), CT_ENOTDAT);
  EXPECT_EQ(api.ADDREC(dat, nullptr), CT_EBADARG);
  EXPECT_EQ(api.EQLREC(dat, &c, &c), CT_ENOTIDX);
  EXPECT_EQ(api.FRSKEY(dat, nullptr), 0);
  EXPECT_EQ(LastError(), CT_ENOTIDX);
  EXPECT_EQ(api.EQLKEY(dat + 1, nullptr), 0);
  EXPECT_EQ(LastError(), CT_EBADARG);
  EXPECT_EQ(api.FRSREC(dat, nullptr), CT_EBADARG);
  EXPECT_EQ(api.NXTREC(dat, &c), ICUR_ERR);
  EXPECT_EQ(api.RWTREC(dat, &c), ICUR_ERR);
  EXPECT_EQ(api.DELREC(dat), ICUR_ERR);
  EXPECT_EQ(api.frmkey(dat + 1, nullptr, (pTEXT) &c, 0, 0), 0);
  EXPECT_EQ(api.GETNAM(dat, (pTEXT) &c, 3, 0), CT_EBADARG);
  EXPECT_EQ(api.REDREC(dat, 0, &c), CT_EBADARG);
  EXPECT_EQ(api.TMPNAME(nullptr, 0), CT_EBADARG);
  EXPECT_EQ(api.PUTDODA(dat, nullptr, 2), CT_EBADARG);
  EXPECT_EQ(api.LKISAM(99), CT_EBADARG);
  EXPECT_EQ(api.DATENT(dat), 0);
  EXPECT_EQ(api.OPNFIL(50, (pTEXT) "missing.dat", SHARED), FNOP_ERR);
  EXPECT_EQ(api.OPNRFIL(50, (pTEXT) "customers.dat", 0x8000), FMOD_ERR);
}

TEST_F(EngineFiles, ForeignAndDamagedFilesAreRefused) {
  { std::ofstream("foreign.dat") << std::string(10000, 'z'); }
  EXPECT_EQ(api.OPNFIL(0, (pTEXT) "foreign.dat", SHARED), CT_EDAMAGED);
  { std::ofstream("empty.dat"); }
  EXPECT_EQ(api.OPNFIL(0, (pTEXT) "empty.dat", SHARED), CT_EDAMAGED);
  EXPECT_EQ(std::filesystem::file_size("empty.dat"), 0u);
  COUNT dat = CreateCustomers(EXCLUSIVE);
  for (int i = 0; i < 200; ++i) ASSERT_EQ(Add(dat, i, "n", "c"), 0);
  ASSERT_EQ(api.CLRFIL(dat), 0);
  std::filesystem::resize_file("customers.dat", std::filesystem::file_size("customers.dat") / 2);
  EXPECT_EQ(api.OPNRFIL(0, (pTEXT) "customers.dat", SHARED), CT_EDAMAGED);
  // An index file opens on its own, but gives no keys until it is mapped onto a data file.
  ASSERT_EQ(api.OPNFIL(0, (pTEXT) "customers.idx", SHARED), 0);
  EXPECT_EQ(api.IDXENT(0), 0);
  EXPECT_EQ(LastError(), CT_EUNMAPPED);
  EXPECT_EQ(api.CLSFIL(0, 0), 0);
}

TEST_F(EngineFiles, FilesRememberTheirAlignment) {
  COUNT dat = CreateCustomers(EXCLUSIVE);
  ASSERT_EQ(api.CLRFIL(dat), 0);
  EngineApi word;
  ASSERT_TRUE(word.Load("libctstd32w.so"));
  ASSERT_EQ(word.INTISAM(10, 32, 4), 0);
  EXPECT_EQ(word.OPNRFIL(0, (pTEXT) "customers.dat", SHARED), CT_EALIGN);
  EXPECT_EQ(word.OPNFIL(0, (pTEXT) "customers.dat", SHARED), CT_EALIGN);
  ISEG_P2 s[1] = {{0, 4, SGNSEG}};
  IIDX_P2 ix[1] = {{4, 0, 0, 0, 0, 1, s, nullptr, nullptr, nullptr, nullptr}};
  IFIL_P2 f = {(pTEXT) "wordfile", -1, 8, 0, EXCLUSIVE, 1, 0, EXCLUSIVE, ix, nullptr, nullptr, -1};
  ASSERT_EQ(word.CREIFIL(reinterpret_cast<pIFIL>(&f)), 0);
  EXPECT_EQ(word.GETFIL(f.tfilno, FILALIGN), 2);
  ASSERT_EQ(word.CLISAM(), 0);
  EXPECT_EQ(api.OPNRFIL(0, (pTEXT) "wordfile.dat", SHARED), CT_EALIGN);
}

TEST_F(EngineFiles, RenameMovesTheWholeSet) {
  COUNT dat = CreateCustomers(EXCLUSIVE);
  ASSERT_EQ(Add(dat, 3, "c", "d"), 0);
  ASSERT_EQ(api.ctRENFIL(dat, (pTEXT) "clients.dat"), 0);
  EXPECT_FALSE(Exists("customers.dat"));
  EXPECT_TRUE(Exists("clients.idx"));
  EXPECT_EQ(api.DATENT(dat), 1);
  ASSERT_EQ(api.CLRFIL(dat), 0);
  ASSERT_EQ(api.OPNRFIL(0, (pTEXT) "clients.dat", SHARED), 0);
  EXPECT_EQ(api.IDXENT(2), 1);
  EXPECT_EQ(api.ctRENFIL(0, (pTEXT) "other.dat"), FMOD_ERR);
}

TEST_F(EngineFiles, NamesAndNumbers) {
  EXPECT_EQ(api.AVLFILNUM(3), 0);
  COUNT dat = CreateCustomers();
  EXPECT_EQ(dat, 0);
  EXPECT_EQ(api.AVLFILNUM(2), 3);
  EXPECT_EQ(api.AVLFILNUM(100), -1);
  char name[64];
  ASSERT_EQ(api.GETNAM(dat, name, sizeof name, 0), 0);
  EXPECT_STREQ(name, "customers.dat");
  ASSERT_EQ(api.GETNAM(dat + 2, name, sizeof name, 0), 0);
  EXPECT_STREQ(name, "customers.idx");
  ASSERT_EQ(api.TMPNAME(name, sizeof name), 0);
  EXPECT_FALSE(Exists(name));
  EXPECT_EQ(api.CREDAT(dat + 1, (pTEXT) "x.dat", 4, 0, SHARED), FUSE_ERR);
  EXPECT_EQ(api.GETFIL(dat, 99), -1);
}

}  // namespace
