// Tests of the binding layer's library loader, against stand-in libraries.
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>

#include "BindingFixture.h"
#include "EntryPoints.h"

namespace CTDbIntf::testing {
namespace {

using LibraryLoaderTest = BindingTest;

TEST_F(LibraryLoaderTest, FirstCallLoadsOwnFileAndBindsAllNamesLaterCallsLookNothingUp) {
  LibraryNames[laByte] = FAKE_FIRST;
  LibraryNames[laWord] = FAKE_SECOND;
  const auto before = EntryPointLookupCount();

  EXPECT_EQ(InitIsam(laWord, 1, 2, 3), 22);
  // 168 names, DELRFIL looked up twice (into one slot).
  EXPECT_EQ(EntryPointLookupCount() - before, 169u);
  EXPECT_TRUE(LoadedVariants[laWord]);
  EXPECT_FALSE(LoadedVariants[laByte]);
  EXPECT_FALSE(IsMapped(FAKE_FIRST));
  EXPECT_EQ(LastCall(laWord), "INTISAM");
  EXPECT_NE(EntryPoints.ierr, nullptr);
  EXPECT_EQ(EntryPoints.Perform, nullptr);

  EXPECT_EQ(CloseISAM(laWord), 22);
  LoadCTreeDLL(laWord);
  EXPECT_EQ(EntryPointLookupCount() - before, 169u);
  EXPECT_EQ(LastCall(laWord), "CLISAM");
}

TEST_F(LibraryLoaderTest, MissingNameRaisesOnEveryCallAndLeavesLibraryLoaded) {
  LibraryNames[laByte] = FAKE_LACKING;
  const auto order = BindingOrder();
  const auto position =
      std::find_if(order.begin(), order.end(),
                   [](const TBinding& b) { return std::string(b.Name) == "SETLOGPATH"; }) -
      order.begin();

  for (int attempt = 0; attempt < 2; ++attempt) {
    const auto before = EntryPointLookupCount();
    const ECtreeException e = Raised([] { (void)AddKey(laByte, 0, nullptr, 0, 0); });
    EXPECT_EQ(e.Message(), std::string("Procedure SETLOGPATH can not be found in ") + FAKE_LACKING);
    EXPECT_EQ(e.ErrorCode, 0);
    EXPECT_EQ(EntryPointLookupCount() - before, static_cast<std::uint64_t>(position + 1));
    EXPECT_FALSE(LoadedVariants[laByte]);
    EXPECT_NE(Handles[laByte], nullptr);
    EXPECT_TRUE(IsMapped(FAKE_LACKING));
  }
  EXPECT_EQ(LastCall(laByte), "") << "the wrapper must not call after a failed load";
  // Not marked loaded, so unloading leaves it alone; release the failed attempts' references.
  dlclose(Handles[laByte]);
  dlclose(Handles[laByte]);
}

// A missing file, a file that is no library, an empty name and an unknown alignment: every call
// raises "cannot load" (error number 0) and nothing stays loaded.
TEST_F(LibraryLoaderTest, UnloadableLibrariesRaiseCannotLoadOnEveryCall) {
  const auto dir = std::filesystem::temp_directory_path() / ("binding_notlib_" + std::to_string(::getpid()));
  std::filesystem::create_directories(dir);
  const std::string notALibrary = (dir / "libctreebm.so").string();
  std::ofstream(notALibrary) << "not a shared library\n";
  LibraryNames[laByteCli] = "libctree-no-such-variant.so";
  LibraryNames[laByteMon] = notALibrary;
  LibraryNames[laByteRed] = "";
  const std::pair<TLoadAlignment, std::string> cases[] = {
      {laByteCli, "Unabled to load libctree-no-such-variant.so"}, {laByteMon, "Unabled to load " + notALibrary},
      {laByteRed, "Unabled to load "}, {static_cast<TLoadAlignment>(9), "Unabled to load <alignment 9>"}};
  for (const auto& [alignment, message] : cases) {
    for (int attempt = 0; attempt < 2; ++attempt) {
      const ECtreeException e = Raised([a = alignment] { (void)CloseISAM(a); });
      EXPECT_EQ(e.Message(), message);
      EXPECT_EQ(e.ErrorCode, 0);
      if (alignment < kVariantCount) {
        EXPECT_EQ(Handles[alignment], nullptr) << message;
        EXPECT_FALSE(LoadedVariants[alignment]) << message;
      }
    }
  }
  EXPECT_EQ(Raised([] { LoadCTreeDLL(laByteRed); }).Message(), "Unabled to load ");
  std::filesystem::remove_all(dir);
}

TEST_F(LibraryLoaderTest, SecondVariantTakesOverTheSharedTable) {
  LibraryNames[laByte] = FAKE_FIRST;
  LibraryNames[laDWord] = FAKE_SECOND;
  EXPECT_EQ(InitIsam(laByte, 0, 0, 0), 11);
  EXPECT_EQ(InitIsam(laDWord, 0, 0, 0), 22);
  const auto before = EntryPointLookupCount();

  EXPECT_EQ(CloseISAM(laByte), 22) << "the first variant's calls now reach the second library";
  EXPECT_EQ(EntryPointLookupCount(), before);
  EXPECT_EQ(LastCall(laDWord), "CLISAM");
  EXPECT_EQ(LastCall(laByte), "INTISAM");
  EXPECT_TRUE(LoadedVariants[laByte]);
}

TEST_F(LibraryLoaderTest, UnloadMasksOrdinalAndIgnoresVariantsNotLoaded) {
  LibraryNames[laDWord] = FAKE_SECOND;
  UnLoadCTreeDLL(laDWord);
  UnLoadCTreeDLL(static_cast<TLoadAlignment>(0x46));
  EXPECT_FALSE(LoadedVariants[laDWord]);

  LoadCTreeDLL(laDWord);
  ASSERT_TRUE(IsMapped(FAKE_SECOND));
  UnLoadCTreeDLL(static_cast<TLoadAlignment>(0x80 | laDWord));
  EXPECT_FALSE(LoadedVariants[laDWord]);
  EXPECT_FALSE(IsMapped(FAKE_SECOND));
  UnLoadCTreeDLL(laDWord);

  const auto before = EntryPointLookupCount();
  EXPECT_EQ(CloseISAM(laDWord), 22) << "the next call loads the variant again";
  EXPECT_EQ(EntryPointLookupCount() - before, 169u);
}

}  // namespace
}  // namespace CTDbIntf::testing
