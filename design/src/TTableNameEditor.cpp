// TTableNameEditor: the tables of a directory or the members of a super file.
#include "TTableNameEditor.h"

#include <cstring>

#include "CTDbIntf.h"
#include "FileSearch.h"
#include "SelectedTable.h"
#include "StringUtils.h"
#include "ctisam.h"

namespace CTreeReg {

namespace {

// Passes the member names of super file `path` to `proc`, leaving out index members; nothing
// when the file does not open as a super file.
void ListSuperFileMembers(CTDbIntf::TLoadAlignment a, const std::string& path,
                          const fw::TGetStrProc& proc) {
  const int16_t fileNo = CTDbIntf::AvailableFileNbr(a, 2);
  std::string name = path;
  if (fileNo < 0 || CTDbIntf::OpenCtFile(a, fileNo, name.data(), SHARED | SUPERFILE) != 0) return;
  struct Closer {
    CTDbIntf::TLoadAlignment A;
    int16_t FileNo;
    ~Closer() { (void)CTDbIntf::CloseCtFile(A, FileNo, 1); }
  } closer{a, fileNo};
  char member[1024];
  for (int16_t mode = 0; CTDbIntf::GetSuperFileNames(a, fileNo, member, sizeof member, mode) == 0;
       mode = 1)
    if (std::strstr(member, ".idx") == nullptr) proc(member);
}

}  // namespace

const fw::TPropertyEditorClass& TTableNameEditor::EditorClass() {
  static const auto cls = fw::MakePropertyEditorClass<TTableNameEditor>("TTableNameEditor");
  return cls;
}

fw::TPropertyAttributes TTableNameEditor::GetAttributes() const {
  return {fw::paValueList, fw::paSortList};
}

void TTableNameEditor::GetValues(const fw::TGetStrProc& proc) {
  CTTables::TCTTable& table = SelectedTable(*this);
  const std::string dir = table.Database().empty() ? fw::GetCurrentDir() : table.Database();
  const Ctdb::TCTConnection* conn = table.Connection();
  if (conn == nullptr) throw fw::Exception("The connection property must be assigned first");
  if (conn->DataExt().empty())
    throw fw::Exception("Please specify a DataExt in the CTree Connection component");
  if (!conn->Active())
    throw fw::Exception("Please configure and activate the CTree Connection component ");

  if (table.IsSuperFile()) {
    ListSuperFileMembers(conn->Alignment(), dir, proc);
    return;
  }
  const std::string& ext = conn->DataExt();
  const std::string mask = fw::IncludeTrailingPathDelimiter(dir) +
                           (ext.find('.') == std::string::npos ? "*." + ext : ext);
  fw::TSearchRec rec;
  if (fw::FindFirst(mask, fw::faAnyFile & ~fw::faDirectory, rec) != 0) return;
  do {
    proc(rec.Name);
  } while (fw::FindNext(rec) == 0);
  fw::FindClose(rec);
}

}  // namespace CTreeReg
