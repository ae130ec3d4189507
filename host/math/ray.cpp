#include "host/math/ray.h"

#include <algorithm>
#include <utility>

namespace host::math {

std::optional<RayRange> intersect(const Ray& ray, const Box& box) {
  RayRange range{-Box::kInfinity, Box::kInfinity};
  if (box.isEmpty()) return {};
  for (int i = 0; i < 3; ++i) {
    if (ray.direction[i] == 0) {
      if (ray.origin[i] < box.min[i] || ray.origin[i] > box.max[i]) return {};
      continue;
    }
    double t0 = (box.min[i] - ray.origin[i]) / ray.direction[i];
    double t1 = (box.max[i] - ray.origin[i]) / ray.direction[i];
    if (t0 > t1) std::swap(t0, t1);
    range.near = std::max(range.near, t0);
    range.far = std::min(range.far, t1);
    if (range.near > range.far) return {};
  }
  return range;
}

std::optional<RayTriangleHit> intersectTriangle(const Ray& ray, const Vec3& a, const Vec3& b,
                                                const Vec3& c) {
  // Shear space: the ray runs along its own longest axis, so that the edge tests are exact in sign
  // for both triangles at an edge.
  const Vec3& d = ray.direction;
  const double ax = std::abs(d.x), ay = std::abs(d.y), az = std::abs(d.z);
  const int kz = ax >= ay && ax >= az ? 0 : ay >= az ? 1 : 2;
  const int kx = (kz + 1) % 3, ky = (kz + 2) % 3;
  if (!(std::abs(d[kz]) > 0)) return {};
  const double sx = d[kx] / d[kz], sy = d[ky] / d[kz], sz = 1 / d[kz];
  const Vec3 pa = a - ray.origin, pb = b - ray.origin, pc = c - ray.origin;
  const double xa = pa[kx] - sx * pa[kz], ya = pa[ky] - sy * pa[kz];
  const double xb = pb[kx] - sx * pb[kz], yb = pb[ky] - sy * pb[kz];
  const double xc = pc[kx] - sx * pc[kz], yc = pc[ky] - sy * pc[kz];
  const double wa = xc * yb - yc * xb, wb = xa * yc - ya * xc, wc = xb * ya - yb * xa;
  if ((wa < 0 || wb < 0 || wc < 0) && (wa > 0 || wb > 0 || wc > 0)) return {};
  const double sum = wa + wb + wc;
  if (!(sum != 0)) return {};
  const double t = sz * (wa * pa[kz] + wb * pb[kz] + wc * pc[kz]) / sum;
  if (!std::isfinite(t)) return {};
  return RayTriangleHit{t, wb / sum, wc / sum};
}

double closestParameter(const Ray& line, const Vec3& p) {
  const double squared = lengthSquared(line.direction);
  return squared > 0 ? dot(p - line.origin, line.direction) / squared : 0;
}

double closestOnSegment(const Vec3& a, const Vec3& b, const Vec3& p) {
  return std::clamp(closestParameter({a, b - a}, p), 0.0, 1.0);
}

TrianglePoint closestOnTriangle(const Vec3& a, const Vec3& b, const Vec3& c, const Vec3& p) {
  // Voronoi regions of corners and edges in turn (Ericson, Real-Time Collision Detection, 5.1.5).
  const Vec3 ab = b - a, ac = c - a, ap = p - a;
  const double d1 = dot(ab, ap), d2 = dot(ac, ap);
  if (d1 <= 0 && d2 <= 0) return {0, 0};
  const Vec3 bp = p - b;
  const double d3 = dot(ab, bp), d4 = dot(ac, bp);
  if (d3 >= 0 && d4 <= d3) return {1, 0};
  const double vc = d1 * d4 - d3 * d2;
  if (vc <= 0 && d1 >= 0 && d3 <= 0 && d1 > d3) return {d1 / (d1 - d3), 0};
  const Vec3 cp = p - c;
  const double d5 = dot(ab, cp), d6 = dot(ac, cp);
  if (d6 >= 0 && d5 <= d6) return {0, 1};
  const double vb = d5 * d2 - d1 * d6;
  if (vb <= 0 && d2 >= 0 && d6 <= 0 && d2 > d6) return {0, d2 / (d2 - d6)};
  const double va = d3 * d6 - d5 * d4;
  const double e1 = d4 - d3, e2 = d5 - d6;
  if (va <= 0 && e1 >= 0 && e2 >= 0 && e1 + e2 > 0) return {1 - e1 / (e1 + e2), e1 / (e1 + e2)};
  const double sum = va + vb + vc;
  if (!(sum > 0)) return {0, 0};
  return {vb / sum, vc / sum};
}

}  // namespace host::math
