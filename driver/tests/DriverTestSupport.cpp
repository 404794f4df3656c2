// Shared fixtures of the driver tests.
#include "DriverTestSupport.h"

#include <unistd.h>

#include <algorithm>
#include <random>

namespace Ctdb::testing {

TempDir::TempDir() : FOldDir(std::filesystem::current_path()) {
  std::random_device random;
  const auto base = std::filesystem::temp_directory_path();
  for (;;) {
    const auto candidate = base / ("ctdb_test_" + std::to_string(::getpid()) + "_" + std::to_string(random()));
    if (std::filesystem::create_directory(candidate)) {
      FPath = candidate.string();
      break;
    }
  }
}

TempDir::~TempDir() {
  std::error_code ignored;
  std::filesystem::current_path(FOldDir, ignored);
  std::filesystem::remove_all(FPath, ignored);
}

std::vector<std::string> TempDir::Files(bool withLocks) const {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(FPath)) {
    const std::string name = entry.path().filename().string();
    if (withLocks || (!name.ends_with("-lock") && !name.ends_with("-rlock"))) names.push_back(name);
  }
  std::sort(names.begin(), names.end());
  return names;
}

int32_t FixedLength(const std::vector<DodaEntry>& fields) {
  int32_t length = 0;
  for (const DodaEntry& field : fields) {
    if (TCTFieldDesc::IsBlobType(field.Type)) break;
    length += static_cast<int32_t>(field.Length);
  }
  return length;
}

DriverTest::DriverTest() : Conn(new TCTConnection(nullptr)) {}

DriverTest::~DriverTest() {
  if (Conn) Conn->SetActive(false);
  // The binding keeps one entry-point table for all variants: leave no variant marked loaded,
  // so that the next test binds its own variant afresh.
  for (size_t a = 0; a < CTDbIntf::kVariantCount; ++a) CTDbIntf::UnLoadCTreeDLL(static_cast<CTDbIntf::TLoadAlignment>(a));
}

void DriverTest::Activate() {
  Conn->SetActive(true);
  ASSERT_TRUE(Conn->Active());
}

std::string DriverTest::MakeTable(const std::string& name, const std::vector<DodaEntry>& fields,
                                  const std::vector<IndexSpec>& indexes, int16_t fileMode) {
  bool variable = false;
  for (const DodaEntry& field : fields) variable = variable || TCTFieldDesc::IsBlobType(field.Type);
  IfilDefinition def;
  def.pfilnam = Dir.File(name);
  def.dfilno = -1;
  def.dreclen = static_cast<int16_t>(std::max(FixedLength(fields), 1));
  def.dfilmod = static_cast<int16_t>(fileMode | (variable ? VLENGTH : 0));
  def.ifilmod = fileMode;
  for (const IndexSpec& wanted : indexes) {
    IidxDefinition index;
    index.ikeydup = wanted.Duplicates ? 1 : 0;
    for (const IsegDefinition& seg : wanted.Segments) index.ikeylen = static_cast<int16_t>(index.ikeylen + seg.slength);
    if (wanted.Duplicates) index.ikeylen = static_cast<int16_t>(index.ikeylen + 4);
    index.inulkey = 0;
    index.seg = wanted.Segments;
    index.ridxnam = wanted.Name;
    def.ix.push_back(index);
  }
  const CTDbIntf::TLoadAlignment a = Conn->Alignment();
  IfilImage image(def, Conn->RecordPacking());
  const int16_t created = CTDbIntf::CreateIFileXtd(a, image.Data(), nullptr, nullptr, 0, nullptr, nullptr);
  EXPECT_EQ(created, 0) << "CREIFILX of " << name;
  const int16_t fileNo = image.tfilno();
  DodaImage doda(fields, Conn->RecordPacking());
  EXPECT_EQ(CTDbIntf::PutDODA(a, fileNo, doda.Data(), static_cast<uint16_t>(fields.size())), 0);
  EXPECT_EQ(CTDbIntf::CloseRFile(a, fileNo), 0);
  return Dir.File(name) + ".dat";
}

std::unique_ptr<TCTCursorDesc> DriverTest::OpenTable(const std::string& path, int16_t mode) {
  int16_t fileNo = -1;
  const int32_t opened = Conn->OpenTableFiles(path, mode, fileNo);
  EXPECT_EQ(opened, 0) << "opening " << path;
  if (opened != 0) return nullptr;
  auto cursor = std::make_unique<TCTCursorDesc>(path, fileNo, fileNo, mode, Conn.get());
  EXPECT_EQ(Conn->LoadIFIL(cursor.get()), 0);
  EXPECT_EQ(Conn->ReadFieldsDescriptions(cursor.get()), 0);
  return cursor;
}

void DriverTest::CloseTable(std::unique_ptr<TCTCursorDesc>& cursor) {
  if (cursor->SchemaFileNo >= 0) {
    EXPECT_EQ(CTDbIntf::CloseRFile(Conn->Alignment(), cursor->SchemaFileNo), 0);
  }
  EXPECT_EQ(CTDbIntf::CloseRFile(Conn->Alignment(), cursor->DataFileNo), 0);
  cursor.reset();
}

}  // namespace Ctdb::testing
