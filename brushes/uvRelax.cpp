#include "brushes/uvRelax.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

struct flat {
  double x = 0.0, y = 0.0;
};

flat operator-(const flat& a, const flat& b) {
  return {a.x - b.x, a.y - b.y};
}
double dot(const flat& a, const flat& b) {
  return a.x * b.x + a.y * b.y;
}
double cross(const flat& a, const flat& b) {
  return a.x * b.y - a.y * b.x;
}

flat between(const float* from, const float* to) {
  return {static_cast<double>(to[0]) - from[0], static_cast<double>(to[1]) - from[1]};
}

/// Of the angle between two ways, kept in bounds: what is nearly flat or obtuse would push instead
/// of pulling.
double cotangent(const flat& a, const flat& b) {
  const double area = std::fabs(cross(a, b));
  constexpr double kLeast = 0.05, kMost = 20.0;
  return area > 0.0 ? std::clamp(dot(a, b) / area, kLeast, kMost) : kMost;
}

/// Lays a triangle of the surface flat, its first corner at the origin and its second to the right.
bool unroll(const float* a, const float* b, const float* c, flat& toB, flat& toC) {
  double ab[3], ac[3], squared[2] = {0.0, 0.0}, along = 0.0;
  for (int k = 0; k < 3; ++k) {
    ab[k] = static_cast<double>(b[k]) - a[k];
    ac[k] = static_cast<double>(c[k]) - a[k];
    squared[0] += ab[k] * ab[k];
    squared[1] += ac[k] * ac[k];
    along += ab[k] * ac[k];
  }
  const double length = std::sqrt(squared[0]);
  if (!(length > 0.0)) return false;
  toB = {length, 0.0};
  toC = {along / length, 0.0};
  const double height = squared[1] - toC.x * toC.x;
  constexpr double kFlat = 1e-12;
  if (!(height > kFlat * squared[1])) return false;
  toC.y = std::sqrt(height);
  return true;
}

/// Area of a polygon in space, by the sum of its triangles' normals.
double areaInSpace(const float* points, int size) {
  double normal[3] = {0.0, 0.0, 0.0};
  for (int i = 0; i < size; ++i) {
    const float *a = points + 3 * i, *b = points + 3 * ((i + 1) % size);
    for (int k = 0; k < 3; ++k) {
      const int l = (k + 1) % 3, m = (k + 2) % 3;
      // From the first corner: far from the origin the products would drown the area.
      const double al = static_cast<double>(a[l]) - points[l];
      const double am = static_cast<double>(a[m]) - points[m];
      const double bl = static_cast<double>(b[l]) - points[l];
      const double bm = static_cast<double>(b[m]) - points[m];
      normal[k] += al * bm - am * bl;
    }
  }
  return std::sqrt(normal[0] * normal[0] + normal[1] * normal[1] + normal[2] * normal[2]) / 2.0;
}

}  // namespace

/// Weighted wishes of the corners at a UV.
struct uvRelax::pull {
  double place[2] = {0.0, 0.0};
  double weight = 0.0;
};

void uvRelax::begin(const uvLayout& layout, std::vector<float> surfaceIn) {
  surface = std::move(surfaceIn);
  if (surface.size() != 3 * layout.faces().values.size()) surface.clear();
  scales.clear();
  if (surface.empty()) return;
  const auto shells = static_cast<std::size_t>(layout.shellCount());
  std::vector<double> inMap(shells, 0.0), inSpace(shells, 0.0);
  const intLists& faces = layout.faces();
  for (int face = 0; face < faces.count(); ++face) {
    if (faces.size(face) < 3) continue;
    const auto shell = static_cast<std::size_t>(layout.shellOf(*faces.begin(face)));
    inMap[shell] += std::fabs(layout.doubleArea(face)) / 2.0;
    inSpace[shell] += areaInSpace(
        surface.data() + 3 * faces.offsets[static_cast<std::size_t>(face)], faces.size(face));
  }
  for (std::size_t i = 0; i < shells; ++i)
    scales.push_back(inSpace[i] > 0.0 ? std::sqrt(inMap[i] / inSpace[i]) : 0.0);
}

