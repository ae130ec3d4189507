#include "shared/numeric/indexArrays.h"

#include <maya/MIntArray.h>

#include <algorithm>
#include <cstddef>
#include <functional>

std::vector<int> toVector(const MIntArray& values) {
  std::vector<int> copy(values.length());
  if (!copy.empty()) values.get(copy.data());
  return copy;
}

MIntArray toArray(const std::vector<int>& values) {
  return values.empty() ? MIntArray()
                        : MIntArray(values.data(), static_cast<unsigned int>(values.size()));
}

void makeSortedUnique(std::vector<int>& values) {
  if (std::adjacent_find(values.begin(), values.end(), std::greater_equal<>()) == values.end())
    return;
  const auto [low, high] = std::minmax_element(values.begin(), values.end());
  const long long first = *low, range = *high - first + 1;
  if (range / 8 > static_cast<long long>(values.size())) {
    std::sort(values.begin(), values.end());
    values.erase(std::unique(values.begin(), values.end()), values.end());
    return;
  }
  std::vector<char> isListed(static_cast<std::size_t>(range), 0);
  for (const int value : values) isListed[static_cast<std::size_t>(value - first)] = 1;
  values.clear();
  for (std::size_t i = 0; i < isListed.size(); ++i)
    if (isListed[i]) values.push_back(static_cast<int>(first + static_cast<long long>(i)));
}
