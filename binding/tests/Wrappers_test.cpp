// Tests that every call wrapper reaches its own entry point, through the shared table.
#include <cstdint>
#include <type_traits>

#include "BindingFixture.h"

namespace CTDbIntf::testing {
namespace {

class WrappersTest : public BindingTest {
 protected:
  // Loads the first stand-in as laByte, then the second as laDWord: every wrapper, called with
  // laByte, must now reach the second library.
  void SetUp() override {
    BindingTest::SetUp();
    LibraryNames[laByte] = FAKE_FIRST;
    LibraryNames[laDWord] = FAKE_SECOND;
    LoadCTreeDLL(laByte);
    LoadCTreeDLL(laDWord);
  }

  void ExpectReached(const char* entryPoint) {
    EXPECT_EQ(LastCall(laDWord), entryPoint);
    EXPECT_EQ(LastCall(laByte), "") << entryPoint << " reached the first library";
  }

  // The second stand-in returns 22 from every entry point, whatever its result type.
  template <class R>
  void ExpectReached(const char* entryPoint, R result) {
    ExpectReached(entryPoint);
    if constexpr (std::is_pointer_v<R>)
      EXPECT_EQ(reinterpret_cast<std::intptr_t>(result), 22) << entryPoint;
    else
      EXPECT_EQ(static_cast<std::int64_t>(result), 22) << entryPoint;
  }
};

TEST_F(WrappersTest, EveryWrapperCallsItsEntryPointInTheLastLoadedLibrary) {
  ExpectReached("TMPNAME", GetCtTempFileName(laByte, {}, {}));
  ExpectReached("INTISAM", InitIsam(laByte, {}, {}, {}));
  ExpectReached("OPNISAM", OpenISAM(laByte, {}));
  ExpectReached("CLISAM", CloseISAM(laByte));
  ExpectReached("LKISAM", LockISAM(laByte, {}));
  ExpectReached("CLSICON", CloseISAMContext(laByte, {}));
  ExpectReached("OPNICON", OpenISAMContext(laByte, {}, {}, {}));
  ExpectReached("CHGICON", ChangeISAMContext(laByte, {}));
  ExpectReached("BATSET", DoBatch(laByte, {}, {}, {}, {}, {}));
  ExpectReached("LOKREC", LockCtData(laByte, {}, {}, {}));
  ExpectReached("ViewCtreeError", ViewCTreeError(laByte, {}));
  ExpectReached("SERIALNUM", GetSerialNbr(laByte, {}));
  ExpectReached("IOPERFORMANCE", IOPERFORMANCE(laByte, {}));
  ExpectReached("TRANBEG", TranBegin(laByte, {}));
  ExpectReached("TRANABT", TranAbort(laByte));
  ExpectReached("TRANABTX", TranAbortXtd(laByte, {}));
  ExpectReached("TRANEND", TranCommit(laByte, {}));
  ExpectReached("TRANCLR", TranClear(laByte));
  ExpectReached("TRANSAV", TranSave(laByte));
  ExpectReached("TRANRST", TranRestore(laByte, {}));
  ExpectReached("INTISAMX", InitISAMXtd(laByte, {}, {}, {}, {}, {}, {}, {}, {}));
  ExpectReached("INTREE", InitCTree(laByte, {}, {}, {}));
  ExpectReached("INTREEX", InitCTreeXtd(laByte, {}, {}, {}, {}, {}, {}, {}, {}));
  ExpectReached("STPSRV", StopServer(laByte, {}, {}, {}));
  ExpectReached("STPUSR", StopUser(laByte));
  ExpectReached("SECURITY", Security(laByte, {}, {}, {}, {}));
  ExpectReached("SETOPS", SetOperationState(laByte, {}, {}));
  ExpectReached("SYSMON", SystemMonitor(laByte, {}, {}, {}, {}));
  ExpectReached("ALCBAT", AllocateBatch(laByte, {}));
  ExpectReached("CHGBAT", ChangeBatch(laByte, {}));
  ExpectReached("FREBAT", FreeBatch(laByte));
  ExpectReached("ALCSET", AllocateSet(laByte, {}));
  ExpectReached("CHGSET", ChangeSet(laByte, {}));
  ExpectReached("FRESET", FreeSet(laByte));
  ExpectReached("SETNODE", SetNodeName(laByte, {}));
  ExpectReached("CHGHST", ChangeHistory(laByte, {}));
  ExpectReached("FREHST", FreeHistory(laByte));
  ExpectReached("CTHIST", TransactionHistory(laByte, {}, {}, {}, {}, {}, {}));
  ExpectReached("SYSCFG", SystemConfiguration(laByte, {}));
  ExpectReached("IOPERFORMANCEX", IOPERFORMANCEX(laByte, {}));
  ExpectReached("SETLOGPATH", SETLOGPATH(laByte, {}, {}));
  ExpectReached("OPNRFIL", OpenFileWithResources(laByte, {}, {}, {}));
  ExpectReached("CLRFIL", CloseRFile(laByte, {}));
  ExpectReached("DELRFIL", DeleteRFile(laByte, {}));
  ExpectReached("CREIFIL", CreateIFile(laByte, {}));
  ExpectReached("GETIFIL", GetIFile(laByte, {}, {}, {}));
  ExpectReached("PUTIFIL", PutIFile(laByte, {}));
  ExpectReached("PRMIIDX", PermIIndex(laByte, {}));
  ExpectReached("CMPIFIL", CompactIFile(laByte, {}));
  ExpectReached("RBLIFIL", RebuildIFile(laByte, {}));
  ExpectReached("OPNFIL", OpenCtFile(laByte, {}, {}, {}));
  ExpectReached("CREDAT", CreateDataFile(laByte, {}, {}, {}, {}, {}));
  ExpectReached("AVLFILNUM", AvailableFileNbr(laByte, {}));
  ExpectReached("PUTFIL", UpdateFileMode(laByte, {}, {}));
  ExpectReached("GETDODA", GetDODA(laByte, {}, {}, {}, {}));
  ExpectReached("PUTDODA", PutDODA(laByte, {}, {}, {}));
  ExpectReached("CLSFIL", CloseCtFile(laByte, {}, {}));
  ExpectReached("GETFIL", GetCtFileInfo(laByte, {}, {}));
  ExpectReached("CMPIFILX", CompactIFileXtd(laByte, {}, {}, {}, {}, {}, {}));
  ExpectReached("CREDATX", CreateDataFileXtd(laByte, {}, {}, {}, {}, {}, {}, {}, {}));
  ExpectReached("OPNFILX", OpenCtFileXtd(laByte, {}, {}, {}, {}));
  ExpectReached("RBLIFILX", RebuildIFileXtd(laByte, {}, {}, {}, {}, {}, {}));
  ExpectReached("OPNRFILX", OpenFileWithResourceXtd(laByte, {}, {}, {}, {}));
  ExpectReached("CREIFILX", CreateIFileXtd(laByte, {}, {}, {}, {}, {}, {}));
  ExpectReached("CLIFIL", CloseIFIle(laByte, {}));
  ExpectReached("CREIDX", CreateIndexFile(laByte, {}, {}, {}, {}, {}, {}, {}, {}));
  ExpectReached("CREIDXX", CreateIndexFileXtd(laByte, {}, {}, {}, {}, {}, {}, {}, {}, {}, {}, {}));
  ExpectReached("CREMEM", CreateIndexMember(laByte, {}, {}, {}, {}, {}));
  ExpectReached("CREISAM", CreateISAM(laByte, {}));
  ExpectReached("CREISAMX", CreateISAMXtd(laByte, {}, {}, {}, {}, {}, {}, {}, {}));
  ExpectReached("DELFIL", DeleteCtFile(laByte, {}));
  ExpectReached("DELIFIL", DeleteIFile(laByte, {}));
  ExpectReached("OPNIFIL", OpenIFile(laByte, {}));
  ExpectReached("OPNIFILX", OpenIFileXtd(laByte, {}, {}, {}, {}));
  ExpectReached("PUTIFILX", PutIFileXtd(laByte, {}, {}, {}, {}));
  ExpectReached("GETNAM", GetSymbolicNames(laByte, {}, {}, {}, {}));
  ExpectReached("GETMNAME", GetSuperFileNames(laByte, {}, {}, {}, {}));
  ExpectReached("TMPIIDXX", TempIIndexXtd(laByte, {}, {}, {}, {}));
  ExpectReached("CTSBLDX", SuperfilePrePassXtd(laByte, {}, {}));
  ExpectReached("ADDRES", AddCtResource(laByte, {}, {}, {}));
  ExpectReached("DELRES", DeleteCtResource(laByte, {}, {}));
  ExpectReached("ENARES", EnableCtResource(laByte, {}));
  ExpectReached("GETRES", GetCtResource(laByte, {}, {}, {}, {}, {}));
  ExpectReached("UPDRES", UpdateCtResource(laByte, {}, {}, {}));
  ExpectReached("GETALTSEQ", GetAltSequence(laByte, {}, {}));
  ExpectReached("SETALTSEQ", SetAlternateSequence(laByte, {}, {}));
  ExpectReached("PUTHDR", UpdateHeader(laByte, {}, {}, {}));
  ExpectReached("SETVARBYTS", SetVariableBytes(laByte, {}, {}));
  ExpectReached("GETCIDX", GetConditionalIndex(laByte, {}, {}, {}));
  ExpectReached("UPDCIDX", UpdateConditionalIndex(laByte, {}, {}));
  ExpectReached("ctRENFIL", RenameFile(laByte, {}, {}));
  ExpectReached("setimap", SetIndexMap(laByte, {}, {}, {}, {}));
  ExpectReached("SETCURI", SetRecord(laByte, {}, {}, {}, {}));
  ExpectReached("GETCURP", CurrentFileOffset(laByte, {}));
  ExpectReached("UPDCURI", ResetRecord(laByte, {}, {}));
  ExpectReached("ADDREC", AddRecord(laByte, {}, {}));
  ExpectReached("ADDVREC", AddVRecord(laByte, {}, {}, {}));
  ExpectReached("RWTREC", ReWriteRecord(laByte, {}, {}));
  ExpectReached("RWTVREC", ReWriteVRecord(laByte, {}, {}, {}));
  ExpectReached("DELREC", DeleteRecord(laByte, {}));
  ExpectReached("DELVREC", DeleteVRecord(laByte, {}));
  ExpectReached("REDIREC", ReadISAMData(laByte, {}, {}, {}));
  ExpectReached("REDVREC", ReReadVRecord(laByte, {}, {}, {}));
  ExpectReached("RRDREC", ReReadRecord(laByte, {}, {}));
  ExpectReached("FRSSET", FirstInSet(laByte, {}, {}, {}, {}));
  ExpectReached("NXTSET", NextInSet(laByte, {}, {}));
  ExpectReached("LSTSET", LastInSet(laByte, {}, {}, {}, {}));
  ExpectReached("GETVLEN", VRecordLength(laByte, {}));
  ExpectReached("GETCURK", CurrentISAMKey(laByte, {}, {}, {}));
  ExpectReached("EQLREC", GetRecord(laByte, {}, {}, {}));
  ExpectReached("GTEREC", GetGTERecord(laByte, {}, {}, {}));
  ExpectReached("GTREC", GetGTRecord(laByte, {}, {}, {}));
  ExpectReached("LTEREC", GetLTERecord(laByte, {}, {}, {}));
  ExpectReached("LTREC", GetLTRecord(laByte, {}, {}, {}));
  ExpectReached("FRSREC", FirstRecord(laByte, {}, {}));
  ExpectReached("NXTREC", NextRecord(laByte, {}, {}));
  ExpectReached("PRVREC", PreviousRecord(laByte, {}, {}));
  ExpectReached("LSTREC", LastRecord(laByte, {}, {}));
  ExpectReached("DATENT", NbrOfRecords(laByte, {}));
  ExpectReached("IDXENT", NbrOfKeyEntries(laByte, {}));
  ExpectReached("GETCURKL", CurrentLowLevelKey(laByte, {}, {}));
  ExpectReached("frmkey", BuildKey(laByte, {}, {}, {}, {}, {}));
  ExpectReached("REDREC", ReadData(laByte, {}, {}, {}));
  ExpectReached("EQLKEY", GetKey(laByte, {}, {}));
  ExpectReached("GTEKEY", GetGTEKey(laByte, {}, {}, {}));
  ExpectReached("GTKEY", GetGTKey(laByte, {}, {}, {}));
  ExpectReached("LTEKEY", GetLTEKey(laByte, {}, {}, {}));
  ExpectReached("LTKEY", GetLTKey(laByte, {}, {}, {}));
  ExpectReached("FRSKEY", FirstKey(laByte, {}, {}));
  ExpectReached("FRCKEY", KeyAtPercentile(laByte, {}, {}, {}));
  ExpectReached("ESTKEY", EstimateKeySpan(laByte, {}, {}, {}));
  ExpectReached("RNGENT", NbrOfKeysInRange(laByte, {}, {}, {}));
  ExpectReached("ORDKEY", GetORDKey(laByte, {}, {}, {}, {}));
  ExpectReached("MIDSET", PositionSet(laByte, {}, {}, {}));
  ExpectReached("PRVSET", PreviousInSet(laByte, {}, {}));
  ExpectReached("ADDKEY", AddKey(laByte, {}, {}, {}, {}));
  ExpectReached("LOADKEY", LoadKey(laByte, {}, {}, {}, {}));
  ExpectReached("NXTKEY", NextKey(laByte, {}, {}));
  ExpectReached("LSTKEY", LastKey(laByte, {}, {}));
  ExpectReached("PRVKEY", PreviousKey(laByte, {}, {}));
  ExpectReached("TFRMKEY", TransformKey(laByte, {}, {}));
  ExpectReached("DELCHK", DeleteKey(laByte, {}, {}, {}));
  ExpectReached("DELBLD", DeleteKeyBlind(laByte, {}, {}));
  ExpectReached("GTVLEN", VDataLength(laByte, {}, {}));
  ExpectReached("NEWREC", NewData(laByte, {}));
  ExpectReached("NEWVREC", NewVData(laByte, {}, {}));
  ExpectReached("RDVREC", ReadVData(laByte, {}, {}, {}, {}));
  ExpectReached("RETREC", ReleaseData(laByte, {}, {}));
  ExpectReached("RETVREC", ReleaseVData(laByte, {}, {}));
  ExpectReached("WRTREC", WriteData(laByte, {}, {}, {}));
  ExpectReached("WRTVREC", WriteVData(laByte, {}, {}, {}, {}));
  ExpectReached("FRSVSET", FirstInVSet(laByte, {}, {}, {}, {}, {}));
  ExpectReached("LSTVSET", LastInVSet(laByte, {}, {}, {}, {}, {}));
  ExpectReached("NXTVSET", NextInVSet(laByte, {}, {}, {}));
  ExpectReached("PRVVSET", PreviousInVSet(laByte, {}, {}, {}));
  ExpectReached("MIDVSET", PositionVSet(laByte, {}, {}, {}, {}));
  ExpectReached("FRSVREC", FirstVRecord(laByte, {}, {}, {}));
  ExpectReached("GTEVREC", GetGTEVRecord(laByte, {}, {}, {}, {}));
  ExpectReached("GTVREC", GetGTVRecord(laByte, {}, {}, {}, {}));
  ExpectReached("LTEVREC", GetLTEVRecord(laByte, {}, {}, {}, {}));
  ExpectReached("LTVREC", GetLTVRecord(laByte, {}, {}, {}, {}));
  ExpectReached("EQLVREC", GetVRecord(laByte, {}, {}, {}, {}));
  ExpectReached("LSTVREC", LastVRecord(laByte, {}, {}, {}));
  ExpectReached("NXTVREC", NextVRecord(laByte, {}, {}, {}));
  ExpectReached("PRVVREC", PreviousVRecord(laByte, {}, {}, {}));
  ExpectReached("REDIVREC", ReadIsamVData(laByte, {}, {}, {}, {}));
}

TEST_F(WrappersTest, ErrorStateReadersPickTheirOwnValue) {
  using SetError = void (*)(std::int16_t, std::int16_t, std::int16_t, std::int16_t);
  auto setError = reinterpret_cast<SetError>(dlsym(Handles[laDWord], "fake_set_ctree_error"));
  ASSERT_NE(setError, nullptr);

  setError(1, 101, 12, 35);
  EXPECT_EQ(GetCtIsamErr(laByte), 101);
  EXPECT_EQ(GetCtUErrCod(laByte), 12);
  EXPECT_EQ(GetCtSysIOCode(laByte), 35);
  EXPECT_EQ(LastCall(laDWord), "GetCtreeError");

  setError(0, 101, 12, 35);
  EXPECT_EQ(GetCtIsamErr(laByte), 0);
  EXPECT_EQ(GetCtUErrCod(laByte), 0);
  EXPECT_EQ(GetCtSysIOCode(laByte), 0);
}

TEST_F(WrappersTest, PerformReachesNoFunctionAndReportsNotSupported) {
  EXPECT_EQ(Perform(laByte, 1), kPerformNotBound);
  EXPECT_EQ(LastCall(laDWord), "");
}

}  // namespace
}  // namespace CTDbIntf::testing
