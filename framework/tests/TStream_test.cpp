// Tests of TStream's buffer loops and copying, TMemoryStream and TFileStream.
#include "TStream.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <string>

#include "Exception.h"
#include "TFileStream.h"
#include "TMemoryStream.h"

using namespace fw;

namespace {

std::string Contents(TMemoryStream& m) { return std::string(static_cast<const char*>(m.Memory()), m.Size()); }

class TempDir : public ::testing::Test {
 protected:
  void SetUp() override {
    FDir = std::filesystem::temp_directory_path() /
           ("fwstream_" + std::to_string(::getpid()) + "_" + ::testing::UnitTest::GetInstance()->current_test_info()->name());
    std::filesystem::create_directories(FDir);
  }
  void TearDown() override { std::filesystem::remove_all(FDir); }
  std::string Path(const char* name) const { return (FDir / name).string(); }
  std::filesystem::path FDir;
};

}  // namespace

TEST(TMemoryStream, ReadWriteSeekAndPositionAndBufferCallsRaiseOnShortTransfers) {
  TMemoryStream m;
  EXPECT_EQ(m.Write("hello", 5), 5);
  EXPECT_EQ(m.Position(), 5);
  EXPECT_EQ(m.Seek(-2, soEnd), 3);
  char buf[8] = {};
  EXPECT_EQ(m.Read(buf, 8), 2);
  EXPECT_STREQ(buf, "lo");
  EXPECT_EQ(m.Read(buf, 8), 0);
  EXPECT_EQ(m.Seek(1, soBeginning), 1);
  EXPECT_EQ(m.Seek(1, soCurrent), 2);
  EXPECT_THROW(m.Seek(-1, soBeginning), EStreamError);
  EXPECT_EQ(m.Position(), 2);
  EXPECT_THROW(m.ReadBuffer(buf, 4), EReadError);
  m.SetPosition(0);
  m.ReadBuffer(buf, 5);
  EXPECT_EQ(std::string(buf, 5), "hello");
}

TEST(TMemoryStream, WritingBeyondTheEndZeroFillsTheGapAndSetSizeKeepsContents) {
  TMemoryStream m;
  m.Write("ab", 2);
  m.SetPosition(10);  // beyond the end: allowed, reading returns nothing
  char c;
  EXPECT_EQ(m.Read(&c, 1), 0);
  EXPECT_EQ(m.Size(), 2);
  m.Write("z", 1);
  EXPECT_EQ(Contents(m), std::string("ab\0\0\0\0\0\0\0\0z", 11));
  m.SetSize(3);
  EXPECT_EQ(m.Position(), 3);  // clamped to the new end
  EXPECT_EQ(Contents(m), std::string("ab\0", 3));
  m.SetSize(5);
  EXPECT_EQ(Contents(m), std::string("ab\0\0\0", 5));
  EXPECT_GE(m.Capacity(), 4096);
  m.Clear();
  EXPECT_EQ(m.Size(), 0);
  EXPECT_EQ(m.Position(), 0);
  EXPECT_EQ(m.Memory(), nullptr);
}

TEST(TMemoryStream, CopyFromZeroCopiesAllAndLoadFromStreamKeepsOwnPosition) {
  TMemoryStream src, dst;
  src.Write("0123456789", 10);
  src.SetPosition(7);
  EXPECT_EQ(dst.CopyFrom(src, 0), 10);
  EXPECT_EQ(Contents(dst), "0123456789");
  src.SetPosition(4);
  TMemoryStream part;
  EXPECT_EQ(part.CopyFrom(src, 3), 3);
  EXPECT_EQ(Contents(part), "456");
  EXPECT_THROW(part.CopyFrom(src, 10), EReadError);

  TMemoryStream m, out;
  m.Write("123456", 6);
  m.SetPosition(1);
  m.LoadFromStream(dst);  // the whole source, wherever its position
  EXPECT_EQ(Contents(m), "0123456789");
  EXPECT_EQ(m.Position(), 1);
  m.SaveToStream(out);
  EXPECT_EQ(Contents(out), "0123456789");
}

TEST_F(TempDir, FileStreamCreatesReadsAndResizes) {
  {
    TFileStream f(Path("a.bin"), fmCreate);
    f.WriteBuffer("abcdef", 6);
    EXPECT_EQ(f.Size(), 6);
    f.SetSize(4);
    EXPECT_EQ(f.Size(), 4);
    EXPECT_EQ(f.Position(), 4);
  }
  TFileStream r(Path("a.bin"), fmOpenRead | fmShareDenyNone);
  char buf[8] = {};
  EXPECT_EQ(r.Read(buf, 8), 4);
  EXPECT_STREQ(buf, "abcd");
  EXPECT_EQ(r.Write("x", 1), 0);  // read-only handle
  EXPECT_THROW(r.WriteBuffer("x", 1), EWriteError);
  EXPECT_THROW(TFileStream(Path("missing.bin"), fmOpenRead), EFOpenError);
  EXPECT_THROW(TFileStream(Path("no/dir/x.bin"), fmCreate), EFCreateError);
}

TEST_F(TempDir, MemoryStreamFileRoundTrip) {
  TMemoryStream m;
  m.Write("payload", 7);
  m.SaveToFile(Path("m.bin"));
  TMemoryStream back;
  back.LoadFromFile(Path("m.bin"));
  EXPECT_EQ(Contents(back), "payload");
  EXPECT_THROW(back.LoadFromFile(Path("none.bin")), EFOpenError);
  EXPECT_EQ(Contents(back), "payload");
}
