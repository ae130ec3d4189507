#include "shared/mesh/cornerNormals.h"

#include <maya/MFloatVector.h>

#include <algorithm>
#include <limits>

namespace {

struct trianglePlace {
  double weights[3];
  double squaredDistance;
};

/// The place on the segment from a to b nearest to p: 0 at a, 1 at b.
double alongSegment(const MPoint& a, const MPoint& b, const MPoint& p) {
  const MVector d = b - a;
  const double length = d * d;
  return length > 0.0 ? std::min(1.0, std::max(0.0, ((p - a) * d) / length)) : 0.0;
}

/// The place of a triangle nearest to a point: inside by its barycentric coordinates, else on the
/// nearest side.
trianglePlace nearestOnTriangle(const MPoint corners[3], const MPoint& p) {
  const MVector u = corners[1] - corners[0], v = corners[2] - corners[0], w = p - corners[0];
  const double uu = u * u, uv = u * v, vv = v * v, wu = w * u, wv = w * v;
  const double determinant = uu * vv - uv * uv;
  if (determinant > 0.0) {
    const double s = (vv * wu - uv * wv) / determinant, t = (uu * wv - uv * wu) / determinant;
    if (s >= 0.0 && t >= 0.0 && s + t <= 1.0) {
      const MVector off = w - u * s - v * t;
      return {{1.0 - s - t, s, t}, off * off};
    }
  }
  trianglePlace best = {{1.0, 0.0, 0.0}, std::numeric_limits<double>::max()};
  for (int i = 0; i < 3; ++i) {
    const int j = (i + 1) % 3;
    const double t = alongSegment(corners[i], corners[j], p);
    const MVector off = p - (corners[i] + (corners[j] - corners[i]) * t);
    if (off * off >= best.squaredDistance) continue;
    best = {{0.0, 0.0, 0.0}, off * off};
    best.weights[i] = 1.0 - t;
    best.weights[j] = t;
  }
  return best;
}

}  // namespace

const MPoint& cornerNormals::cornerPoint(int corner) const {
  return points[static_cast<unsigned int>(connects[static_cast<unsigned int>(corner)])];
}

MVector cornerNormals::cornerNormal(int corner) const {
  return MVector(normals[static_cast<unsigned int>(normalIds[static_cast<unsigned int>(corner)])]);
}

void cornerNormals::prepare() {
  firsts.assign(1, 0);
  firstTriangles.assign(1, 0);
  for (unsigned int f = 0; f < counts.length(); ++f) {
    firsts.push_back(firsts.back() + counts[f]);
    firstTriangles.push_back(firstTriangles.back() + triangleCounts[f]);
  }
  hasSeveral.assign(points.length(), 0);
  std::vector<int> known(points.length(), -1);
  for (unsigned int c = 0; c < connects.length(); ++c) {
    const std::size_t v = static_cast<std::size_t>(connects[c]);
    if (known[v] < 0) known[v] = normalIds[c];
    if (known[v] != normalIds[c]) hasSeveral[v] = 1;
  }
}

MVector cornerNormals::at(int face, const MPoint& point) const {
  const std::size_t f = static_cast<std::size_t>(face);
  MVector normal;
  double nearest = std::numeric_limits<double>::max();
  for (int t = firstTriangles[f]; t < firstTriangles[f + 1]; ++t) {
    int ids[3];
    MPoint corners[3];
    for (int k = 0; k < 3; ++k) {
      ids[k] = triangleCorners[static_cast<unsigned int>(3 * t + k)];
      corners[k] = cornerPoint(ids[k]);
    }
    const trianglePlace place = nearestOnTriangle(corners, point);
    if (place.squaredDistance >= nearest) continue;
    nearest = place.squaredDistance;
    normal = MVector();
    for (int k = 0; k < 3; ++k) normal += cornerNormal(ids[k]) * place.weights[k];
  }
  normal.normalize();
  return normal;
}

bool cornerNormals::isAtHardEdge(int face, const MPoint& point) const {
  constexpr double kNear = 1e-4;  // of the edge's length
  const std::size_t f = static_cast<std::size_t>(face);
  for (int c = firsts[f]; c < firsts[f + 1]; ++c) {
    const int next = c + 1 < firsts[f + 1] ? c + 1 : firsts[f];
    const auto isSplit = [&](int corner) {
      return hasSeveral[static_cast<std::size_t>(connects[static_cast<unsigned int>(corner)])] != 0;
    };
    if (!isSplit(c) && !isSplit(next)) continue;
    const MPoint &a = cornerPoint(c), &b = cornerPoint(next);
    const MPoint place = a + (b - a) * alongSegment(a, b, point);
    if (place.distanceTo(point) <= kNear * a.distanceTo(b)) return true;
  }
  return false;
}
