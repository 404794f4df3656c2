// EngineSettings_test: alternate collating sequences, pad bytes, SECURITY, PUTHDR, SETOPS,
// parameter files and the calls that report 454, through the loaded library.
#include <sys/stat.h>

#include <cstring>
#include <fstream>

#include "EngineFixture.h"

namespace {

using EngineSettings = EngineTest;

// An 8-byte record holding a name; index 0 on the name with ALTSEG, index 1 on it without.
struct Names {
  explicit Names(const COUNT* altseq) {
    idx[0].altseq = const_cast<pCOUNT>(altseq);
  }
  ISEG alt[1] = {{0, 8, REGSEG | ALTSEG}};
  ISEG plain[1] = {{0, 8, REGSEG}};
  IIDX idx[2] = {{8, 0, 0, 0, 0, 1, alt, nullptr, nullptr, nullptr, nullptr},
                 {8, 0, 0, 0, 0, 1, plain, nullptr, nullptr, nullptr, nullptr}};
  IFIL ifil = {(pTEXT) "names", -1, 8, 0, EXCLUSIVE, 2, 0, EXCLUSIVE, idx, nullptr, nullptr, -1};
};

std::vector<COUNT> Reversed() {
  std::vector<COUNT> t(256);
  for (int i = 0; i < 256; ++i) t[i] = static_cast<COUNT>(255 - i);
  return t;
}

class EngineAltSeq : public EngineSettings {
 protected:
  std::vector<std::string> Order(COUNT keyno) {
    std::vector<std::string> out;
    char rec[9] = {};
    for (COUNT rc = api.FRSREC(keyno, rec); rc == 0; rc = api.NXTREC(keyno, rec)) out.emplace_back(rec);
    return out;
  }
  void AddNames(COUNT dat) {
    for (const char* n : {"b", "A", "ab", "a", "B"}) {
      char rec[8] = {};
      std::strncpy(rec, n, 8);
      ASSERT_EQ(api.ADDREC(dat, rec), 0);
    }
  }
};

TEST_F(EngineAltSeq, SequenceGivenAtCreationOrdersAltSegmentsOnly) {
  std::vector<COUNT> rev = Reversed();
  Names n(rev.data());
  ASSERT_EQ(api.CREIFIL(&n.ifil), 0);
  AddNames(n.ifil.tfilno);
  EXPECT_EQ(Order(n.ifil.tfilno + 1), (std::vector<std::string>{"b", "ab", "a", "B", "A"}));
  EXPECT_EQ(Order(n.ifil.tfilno + 2), (std::vector<std::string>{"A", "B", "a", "ab", "b"}));
  std::vector<COUNT> got(256, -1);
  ASSERT_EQ(api.GETALTSEQ(n.ifil.tfilno + 1, got.data()), 0);
  EXPECT_EQ(got, rev);
  EXPECT_EQ(api.GETALTSEQ(n.ifil.tfilno + 2, got.data()), RNOT_ERR);
  // GETIFIL hands the weights back, so the definition can be given to PUTIFIL or CREIFIL again.
  LONG need = api.GETIFIL(n.ifil.tfilno, 0, nullptr);
  std::vector<char> image(need);
  ASSERT_EQ(api.GETIFIL(n.ifil.tfilno, need, image.data()), need);
  const IFIL* back = reinterpret_cast<const IFIL*>(image.data());
  ASSERT_NE(+back->ix[0].altseq, nullptr);  // + reads the packed member by value
  EXPECT_EQ(std::vector<COUNT>(back->ix[0].altseq, back->ix[0].altseq + 256), rev);
  EXPECT_EQ(+back->ix[1].altseq, nullptr);
  // Keys built by the caller go through the same weights.
  char target[8] = {'a', 'b'}, rec[9] = {};
  ASSERT_EQ(api.EQLREC(n.ifil.tfilno + 1, api.TFRMKEY(n.ifil.tfilno + 1, target), rec), 0);
  EXPECT_STREQ(rec, "ab");
}

TEST_F(EngineAltSeq, SettingASequenceRebuildsTheKeysAndSurvivesReopening) {
  Names n(nullptr);
  ASSERT_EQ(api.CREIFIL(&n.ifil), 0);
  const COUNT dat = n.ifil.tfilno;
  AddNames(dat);
  EXPECT_EQ(Order(dat + 1), (std::vector<std::string>{"A", "B", "a", "ab", "b"}));
  std::vector<COUNT> bad = Reversed();
  bad[7] = 256;
  EXPECT_EQ(api.SETALTSEQ(dat + 1, bad.data()), CT_EBADARG);
  EXPECT_EQ(api.SETALTSEQ(dat + 1, nullptr), CT_EBADARG);
  std::vector<COUNT> got(256);
  EXPECT_EQ(api.GETALTSEQ(dat + 1, got.data()), RNOT_ERR) << "a refused table is not kept";

  // Case-insensitive weights: lower-case letters weigh as their upper-case forms.
  std::vector<COUNT> fold(256);
  for (int i = 0; i < 256; ++i) fold[i] = static_cast<COUNT>(i >= 'a' && i <= 'z' ? i - 32 : i);
  ASSERT_EQ(api.SETALTSEQ(dat + 1, fold.data()), KDUP_ERR) << "\"a\" and \"A\" clash in a unique index";
  EXPECT_EQ(Order(dat + 1), (std::vector<std::string>{"A", "B", "a", "ab", "b"}));
  std::vector<COUNT> rev = Reversed();
  ASSERT_EQ(api.SETALTSEQ(dat + 1, rev.data()), 0);
  EXPECT_EQ(Order(dat + 1), (std::vector<std::string>{"b", "ab", "a", "B", "A"}));
  EXPECT_EQ(api.IDXENT(dat + 1), 5);
  ASSERT_EQ(api.CLRFIL(dat), 0);
  ASSERT_EQ(api.OPNRFIL(dat, (pTEXT) "names.dat", EXCLUSIVE), 0);
  EXPECT_EQ(Order(dat + 1), (std::vector<std::string>{"b", "ab", "a", "B", "A"}));
  char rec[8] = {'c'};
  ASSERT_EQ(api.ADDREC(dat, rec), 0);
  EXPECT_EQ(Order(dat + 1).front(), "c");
}

TEST_F(EngineSettings, PadBytesFillKeysAndDecideNullKeys) {
  // Index 0: 4-byte segment in an 8-byte key; index 1 suppresses keys of pad bytes only.
  ISEG seg[1] = {{0, 4, REGSEG}};
  IIDX idx[2] = {{8, 0, 0, 0, 0, 1, seg, nullptr, nullptr, nullptr, nullptr},
                 {8, 0, 0, 1, 0, 1, seg, nullptr, nullptr, nullptr, nullptr}};
  IFIL f = {(pTEXT) "pads", -1, 4, 0, EXCLUSIVE, 2, 0, EXCLUSIVE, idx, nullptr, nullptr, -1};
  ASSERT_EQ(api.CREIFIL(&f), 0);
  for (const char* r : {"abcd", "****"}) ASSERT_EQ(api.ADDREC(f.tfilno, const_cast<char*>(r)), 0);
  EXPECT_EQ(api.IDXENT(f.tfilno + 2), 2);
  UTEXT star[2] = {'*', 0};
  ASSERT_EQ(api.SETVARBYTS(f.tfilno, star), 0);
  char key[8];
  ASSERT_GT(api.LSTKEY(f.tfilno + 1, key), 0);
  EXPECT_EQ(std::string(key, 8), "abcd****");
  EXPECT_EQ(api.IDXENT(f.tfilno + 2), 1) << "\"****\" is now a null key";
  UTEXT delim[2] = {' ', ';'};
  EXPECT_EQ(api.SETVARBYTS(f.tfilno, delim), CT_EBADARG);
  UTEXT dot[2] = {'.', 0};
  ASSERT_EQ(api.SETVARBYTS(f.tfilno + 1, dot), 0);
  ASSERT_GT(api.LSTKEY(f.tfilno + 1, key), 0);
  EXPECT_EQ(std::string(key, 8), "abcd....");
  EXPECT_EQ(api.IDXENT(f.tfilno + 2), 1) << "only the index given changed";
}

TEST_F(EngineSettings, SecurityChangesThePasswordAndPermissionBits) {
  COUNT dat = CreateCustomers(EXCLUSIVE);
  ASSERT_EQ(Add(dat, 1, "a", "b"), 0);
  EXPECT_EQ(api.SECURITY(dat, (pVOID) "new", 4, SEC_PASSWORD), 0);
  EXPECT_EQ(api.SECURITY(dat, (pVOID) "abc", 3, SEC_PASSWORD), CT_EBADARG) << "not terminated";
  EXPECT_EQ(api.SECURITY(dat, (pVOID) "new", 4, 99), CT_EBADARG);
  ASSERT_EQ(api.CLRFIL(dat), 0);
  EXPECT_EQ(api.OPNRFIL(dat, (pTEXT) "customers.dat", EXCLUSIVE), BPWD_ERR);
  EXPECT_EQ(api.OPNRFILX(dat, (pTEXT) "customers.dat", EXCLUSIVE, (pTEXT) "old"), BPWD_ERR);
  ASSERT_EQ(api.OPNRFILX(dat, (pTEXT) "customers.dat", EXCLUSIVE, (pTEXT) "new"), 0);
  EXPECT_EQ(api.DATENT(dat), 1);

  LONG bits = 0440;
  ASSERT_EQ(api.SECURITY(dat, &bits, sizeof bits, SEC_PERMMASK), 0);
  struct stat st {};
  ASSERT_EQ(::stat("customers.dat", &st), 0);
  EXPECT_EQ(st.st_mode & 0777, 0440u);
  ASSERT_EQ(::stat("customers.idx", &st), 0);
  EXPECT_EQ(st.st_mode & 0777, 0440u);
  bits = 01000;
  EXPECT_EQ(api.SECURITY(dat, &bits, sizeof bits, SEC_PERMMASK), CT_EBADARG);
  bits = 0640;
  ASSERT_EQ(api.SECURITY(dat, &bits, sizeof bits, SEC_PERMMASK), 0);

  ASSERT_EQ(api.SECURITY(dat, nullptr, 0, SEC_PASSWORD), 0) << "no password any more";
  ASSERT_EQ(api.CLRFIL(dat), 0);
  ASSERT_EQ(api.OPNRFIL(dat, (pTEXT) "customers.dat", SHARED), 0);
  EXPECT_EQ(api.SECURITY(dat, (pVOID) "x", 2, SEC_PASSWORD), FMOD_ERR) << "needs an exclusive open";
}

TEST_F(EngineSettings, PutHeaderSetsTheSerialCounterAndSetopsKeepsItsState) {
  OneIndexDef f("serials", 8, EXCLUSIVE, {{0, 4, SRLSEG}});
  const COUNT dat = CreateOneIndex(f);
  ASSERT_EQ(api.PUTHDR(dat, 100, HDR_SERIAL), 0);
  EXPECT_EQ(api.SERIALNUM(dat), 100);
  int32_t rec[2] = {};
  ASSERT_EQ(api.ADDREC(dat, rec), 0);
  EXPECT_EQ(rec[0], 101);
  EXPECT_EQ(api.PUTHDR(dat, 5, 77), CT_EBADARG);
  EXPECT_EQ(api.PUTHDR(dat, -1, HDR_SERIAL), CT_EBADARG);
  EXPECT_EQ(api.PUTHDR(dat + 1, 5, HDR_SERIAL), CT_ENOTDAT);

  EXPECT_EQ(api.SETOPS(OPS_FLUSH, OPS_STATE_ON), 0);
  EXPECT_EQ(api.SETOPS(0, OPS_STATE_RET), OPS_FLUSH);
  ASSERT_EQ(api.ADDREC(dat, rec), 0) << "flushed commits work as before";
  EXPECT_EQ(api.SETOPS(OPS_FLUSH, OPS_STATE_OFF), OPS_FLUSH);
  EXPECT_EQ(api.SETOPS(0x100, OPS_STATE_ON), -1);
  EXPECT_EQ(LastError(), CT_EBADARG);
  EXPECT_EQ(api.SETOPS(0, OPS_STATE_RET), 0);
}

TEST_F(EngineSettings, IoFiguresCountCommitsFlushesAndReads) {
  COUNT dat = CreateCustomers(EXCLUSIVE);
  int64_t before[8], after[8];
  ASSERT_EQ(api.IOPERFORMANCEX(before), 0);
  ASSERT_EQ(Add(dat, 1, "a", "b"), 0);
  ASSERT_EQ(api.SETOPS(OPS_FLUSH, OPS_STATE_ON), 0);
  ASSERT_EQ(Add(dat, 2, "a", "b"), 0);
  Customer c{};
  ASSERT_EQ(api.FRSREC(dat + 1, &c), 0);
  ASSERT_EQ(api.NXTREC(dat, &c), 0);
  EXPECT_EQ(api.ADDREC(dat, &c), KDUP_ERR) << "a refused write commits nothing";
  ASSERT_EQ(api.IOPERFORMANCEX(after), 0);
  EXPECT_EQ(after[0] - before[0], 2);
  EXPECT_EQ(after[1] - before[1], 1);
  EXPECT_EQ(after[2] - before[2], 2);
  EXPECT_EQ(after[6], 3);
  LONG narrow[8];
  ASSERT_EQ(api.IOPERFORMANCE(narrow), 0);
  EXPECT_EQ(narrow[0], static_cast<LONG>(after[0]));
  EXPECT_EQ(api.IOPERFORMANCE(nullptr), CT_EBADARG);
}

TEST_F(EngineSettings, CallsWithoutMeaningHereReport454) {
  char buf[64];
  EXPECT_EQ(api.STPSRV(nullptr, nullptr, 0), NSUP_ERR);
  EXPECT_EQ(api.SYSMON(0, 0, buf, sizeof buf), NSUP_ERR);
  EXPECT_EQ(api.SETNODE((pTEXT) "node"), NSUP_ERR);
  EXPECT_EQ(api.SETLOGPATH((pTEXT) "/tmp", 0), NSUP_ERR);
  EXPECT_EQ(api.CHGHST(0), NSUP_ERR);
  EXPECT_EQ(api.FREHST(), NSUP_ERR);
  EXPECT_EQ(api.CTHIST(0, nullptr, buf, 0, sizeof buf, 0), NSUP_ERR);
  EXPECT_EQ(LastError(), NSUP_ERR);
}

class EngineParameters : public EngineSettings {
 protected:
  void Write(const char* name, const std::string& text) { std::ofstream(name) << text; }
  COUNT SysIo() {
    COUNT isam = 0, user = 0, sys = 0;
    api.GetCtreeError(&isam, &user, &sys);
    return sys;
  }
};

constexpr const char* kPeople = R"(# people and a plain file
session files=20

table name=people number=0 reclen=66 mode=SHARED|VLENGTH
index name=by_id keylen=4
segment offset=0 length=4 mode=SGNSEG
index name=by_city keylen=54 dup=1   # city then name
segment offset=34 length=20
segment offset=4 length=30 mode=0x2
table name=plain number=5 reclen=10
)";

