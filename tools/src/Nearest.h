// Nearest: the known name closest to a mistyped one, for "did you mean" (tools layer).
#pragma once

#include <string>
#include <vector>

namespace ctt {

/// The name of `names` at the fewest edits from `typed` (case as given; swapping two neighbours
/// is one edit): at most two edits away, one when either is shorter than five letters; empty when
/// none is that close.
std::string Nearest(const std::string& typed, const std::vector<std::string>& names);

/// " (did you mean 'x'?)" for the nearest name, or "" when none is close.
std::string DidYouMean(const std::string& typed, const std::vector<std::string>& names);

}  // namespace ctt
