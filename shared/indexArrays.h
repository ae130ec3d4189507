#pragma once

#include <maya/MIntArray.h>

#include <algorithm>
#include <vector>

/// The values of an index array where the standard algorithms can work on them.
inline std::vector<int> toVector(const MIntArray& values) {
  std::vector<int> copy(values.length());
  if (!copy.empty()) values.get(copy.data());
  return copy;
}

inline MIntArray toArray(const std::vector<int>& values) {
  return values.empty() ? MIntArray() : MIntArray(values.data(), static_cast<unsigned int>(values.size()));
}

/// Sorts and drops repeats.
inline void makeSortedUnique(std::vector<int>& values) {
  std::sort(values.begin(), values.end());
  values.erase(std::unique(values.begin(), values.end()), values.end());
}
