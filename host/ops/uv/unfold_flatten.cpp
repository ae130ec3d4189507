#include "host/ops/uv/unfold_flatten.h"

#include <algorithm>
#include <limits>
#include <memory>
#include <ranges>

#include "host/base/cancel.h"
#include "host/ops/uv/unfold_newton.h"
#include "host/ops/uv/unfold_relax.h"
#include "host/ops/uv/unfold_start.h"

namespace host::ops::flat {
namespace {

constexpr Index kCoarsest = 60;            ///< vertices
constexpr std::size_t kNewtonMost = 3000;  ///< vertices up to which all are moved at once
/// The same where some are held: nothing coarser has brought the large shape near its best there,
/// and sweeps from vertex to vertex would take thousands of rounds.
constexpr std::size_t kNewtonMostHeld = 300'000;
constexpr int kSweeps = 4;  ///< a level

std::vector<Element> liveElements(const Hierarchy& h, std::span<const math::Vec3> points) {
  std::vector<Element> elements;
  for (std::size_t t = 0; t < h.triangles.size(); ++t)
    if (h.isAlive[t]) {
      const Triangle& c = h.triangles[t];
      elements.push_back(restElement(c, points[at(c[0])], points[at(c[1])], points[at(c[2])]));
    }
  return elements;
}

/// Puts the vertices of one level back.
bool refine(Hierarchy& h, std::size_t level, std::span<const math::Vec3> points,
            std::vector<Point>& x) {
  const std::size_t end = level + 1 < h.levels() ? h.levelStart[level + 1] : h.collapses.size();
  BorderGuard guard(h.border, x);
  for (std::size_t i = end; i-- > h.levelStart[level];) {
    const Collapse& c = h.collapses[i];
    h.undo(c);
    if (!placeBack(h, c, points, guard, x)) return false;
    if (c.borderNext != kNone) guard.moved(c.removed);
  }
  return true;
}

}  // namespace

std::vector<Element> elementsOf(const Piece& piece, std::span<const Point> x, double areaWeight,
                                double scale) {
  std::vector<Element> elements;
  elements.reserve(piece.triangles.size() + 2 * piece.quads.size());
  const auto add = [&](Index a, Index b, Index c, double part) {
    elements.push_back(restElement({a, b, c}, scale * piece.points[at(a)],
                                   scale * piece.points[at(b)], scale * piece.points[at(c)]));
    elements.back().weight *= part;
  };
  std::vector<std::uint8_t> isInQuad(piece.triangles.size(), 0);
  for (const auto& [a, b, c, d, first] : piece.quads) {
    const std::array<Index, 4> q{a, b, c, d};
    bool isConvex = true;
    for (std::size_t k = 0; k < 4; ++k)
      isConvex =
          isConvex && orientation(x[at(q[k])], x[at(q[(k + 1) % 4])], x[at(q[(k + 2) % 4])]) > 0;
    if (!isConvex) continue;
    isInQuad[at(first)] = isInQuad[at(first) + 1] = 1;
    for (std::size_t k = 0; k < 4; ++k) add(q[k], q[(k + 1) % 4], q[(k + 2) % 4], 0.5);
  }
  for (std::size_t t = 0; t < piece.triangles.size(); ++t)
    if (const Triangle& c = piece.triangles[t]; !isInQuad[t]) add(c[0], c[1], c[2], 1);
  if (areaWeight == 1) return elements;
  double sum = 0;
  for (const Element& e : elements) sum += e.weight;
  const double mean = sum / static_cast<double>(elements.size());
  for (Element& e : elements) e.weight = mean * std::pow(e.weight / mean, areaWeight);
  return elements;
}

int improve(std::span<const Element> elements, const FlattenOptions& options, const Border* border,
            std::span<const std::uint8_t> isFixed, Axes axes, std::vector<Point>& x) {
  const Relaxer relaxer(options.energy, elements, x.size(), border, isFixed, axes);
  std::unique_ptr<NewtonSolver> newton;
  const bool isHeld = std::ranges::any_of(isFixed, [](std::uint8_t fixed) { return fixed != 0; });
  const bool isFar = isHeld || options.startsFar;
  if (elements.size() / 2 <= (isFar ? kNewtonMostHeld : kNewtonMost) && axes == Axes::Both)
    newton = std::make_unique<NewtonSolver>(options.energy, elements, x.size(), isFixed);
  double before = meanEnergy(options.energy, elements, x);
  int rounds = 0;
  while (rounds < options.iterations && !isCancelled()) {
    relaxer.sweep(x);
    if (newton) newton->step(x, border);
    ++rounds;
    const double after = meanEnergy(options.energy, elements, x);
    const bool isDone = before - after <= 0.01 * options.threshold * before;
    before = after;
    if (isDone) break;
  }
  return rounds;
}

bool untangle(std::span<const Element> elements, std::span<const std::uint8_t> isFixed, Axes axes,
              int rounds, std::vector<Point>& x) {
  for (int round = 0; round <= rounds && !isCancelled(); ++round) {
    double worst = std::numeric_limits<double>::infinity();
    for (const Element& e : elements) worst = std::min(worst, jacobian(e, x).det());
    if (worst > 0) return true;
    Energy energy;
    energy.softness = std::sqrt(1e-8 + 0.04 * worst * worst);
    const Relaxer relaxer(energy, elements, x.size(), nullptr, isFixed, axes);
    for (int i = 0; i < 10 && !isCancelled(); ++i) relaxer.sweep(x);
  }
  return false;
}

Flattened flatten(const Piece& piece, const FlattenOptions& options) {
  Flattened result;
  Hierarchy h = coarsen(piece.triangles, piece.points, piece.border, kCoarsest);
  // What stopped half-way is no small problem yet.
  if (isCancelled()) return result;
  std::vector<Point> x = circleLayout(h, piece.points);
  if (x.empty()) return result;
  const Border* border = options.keepsBorderApart ? &h.border : nullptr;
  for (std::size_t level = h.levels() + 1; level-- > 0;) {
    const bool isCoarsest = level == h.levels();
    if (isCancelled()) return result;
    if (!isCoarsest && !refine(h, level, piece.points, x)) return result;
    const std::vector<Element> elements = liveElements(h, piece.points);
    if (isCoarsest) {
      const double scale = bestScale(elements, x);
      for (Point& p : x) p = scale * p;
    }
    const Relaxer relaxer(options.energy, elements, x.size(), border);
    const int sweeps = isCoarsest ? 10 : level == 0 && !piece.quads.empty() ? 2 : kSweeps;
    for (int i = 0; i < sweeps && !isCancelled(); ++i) relaxer.sweep(x);
    if (elements.size() / 2 <= kNewtonMost) {
      NewtonSolver newton(options.energy, elements, x.size());
      for (int i = 0; i < (isCoarsest ? 50 : 4); ++i)
        if (newton.step(x, border) < 1e-4) break;
    }
  }
  const std::vector<Element> elements = elementsOf(piece, x, options.areaWeight);
  result.iterations = improve(elements, options, options.keepsBorderApart ? &piece.border : nullptr,
                              {}, Axes::Both, x);
  result.x = std::move(x);
  return result;
}

}  // namespace host::ops::flat
