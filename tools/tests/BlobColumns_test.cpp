// Memo and blob columns: base64, and a table with memo and blob fields taken through create,
// import, export, list and info over the real components and engine.
#include "BlobColumns.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>

#include "CommandLine.h"
#include "ToolFolderTest.h"

namespace ctt {
namespace {

namespace fs = std::filesystem;

TEST(Base64, EncodesAndDecodesEveryTailLength) {
  const std::pair<std::string, std::string> cases[] = {{"", ""},
                                                       {"f", "Zg=="},
                                                       {"fo", "Zm8="},
                                                       {"foo", "Zm9v"},
                                                       {std::string("\0\xff\x10", 3), "AP8Q"}};
  for (const auto& [bytes, text] : cases) {
    EXPECT_EQ(EncodeBase64(bytes), text);
    EXPECT_EQ(DecodeBase64(text), bytes);
  }
  EXPECT_EQ(DecodeBase64("Zm9v\r\nZm8="), "foofo");
}

TEST(Base64, RejectsWhatDoesNotDecode) {
  for (const char* text : {"Zm9", "Zm9v!", "Z===", "Zm=v", "Zm8=Zm9v", "Zm9v=", "Zm8=="}) {
    SCOPED_TRACE(text);
    EXPECT_FALSE(DecodeBase64(text));
  }
}

class BlobToolTest : public test::ToolFolderTest {
 protected:
  BlobToolTest() : ToolFolderTest("ctt_blob_") {}
};

TEST_F(BlobToolTest, MemoAndBlobColumnsRoundTripExactly) {
  ASSERT_EQ(Run({"create", "notes", "-f", "id:integer,txt:memo,pic:blob", "-x", "byid:id:primary"}),
            kExitOk)
      << err.str();
  std::string all;
  for (int i = 0; i < 256; ++i) all += static_cast<char>(i);
  const std::string longText(3000, 'w');
  const std::string rows = "1,\"Hello, \"\"world\"\"\r\nsecond line\"," + EncodeBase64(all) +
                           "\r\n" + "2,," + EncodeBase64(std::string(70000, '\x7f')) + "\r\n" +
                           "3," + longText + ",\r\n";
  const fs::path csv = dir / "notes.csv";
  std::ofstream(csv, std::ios::binary) << "id,txt,pic\r\n" << rows << "4,bad,Zm9v!\r\n";

  EXPECT_EQ(Run({"import", "notes", csv.string()}), kExitRejected);
  EXPECT_EQ(err.str(), "ctt: import: line 6: field 'pic': not valid base64\n");
  ASSERT_EQ(Run({"export", "notes"}), kExitOk) << err.str();
  EXPECT_EQ(out.str(), "id,txt,pic\r\n" + rows);

  ASSERT_EQ(Run({"list", "notes", "--width", "12"}), kExitOk) << err.str();
  EXPECT_EQ(out.str(),
            "id  txt           pic\n"
            "--  ------------  -----------\n"
            " 1  Hello, \"w...  256 bytes\n"
            " 2                70000 bytes\n"
            " 3  wwwwwwwww...\n"
            "(3 records)\n");
  ASSERT_EQ(Run({"info", "notes"}), kExitOk) << err.str();
  EXPECT_NE(out.str().find("2  txt    memo"), std::string::npos) << out.str();
  EXPECT_NE(out.str().find("3  pic    blob"), std::string::npos) << out.str();
}

}  // namespace
}  // namespace ctt
