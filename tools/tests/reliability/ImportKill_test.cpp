// ImportKill_test: the built `ctt` killed with SIGKILL at random moments of an import and
// resumed as its manual tells (the same command with --skip-existing) until one run ends: then
// every input row is in the table exactly once and `ctt check` passes. The number of kills per
// table comes from CT_CRASH_CYCLES (5, or 20 from 1,000 on); the figures go to standard output.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "ChildExit.h"

extern char** environ;

namespace {

constexpr int kRows = 60000;

// Starts `ctt --dir dir args...` with its output in dir/out.txt and dir/err.txt.
pid_t StartTool(const std::filesystem::path& dir, const std::vector<std::string>& args) {
  std::vector<std::string> all = {CTT_BINARY, "--dir", dir.string(), "--no-progress"};
  all.insert(all.end(), args.begin(), args.end());
  std::vector<char*> argv;
  for (std::string& a : all) argv.push_back(a.data());
  argv.push_back(nullptr);
  posix_spawn_file_actions_t files;
  posix_spawn_file_actions_init(&files);
  posix_spawn_file_actions_addopen(&files, 1, (dir / "out.txt").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
  posix_spawn_file_actions_addopen(&files, 2, (dir / "err.txt").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
  pid_t pid = -1;
  if (posix_spawn(&pid, CTT_BINARY, &files, nullptr, argv.data(), environ) != 0) pid = -1;
  posix_spawn_file_actions_destroy(&files);
  return pid;
}

int RunTool(const std::filesystem::path& dir, const std::vector<std::string>& args) {
  const pid_t pid = StartTool(dir, args);
  return pid > 0 ? ct::testsupport::WaitChild(pid) : -1;
}

std::string Slurp(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

// The data lines of a CSV file written without quotes (line ends LF or CR LF), each counted.
std::map<std::string, int> Lines(const std::filesystem::path& file) {
  std::map<std::string, int> lines;
  std::ifstream in(file);
  std::string line;
  for (std::getline(in, line); std::getline(in, line);) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    ++lines[line];
  }
  return lines;
}

class ImportKill : public ::testing::TestWithParam<const char*> {
 protected:
  void SetUp() override {
    std::random_device random;
    dir = std::filesystem::temp_directory_path() / ("ctt_kill_" + std::to_string(getpid()) + "_" + std::to_string(random()));
    std::filesystem::create_directories(dir);
    std::ofstream csv(dir / "people.csv");
    const char* cities[] = {"Abenford", "Brisk", "Corran", "Dunmore"};
    csv << "id,name,city\n";
    for (int id = 1; id <= kRows; ++id) csv << id << ",person " << id * 7 % 1000 << "," << cities[id % 4] << "\n";
  }
  void TearDown() override { std::filesystem::remove_all(dir); }

  std::filesystem::path dir;
};

TEST_P(ImportKill, KilledImportsResumedWithSkipExistingHoldEveryRowOnce) {
  const std::string batchSize = GetParam();
  ASSERT_EQ(RunTool(dir, {"create", "people", "-f", "id:integer,name:string:20,city:string:12", "-x", "byid:id:primary",
                          "-x", "bycity:city+id"}),
            0)
      << Slurp(dir / "err.txt");
  const std::vector<std::string> import = {"import", "people", (dir / "people.csv").string(), "--skip-existing",
                                           "--batch-size", batchSize};
  const char* given = std::getenv("CT_CRASH_CYCLES");
  const int kills = given != nullptr && std::atoi(given) >= 1000 ? 20 : 5;
  std::mt19937 random(20261124);
  int killed = 0, ended = 0, runs = 0;
  for (int cycle = 0; cycle < kills; ++cycle) {
    const pid_t pid = StartTool(dir, import);
    ASSERT_GT(pid, 0);
    ++runs;
    std::this_thread::sleep_for(std::chrono::milliseconds(std::uniform_int_distribution<int>(10, 300)(random)));
    kill(pid, SIGKILL);
    const int status = ct::testsupport::WaitChild(pid);
    if (status == 100 + SIGKILL) {
      ++killed;
    } else {
      ++ended;
      EXPECT_EQ(status, 0) << Slurp(dir / "err.txt");
    }
  }
  // The last run goes to its end.
  ++runs;
  const int last = RunTool(dir, import);
  EXPECT_EQ(last, 0) << Slurp(dir / "err.txt");
  const std::string summary = Slurp(dir / "out.txt");
  const int check = RunTool(dir, {"check", "people"});
  EXPECT_EQ(check, 0) << Slurp(dir / "err.txt");
  ASSERT_EQ(RunTool(dir, {"export", "people", (dir / "back.csv").string()}), 0) << Slurp(dir / "err.txt");

  const std::map<std::string, int> input = Lines(dir / "people.csv"), back = Lines(dir / "back.csv");
  int missing = 0, twice = 0, foreign = 0;
  for (const auto& [line, count] : input) {
    const auto found = back.find(line);
    missing += found == back.end() ? 1 : 0;
    twice += found != back.end() && found->second > 1 ? 1 : 0;
  }
  for (const auto& [line, count] : back) foreign += input.count(line) == 0 ? 1 : 0;
  std::printf("ctt import kill: batch size %s, %d runs, %d killed, %d ended before the kill, %d rows: %d missing, "
              "%d twice, %d not in the input, check exit %d\n",
              batchSize.c_str(), runs, killed, ended, kRows, missing, twice, foreign, check);
  std::printf("ctt import kill: last run: %s", summary.c_str());
  EXPECT_EQ(input.size(), static_cast<std::size_t>(kRows));
  EXPECT_EQ(missing, 0);
  EXPECT_EQ(twice, 0);
  EXPECT_EQ(foreign, 0);
  EXPECT_GT(killed, 0) << "no run was killed while it worked";
}

// One transaction for the whole import (the default), and batches that commit on the way.
INSTANTIATE_TEST_SUITE_P(BatchSizes, ImportKill, ::testing::Values("0", "500"),
                         [](const auto& info) { return std::string("Batch") + info.param; });

}  // namespace
