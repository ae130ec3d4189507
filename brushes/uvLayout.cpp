#include "brushes/uvLayout.h"

#include <algorithm>
#include <utility>

namespace {

/// Pairs of a list's number and a value, as lists; values keep their order.
intLists toLists(int listCount, const std::vector<std::pair<int, int>>& pairs) {
  intLists lists;
  lists.offsets.assign(static_cast<std::size_t>(listCount) + 1, 0);
  for (const auto& [list, value] : pairs) ++lists.offsets[static_cast<std::size_t>(list) + 1];
  for (std::size_t i = 1; i < lists.offsets.size(); ++i) lists.offsets[i] += lists.offsets[i - 1];
  std::vector<int> next(lists.offsets.begin(), lists.offsets.end() - 1);
  lists.values.resize(pairs.size());
  for (const auto& [list, value] : pairs)
    lists.values[static_cast<std::size_t>(next[static_cast<std::size_t>(list)]++)] = value;
  return lists;
}

}  // namespace

bool uvLayout::build(std::vector<float> places, const MIntArray& counts, const MIntArray& ids) {
  const int known = static_cast<int>(places.size() / 2);
  for (unsigned int i = 0; i < ids.length(); ++i)
    if (ids[i] < 0 || ids[i] >= known) return false;
  unsigned int total = 0;
  for (unsigned int i = 0; i < counts.length(); ++i) total += static_cast<unsigned int>(counts[i]);
  if (total != ids.length()) return false;
  numbers = std::move(places);
  corners = intLists();
  for (unsigned int i = 0; i < counts.length(); ++i)
    corners.offsets.push_back(corners.offsets.back() + counts[i]);
  corners.values.resize(ids.length());
  for (unsigned int i = 0; i < ids.length(); ++i) corners.values[i] = ids[i];
  findFacesAtUvs();
  findNeighbours();
  findShells();
  return true;
}

void uvLayout::setPlace(int uv, float first, float second) {
  numbers[2 * static_cast<std::size_t>(uv)] = first;
  numbers[2 * static_cast<std::size_t>(uv) + 1] = second;
}

void uvLayout::setPlaces(const std::vector<float>& places) {
  numbers = places;
  findSigns();
}

double uvLayout::doubleArea(int face) const {
  const int* const begin = corners.begin(face);
  const int size = corners.size(face);
  double sum = 0.0;
  for (int i = 0; i < size; ++i) {
    const float *a = place(begin[i]), *b = place(begin[(i + 1) % size]);
    sum += static_cast<double>(a[0]) * b[1] - static_cast<double>(a[1]) * b[0];
  }
  return sum;
}

void uvLayout::findFacesAtUvs() {
  std::vector<std::pair<int, int>> pairs;
  pairs.reserve(corners.values.size());
  for (int face = 0; face < corners.count(); ++face)
    for (const int* uv = corners.begin(face); uv != corners.end(face); ++uv)
      if (std::find(corners.begin(face), uv, *uv) == uv) pairs.emplace_back(*uv, face);
  atUv = toLists(count(), pairs);
}

void uvLayout::findNeighbours() {
  std::vector<std::pair<int, int>> sides;  // both ways of every polygon's every edge
  sides.reserve(2 * corners.values.size());
  for (int face = 0; face < corners.count(); ++face) {
    const int* const begin = corners.begin(face);
    const int size = corners.size(face);
    for (int i = 0; i < size; ++i) {
      const int a = begin[i], b = begin[(i + 1) % size];
      if (a == b) continue;
      sides.emplace_back(a, b);
      sides.emplace_back(b, a);
    }
  }
  std::sort(sides.begin(), sides.end());
  borders.assign(static_cast<std::size_t>(count()), 0);
  std::vector<std::pair<int, int>> edges;
  edges.reserve(sides.size() / 2 + 1);
  for (std::size_t i = 0; i < sides.size();) {
    std::size_t next = i + 1;
    while (next < sides.size() && sides[next] == sides[i]) ++next;
    if (next - i == 1) borders[static_cast<std::size_t>(sides[i].first)] = 1;
    edges.push_back(sides[i]);
    i = next;
  }
  around = toLists(count(), edges);
}

void uvLayout::findShells() {
  shells.assign(static_cast<std::size_t>(count()), -1);
  std::vector<std::pair<int, int>> pairs;
  std::vector<int> open;
  int shell = 0;
  for (int first = 0; first < count(); ++first) {
    if (shells[static_cast<std::size_t>(first)] >= 0) continue;
    shells[static_cast<std::size_t>(first)] = shell;
    open.push_back(first);
    while (!open.empty()) {
      const int uv = open.back();
      open.pop_back();
      for (const int* next = around.begin(uv); next != around.end(uv); ++next) {
        int& known = shells[static_cast<std::size_t>(*next)];
        if (known >= 0) continue;
        known = shell;
        open.push_back(*next);
      }
    }
    ++shell;
  }
  for (int uv = 0; uv < count(); ++uv) pairs.emplace_back(shellOf(uv), uv);
  members = toLists(shell, pairs);
  findSigns();
}

void uvLayout::findSigns() {
  std::vector<double> areas(static_cast<std::size_t>(shellCount()), 0.0);
  for (int face = 0; face < corners.count(); ++face)
    if (corners.size(face) > 0)
      areas[static_cast<std::size_t>(shellOf(*corners.begin(face)))] += doubleArea(face);
  signs.clear();
  for (const double area : areas) signs.push_back(area < 0.0 ? std::int8_t{-1} : std::int8_t{1});
}
