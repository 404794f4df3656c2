// Small text helpers shared by the tool's parsers (tools layer, private).
#pragma once

#include <string_view>
#include <vector>

namespace ctt {

/// The pieces of `text` between occurrences of `separator` (an empty text gives one empty piece).
/// The views refer to `text`.
std::vector<std::string_view> Split(std::string_view text, char separator);

/// `text` without leading and trailing blanks and tabs.
std::string_view Trim(std::string_view text);

/// Whether `name` starts with a letter or "_" and holds only ASCII letters, digits and "_".
bool IsIdentifier(std::string_view name);

}  // namespace ctt
