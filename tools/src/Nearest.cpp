// Nearest: edit distance over the known names (tools layer).
#include "Nearest.h"

#include <algorithm>

namespace ctt {

namespace {

// Edits (insert, delete, replace, swap of two neighbours) that turn a into b.
std::size_t Distance(const std::string& a, const std::string& b) {
  std::vector<std::vector<std::size_t>> d(a.size() + 1, std::vector<std::size_t>(b.size() + 1));
  for (std::size_t i = 0; i <= a.size(); ++i) d[i][0] = i;
  for (std::size_t j = 0; j <= b.size(); ++j) d[0][j] = j;
  for (std::size_t i = 1; i <= a.size(); ++i) {
    for (std::size_t j = 1; j <= b.size(); ++j) {
      d[i][j] = std::min({d[i - 1][j] + 1, d[i][j - 1] + 1, d[i - 1][j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1)});
      if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1]) d[i][j] = std::min(d[i][j], d[i - 2][j - 2] + 1);
    }
  }
  return d[a.size()][b.size()];
}

}  // namespace

std::string Nearest(const std::string& typed, const std::vector<std::string>& names) {
  // Two edits for names of five letters or more, one for shorter ones ("zip" is not "id").
  std::string best;
  std::size_t bestDistance = 0;
  for (const std::string& name : names) {
    const std::size_t allowed = std::min(typed.size(), name.size()) >= 5 ? 2 : 1;
    const std::size_t distance = Distance(typed, name);
    if (distance <= allowed && (best.empty() || distance < bestDistance)) {
      best = name;
      bestDistance = distance;
    }
  }
  return best;
}

std::string DidYouMean(const std::string& typed, const std::vector<std::string>& names) {
  const std::string near = Nearest(typed, names);
  return near.empty() ? std::string() : " (did you mean '" + near + "'?)";
}

}  // namespace ctt
