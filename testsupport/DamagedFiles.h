// Test support shared by the dataset and tool suites: the ways a table's data file is damaged
// that the engine must report, the table's lock files, and the file helpers that apply them.
#pragma once

#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>
#include <vector>

namespace ct::testsupport {

/// The whole content of `path` (empty when it cannot be read).
inline std::string Load(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), {});
}

/// Replaces the content of `path` with `bytes`.
inline void Store(const std::filesystem::path& path, const std::string& bytes) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

/// The engine's page size.
inline constexpr size_t kPage = 4096;

/// Calls `change` on each page past the two meta pages whose flags (u16 at offset 10 of LMDB's
/// page header) are exactly `flags`.
inline void ForEachPage(std::string& bytes, uint16_t flags, const std::function<void(char* page)>& change) {
  for (size_t at = 2 * kPage; at + kPage <= bytes.size(); at += kPage) {
    uint16_t f;
    std::memcpy(&f, bytes.data() + at + 10, 2);
    if (f == flags) change(bytes.data() + at);
  }
}

/// One way of damaging the bytes of a table's data file. Every one is reported as error 803.
struct DataFileDamage {
  const char* Name;
  /// Opening the table finds it; otherwise only a page check does (the first read of such a
  /// page ends the process that reads it).
  bool FoundAtOpen;
  std::function<void(std::string& bytes)> Apply;
};

inline const std::vector<DataFileDamage>& DataFileDamages() {
  static const std::vector<DataFileDamage> damages = {
      {"cut in half", true, [](std::string& b) { b.resize(b.size() / 2); }},
      {"emptied", true, [](std::string& b) { b.clear(); }},
      {"a text file in its place", true, [](std::string& b) { b = "id,name,city\n1,Ada Quill,Quenby\n"; }},
      {"meta page's commit number flipped", true, [](std::string& b) { b[kPage + 144] ^= 1; }},
      // LMDB asserts that a branch page holds two keys or more.
      {"branch pages holding one key", false,
       [](std::string& b) { ForEachPage(b, 1, [](char* p) { p[12] = 18; }); }},
      {"leaf pages flagged as changed in memory", false,
       [](std::string& b) { ForEachPage(b, 2, [](char* p) { p[10] |= 0x10; }); }},
  };
  return damages;
}

/// The lock files the engine keeps beside table `name`'s data and index files.
inline std::vector<std::string> LockFiles(const std::string& name) {
  return {name + "-lock", name + "-rlock", name + ".idx-lock", name + ".idx-rlock"};
}

}  // namespace ct::testsupport
