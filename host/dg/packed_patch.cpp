#include "host/dg/packed_patch.h"

#include <algorithm>
#include <cstring>

namespace host::dg {

namespace {

bool isSame(const double* a, const double* b, std::size_t stride) {
  return std::memcmp(a, b, stride * sizeof(double)) == 0;
}

/// Calls `one(index, of the first or null, of the second or null)` for every index of two arrays,
/// as long as it wants to go on.
template <class One>
void walkBoth(const PackedArray& a, const PackedArray& b, const One& one) {
  const auto stride = static_cast<std::size_t>(a.stride);
  std::size_t i = 0, k = 0;
  while (i < a.indices.size() || k < b.indices.size()) {
    const bool isOfA =
        k == b.indices.size() || (i < a.indices.size() && a.indices[i] <= b.indices[k]);
    const bool isOfB =
        i == a.indices.size() || (k < b.indices.size() && b.indices[k] <= a.indices[i]);
    if (!one(isOfA ? a.indices[i] : b.indices[k], isOfA ? &a.values[i * stride] : nullptr,
             isOfB ? &b.values[k * stride] : nullptr))
      return;
    i += isOfA ? 1 : 0;
    k += isOfB ? 1 : 0;
  }
}

}  // namespace

PackedPatch::PackedPatch(PackedArray before, const PackedArray* now) {
  if (now && now->stride == before.stride && !before.indices.empty()) keepDifference(before, *now);
  if (isWhole_) whole_ = std::move(before);
}

void PackedPatch::keepDifference(const PackedArray& before, const PackedArray& now) {
  const auto stride = static_cast<std::size_t>(before.stride);
  const std::size_t most = before.indices.size() / 2;
  walkBoth(before, now, [&](Index index, const double* old, const double* fresh) {
    if (old && fresh && isSame(old, fresh, stride)) return true;
    indices_.push_back(index);
    isThere_.push_back(old ? 1 : 0);
    if (old) values_.insert(values_.end(), old, old + stride);
    return indices_.size() <= most;
  });
  isWhole_ = indices_.size() > most;
  if (isWhole_) {
    indices_ = {};
    isThere_ = {};
    values_ = {};
    return;
  }
  indices_.shrink_to_fit();
  values_.shrink_to_fit();
  expected_ = now.content;
  other_ = before.content;
}

bool PackedPatch::leavesOut(Index index) const {
  if (isWhole_) return whole_.position(index) < 0;
  const auto found = std::ranges::lower_bound(indices_, index);
  return found != indices_.end() && *found == index &&
         isThere_[static_cast<std::size_t>(found - indices_.begin())] == 0;
}

std::size_t PackedPatch::bytes() const {
  return (whole_.indices.capacity() + indices_.capacity()) * sizeof(Index) +
         (whole_.values.capacity() + values_.capacity()) * sizeof(double) + isThere_.capacity();
}

bool PackedPatch::isInPlace(const PackedArray& array) const {
  for (std::size_t i = 0; i < indices_.size(); ++i)
    if (isThere_[i] == 0 || array.position(indices_[i]) < 0) return false;
  return true;
}

void PackedPatch::swapPart(PackedArray& array) {
  const bool isExpected = array.content == expected_;
  if (isInPlace(array))
    swapInPlace(array);
  else
    swapByMerging(array);
  // Met as something else, it holds what was never there before.
  if (!isExpected) {
    expected_ = PackedArray::newContent();
    other_ = PackedArray::newContent();
  }
  std::swap(expected_, other_);
  array.content = expected_;
}

void PackedPatch::swapInPlace(PackedArray& array) {
  const auto stride = static_cast<std::size_t>(array.stride);
  double* kept = values_.data();
  for (const Index index : indices_) {
    std::swap_ranges(kept, kept + stride, array.at(array.position(index)));
    kept += stride;
  }
}

void PackedPatch::swapByMerging(PackedArray& array) {
  const auto stride = static_cast<std::size_t>(array.stride);
  std::vector<Index> indices;
  std::vector<double> values;
  std::vector<std::uint8_t> isThere(indices_.size(), 0);
  std::vector<double> taken;
  indices.reserve(array.indices.size() + indices_.size());
  values.reserve(array.values.size() + values_.size());
  const double* mine = values_.data();
  std::size_t next = 0;
  const auto bring = [&] {
    if (isThere_[next] != 0) {
      indices.push_back(indices_[next]);
      values.insert(values.end(), mine, mine + stride);
      mine += stride;
    }
    ++next;
  };
  for (std::size_t i = 0; i < array.indices.size(); ++i) {
    const double* own = &array.values[i * stride];
    while (next < indices_.size() && indices_[next] < array.indices[i]) bring();
    if (next < indices_.size() && indices_[next] == array.indices[i]) {
      isThere[next] = 1;
      taken.insert(taken.end(), own, own + stride);
      bring();
      continue;
    }
    indices.push_back(array.indices[i]);
    values.insert(values.end(), own, own + stride);
  }
  while (next < indices_.size()) bring();
  array.indices = std::move(indices);
  array.values = std::move(values);
  isThere_ = std::move(isThere);
  values_ = std::move(taken);
}

}  // namespace host::dg
