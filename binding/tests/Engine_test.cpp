// Tests of the binding layer through the project's own storage engine: real calls, real files.
#include <unistd.h>

#include <cstring>
#include <filesystem>

#include "BindingFixture.h"
#include "EntryPoints.h"
#include "ctisam.h"

namespace CTDbIntf::testing {
namespace {

class EngineTest : public BindingTest {
 protected:
  void SetUp() override {
    BindingTest::SetUp();
    dir_ = std::filesystem::temp_directory_path() /
           ("binding_engine_" + std::to_string(::getpid()) + "_" +
            ::testing::UnitTest::GetInstance()->current_test_info()->name());
    std::filesystem::remove_all(dir_);
    std::filesystem::create_directories(dir_);
  }
  void TearDown() override {
    if (LoadedVariants[laByte]) (void)CloseISAM(laByte);
    BindingTest::TearDown();
    std::filesystem::remove_all(dir_);
  }

  std::string PathOf(const char* name) const { return (dir_ / name).string(); }

  std::filesystem::path dir_;
};

TEST_F(EngineTest, SessionStartsOnceThroughTheDefaultLibraryName) {
  EXPECT_EQ(LibraryNames[laByte], "libctstd32b.so");
  EXPECT_EQ(CloseCtFile(laByte, 0, 0), FINT_ERR) << "no session yet";
  ASSERT_EQ(InitISAMXtd(laByte, 10, 16, 4, 4, 0, nullptr, nullptr, nullptr), 0);
  EXPECT_TRUE(LoadedVariants[laByte]);
  EXPECT_EQ(InitISAMXtd(laByte, 10, 16, 4, 4, 0, nullptr, nullptr, nullptr), IINT_ERR);
  EXPECT_EQ(GetCtUErrCod(laByte), IINT_ERR);
  EXPECT_EQ(CloseISAM(laByte), 0);
}

TEST_F(EngineTest, DefinitionRecordsAndRecordsPassThroughUnchanged) {
  ASSERT_EQ(InitISAMXtd(laByte, 10, 16, 4, 4, 0, nullptr, nullptr, nullptr), 0);

  std::string base = PathOf("parts");
  char indexName[] = "ById";
  ISEG_P1 segment{0, 4, REGSEG};
  IIDX_P1 index{4, 0, 0, 0, ' ', 1, &segment, indexName, nullptr, nullptr, nullptr};
  IFIL_P1 ifil{base.data(), -1, 16, 0, EXCLUSIVE, 1, 0, EXCLUSIVE, &index, nullptr, nullptr, 0};
  ASSERT_EQ(CreateIFileXtd(laByte, &ifil, nullptr, nullptr, 0, nullptr, nullptr), 0);
  const std::int16_t datno = ifil.tfilno;
  ASSERT_GE(datno, 0);

  char record[16] = "0007first part";
  EXPECT_EQ(AddRecord(laByte, datno, record), 0);
  EXPECT_EQ(AddRecord(laByte, datno, record), KDUP_ERR);
  EXPECT_EQ(NbrOfRecords(laByte, datno), 1);
  EXPECT_EQ(NbrOfKeyEntries(laByte, datno + 1), 1);
  EXPECT_EQ(CloseRFile(laByte, datno), 0);

  std::string dataFile = base + ".dat";
  ASSERT_EQ(OpenFileWithResourceXtd(laByte, 3, dataFile.data(), SHARED, nullptr), 0);
  char key[4] = {'0', '0', '0', '7'};
  char found[16] = {};
  EXPECT_EQ(GetRecord(laByte, 4, key, found), 0);
  EXPECT_EQ(std::memcmp(found, record, sizeof record), 0);
  EXPECT_NE(CurrentFileOffset(laByte, 3), 0);
  EXPECT_EQ(CloseRFile(laByte, 3), 0);

  std::string missing = PathOf("missing.dat");
  EXPECT_EQ(OpenFileWithResourceXtd(laByte, 3, missing.data(), SHARED, nullptr), FNOP_ERR);
  EXPECT_EQ(GetCtIsamErr(laByte), FNOP_ERR);
}

TEST_F(EngineTest, EachVariantLoadsItsOwnFileAndTakesOverTheTable) {
  for (std::size_t i = 0; i < kVariantCount; ++i) {
    const auto alignment = static_cast<TLoadAlignment>(i);
    const auto before = EntryPointLookupCount();
    EXPECT_EQ(GetCtIsamErr(alignment), 0) << LibraryNames[i];
    EXPECT_EQ(EntryPointLookupCount() - before, 169u) << LibraryNames[i];
    EXPECT_TRUE(IsMapped(LibraryNames[i]));

    Dl_info info{};
    ASSERT_NE(dladdr(reinterpret_cast<void*>(EntryPoints.INTISAMX), &info), 0);
    EXPECT_EQ(std::filesystem::path(info.dli_fname).filename(), LibraryNames[i]);
  }
}

}  // namespace
}  // namespace CTDbIntf::testing
