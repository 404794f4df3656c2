// TablePrinter: aligned columns measured in screen columns (tools layer).
#include "TablePrinter.h"

#include <locale.h>
#include <wchar.h>

#include <algorithm>
#include <stdexcept>

namespace ctt {

namespace {

constexpr char kHex[] = "0123456789abcdef";

// Decodes the UTF-8 sequence at text[i]; returns its length (1 for an invalid byte, decoded as
// the replacement character).
std::size_t Decode(const std::string& text, std::size_t i, char32_t& code) {
  const auto c = static_cast<unsigned char>(text[i]);
  const std::size_t length = c < 0x80 ? 1 : (c >> 5) == 0x6 ? 2 : (c >> 4) == 0xE ? 3 : (c >> 3) == 0x1E ? 4 : 0;
  if (length == 0 || i + length > text.size()) {
    code = 0xFFFD;
    return 1;
  }
  code = length == 1 ? c : c & (0x7F >> length);
  for (std::size_t k = 1; k < length; ++k) {
    const auto next = static_cast<unsigned char>(text[i + k]);
    if ((next & 0xC0) != 0x80) {
      code = 0xFFFD;
      return 1;
    }
    code = (code << 6) | (next & 0x3F);
  }
  return length;
}

// Columns a terminal gives one character: the C library's wcwidth under a UTF-8 locale made
// for this (the process's own locale is left alone); a character it does not know counts one.
std::size_t CharWidth(char32_t code) {
  if (code < 0x7F) return 1;
  static const locale_t utf8 = newlocale(LC_CTYPE_MASK, "C.UTF-8", static_cast<locale_t>(nullptr));
  if (utf8 == static_cast<locale_t>(nullptr)) return 1;
  const locale_t previous = uselocale(utf8);
  const int width = wcwidth(static_cast<wchar_t>(code));
  uselocale(previous);
  return width < 0 ? 1 : static_cast<std::size_t>(width);
}

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
  char32_t code = 0;
  for (std::size_t i = 0; i < text.size();) {
    i += Decode(text, i, code);
    width += CharWidth(code);
  }
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
  // Keep at most maxWidth - 3 columns, never splitting a UTF-8 sequence or a wide character.
  std::size_t columns = 0;
  std::size_t cut = 0;
  char32_t code = 0;
  while (cut < shown.size()) {
    const std::size_t length = Decode(shown, cut, code);
    const std::size_t width = CharWidth(code);
    if (columns + width > maxWidth - 3) break;
    columns += width;
    cut += length;
  }
  return shown.substr(0, cut) + "...";
}

void TablePrinter::Print(std::ostream& out, bool header) const {
  const std::size_t n = FHeaders.size();
  std::vector<std::string> headers(n);
  std::vector<std::size_t> widths(n);
  for (std::size_t i = 0; i < n; ++i) {
    headers[i] = Displayable(FHeaders[i], FMaxWidth);
    widths[i] = header ? DisplayWidth(headers[i]) : 0;
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
  if (header) {
    emit(headers);
    std::vector<std::string> rule(n);
    for (std::size_t i = 0; i < n; ++i) rule[i] = std::string(widths[i], '-');
    emit(rule);
  }
  for (const auto& row : FRows) emit(row);
}

}  // namespace ctt
