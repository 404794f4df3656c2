// Tests of ConnectionSetup: the connection from a form file, with command-line settings over it.
#include "ConnectionSetup.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "ToolError.h"

namespace ctt {
namespace {

namespace fs = std::filesystem;

class ConnectionSetupTest : public ::testing::Test {
 protected:
  void SetUp() override {
    form = fs::temp_directory_path() / ("ctt_form_" + std::to_string(::getpid()) + "_" +
                                       ::testing::UnitTest::GetInstance()->current_test_info()->name() + ".dfm");
  }
  void TearDown() override { fs::remove(form); }

  ConnectionOptions WithForm(const std::string& text) {
    std::ofstream(form) << text;
    ConnectionOptions options;
    options.FormFile = form.string();
    return options;
  }
  ErrorReport Failure(const ConnectionOptions& options) {
    try {
      ConnectionSetup setup(options);
    } catch (...) {
      return DescribeException(std::current_exception());
    }
    return {"(no error)", kExitOk};
  }

  fs::path form;
};

TEST_F(ConnectionSetupTest, WithoutAFormTheDefaultsHoldUnlessGiven) {
  ConnectionOptions options;
  options.MaxFiles = 77;
  options.DataExt = ".dat";
  options.SuperFileExt = "x.dsf";
  ConnectionSetup setup(options);
  const Ctdb::TCTConnection& c = setup.Connection();
  EXPECT_EQ(c.MaxFiles(), 77);
  EXPECT_EQ(c.DataExt(), "dat");
  EXPECT_EQ(c.SuperFileExt(), "xdsf");
  EXPECT_EQ(c.MaxBuffers(), 100);
  EXPECT_EQ(c.Alignment(), CTDbIntf::laByte);
  EXPECT_FALSE(c.Active());
}

TEST_F(ConnectionSetupTest, TheFormGivesSettingsAndTheCommandLineWins) {
  ConnectionOptions options = WithForm(
      "object Conn: TCTConnection\n"
      "  Alignment = laWord\n"
      "  MaxFiles = 20\n"
      "  ServerName = 'server'\n"
      "  IndexExt = '.idx'\n"
      "end\n");
  options.MaxFiles = 30;
  options.UserName = "admin";
  ConnectionSetup setup(options);
  const Ctdb::TCTConnection& c = setup.Connection();
  EXPECT_EQ(c.Name(), "Conn");
  EXPECT_EQ(c.Alignment(), CTDbIntf::laWord);
  EXPECT_EQ(c.MaxFiles(), 30);
  EXPECT_EQ(c.ServerName(), "server");
  EXPECT_EQ(c.IndexExt(), "idx");
  EXPECT_EQ(c.UserName(), "admin");
}

TEST_F(ConnectionSetupTest, ANamedConnectionIsFoundAmongTheRootsComponents) {
  const char* text =
      "object Main: TCTConnection\n"
      "  MaxFiles = 11\n"
      "  object Other: TCTConnection\n"
      "    MaxFiles = 22\n"
      "  end\n"
      "end\n";
  ConnectionOptions options = WithForm(text);
  options.FormComponent = "other";
  EXPECT_EQ(ConnectionSetup(options).Connection().MaxFiles(), 22);
  options.FormComponent = "";
  EXPECT_EQ(ConnectionSetup(options).Connection().MaxFiles(), 11);
  options.FormComponent = "Third";
  const ErrorReport missing = Failure(options);
  EXPECT_EQ(missing.Code, kExitUsage);
  EXPECT_EQ(missing.Message, "form file " + form.string() + " has no component named 'Third'");
}

TEST_F(ConnectionSetupTest, AnActiveFormConnectionIsDeactivatedBeforeTheSettings) {
  ConnectionOptions options = WithForm("object Conn: TCTConnection\n  Active = True\nend\n");
  options.Alignment = CTDbIntf::laDWord;
  options.MaxSectors = 8;
  ConnectionSetup setup(options);
  EXPECT_FALSE(setup.Connection().Active());
  EXPECT_EQ(setup.Connection().Alignment(), CTDbIntf::laDWord);
  EXPECT_EQ(setup.Connection().MaxSectors(), 8);
}

TEST_F(ConnectionSetupTest, BadFormFilesAreFileErrors) {
  ConnectionOptions options;
  options.FormFile = (fs::temp_directory_path() / "ctt_no_such_form.dfm").string();
  EXPECT_EQ(Failure(options).Code, kExitFile);

  const ErrorReport parse = Failure(WithForm("object Conn: TCTConnection\n  MaxFiles = \nend\n"));
  EXPECT_EQ(parse.Code, kExitFile);
  EXPECT_EQ(parse.Message.rfind("form file " + form.string() + ": Line ", 0), 0u) << parse.Message;

  EXPECT_EQ(Failure(WithForm("object X: TNoSuchClass\nend\n")).Code, kExitFile);
  EXPECT_EQ(Failure(WithForm("object Conn: TCTConnection\n  Colour = 3\nend\n")).Code, kExitFile);
}

}  // namespace
}  // namespace ctt
