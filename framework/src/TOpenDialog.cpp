// TOpenDialog: filter pairs and showing the dialog through the designer.
#include "TOpenDialog.h"

#include "IDesigner.h"

namespace fw {

std::vector<std::pair<std::string, std::string>> TOpenDialog::FilterPairs() const {
  std::vector<std::string> parts;
  size_t start = 0;
  while (start <= FFilter.size() && !FFilter.empty()) {
    const size_t bar = FFilter.find('|', start);
    parts.push_back(
        FFilter.substr(start, bar == std::string::npos ? std::string::npos : bar - start));
    if (bar == std::string::npos) break;
    start = bar + 1;
  }
  std::vector<std::pair<std::string, std::string>> pairs;
  for (size_t i = 0; i < parts.size(); i += 2)
    pairs.emplace_back(parts[i], i + 1 < parts.size() ? parts[i + 1] : std::string());
  return pairs;
}

bool TOpenDialog::Execute() { return FDesigner.ExecuteOpenDialog(*this); }

}  // namespace fw
