#include "commands/symmetricResult.h"

#include <algorithm>
#include <limits>

#include "shared/mesh/polyHelper.h"

namespace {

MPoint mirrored(MPoint point, unsigned int axis, double at) {
  point[axis] = 2.0 * at - point[axis];
  return point;
}

struct extent {
  double low = std::numeric_limits<double>::max(), high = -low;
  double middle() const { return 0.5 * (low + high); }
};

extent extentOf(const MPointArray& points, unsigned int axis) {
  extent along;
  for (unsigned int v = 0; v < points.length(); ++v) {
    along.low = std::min(along.low, points[v][axis]);
    along.high = std::max(along.high, points[v][axis]);
  }
  return along;
}

meshSymmetry symmetryAt(MPointArray points, unsigned int axis, double at) {
  if (at != 0.0)
    for (unsigned int v = 0; v < points.length(); ++v) points[v][axis] -= at;
  meshSymmetry found;
  found.at = at;
  found.partners = polyHelper::symmetricPoints(points, static_cast<int>(axis));
  for (unsigned int v = 0; v < found.partners.length(); ++v)
    found.paired += found.partners[v] >= 0 ? 1 : 0;
  return found;
}

}  // namespace

meshSymmetry symmetryOf(const MPointArray& points, unsigned int axis) {
  meshSymmetry best = symmetryAt(points, axis, 0.0);
  if (best.paired == points.length()) return best;
  meshSymmetry other = symmetryAt(points, axis, extentOf(points, axis).middle());
  return other.paired > best.paired ? other : best;
}

double symmetricPlaneOf(const MPointArray& shape, unsigned int axis) {
  const meshSymmetry symmetry = symmetryOf(shape, axis);
  if (2 * symmetry.paired >= shape.length()) return symmetry.at;
  const extent along = extentOf(shape, axis);
  return along.low <= 0.0 && along.high >= 0.0 ? 0.0 : along.middle();
}

void makeSymmetric(const meshSymmetry& symmetry, unsigned int axis, double at, MPointArray& places,
                   std::vector<char>& isPlaced) {
  for (unsigned int v = 0; v < places.length(); ++v) {
    const int other = symmetry.partners[v];
    if (other < static_cast<int>(v)) continue;  // none, or done with its partner
    const unsigned int w = static_cast<unsigned int>(other);
    if (!isPlaced[v] && !isPlaced[w]) continue;
    const MPoint image = isPlaced[w] ? mirrored(places[w], axis, at) : places[v];
    const MPoint own = isPlaced[v] ? places[v] : image;
    places[v] = own + (image - own) * 0.5;
    if (w == v) places[v][axis] = at;
    places[w] = w == v ? places[v] : mirrored(places[v], axis, at);
    isPlaced[v] = isPlaced[w] = 1;
  }
}
