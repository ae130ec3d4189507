#include "host/ops/uv/unfold_energy.h"

#include <algorithm>
#include <limits>

namespace host::ops::flat {
namespace {

/// The least height of a triangle at rest over its longest edge.
constexpr double kThinnest = 1e-5;

}  // namespace

Element restElement(const Triangle& corners, const math::Vec3& a, const math::Vec3& b,
                    const math::Vec3& c) {
  const math::Vec3 p = b - a, q = c - a;
  const double longest = std::sqrt(std::max(
      {math::lengthSquared(p), math::lengthSquared(q), math::lengthSquared(c - b), 1e-300}));
  const double base = std::max(math::length(p), kThinnest * longest);
  const double along = math::dot(p, q) / base;
  const double height =
      std::max(math::length(math::cross(p, q)) / base, kThinnest * longest * longest / base);
  return {corners, 1 / base, -along / (base * height), 1 / height, 0.5 * base * height};
}

std::vector<Element> restElements(std::span<const Triangle> triangles,
                                  std::span<const math::Vec3> points) {
  std::vector<Element> elements;
  elements.reserve(triangles.size());
  for (const Triangle& t : triangles)
    elements.push_back(restElement(t, points[at(t[0])], points[at(t[1])], points[at(t[2])]));
  return elements;
}

double meanEnergy(const Energy& energy, std::span<const Element> elements,
                  std::span<const Point> x) {
  double sum = 0, weights = 0;
  for (const Element& e : elements) {
    const Jacobian f = jacobian(e, x);
    const double d = f.det();
    if (!(d > 0)) return std::numeric_limits<double>::infinity();
    sum += e.weight * energy.value(f.norm2(), d);
    weights += e.weight;
  }
  return weights > 0 ? sum / weights : 0;
}

double bestScale(std::span<const Element> elements, std::span<const Point> x) {
  double grown = 0, shrunk = 0;
  for (const Element& e : elements) {
    const Jacobian f = jacobian(e, x);
    const double a = f.norm2(), d = f.det();
    if (!(d > 0)) continue;
    grown += e.weight * a;
    shrunk += e.weight * a / (d * d);
  }
  return grown > 0 ? std::sqrt(std::sqrt(shrunk / grown)) : 1;
}

}  // namespace host::ops::flat
