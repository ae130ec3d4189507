#include "host/mel/suggestion.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <vector>

namespace host::mel {
namespace {

char lower(char c) {
  return static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
}

/// Slips between two words, case aside.
std::size_t slipsBetween(std::string_view a, std::string_view b) {
  std::array<std::vector<std::size_t>, 3> rows;
  for (auto& row : rows) row.assign(b.size() + 1, 0);
  for (std::size_t j = 0; j <= b.size(); ++j) rows[1][j] = j;
  for (std::size_t i = 1; i <= a.size(); ++i) {
    auto& [before, last, row] = rows;
    row[0] = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const bool isSame = lower(a[i - 1]) == lower(b[j - 1]);
      row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + (isSame ? 0 : 1)});
      if (i > 1 && j > 1 && lower(a[i - 1]) == lower(b[j - 2]) &&
          lower(a[i - 2]) == lower(b[j - 1]))
        row[j] = std::min(row[j], before[j - 2] + 1);
    }
    std::swap(before, last);
    std::swap(last, row);
  }
  return rows[1][b.size()];
}

}  // namespace

std::string nearestName(std::string_view typed, std::span<const std::string> names) {
  constexpr std::size_t kShortest = 4, kLong = 8;
  if (typed.size() < kShortest) return {};
  std::size_t least = (typed.size() >= kLong ? 2 : 1) + 1;
  std::string nearest;
  for (const std::string& name : names) {
    const std::size_t longer = std::max(name.size(), typed.size());
    if (longer - std::min(name.size(), typed.size()) >= least) continue;
    const std::size_t slips = slipsBetween(typed, name);
    if (slips >= least) continue;
    least = slips;
    nearest = name;
    if (least == 0) break;
  }
  return nearest;
}

}  // namespace host::mel
