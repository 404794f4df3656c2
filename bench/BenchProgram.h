// The frame of a Google Benchmark program: flags, a scratch folder, the run and its failure
// (bench).
#pragma once

#include <benchmark/benchmark.h>

#include <cstdio>
#include <exception>
#include <functional>
#include <string>
#include <vector>

#include "BenchFlags.h"
#include "ScratchDir.h"

namespace bench {

/// Takes the program's own flags out of argv and hands the rest to benchmark::Initialize (which
/// may print its help and exit before any folder exists), then creates the scratch folder. On
/// destruction shuts Google Benchmark down and removes the folder, in that order.
class BenchProgram {
 public:
  BenchProgram(const char* name, int argc, char** argv, const Flags& flags = {})
      : name_(name), dir_(Initialize(name, argc, argv, flags)) {}
  BenchProgram(const BenchProgram&) = delete;
  BenchProgram& operator=(const BenchProgram&) = delete;
  ~BenchProgram() { benchmark::Shutdown(); }

  const std::string& Dir() const { return dir_.Path(); }
  ScratchDir& Scratch() { return dir_; }

  /// Runs `body` (the setup, benchmark::RunSpecifiedBenchmarks and what follows it). Returns the
  /// exit status: 0, or 1 after printing "<program>: <what>" when `body` throws.
  int Run(const std::function<void()>& body) const {
    try {
      body();
      return 0;
    } catch (const std::exception& e) {
      std::fprintf(stderr, "%s: %s\n", name_, e.what());
      return 1;
    }
  }

 private:
  static std::string Initialize(const char* name, int argc, char** argv, const Flags& flags) {
    std::vector<char*> args = flags.Parse(argc, argv);
    int count = static_cast<int>(args.size());
    benchmark::Initialize(&count, args.data());
    return name;
  }

  const char* name_;
  ScratchDir dir_;
};

}  // namespace bench
