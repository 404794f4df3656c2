// TOpenDialog: the open-file dialog property editors fill in and the designer shows (framework
// layer, design time).
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace fw {

class IDesigner;

/// The settings and result of one open-file dialog. It holds no screen of its own: `Execute`
/// asks the designer to show it (IDesigner::ExecuteOpenDialog).
class TOpenDialog {
 public:
  /// A dialog shown by `designer`, which must outlive it.
  explicit TOpenDialog(IDesigner& designer) : FDesigner(designer) {}

  /// "Description|mask" pairs joined by "|", e.g. "DataFiles|*.dat". Default "".
  const std::string& Filter() const { return FFilter; }
  void SetFilter(const std::string& value) { FFilter = value; }
  /// The file name the dialog starts with (possibly a directory and a mask such as "/d/*.dat")
  /// and, after a confirmed Execute, the chosen file.
  const std::string& FileName() const { return FFileName; }
  void SetFileName(const std::string& value) { FFileName = value; }
  /// Filter as (description, mask) pairs in order; a description without mask gets "".
  std::vector<std::pair<std::string, std::string>> FilterPairs() const;

  /// Shows the dialog; true when the user confirmed a file (now in FileName). Raises what the
  /// designer raises.
  bool Execute();

 private:
  IDesigner& FDesigner;
  std::string FFilter;
  std::string FFileName;
};

}  // namespace fw