/// The triangle at one corner: how it is turned best, and where that would have the corner.
void uvRelax::addCorner(const uvLayout& layout, int face, int corner, pull& sum) const {
  const intLists& faces = layout.faces();
  const int size = faces.size(face);
  const int before = (corner + size - 1) % size, after = (corner + 1) % size;
  const int* const uvs = faces.begin(face);
  const float* const points =
      surface.data() + 3 * static_cast<std::size_t>(faces.offsets[static_cast<std::size_t>(face)]);
  flat toNext, toPrevious;
  if (!unroll(points + 3 * corner, points + 3 * after, points + 3 * before, toNext, toPrevious))
    return;
  const int shell = layout.shellOf(uvs[corner]);
  const double scale = scales[static_cast<std::size_t>(shell)];
  if (!(scale > 0.0)) return;
  for (flat* each : {&toNext, &toPrevious}) {
    each->x *= scale;
    each->y *= scale * layout.shellSign(shell);
  }
  const float *here = layout.place(uvs[corner]), *next = layout.place(uvs[after]);
  const float* const previous = layout.place(uvs[before]);
  const flat nowNext = between(here, next), nowPrevious = between(here, previous);
  const flat across = toPrevious - toNext, nowAcross = nowPrevious - nowNext;
  // An edge counts by the angle that faces it.
  const double weightNext = cotangent({-toPrevious.x, -toPrevious.y}, toNext - toPrevious);
  const double weightPrevious = cotangent({-toNext.x, -toNext.y}, toPrevious - toNext);
  const double weightAcross = cotangent(toNext, toPrevious);
  double cosine = weightNext * dot(toNext, nowNext) +
                  weightPrevious * dot(toPrevious, nowPrevious) +
                  weightAcross * dot(across, nowAcross);
  double sine = weightNext * cross(toNext, nowNext) +
                weightPrevious * cross(toPrevious, nowPrevious) +
                weightAcross * cross(across, nowAcross);
  const double length = std::hypot(cosine, sine);
  if (!(length > 0.0)) return;
  cosine /= length;
  sine /= length;
  const auto add = [&](const float* end, const flat& way, double weight) {
    sum.place[0] += weight * (end[0] - (cosine * way.x - sine * way.y));
    sum.place[1] += weight * (end[1] - (sine * way.x + cosine * way.y));
    sum.weight += weight;
  };
  add(next, toNext, weightNext);
  add(previous, toPrevious, weightPrevious);
}

bool uvRelax::middleOfNeighbours(const uvLayout& layout, int uv, double (&place)[2]) const {
  const intLists& around = layout.neighbours();
  if (layout.isBorder(uv) || around.size(uv) == 0) return false;
  place[0] = place[1] = 0.0;
  for (const int* each = around.begin(uv); each != around.end(uv); ++each)
    for (int k = 0; k < 2; ++k) place[k] += static_cast<double>(layout.place(*each)[k]);
  for (double& number : place) number /= around.size(uv);
  return true;
}

bool uvRelax::target(const uvLayout& layout, int uv, bool evensOut, double (&place)[2]) const {
  if (evensOut || surface.empty()) return middleOfNeighbours(layout, uv, place);
  pull sum;
  const intLists &at = layout.facesAtUv(), &faces = layout.faces();
  for (const int* face = at.begin(uv); face != at.end(uv); ++face) {
    const int* const begin = faces.begin(*face);
    const int size = faces.size(*face);
    for (int corner = 0; size >= 3 && corner < size; ++corner)
      if (begin[corner] == uv) addCorner(layout, *face, corner, sum);
  }
  if (!(sum.weight > 0.0)) return false;
  place[0] = sum.place[0] / sum.weight;
  place[1] = sum.place[1] / sum.weight;
  return std::isfinite(place[0]) && std::isfinite(place[1]);
}
