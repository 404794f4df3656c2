// TablePrinter: aligned columns measured in UTF-8 characters (tools layer).
#include "TablePrinter.h"

#include <algorithm>
#include <stdexcept>

namespace ctt {

namespace {
constexpr char kHex[] = "0123456789abcdef";
bool IsContinuation(unsigned char c) { return (c & 0xC0) == 0x80; }
}  // namespace

TablePrinter::TablePrinter(std::vector<std::string> headers, std::vector<Align> aligns, std::size_t maxWidth)
    : FHeaders(std::move(headers)), FAligns(std::move(aligns)), FMaxWidth(std::max<std::size_t>(maxWidth, 4)) {
  FAligns.resize(FHeaders.size(), Left);
}

void TablePrinter::AddRow(std::vector<std::string> cells) {
  if (cells.size() > FHeaders.size())
    throw std::invalid_argument("row has " + std::to_string(cells.size()) + " cells for " +
                                std::to_string(FHeaders.size()) + " columns");
  cells.resize(FHeaders.size());
  for (std::string& cell : cells) cell = Displayable(cell, FMaxWidth);
  FRows.push_back(std::move(cells));
}

std::size_t TablePrinter::DisplayWidth(const std::string& text) {
  std::size_t width = 0;
  for (char c : text)
    if (!IsContinuation(static_cast<unsigned char>(c))) ++width;
  return width;
}

std::string TablePrinter::Displayable(const std::string& cell, std::size_t maxWidth) {
  std::string shown;
  for (char ch : cell) {
    const unsigned char c = static_cast<unsigned char>(ch);
    if (c == '\n') {
      shown += "\\n";
    } else if (c == '\r') {
      shown += "\\r";
    } else if (c == '\t') {
      shown += "\\t";
    } else if (c < 32 || c == 127) {
      shown += "\\x";
      shown += kHex[c >> 4];
      shown += kHex[c & 15];
    } else {
      shown += ch;
    }
  }
  if (DisplayWidth(shown) <= maxWidth) return shown;
  // Keep maxWidth - 3 characters, never splitting a UTF-8 sequence.
  std::size_t chars = 0;
  std::size_t cut = 0;
  for (; cut < shown.size(); ++cut) {
    if (!IsContinuation(static_cast<unsigned char>(shown[cut]))) {
      if (chars == maxWidth - 3) break;
      ++chars;
    }
  }
  return shown.substr(0, cut) + "...";
}

void TablePrinter::Print(std::ostream& out) const {
  const std::size_t n = FHeaders.size();
  std::vector<std::string> headers(n);
  std::vector<std::size_t> widths(n);
  for (std::size_t i = 0; i < n; ++i) {
    headers[i] = Displayable(FHeaders[i], FMaxWidth);
    widths[i] = DisplayWidth(headers[i]);
  }
  for (const auto& row : FRows)
    for (std::size_t i = 0; i < n; ++i) widths[i] = std::max(widths[i], DisplayWidth(row[i]));

  std::string line;
  auto emit = [&](const std::vector<std::string>& cells) {
    line.clear();
    for (std::size_t i = 0; i < n; ++i) {
      const std::size_t pad = widths[i] - DisplayWidth(cells[i]);
      if (i > 0) line += "  ";
      if (FAligns[i] == Right) line.append(pad, ' ');
      line += cells[i];
      if (FAligns[i] == Left) line.append(pad, ' ');
    }
    line.erase(line.find_last_not_of(' ') + 1);
    out << line << '\n';
  };
  emit(headers);
  std::vector<std::string> rule(n);
  for (std::size_t i = 0; i < n; ++i) rule[i] = std::string(widths[i], '-');
  emit(rule);
  for (const auto& row : FRows) emit(row);
}

}  // namespace ctt
