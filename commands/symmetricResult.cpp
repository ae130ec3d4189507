#include "commands/symmetricResult.h"

#include <algorithm>
#include <limits>

#include "shared/numeric/pointIndex.h"

namespace {

constexpr double kTolerance = 1e-3;  // of the mesh's size

MPoint mirrored(MPoint point, unsigned int axis) {
  point[axis] = -point[axis];
  return point;
}

double sizeOf(const MPointArray& points) {
  double largest = 0.0;
  for (unsigned int axis = 0; axis < 3; ++axis) {
    double low = std::numeric_limits<double>::max(), high = -low;
    for (unsigned int i = 0; i < points.length(); ++i) {
      low = std::min(low, points[i][axis]);
      high = std::max(high, points[i][axis]);
    }
    largest = std::max(largest, high - low);
  }
  return largest;
}

/// The vertex on the other side of each, or itself on the plane; -1 for none. Pairs agree both
/// ways.
std::vector<int> mirrorPartners(const MPointArray& points, unsigned int axis) {
  const double limit = kTolerance * sizeOf(points);
  const pointIndex index(points, 0, points.length());
  std::vector<int> partner(points.length(), -1);
  for (unsigned int v = 0; v < points.length(); ++v)
    partner[v] = index.nearest(mirrored(points[v], axis),
                               std::max(limit, std::numeric_limits<double>::min()));
  for (unsigned int v = 0; v < points.length(); ++v) {
    const int other = partner[v];
    if (other >= 0 && partner[static_cast<std::size_t>(other)] != static_cast<int>(v))
      partner[v] = -1;
  }
  return partner;
}

}  // namespace

void makeSymmetric(const MPointArray& before, unsigned int axis, MPointArray& places,
                   std::vector<char>& isPlaced) {
  const std::vector<int> partners = mirrorPartners(before, axis);
  for (unsigned int v = 0; v < before.length(); ++v) {
    const int other = partners[v];
    if (other < static_cast<int>(v)) continue;  // none, or done with its partner
    const unsigned int w = static_cast<unsigned int>(other);
    if (!isPlaced[v] && !isPlaced[w]) continue;
    const MPoint image = isPlaced[w] ? mirrored(places[w], axis) : places[v];
    const MPoint own = isPlaced[v] ? places[v] : image;
    places[v] = own + (image - own) * 0.5;
    if (w == v) places[v][axis] = 0.0;
    places[w] = w == v ? places[v] : mirrored(places[v], axis);
    isPlaced[v] = isPlaced[w] = 1;
  }
}
