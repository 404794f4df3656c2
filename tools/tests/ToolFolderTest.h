// ToolFolderTest: the tool's command line run over a scratch folder of its own (tools tests).
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "CommandLine.h"

namespace ctt::test {

/// A fresh folder named after `prefix`, removed with its contents afterwards (the working folder
/// is put back too), and Run, which runs `ctt --dir <folder> args...` on the real table layer
/// and keeps what it printed in `out` and `err`.
class ToolFolderTest : public ::testing::Test {
 protected:
  explicit ToolFolderTest(const std::string& prefix) {
    std::random_device random;
    dir = std::filesystem::temp_directory_path() /
          (prefix + std::to_string(::getpid()) + "_" + std::to_string(random()));
    std::filesystem::create_directories(dir);
  }
  ~ToolFolderTest() override {
    std::error_code ignored;
    std::filesystem::current_path(oldDir, ignored);
    std::filesystem::remove_all(dir, ignored);
  }

  int Run(std::vector<std::string> args) {
    args.insert(args.begin(), {"ctt", "--dir", dir.string()});
    out.str("");
    err.str("");
    return RunTool(args, console, MakeTableBackend);
  }

  std::filesystem::path oldDir = std::filesystem::current_path();
  std::filesystem::path dir;
  std::ostringstream out, err;
  Console console{out, err, false};
};

}  // namespace ctt::test
