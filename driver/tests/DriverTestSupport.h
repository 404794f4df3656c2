// Shared fixtures of the driver tests: a fresh directory, an active connection and tables made
// by the engine through the binding's wrappers.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "Ctdb.h"
#include "ECtreeException.h"
#include "IfilImage.h"
#include "ctisam.h"

namespace Ctdb::testing {

/// A fresh empty directory per test, removed afterwards; the current directory is restored.
class TempDir {
 public:
  TempDir();
  ~TempDir();
  const std::string& Path() const { return FPath; }
  /// Path + "/" + name.
  std::string File(const std::string& name) const { return FPath + "/" + name; }
  bool Exists(const std::string& name) const { return std::filesystem::exists(File(name)); }
  /// The names of the files in the directory, sorted; the engine's lock files only `withLocks`.
  std::vector<std::string> Files(bool withLocks = false) const;

 private:
  std::string FPath;
  std::filesystem::path FOldDir;
};

/// One index of a table to make: its segments (offset, length, mode), duplicates, name.
struct IndexSpec {
  std::vector<IsegDefinition> Segments;
  bool Duplicates = false;
  std::optional<std::string> Name = std::nullopt;
};

/// Fixture with a directory and an active connection (byte alignment unless a test changes it
/// before calling Activate).
class DriverTest : public ::testing::Test {
 protected:
  DriverTest();
  ~DriverTest() override;

  void Activate();

  /// Creates data file `name` (in the test directory, extension ".dat") with `fields` as its
  /// schema and `indexes` as its IFIL, closes it, and returns its full path.
  std::string MakeTable(const std::string& name, const std::vector<DodaEntry>& fields,
                        const std::vector<IndexSpec>& indexes, int16_t fileMode = SHARED);
  /// Opens a table made by MakeTable as a cursor (DataFileNo = KeyNo = its file number) and
  /// loads its IFIL and fields; fails the test when the engine refuses.
  std::unique_ptr<TCTCursorDesc> OpenTable(const std::string& path, int16_t mode = SHARED);
  /// Closes the cursor's files.
  void CloseTable(std::unique_ptr<TCTCursorDesc>& cursor);

  TempDir Dir;
  fw::TComponentPtr<TCTConnection> Conn;
};

/// Fixed record length of a schema: the sum of the lengths up to the first blob field.
int32_t FixedLength(const std::vector<DodaEntry>& fields);

/// The ECtreeException `action` raises; the test fails when it raises none (and an error number
/// of -1 comes back).
template <class F>
CTDbIntf::ECtreeException Raised(F&& action) {
  try {
    action();
  } catch (const CTDbIntf::ECtreeException& e) {
    return e;
  }
  ADD_FAILURE() << "no ECtreeException raised";
  return CTDbIntf::ECtreeException("", -1);
}

}  // namespace Ctdb::testing
