// Small text helpers shared by the tool's parsers (tools layer).
#include "TextSplit.h"

namespace ctt {

std::vector<std::string_view> Split(std::string_view text, char separator) {
  std::vector<std::string_view> parts;
  std::size_t start = 0;
  for (;;) {
    const std::size_t at = text.find(separator, start);
    if (at == std::string_view::npos) {
      parts.push_back(text.substr(start));
      return parts;
    }
    parts.push_back(text.substr(start, at - start));
    start = at + 1;
  }
}

std::string_view Trim(std::string_view text) {
  const std::size_t first = text.find_first_not_of(" \t");
  if (first == std::string_view::npos) return {};
  const std::size_t last = text.find_last_not_of(" \t");
  return text.substr(first, last - first + 1);
}

bool IsIdentifier(std::string_view name) {
  if (name.empty()) return false;
  auto alpha = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; };
  if (!alpha(name[0])) return false;
  for (char c : name)
    if (!alpha(c) && !(c >= '0' && c <= '9')) return false;
  return true;
}

}  // namespace ctt
