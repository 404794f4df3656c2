// TfrmDetailEdit: the master/detail link editor's logic, without a screen (design layer, unit
// UnitDetailEdit).
#pragma once

#include <string>
#include <vector>

#include "DataSetTypes.h"

namespace fw {
class TDataSet;
}
namespace CTTables {
class TCTTable;
}

namespace UnitDetailEdit {

/// One pair of a master/detail link: a key field of the detail's index and the master field
/// whose value it must match.
struct TFieldLink {
  std::string DetailField;
  std::string MasterField;
};

/// What the link editor shows and does: the detail table's indexes with their key fields, the
/// master's fields, the pairs made so far and the MasterFields text they give. A designer host
/// presents it (IDetailEditHost) and the user's choices call the methods below.
///
/// The pairs always link the leading key fields of the chosen index, in key order, because the
/// detail follows its master through a range over those fields. Methods that refuse a choice
/// raise fw::Exception with a message for the user and change nothing.
class TfrmDetailEdit {
 public:
  /// Reads the detail's index definitions and field definitions (a closed table is opened
  /// briefly) and the master's fields (the open master's fields, else its field definitions).
  /// Starts on the detail's IndexName, or its first index when that names none of them, with
  /// the MasterFields pairs that fit that index. Raises what reading the definitions raises, and
  /// fw::Exception when the detail has no index. Both datasets must outlive the editor.
  TfrmDetailEdit(CTTables::TCTTable& detail, fw::TDataSet& master);

  CTTables::TCTTable& Detail() const { return FDetail; }
  fw::TDataSet& Master() const { return FMaster; }
  /// The detail's index names in definition order.
  const std::vector<std::string>& Indexes() const { return FIndexNames; }
  /// The chosen index.
  const std::string& IndexName() const { return FIndexNames[FIndex]; }
  /// Chooses index `name` (case-insensitive); choosing another index than the current one drops
  /// every pair. fw::Exception for a name the detail does not have.
  void SelectIndex(const std::string& name);
  /// Key fields of the chosen index, in key order.
  const std::vector<std::string>& IndexFields() const;
  /// The key fields not paired yet, in key order; the first is the one to pair next.
  std::vector<std::string> DetailFields() const;
  /// The master's field names in its order.
  std::vector<std::string> MasterFieldNames() const;
  /// The pairs, in key order.
  const std::vector<TFieldLink>& Links() const { return FLinks; }

  /// Pairs key field `detailField` with master field `masterField` (names case-insensitive).
  /// Refused: a name that is no unpaired key field, a key field whose predecessors are not paired
  /// yet, an unknown master field, and fields of different kinds (text, number, date and time,
  /// boolean; other types pair only with their own type).
  void AddLink(const std::string& detailField, const std::string& masterField);
  /// Removes pair `index` and the pairs after it (the rest must stay leading key fields).
  /// fw::EListError out of range.
  void DeleteLink(int index);
  void ClearLinks() { FLinks.clear(); }
  /// The MasterFields text of the pairs: "NAME" for fields of the same name (ignoring case),
  /// else "MASTER=DETAIL", joined by ";"; "" without pairs.
  std::string MasterFieldsText() const;
  /// Writes the detail's IndexName, when another index was chosen than the table had, then its
  /// MasterFields. When the table refuses either, both keep their old values and the table's
  /// exception propagates.
  void Apply();

 private:
  struct Field {
    std::string Name;
    fw::TFieldType Type;
  };
  const Field* FindMasterField(const std::string& name) const;
  fw::TFieldType DetailFieldType(const std::string& name) const;
  void TakeLinks(const std::string& masterFields);

  CTTables::TCTTable& FDetail;
  fw::TDataSet& FMaster;
  std::vector<std::string> FIndexNames;
  std::vector<std::vector<std::string>> FIndexFields;
  size_t FIndex = 0;
  size_t FStartIndex = 0;     // the index chosen when the editor started
  std::string FInitialIndex;  // the table's IndexName then
  std::vector<Field> FDetailFields;
  std::vector<Field> FMasterFields;
  std::vector<TFieldLink> FLinks;
};

}  // namespace UnitDetailEdit
