// The folder a benchmark writes its files in, removed when the program ends (bench).
#pragma once

#include <unistd.h>

#include <filesystem>
#include <string>
#include <system_error>

namespace bench {

/// Creates `<temporary directory>/<program>_<pid>` and removes it with everything in it on
/// destruction. Given a folder instead, creates it if missing and leaves it in place, so that
/// the files can be looked at afterwards.
class ScratchDir {
 public:
  explicit ScratchDir(const std::string& program, const std::string& given = {})
      : path_(given.empty() ? (std::filesystem::temp_directory_path() / (program + "_" + std::to_string(::getpid())))
                                  .string()
                            : given),
        owned_(given.empty()) {
    std::filesystem::create_directories(path_);
  }
  ScratchDir(const ScratchDir&) = delete;
  ScratchDir& operator=(const ScratchDir&) = delete;

  ~ScratchDir() {
    std::error_code ignored;
    if (!left_.empty()) std::filesystem::current_path(left_, ignored);
    if (owned_) std::filesystem::remove_all(path_, ignored);
  }

  const std::string& Path() const { return path_; }

  /// Makes the folder the working directory (for engine calls that take bare file names); the
  /// destructor returns to the one left.
  void Enter() {
    left_ = std::filesystem::current_path();
    std::filesystem::current_path(path_);
  }

 private:
  std::string path_;
  bool owned_;
  std::filesystem::path left_;
};

}  // namespace bench
