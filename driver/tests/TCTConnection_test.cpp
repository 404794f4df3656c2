// TCTConnection life cycle and configuration: published properties, form streaming, activation,
// guarded setters, extension and path rules, and the c-tree path helpers.
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <regex>

#include "CtMessages.h"
#include "DriverTestSupport.h"
#include "StringUtils.h"
#include "TClassInfo.h"
#include "TDataSet.h"
#include "TReader.h"

namespace Ctdb::testing {
namespace {

// Reads, while the form is being read, whether the connection named by `Watch` is active.
class TActiveProbe : public fw::TComponent {
 public:
  using fw::TComponent::TComponent;
  static const fw::TClassInfo& StaticClass() {
    static const fw::TClassInfo info = fw::TClassBuilder<TActiveProbe>("TActiveProbe", &fw::TComponent::StaticClass())
                                           .Creatable()
                                           .Property("Watch", &TActiveProbe::Watch, &TActiveProbe::SetWatch)
                                           .Build();
    return info;
  }
  const fw::TClassInfo& ClassType() const override { return StaticClass(); }
  std::string Watch() const { return FWatch; }
  void SetWatch(const std::string& name) {
    FWatch = name;
    auto* conn = dynamic_cast<TCTConnection*>(Owner()->FindComponent(name));
    SawActive = conn != nullptr && conn->Active();
    SawConnection = conn != nullptr;
  }
  bool SawActive = true;
  bool SawConnection = false;

 private:
  std::string FWatch;
};

// A dataset that registers with a connection while open, as the table datasets do, and notes
// the order in which it is closed.
class TStandInTable : public fw::TDataSet {
 public:
  TStandInTable(TCTConnection* connection, std::string tag, std::vector<std::string>& closed)
      : fw::TDataSet(nullptr), FConnection(connection), FTag(std::move(tag)), FClosed(closed) {}
  ~TStandInTable() override { Close(); }

 protected:
  fw::TGetResult GetRecord(fw::TRecordBuffer, fw::TGetMode, bool) override { return fw::grEOF; }
  void InternalOpen() override {
    FOpen = true;
    FConnection->AddDataSet(this);
  }
  void InternalClose() override {
    FClosed.push_back(FTag);
    FConnection->RemoveDataSet(this);
    FOpen = false;
  }
  void InternalInitFieldDefs() override {}
  bool IsCursorOpen() const override { return FOpen; }

