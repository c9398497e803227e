#include "hints.h"

#include <algorithm>
#include <numeric>

namespace {

size_t editDistance(std::string_view a, std::string_view b) {
  std::vector<size_t> row(b.size() + 1);
  std::iota(row.begin(), row.end(), size_t{0});
  for (size_t i = 0; i < a.size(); ++i) {
    size_t diagonal = row[0];
    row[0] = i + 1;
    for (size_t j = 0; j < b.size(); ++j) {
      const size_t replaced = diagonal + (a[i] == b[j] ? 0 : 1);
      diagonal = row[j + 1];
      row[j + 1] = std::min({row[j] + 1, row[j + 1] + 1, replaced});
    }
  }
  return row[b.size()];
}

}  // namespace

std::string hintFor(std::string_view name, const std::vector<std::string_view>& candidates) {
  std::string_view nearest;
  // In halves, so that a name that was only begun comes before one that is as far away.
  size_t best = 2 * std::max<size_t>(2, name.size() / 3) + 1;
  for (const std::string_view candidate : candidates) {
    size_t distance = 2 * editDistance(name, candidate);
    if (name.size() > 2 && candidate.starts_with(name)) distance = std::min<size_t>(distance, 4) - 1;
    if (distance < best) {
      best = distance;
      nearest = candidate;
    }
  }
  return nearest.empty() ? std::string() : "; did you mean \"" + std::string(nearest) + "\"?";
}