TEST_F(EngineParameters, CreateThenOpenRoundTrip) {
  Write("people.prm", kPeople);
  EXPECT_EQ(api.CREISAM((pTEXT) "people.prm"), IINT_ERR) << "a session is active";
  ASSERT_EQ(api.CLISAM(), 0);
  ASSERT_EQ(api.CREISAM((pTEXT) "people.prm"), 0);
  EXPECT_EQ(api.GETFIL(0, FILMOD), SHARED | VLENGTH);
  EXPECT_EQ(api.GETFIL(2, KEYDUP), 1);
  EXPECT_EQ(api.GETFIL(5, RECLEN), 10);
  EXPECT_EQ(api.AVLFILNUM(15), -1) << "the session allows 20 file numbers";
  ASSERT_EQ(Add(0, 7, "ann", "Oslo"), 0);
  ASSERT_EQ(Add(0, 3, "bob", "Bern"), 0);
  ASSERT_EQ(api.CLISAM(), 0);

  ASSERT_EQ(api.OPNISAM((pTEXT) "people.prm"), 0);
  EXPECT_EQ(api.DATENT(0), 2);
  Customer c{};
  ASSERT_EQ(api.FRSREC(2, &c), 0);
  EXPECT_STREQ(c.name, "bob");
  EXPECT_EQ(api.GETFIL(5, RECLEN), 10);
  ASSERT_EQ(api.CLISAM(), 0);
  EXPECT_EQ(api.OPNISAM((pTEXT) "missing.prm"), FNOP_ERR);
  EXPECT_EQ(api.DATENT(0), 0);
  EXPECT_EQ(LastError(), FINT_ERR);
}

