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

  // What one wrapper call gave: the entry point the second stand-in saw last, and the result
  // (it returns 22 from every entry point, whatever its result type).
  struct Reached {
    template <class R>
    Reached(const char* expected, R result) : Expected(expected), Seen(LastCall(laDWord)) {
      if constexpr (std::is_pointer_v<R>)
        Result = reinterpret_cast<std::intptr_t>(result);
      else
        Result = static_cast<std::int64_t>(result);
    }
    std::string Expected, Seen;
    std::int64_t Result = 0;
  };
};

// Every wrapper called with laByte, in order: each row notes the entry point the second library
// saw last and the result, as the call returns.
TEST_F(WrappersTest, EveryWrapperCallsItsEntryPointInTheLastLoadedLibrary) {
  const Reached calls[] = {
      {"TMPNAME", GetCtTempFileName(laByte, {}, {})}, {"INTISAM", InitIsam(laByte, {}, {}, {})},
      {"OPNISAM", OpenISAM(laByte, {})}, {"CLISAM", CloseISAM(laByte)}, {"LKISAM", LockISAM(laByte, {})},
      {"CLSICON", CloseISAMContext(laByte, {})}, {"OPNICON", OpenISAMContext(laByte, {}, {}, {})},
      {"CHGICON", ChangeISAMContext(laByte, {})}, {"BATSET", DoBatch(laByte, {}, {}, {}, {}, {})},
      {"LOKREC", LockCtData(laByte, {}, {}, {})}, {"ViewCtreeError", ViewCTreeError(laByte, {})},
      {"SERIALNUM", GetSerialNbr(laByte, {})}, {"IOPERFORMANCE", IOPERFORMANCE(laByte, {})},
      {"TRANBEG", TranBegin(laByte, {})}, {"TRANABT", TranAbort(laByte)},
      {"TRANABTX", TranAbortXtd(laByte, {})}, {"TRANEND", TranCommit(laByte, {})},
      {"TRANCLR", TranClear(laByte)}, {"TRANSAV", TranSave(laByte)}, {"TRANRST", TranRestore(laByte, {})},
      {"INTISAMX", InitISAMXtd(laByte, {}, {}, {}, {}, {}, {}, {}, {})},
      {"INTREE", InitCTree(laByte, {}, {}, {})},
      {"INTREEX", InitCTreeXtd(laByte, {}, {}, {}, {}, {}, {}, {}, {})},
      {"STPSRV", StopServer(laByte, {}, {}, {})}, {"STPUSR", StopUser(laByte)},
      {"SECURITY", Security(laByte, {}, {}, {}, {})}, {"SETOPS", SetOperationState(laByte, {}, {})},
      {"SYSMON", SystemMonitor(laByte, {}, {}, {}, {})}, {"ALCBAT", AllocateBatch(laByte, {})},
      {"CHGBAT", ChangeBatch(laByte, {})}, {"FREBAT", FreeBatch(laByte)}, {"ALCSET", AllocateSet(laByte, {})},
      {"CHGSET", ChangeSet(laByte, {})}, {"FRESET", FreeSet(laByte)}, {"SETNODE", SetNodeName(laByte, {})},
      {"CHGHST", ChangeHistory(laByte, {})}, {"FREHST", FreeHistory(laByte)},
      {"CTHIST", TransactionHistory(laByte, {}, {}, {}, {}, {}, {})},
      {"SYSCFG", SystemConfiguration(laByte, {})}, {"IOPERFORMANCEX", IOPERFORMANCEX(laByte, {})},
      {"SETLOGPATH", SETLOGPATH(laByte, {}, {})}, {"OPNRFIL", OpenFileWithResources(laByte, {}, {}, {})},
      {"CLRFIL", CloseRFile(laByte, {})}, {"DELRFIL", DeleteRFile(laByte, {})},
      {"CREIFIL", CreateIFile(laByte, {})}, {"GETIFIL", GetIFile(laByte, {}, {}, {})},
      {"PUTIFIL", PutIFile(laByte, {})}, {"PRMIIDX", PermIIndex(laByte, {})},
      {"CMPIFIL", CompactIFile(laByte, {})}, {"RBLIFIL", RebuildIFile(laByte, {})},
      {"OPNFIL", OpenCtFile(laByte, {}, {}, {})}, {"CREDAT", CreateDataFile(laByte, {}, {}, {}, {}, {})},
      {"AVLFILNUM", AvailableFileNbr(laByte, {})}, {"PUTFIL", UpdateFileMode(laByte, {}, {})},
      {"GETDODA", GetDODA(laByte, {}, {}, {}, {})}, {"PUTDODA", PutDODA(laByte, {}, {}, {})},
      {"CLSFIL", CloseCtFile(laByte, {}, {})}, {"GETFIL", GetCtFileInfo(laByte, {}, {})},
      {"CMPIFILX", CompactIFileXtd(laByte, {}, {}, {}, {}, {}, {})},
      {"CREDATX", CreateDataFileXtd(laByte, {}, {}, {}, {}, {}, {}, {}, {})},
      {"OPNFILX", OpenCtFileXtd(laByte, {}, {}, {}, {})},
      {"RBLIFILX", RebuildIFileXtd(laByte, {}, {}, {}, {}, {}, {})},
      {"OPNRFILX", OpenFileWithResourceXtd(laByte, {}, {}, {}, {})},
      {"CREIFILX", CreateIFileXtd(laByte, {}, {}, {}, {}, {}, {})}, {"CLIFIL", CloseIFIle(laByte, {})},
      {"CREIDX", CreateIndexFile(laByte, {}, {}, {}, {}, {}, {}, {}, {})},
      {"CREIDXX", CreateIndexFileXtd(laByte, {}, {}, {}, {}, {}, {}, {}, {}, {}, {}, {})},
      {"CREMEM", CreateIndexMember(laByte, {}, {}, {}, {}, {})}, {"CREISAM", CreateISAM(laByte, {})},
      {"CREISAMX", CreateISAMXtd(laByte, {}, {}, {}, {}, {}, {}, {}, {})}, {"DELFIL", DeleteCtFile(laByte, {})},
      {"DELIFIL", DeleteIFile(laByte, {})}, {"OPNIFIL", OpenIFile(laByte, {})},
      {"OPNIFILX", OpenIFileXtd(laByte, {}, {}, {}, {})}, {"PUTIFILX", PutIFileXtd(laByte, {}, {}, {}, {})},
      {"GETNAM", GetSymbolicNames(laByte, {}, {}, {}, {})},
      {"GETMNAME", GetSuperFileNames(laByte, {}, {}, {}, {})},
      {"TMPIIDXX", TempIIndexXtd(laByte, {}, {}, {}, {})}, {"CTSBLDX", SuperfilePrePassXtd(laByte, {}, {})},
      {"ADDRES", AddCtResource(laByte, {}, {}, {})}, {"DELRES", DeleteCtResource(laByte, {}, {})},
      {"ENARES", EnableCtResource(laByte, {})}, {"GETRES", GetCtResource(laByte, {}, {}, {}, {}, {})},
      {"UPDRES", UpdateCtResource(laByte, {}, {}, {})}, {"GETALTSEQ", GetAltSequence(laByte, {}, {})},
      {"SETALTSEQ", SetAlternateSequence(laByte, {}, {})}, {"PUTHDR", UpdateHeader(laByte, {}, {}, {})},
      {"SETVARBYTS", SetVariableBytes(laByte, {}, {})}, {"GETCIDX", GetConditionalIndex(laByte, {}, {}, {})},
      {"UPDCIDX", UpdateConditionalIndex(laByte, {}, {})}, {"ctRENFIL", RenameFile(laByte, {}, {})},
      {"setimap", SetIndexMap(laByte, {}, {}, {}, {})}, {"SETCURI", SetRecord(laByte, {}, {}, {}, {})},
      {"GETCURP", CurrentFileOffset(laByte, {})}, {"UPDCURI", ResetRecord(laByte, {}, {})},
      {"ADDREC", AddRecord(laByte, {}, {})}, {"ADDVREC", AddVRecord(laByte, {}, {}, {})},
      {"RWTREC", ReWriteRecord(laByte, {}, {})}, {"RWTVREC", ReWriteVRecord(laByte, {}, {}, {})},
      {"DELREC", DeleteRecord(laByte, {})}, {"DELVREC", DeleteVRecord(laByte, {})},
      {"REDIREC", ReadISAMData(laByte, {}, {}, {})}, {"REDVREC", ReReadVRecord(laByte, {}, {}, {})},
      {"RRDREC", ReReadRecord(laByte, {}, {})}, {"FRSSET", FirstInSet(laByte, {}, {}, {}, {})},
      {"NXTSET", NextInSet(laByte, {}, {})}, {"LSTSET", LastInSet(laByte, {}, {}, {}, {})},
      {"GETVLEN", VRecordLength(laByte, {})}, {"GETCURK", CurrentISAMKey(laByte, {}, {}, {})},
      {"EQLREC", GetRecord(laByte, {}, {}, {})}, {"GTEREC", GetGTERecord(laByte, {}, {}, {})},
      {"GTREC", GetGTRecord(laByte, {}, {}, {})}, {"LTEREC", GetLTERecord(laByte, {}, {}, {})},
      {"LTREC", GetLTRecord(laByte, {}, {}, {})}, {"FRSREC", FirstRecord(laByte, {}, {})},
      {"NXTREC", NextRecord(laByte, {}, {})}, {"PRVREC", PreviousRecord(laByte, {}, {})},
      {"LSTREC", LastRecord(laByte, {}, {})}, {"DATENT", NbrOfRecords(laByte, {})},
      {"IDXENT", NbrOfKeyEntries(laByte, {})}, {"GETCURKL", CurrentLowLevelKey(laByte, {}, {})},
      {"frmkey", BuildKey(laByte, {}, {}, {}, {}, {})}, {"REDREC", ReadData(laByte, {}, {}, {})},
      {"EQLKEY", GetKey(laByte, {}, {})}, {"GTEKEY", GetGTEKey(laByte, {}, {}, {})},
      {"GTKEY", GetGTKey(laByte, {}, {}, {})}, {"LTEKEY", GetLTEKey(laByte, {}, {}, {})},
      {"LTKEY", GetLTKey(laByte, {}, {}, {})}, {"FRSKEY", FirstKey(laByte, {}, {})},
      {"FRCKEY", KeyAtPercentile(laByte, {}, {}, {})}, {"ESTKEY", EstimateKeySpan(laByte, {}, {}, {})},
      {"RNGENT", NbrOfKeysInRange(laByte, {}, {}, {})}, {"ORDKEY", GetORDKey(laByte, {}, {}, {}, {})},
      {"MIDSET", PositionSet(laByte, {}, {}, {})}, {"PRVSET", PreviousInSet(laByte, {}, {})},
      {"ADDKEY", AddKey(laByte, {}, {}, {}, {})}, {"LOADKEY", LoadKey(laByte, {}, {}, {}, {})},
      {"NXTKEY", NextKey(laByte, {}, {})}, {"LSTKEY", LastKey(laByte, {}, {})},
      {"PRVKEY", PreviousKey(laByte, {}, {})}, {"TFRMKEY", TransformKey(laByte, {}, {})},
      {"DELCHK", DeleteKey(laByte, {}, {}, {})}, {"DELBLD", DeleteKeyBlind(laByte, {}, {})},
      {"GTVLEN", VDataLength(laByte, {}, {})}, {"NEWREC", NewData(laByte, {})},
      {"NEWVREC", NewVData(laByte, {}, {})}, {"RDVREC", ReadVData(laByte, {}, {}, {}, {})},
      {"RETREC", ReleaseData(laByte, {}, {})}, {"RETVREC", ReleaseVData(laByte, {}, {})},
      {"WRTREC", WriteData(laByte, {}, {}, {})}, {"WRTVREC", WriteVData(laByte, {}, {}, {}, {})},
      {"FRSVSET", FirstInVSet(laByte, {}, {}, {}, {}, {})}, {"LSTVSET", LastInVSet(laByte, {}, {}, {}, {}, {})},
      {"NXTVSET", NextInVSet(laByte, {}, {}, {})}, {"PRVVSET", PreviousInVSet(laByte, {}, {}, {})},
      {"MIDVSET", PositionVSet(laByte, {}, {}, {}, {})}, {"FRSVREC", FirstVRecord(laByte, {}, {}, {})},
      {"GTEVREC", GetGTEVRecord(laByte, {}, {}, {}, {})}, {"GTVREC", GetGTVRecord(laByte, {}, {}, {}, {})},
      {"LTEVREC", GetLTEVRecord(laByte, {}, {}, {}, {})}, {"LTVREC", GetLTVRecord(laByte, {}, {}, {}, {})},
      {"EQLVREC", GetVRecord(laByte, {}, {}, {}, {})}, {"LSTVREC", LastVRecord(laByte, {}, {}, {})},
      {"NXTVREC", NextVRecord(laByte, {}, {}, {})}, {"PRVVREC", PreviousVRecord(laByte, {}, {}, {})},
      {"REDIVREC", ReadIsamVData(laByte, {}, {}, {}, {})}};
  for (const Reached& call : calls) {
    EXPECT_EQ(call.Seen, call.Expected) << "the wrapper of " << call.Expected << " called another entry point";
    EXPECT_EQ(call.Result, 22) << call.Expected;
  }
  EXPECT_EQ(LastCall(laByte), "") << "a wrapper reached the first library";
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
