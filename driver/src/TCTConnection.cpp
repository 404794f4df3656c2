// TCTConnection: life cycle, configuration, paths and contexts of the connection (driver).
#include "TCTConnection.h"

#include <algorithm>

#include "CText.h"
#include "StringUtils.h"
#include "TClassInfo.h"
#include "TCTCursorDesc.h"
#include "TDataSet.h"

namespace Ctdb {
namespace {

// The user-profile bit sets handed to INTISAMX: embedded (bits 512, 64, 16) and with a server
// (bits 512, 16, 1). The meaning of the bits is c-tree's; the numbers are passed as they are.
constexpr int16_t kProfileLocal = 592;
constexpr int16_t kProfileServer = 529;
constexpr int16_t kAlreadyInitialised = 125;
// Record length, permission mask and name buffer used by the path helpers.
constexpr uint16_t kProbeRecLength = 6;
constexpr int32_t kPermissionMask = 2014;
constexpr int kNameBufferLength = 254;

[[maybe_unused]] const bool kRegistered = (fw::RegisterClass(TCTConnection::StaticClass()), true);

}  // namespace

TCTConnection::TCTConnection(fw::TComponent* owner) : fw::TComponent(owner) {}

TCTConnection::~TCTConnection() {
  try {
    SetActive(false);
  } catch (...) {
    // A dataset that fails to close must not stop the component from going away.
  }
}

const fw::TClassInfo& TCTConnection::StaticClass() {
  static const fw::TClassInfo info =
      fw::TClassBuilder<TCTConnection>("TCTConnection", &fw::TComponent::StaticClass())
          .Creatable()
          .Property("Active", &TCTConnection::Active, &TCTConnection::SetActive, false)
          .Enum("Alignment", {"laByte", "laWord", "laDWord", "laByteMon", "laByteRed", "laByteCli"},
                &TCTConnection::Alignment, &TCTConnection::SetLoadAlignment, fw::Variant(int32_t{CTDbIntf::laByte}))
          .Property("NullKeys", &TCTConnection::NullKeys, &TCTConnection::SetNullKeys, false)
          .Property("MaxBuffers", &TCTConnection::MaxBuffers, &TCTConnection::SetMaxBuffers, int32_t{100})
          .Property("MaxFiles", &TCTConnection::MaxFiles, &TCTConnection::SetMaxFiles, int32_t{50})
          .Property("MaxSectors", &TCTConnection::MaxSectors, &TCTConnection::SetMaxSectors, int32_t{16})
          .Property("UserName", &TCTConnection::UserName, &TCTConnection::SetUserName, std::string())
          .Property("Password", &TCTConnection::Password, &TCTConnection::SetPassword, std::string())
          .Property("ServerName", &TCTConnection::ServerName, &TCTConnection::SetServerName, std::string())
          .Property("DataDir", &TCTConnection::DataDir, &TCTConnection::SetDataDir, std::string())
          .Property("TempDir", &TCTConnection::TempDir, &TCTConnection::SetTempDir, std::string())
          .Property("EmptyChar", &TCTConnection::EmptyCharText, &TCTConnection::SetEmptyCharText,
                    std::string(1, '\0'))
          .Property("MaxIndexKey", &TCTConnection::MaxIndexKey, &TCTConnection::SetMaxIndexKey, int32_t{32})
          .Property("DataExt", &TCTConnection::DataExt, &TCTConnection::SetDataExt, std::string())
          .Property("IndexExt", &TCTConnection::IndexExt, &TCTConnection::SetIndexExt, std::string())
          .Property("SuperFileExt", &TCTConnection::SuperFileExt, &TCTConnection::SetSuperFileExt, std::string())
          .Build();
  return info;
}

void TCTConnection::Loaded() {
  fw::TComponent::Loaded();
  if (FStreamedActive) SetActive(true);
}

void TCTConnection::SetActive(bool value) {
  if (ComponentState().Contains(fw::csLoading)) {
    FStreamedActive = value;
    return;
  }
  if (value == FActive) return;
  if (value) {
    CTDbIntf::LoadCTreeDLL(FAlignment);
    InitDatabase();
    FActive = true;
    return;
  }
  // An open transaction is rolled back, not left to whatever ending the session does with it.
  if (FInTransaction) {
    (void)CTDbIntf::TranAbort(FAlignment);
    FInTransaction = false;
  }
  // Last opened first; each close takes the dataset off the list. A dataset that stays
  // registered after closing is dropped here so that the loop ends.
  while (!FDataSets.empty()) {
    fw::TDataSet* dataSet = FDataSets.back();
    dataSet->Close();
    if (!FDataSets.empty() && FDataSets.back() == dataSet) FDataSets.pop_back();
  }
  (void)CloseDatabase();
  CTDbIntf::UnLoadCTreeDLL(FAlignment);
  FActive = false;
}

void TCTConnection::InitDatabase() {
  const int16_t profile = FServerName.empty() ? kProfileLocal : kProfileServer;
  const int32_t result =
      CTDbIntf::InitISAMXtd(FAlignment, FMaxBuffers, FMaxFiles, FMaxSectors, FMaxBuffers, profile,
                            CText(FUserName), CText(FPassword), CText(FServerName));
  // 125: the library's session is already open (another connection on the same variant); share it.
  if (result != kAlreadyInitialised) CTDbIntf::CtError(result);
}

int32_t TCTConnection::CloseDatabase() { return CTDbIntf::CloseISAM(FAlignment); }

void TCTConnection::SetLoadAlignment(CTDbIntf::TLoadAlignment value) {
  if (FActive) throw CTDbIntf::ECtreeException("Can not change alignment while active");
  FAlignment = value;
}

void TCTConnection::SetMaxFiles(int16_t value) {
  if (FActive) throw fw::Exception("Not while connection is active");
  FMaxFiles = value;
}

void TCTConnection::SetMaxSectors(int16_t value) {
  if (FActive) throw fw::Exception("Not while connection is active");
  FMaxSectors = value;
}

// Data and index extensions drop everything up to and including the first dot, while the
// superfile extension drops only the dot itself: "x.dsf" becomes "xdsf". Both rules are kept
// because existing applications depend on how their extensions come out.
void TCTConnection::SetDataExt(const std::string& value) {
  const auto dot = value.find('.');
  FDataExt = dot == std::string::npos ? value : value.substr(dot + 1);
}

void TCTConnection::SetIndexExt(const std::string& value) {
  const auto dot = value.find('.');
  FIndexExt = dot == std::string::npos ? value : value.substr(dot + 1);
}

void TCTConnection::SetSuperFileExt(const std::string& value) {
  std::string ext = value;
  if (const auto dot = ext.find('.'); dot != std::string::npos) ext.erase(dot, 1);
  FSuperFileExt = ext;
}

void TCTConnection::AddDataSet(fw::TDataSet* dataSet) {
  if (dataSet != nullptr && std::find(FDataSets.begin(), FDataSets.end(), dataSet) == FDataSets.end())
    FDataSets.push_back(dataSet);
}

void TCTConnection::RemoveDataSet(fw::TDataSet* dataSet) {
  FDataSets.erase(std::remove(FDataSets.begin(), FDataSets.end(), dataSet), FDataSets.end());
}

int TCTConnection::RecordPacking() const {
  switch (FAlignment) {
    case CTDbIntf::laWord: return 2;
    case CTDbIntf::laDWord: return 4;
    default: return 1;
  }
}

std::string TCTConnection::BuildFullPath(const std::string& dir, const std::string& name) const {
  std::string result;
  // A local directory that does not exist is dropped, not reported: the name is then taken
  // relative to the current directory. With a server the directory is the server's business.
  if (!dir.empty() && (fw::DirectoryExists(dir) || !FServerName.empty())) {
    result = dir;
    if (result.back() != fw::PathDelim) result += fw::PathDelim;
  }
  // Without an extension the data extension follows the name directly, with no dot: callers
  // that want "cust.dat" pass the dot in the name or in DataExt.
  result += fw::ExtractFileExt(name).empty() ? name + FDataExt : name;
  if (!result.empty() && result.back() == '.') result.back() = '\0';
  return result;
}

void TCTConnection::ChangeToFileDir(const std::string& fileName, std::string& oldDir) const {
  oldDir = fw::GetCurrentDir();
  std::string dir = fw::ExtractFilePath(fileName.c_str());
  if (dir.size() > 1 && dir.back() == fw::PathDelim) dir.pop_back();  // the root keeps its "/"
  if (FServerName.empty() && !dir.empty()) fw::ChDir(dir);
}

bool TCTConnection::CheckFileExists(const std::string& fileName) const {
  // c-tree is asked rather than the file system, so that names it resolves itself (superfile
  // members, server paths) are judged as c-tree sees them. Any failure to create counts as
  // "exists".
  const int16_t fileNo = CTDbIntf::AvailableFileNbr(FAlignment, 1);
  const int32_t result = CTDbIntf::CreateDataFileXtd(FAlignment, fileNo, CText(fileName), kProbeRecLength, 0, 0,
                                                     kPermissionMask, nullptr, CText(FPassword));
  if (result != 0) return true;
  (void)CTDbIntf::DeleteCtFile(FAlignment, fileNo);
  return false;
}

std::string TCTConnection::GetTempFileName(const TCTCursorDesc* cursor) const {
  if (cursor == nullptr) return std::string();
  std::string oldDir;
  ChangeToFileDir(cursor->TableName, oldDir);
  char buffer[kNameBufferLength + 1] = {};
  const int32_t result = CTDbIntf::GetCtTempFileName(FAlignment, buffer, kNameBufferLength);
  fw::SetCurrentDir(oldDir);
  return result == 0 ? std::string(buffer) : std::string();
}

int32_t TCTConnection::GetSymbFileName(int16_t fileNo, std::string& name) const {
  char buffer[kNameBufferLength + 1] = {};
  const int32_t result = CTDbIntf::GetSymbolicNames(FAlignment, fileNo, buffer, kNameBufferLength, 0);
  name = result == 0 ? std::string(buffer) : std::string();
  return result;
}

int32_t TCTConnection::SetContext(TCTCursorDesc* cursor) {
  if (cursor == nullptr) return kCtInvalidCursor;
  (void)cursor->CreateContext();
  return 0;
}

int32_t TCTConnection::RestoreContext(TCTCursorDesc* cursor) {
  if (cursor == nullptr) return kCtInvalidCursor;
  (void)cursor->FreeContext(cursor->LastContext());
  return 0;
}

int32_t TCTConnection::CheckCursor(const TCTCursorDesc* cursor) const {
  if (!FActive) return kCtNotActive;
  if (cursor == nullptr) return kCtInvalidCursor;
  return 0;
}

}  // namespace Ctdb