 private:
  TCTConnection* FConnection;
  std::string FTag;
  std::vector<std::string>& FClosed;
  bool FOpen = false;
};

using ConnectionTest = DriverTest;

TEST_F(ConnectionTest, AFormConfiguresTheConnectionAndActivatesItOnlyInLoaded) {
  fw::RegisterClass(TActiveProbe::StaticClass());
  fw::TComponentPtr<fw::TComponent> form(new fw::TComponent(nullptr));
  fw::ReadComponentText(R"(
object Form1: TComponent
  object Conn1: TCTConnection
    Active = True
    Alignment = laWord
    MaxFiles = 77
    UserName = 'admin'
    EmptyChar = '*'
    DataExt = '.dat'
    SuperFileExt = 'x.dsf'
  end
  object Probe1: TActiveProbe
    Watch = 'Conn1'
  end
end
)",
                        form.get());
  auto* conn = dynamic_cast<TCTConnection*>(form->FindComponent("Conn1"));
  auto* probe = dynamic_cast<TActiveProbe*>(form->FindComponent("Probe1"));
  ASSERT_NE(conn, nullptr);
  ASSERT_NE(probe, nullptr);
  EXPECT_TRUE(probe->SawConnection);
  EXPECT_FALSE(probe->SawActive) << "the connection must not open while the form is read";
  EXPECT_TRUE(conn->Active());
  EXPECT_EQ(conn->Alignment(), CTDbIntf::laWord);
  EXPECT_EQ(conn->MaxFiles(), 77);
  EXPECT_EQ(conn->UserName(), "admin");
  EXPECT_EQ(conn->EmptyChar(), '*');
  EXPECT_EQ(conn->DataExt(), "dat");
  EXPECT_EQ(conn->SuperFileExt(), "xdsf");
  form.reset();  // the owner frees the connection, which ends the session
  EXPECT_EQ(CTDbIntf::AvailableFileNbr(CTDbIntf::laWord, 1), -1) << "no session any more";
}

TEST_F(ConnectionTest, ActivatingTwiceOrASecondConnectionKeepsTheSessionAndItsFiles) {
  Activate();
  const std::string path = MakeTable("kept", {{"a", CT_INT4, 4}}, {});
  int16_t fileNo = -1;
  ASSERT_EQ(Conn->OpenTableFiles(path, SHARED, fileNo), 0);
  Conn->SetActive(true);
  EXPECT_TRUE(Conn->Active());
  EXPECT_EQ(CTDbIntf::GetCtFileInfo(Conn->Alignment(), fileNo, RECLEN), 4) << "the file is still open";
  {
    fw::TComponentPtr<TCTConnection> second(new TCTConnection(nullptr));
    second->SetActive(true);  // a second connection shares the session: the engine's 125 is accepted
    EXPECT_TRUE(second->Active());
  }
  Conn->SetActive(false);
  EXPECT_FALSE(Conn->Active());
  Conn->SetActive(false);
  EXPECT_FALSE(Conn->Active());
}

TEST_F(ConnectionTest, DeactivationClosesTheOpenDatasetsLastOpenedFirst) {
  Activate();
  std::vector<std::string> closed;
  TStandInTable first(Conn.get(), "first", closed);
  TStandInTable second(Conn.get(), "second", closed);
  TStandInTable third(Conn.get(), "third", closed);
  first.Open();
  third.Open();
  second.Open();
  ASSERT_EQ(Conn->DataSetCount(), 3);
  EXPECT_EQ(Conn->DataSets(2), &second);
  Conn->SetActive(false);
  EXPECT_EQ(closed, (std::vector<std::string>{"second", "third", "first"}));
  EXPECT_EQ(Conn->DataSetCount(), 0);
  EXPECT_FALSE(first.Active());
  EXPECT_FALSE(second.Active());

  // Going away, the connection closes what is still open on it.
  Activate();
  first.Open();
  Conn.reset();
  EXPECT_FALSE(first.Active());
  EXPECT_EQ(closed.back(), "first");
}

TEST_F(ConnectionTest, AnAbsentServerLeavesTheConnectionInactiveAndSomeSettingsAreGuarded) {
  Conn->SetServerName("LARKHOLLOW");
  EXPECT_EQ(Raised([&] { Conn->SetActive(true); }).ErrorCode, 133);
  EXPECT_FALSE(Conn->Active());
  Conn->SetServerName("");
  Activate();
  auto raisesPlainException = [](auto&& action) {
    try {
      action();
    } catch (const CTDbIntf::ECtreeException&) {
      return false;
    } catch (const fw::Exception& e) {
      return std::string(e.what()) == "Not while connection is active";
    }
    return false;
  };
  EXPECT_TRUE(raisesPlainException([&] { Conn->SetMaxFiles(10); }));
  EXPECT_TRUE(raisesPlainException([&] { Conn->SetMaxSectors(10); }));
  EXPECT_EQ(Conn->MaxFiles(), 50);
  const CTDbIntf::ECtreeException e = Raised([&] { Conn->SetLoadAlignment(CTDbIntf::laDWord); });
  EXPECT_EQ(e.ErrorCode, 0);
  EXPECT_EQ(e.Message(), "Can not change alignment while active");
  EXPECT_EQ(Conn->Alignment(), CTDbIntf::laByte);
  Conn->SetMaxBuffers(7);
  Conn->SetUserName("someone");
  Conn->SetDataDir("/tmp");
  EXPECT_EQ(Conn->MaxBuffers(), 7);
  Conn->SetActive(false);
  Conn->SetMaxFiles(10);
  EXPECT_EQ(Conn->MaxFiles(), 10);
}

TEST_F(ConnectionTest, ExtensionsLoseTheirDotByTwoRulesAndFullPathsTakeTheDataOne) {
  // Data and index extensions keep what follows their first dot; the superfile's drops every dot.
  const auto data = [&](const char* ext) { Conn->SetDataExt(ext); return Conn->DataExt(); };
  const auto index = [&](const char* ext) { Conn->SetIndexExt(ext); return Conn->IndexExt(); };
  const auto super = [&](const char* ext) { Conn->SetSuperFileExt(ext); return Conn->SuperFileExt(); };
  EXPECT_EQ(data(".DAT"), "DAT");
  EXPECT_EQ(data("x.dat"), "dat");
  EXPECT_EQ(index("a.b.idx"), "b.idx");
  EXPECT_EQ(index("idx"), "idx");
  EXPECT_EQ(super(".dsf"), "dsf");
  EXPECT_EQ(super("a.b"), "ab");
  EXPECT_EQ(super("x.dsf"), "xdsf");

  // Full paths join directory, name and data extension.
  Conn->SetDataExt("dat");
  EXPECT_EQ(Conn->BuildFullPath(Dir.Path(), "cust"), Dir.Path() + "/custdat");
  EXPECT_EQ(Conn->BuildFullPath(Dir.Path() + "/", "cust"), Dir.Path() + "/custdat");
  EXPECT_EQ(Conn->BuildFullPath("/", "cust"), "/custdat");
  EXPECT_EQ(Conn->BuildFullPath(Dir.File("missing"), "cust"), "custdat") << "a missing local directory is dropped";
  EXPECT_EQ(Conn->BuildFullPath("", "cust.tbl"), "cust.tbl");
  EXPECT_EQ(Conn->BuildFullPath(Dir.Path(), "cust.tbl"), Dir.Path() + "/cust.tbl");

  const std::string dotted = Conn->BuildFullPath(Dir.Path(), "cust.");
  EXPECT_EQ(dotted.size(), Dir.Path().size() + 6);
  EXPECT_EQ(dotted.back(), '\0') << "the final dot is overwritten in place";
  EXPECT_STREQ(dotted.c_str(), (Dir.Path() + "/cust").c_str());

  Conn->SetServerName("remote");
  EXPECT_EQ(Conn->BuildFullPath("missing", "cust"), "missing/custdat") << "a server's directory is not checked";
}

TEST_F(ConnectionTest, ChangeToFileDirMovesOnlyWithoutAServer) {
  std::filesystem::create_directory(Dir.File("sub"));
  std::string oldDir;
  const std::string start = fw::GetCurrentDir();
  Conn->ChangeToFileDir(Dir.File("sub/table.dat"), oldDir);
  EXPECT_EQ(oldDir, start);
  EXPECT_EQ(fw::GetCurrentDir(), std::filesystem::canonical(Dir.File("sub")).string());
  Conn->ChangeToFileDir("/table.dat", oldDir);
  EXPECT_EQ(fw::GetCurrentDir(), "/") << "the root keeps its separator";
  Conn->ChangeToFileDir("table.dat", oldDir);
  EXPECT_EQ(fw::GetCurrentDir(), "/") << "a bare name stays in the current directory";

  Conn->SetServerName("remote");
  Conn->ChangeToFileDir(Dir.File("sub/table.dat"), oldDir);
  EXPECT_EQ(oldDir, "/");
  EXPECT_EQ(fw::GetCurrentDir(), "/");
  Conn->SetServerName("");
  EXPECT_THROW(Conn->ChangeToFileDir(Dir.File("nowhere/table.dat"), oldDir), fw::Exception);
}

TEST_F(ConnectionTest, TemporaryAndSymbolicNamesComeFromCTree) {
  Activate();
  const std::string path = MakeTable("named", {{"a", CT_INT4, 4}}, {});
  auto cursor = OpenTable(path);
  ASSERT_TRUE(cursor);
  const std::string start = fw::GetCurrentDir();
  const std::string temp = Conn->GetTempFileName(cursor.get());
  EXPECT_FALSE(temp.empty());
  EXPECT_EQ(fw::GetCurrentDir(), start) << "the current directory is restored";
  EXPECT_FALSE(std::filesystem::exists(Dir.File(fw::ExtractFileName(temp))));
  EXPECT_TRUE(Conn->GetTempFileName(nullptr).empty());

  std::string name;
  EXPECT_EQ(Conn->GetSymbFileName(cursor->DataFileNo, name), 0);
  EXPECT_EQ(name, path);
  EXPECT_NE(Conn->GetSymbFileName(999, name), 0);
  EXPECT_TRUE(name.empty());
  CloseTable(cursor);
}

// Reads every "kCtName = number," of the header that lists the driver's result numbers, so that
// a number added there without a message row fails here.
TEST(DriverNumbersTest, EveryResultNumberOfTheDriverHasAMessage) {
  std::ifstream header(CTDBTYPES_HEADER);
  ASSERT_TRUE(header.is_open()) << CTDBTYPES_HEADER;
  const std::regex entry(R"(^\s*(kCt\w+) = (\d+),)");
  int found = 0;
  for (std::string line; std::getline(header, line);) {
    std::smatch m;
    if (!std::regex_search(line, m, entry)) continue;
    ++found;
    EXPECT_TRUE(CTDbIntf::CtMessage(CTDbIntf::kMessageBase + std::stoi(m[2])).has_value()) << m[1];
  }
  EXPECT_GE(found, 14);
}

}  // namespace
}  // namespace Ctdb::testing
