// The benchmarks' own command-line flags, taken out of argv; what is left goes on to Google
// Benchmark or is read by the program itself (bench).
#pragma once

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

namespace bench {

/// A set of flags, each bound to a variable of the program. The first flag that matches an
/// argument takes it; an argument no flag takes is handed back by Parse.
class Flags {
 public:
  /// `prefix` is the flag with its "=", e.g. "--records=": the value after it, read as atoi reads
  /// it, raised to `least` when smaller.
  Flags& Int(const char* prefix, int& value, int least = INT_MIN) {
    takers_.push_back([prefix, &value, least](const char* arg) {
      const size_t length = std::strlen(prefix);
      if (std::strncmp(arg, prefix, length) != 0) return false;
      value = std::max(least, std::atoi(arg + length));
      return true;
    });
    return *this;
  }

  /// `prefix` is the flag with its "=", e.g. "--dir=": the rest of the argument.
  Flags& Text(const char* prefix, std::string& value) {
    takers_.push_back([prefix, &value](const char* arg) {
      const size_t length = std::strlen(prefix);
      if (std::strncmp(arg, prefix, length) != 0) return false;
      value = arg + length;
      return true;
    });
    return *this;
  }

  /// A flag without a value, e.g. "--exclusive": sets `value` when present.
  Flags& Switch(const char* word, bool& value) {
    takers_.push_back([word, &value](const char* arg) {
      if (std::strcmp(arg, word) != 0) return false;
      value = true;
      return true;
    });
    return *this;
  }

  /// Sets the variables of the flags in argv[1..] and returns the arguments no flag took,
  /// argv[0] first (the shape benchmark::Initialize takes).
  std::vector<char*> Parse(int argc, char** argv) const {
    std::vector<char*> rest;
    if (argc > 0) rest.push_back(argv[0]);
    for (int i = 1; i < argc; ++i)
      if (std::none_of(takers_.begin(), takers_.end(), [&](const auto& take) { return take(argv[i]); }))
        rest.push_back(argv[i]);
    return rest;
  }

 private:
  std::vector<std::function<bool(const char*)>> takers_;
};

}  // namespace bench