TEST_F(EngineParameters, MalformedFilesNameTheirLineAndLeaveNothing) {
  ASSERT_EQ(api.CLISAM(), 0);
  const std::pair<const char*, int> cases[] = {
      {"table name=t reclen=8\n\ntable name=u reclen=abc\n", 3},
      {"index keylen=4\n", 1},
      {"table name=t reclen=8\nsegment offset=0 length=4\n", 2},
      {"table name=t reclen=8 colour=red\n", 1},
      {"table name=t reclen=8 mode=SHARED|FAST\n", 1},
      {"table name=t\n", 1},
      {"session files=10\nsession files=12\n", 2},
      {"tabel name=t reclen=8\n", 1},
      {"table name=t reclen=8 reclen=9\n", 1},
  };
  for (const auto& [text, line] : cases) {
    Write("bad.prm", text);
    EXPECT_EQ(api.CREISAM((pTEXT) "bad.prm"), CT_EBADPARM) << text;
    EXPECT_EQ(SysIo(), line) << text;
    EXPECT_EQ(api.OPNISAM((pTEXT) "bad.prm"), CT_EBADPARM) << text;
  }
  EXPECT_FALSE(std::filesystem::exists("t.dat"));
  EXPECT_EQ(api.DATENT(0), 0);
  EXPECT_EQ(LastError(), FINT_ERR) << "no session was left behind";

  // A table that cannot be created undoes the ones before it.
  std::ofstream("plain.dat") << "in the way";
  Write("people.prm", kPeople);
  EXPECT_EQ(api.CREISAM((pTEXT) "people.prm"), DCRAT_ERR);
  EXPECT_FALSE(std::filesystem::exists("people.dat"));
  EXPECT_FALSE(std::filesystem::exists("people.idx"));
  EXPECT_EQ(api.CREISAMX((pTEXT) "people.prm", 0, nullptr, nullptr, (pTEXT) "srv", 0, nullptr, nullptr), NSRV_ERR);
  std::filesystem::remove("plain.dat");
  ASSERT_EQ(api.CREISAMX((pTEXT) "people.prm", 0, nullptr, nullptr, nullptr, 0600, nullptr, (pTEXT) "pw"), 0);
  ASSERT_EQ(api.CLISAM(), 0);
  struct stat st {};
  ASSERT_EQ(::stat("people.idx", &st), 0);
  EXPECT_EQ(st.st_mode & 0777, 0600u);
  EXPECT_EQ(api.OPNISAM((pTEXT) "people.prm"), BPWD_ERR) << "the files carry the password";
  ASSERT_EQ(api.INTISAM(10, 64, 16), 0);
}

}  // namespace
