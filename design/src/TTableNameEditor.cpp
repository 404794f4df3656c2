// TTableNameEditor: the tables of a directory or the members of a super file.
#include "TTableNameEditor.h"

#include <cstring>

#include "CTDbIntf.h"
#include "FileSearch.h"
#include "SelectedTable.h"
#include "StringUtils.h"
#include "ctisam.h"

namespace CTreeReg {

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
  Ctdb::TCTConnection* conn = table.Connection();
  if (conn == nullptr) throw fw::Exception("The connection property must be assigned first");
  if (conn->DataExt().empty())
    throw fw::Exception("Please specify a DataExt in the CTree Connection component");
  if (!conn->Active())
    throw fw::Exception("Please configure and activate the CTree Connection component ");

  if (table.IsSuperFile()) {
    for (const std::string& member : conn->SuperFileMembers(dir)) proc(member);
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
