#include "options/did_you_mean.h"

#include <algorithm>
#include <numeric>

namespace vostrand {
namespace {

// Insertions, deletions and substitutions that turn one word into the other.
std::size_t EditDistance(const std::string& a, const std::string& b) {
  std::vector<std::size_t> row(b.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 1; i <= a.size(); ++i) {
    std::size_t diagonal = row[0];
    row[0] = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const std::size_t substituted = diagonal + (a[i - 1] != b[j - 1]);
      diagonal = row[j];
      row[j] = std::min({substituted, row[j] + 1, row[j - 1] + 1});
    }
  }
  return row.back();
}

}  // namespace

std::string ClosestTo(const std::string& word, const std::vector<std::string>& candidates) {
  std::string closest;
  std::size_t best = std::max<std::size_t>(2, word.size() / 3) + 1;
  for (const std::string& candidate : candidates) {
    const std::size_t distance = EditDistance(word, candidate);
    if (distance < best) {
      best = distance;
      closest = candidate;
    }
  }
  return closest;
}

}  // namespace vostrand
