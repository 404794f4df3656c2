// FindFirst / FindNext / FindClose: masks, directories and a directory that is not there.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <fstream>

#include "FileSearch.h"

namespace fw {
namespace {

using ::testing::UnorderedElementsAre;

std::vector<std::string> Found(const std::string& mask, int attr) {
  std::vector<std::string> names;
  TSearchRec rec;
  if (FindFirst(mask, attr, rec) == 0) {
    do {
      names.push_back(rec.Name + (rec.Attr & faDirectory ? "/" : ""));
    } while (FindNext(rec) == 0);
  }
  FindClose(rec);
  return names;
}

TEST(FileSearch, MatchesTheMaskInTheNamedDirectory) {
  char pattern[] = "/tmp/filesearch_XXXXXX";
  const std::filesystem::path dir = mkdtemp(pattern);
  for (const char* name : {"a.dat", "b.dat", "a.idx", "c.data"}) std::ofstream(dir / name) << "x";
  std::filesystem::create_directory(dir / "d.dat");
  const std::string base = dir.string() + "/";

  EXPECT_THAT(Found(base + "*.dat", faAnyFile & ~faDirectory),
              UnorderedElementsAre("a.dat", "b.dat"));
  EXPECT_THAT(Found(base + "*.dat", faAnyFile), UnorderedElementsAre("a.dat", "b.dat", "d.dat/"));
  EXPECT_THAT(Found(base + "?.idx", faAnyFile), UnorderedElementsAre("a.idx"));
  EXPECT_TRUE(Found(base + "*.sup", faAnyFile).empty());

  TSearchRec rec;
  EXPECT_EQ(FindFirst(base + "missing/*.dat", faAnyFile, rec), ENOENT);
  EXPECT_EQ(FindNext(rec), ENOENT);  // a failed search finds nothing more
  std::filesystem::remove_all(dir);
}

}  // namespace
}  // namespace fw
