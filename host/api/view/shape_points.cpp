#include "host/api/view/shape_points.h"

#include <algorithm>
#include <cmath>

namespace host::api {
namespace {

constexpr double kTurn = 2 * std::numbers::pi;
constexpr int kSegments = 48;  ///< of a full turn: smooth at the sizes of handles and brushes

}  // namespace

PlaneFrame::PlaneFrame(const math::Vec3& normalIn) : normal(math::normalized(normalIn)) {
  const math::Vec3 other = std::abs(normal.y) < 0.9 ? math::Vec3{0, 1, 0} : math::Vec3{1, 0, 0};
  x = math::normalized(math::cross(other, normal));
  y = math::cross(normal, x);
}

ShapePoints arcPoints(const math::Vec3& center, const PlaneFrame& frame, double radius,
                      double start, double sweep) {
  const int count = std::max(2, static_cast<int>(std::ceil(kSegments * std::abs(sweep) / kTurn)));
  ShapePoints points;
  for (int i = 0; i <= count; ++i) {
    const double angle = start + sweep * i / count;
    points.push_back(center + (frame.x * std::cos(angle) + frame.y * std::sin(angle)) * radius);
  }
  return points;
}

double angleIn(const PlaneFrame& frame, const math::Vec3& direction) {
  return std::atan2(math::dot(direction, frame.y), math::dot(direction, frame.x));
}

ShapePoints segmentsOf(const ShapePoints& run, bool isClosed) {
  ShapePoints lines;
  for (std::size_t i = 0; i + 1 < run.size(); ++i) lines.insert(lines.end(), {run[i], run[i + 1]});
  if (isClosed && run.size() > 2) lines.insert(lines.end(), {run.back(), run.front()});
  return lines;
}

ShapePoints fanOf(const math::Vec3& center, const ShapePoints& run, bool isClosed) {
  ShapePoints triangles;
  const ShapePoints edges = segmentsOf(run, isClosed);
  for (std::size_t i = 0; i < edges.size(); i += 2)
    triangles.insert(triangles.end(), {center, edges[i], edges[i + 1]});
  return triangles;
}

ShapePoints sphereTriangles(const math::Vec3& center, double radius) {
  constexpr int kRings = 12, kSides = 24;
  const auto at = [&](int ring, int side) {
    const double polar = std::numbers::pi * ring / kRings, around = kTurn * side / kSides;
    return center + math::Vec3{std::sin(polar) * std::cos(around), std::cos(polar),
                               -std::sin(polar) * std::sin(around)} *
                        radius;
  };
  ShapePoints triangles;
  for (int ring = 0; ring < kRings; ++ring)
    for (int side = 0; side < kSides; ++side) {
      const math::Vec3 a = at(ring, side), b = at(ring + 1, side), c = at(ring + 1, side + 1),
                       d = at(ring, side + 1);
      triangles.insert(triangles.end(), {a, b, c, a, c, d});
    }
  return triangles;
}

}  // namespace host::api
