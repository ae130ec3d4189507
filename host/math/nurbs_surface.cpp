#include "host/math/nurbs_surface.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "host/base/ids.h"

namespace host::math {

namespace {

constexpr int kMostDegree = 7;
using Row = std::array<double, kMostDegree + 1>;

/// The basis functions that are not zero at a parameter, with two derivatives.
struct Basis {
  int first = 0;  ///< the control point of the first of them
  std::array<Row, 3> by{};
};

/// One direction of a surface.
struct Direction {
  const std::vector<double>& knots;
  int degree, count;

  /// The knot with the left-out ones at the ends in place.
  [[nodiscard]] double full(int i) const {
    return knots[static_cast<std::size_t>(
        std::clamp(i - 1, 0, static_cast<int>(knots.size()) - 1))];
  }
  [[nodiscard]] double first() const { return full(degree); }
  [[nodiscard]] double last() const { return full(count); }
  [[nodiscard]] int spanOf(double parameter) const {
    int low = degree, high = count - 1;  // the span is among [low, high]
    while (low < high) {
      const int middle = (low + high + 1) / 2;
      if (parameter >= full(middle))
        low = middle;
      else
        high = middle - 1;
    }
    // Spans of no length at the end of the domain hold nothing.
    while (low > degree && !(full(low + 1) > full(low))) --low;
    return low;
  }
  [[nodiscard]] Basis basis(double parameter) const;
  [[nodiscard]] std::vector<double> breaks() const {
    std::vector<double> all{first()};
    for (int i = degree + 1; i <= count; ++i)
      if (full(i) > all.back()) all.push_back(full(i));
    return all;
  }
};

Basis Direction::basis(double parameter) const {
  parameter = std::clamp(parameter, first(), last());
  const int span = spanOf(parameter);
  // Values of all degrees up to the direction's, and the knot differences that they divide by.
  std::array<Row, kMostDegree + 1> table{};
  Row left{}, right{};
  table[0][0] = 1;
  for (int j = 1; j <= degree; ++j) {
    left[at(j)] = parameter - full(span + 1 - j);
    right[at(j)] = full(span + j) - parameter;
    double saved = 0;
    for (int r = 0; r < j; ++r) {
      table[at(j)][at(r)] = right[at(r + 1)] + left[at(j - r)];
      const double share = table[at(r)][at(j - 1)] / table[at(j)][at(r)];
      table[at(r)][at(j)] = saved + right[at(r + 1)] * share;
      saved = left[at(j - r)] * share;
    }
    table[at(j)][at(j)] = saved;
  }
  Basis result;
  result.first = span - degree;
  for (int j = 0; j <= degree; ++j) result.by[0][at(j)] = table[at(j)][at(degree)];
  for (int r = 0; r <= degree; ++r) {
    std::array<Row, 2> factors{};
    int now = 0;
    factors[0][0] = 1;
    double scale = degree;
    for (int k = 1; k <= std::min(2, degree); ++k) {
      const int next = 1 - now, rk = r - k, pk = degree - k;
      Row& old = factors[at(now)];
      Row& made = factors[at(next)];
      double sum = 0;
      if (r >= k) {
        made[0] = old[0] / table[at(pk + 1)][at(rk)];
        sum = made[0] * table[at(rk)][at(pk)];
      }
      const int low = rk >= -1 ? 1 : -rk, high = r - 1 <= pk ? k - 1 : degree - r;
      for (int j = low; j <= high; ++j) {
        made[at(j)] = (old[at(j)] - old[at(j - 1)]) / table[at(pk + 1)][at(rk + j)];
        sum += made[at(j)] * table[at(rk + j)][at(pk)];
      }
      if (r <= pk) {
        made[at(k)] = -old[at(k - 1)] / table[at(pk + 1)][at(r)];
        sum += made[at(k)] * table[at(r)][at(pk)];
      }
      result.by[at(k)][at(r)] = sum * scale;
      scale *= degree - k;
      now = next;
    }
  }
  return result;
}

Direction alongU(const NurbsSurface& surface) {
  return {surface.knotsU, surface.degreeU, surface.countU()};
}
Direction alongV(const NurbsSurface& surface) {
  return {surface.knotsV, surface.degreeV, surface.countV()};
}

constexpr double kGaussPlaces[] = {-0.906179845938664, -0.538469310105683, 0, 0.538469310105683,
                                   0.906179845938664};
constexpr double kGaussWeights[] = {0.236926885056189, 0.478628670499366, 0.568888888888889,
                                    0.478628670499366, 0.236926885056189};

double patchArea(const NurbsSurface& surface, double u0, double u1, double v0, double v1) {
  double sum = 0;
  for (std::size_t i = 0; i < 5; ++i)
    for (std::size_t j = 0; j < 5; ++j) {
      const SurfaceFrame frame = surface.frame(0.5 * (u0 + u1 + (u1 - u0) * kGaussPlaces[i]),
                                               0.5 * (v0 + v1 + (v1 - v0) * kGaussPlaces[j]));
      sum += kGaussWeights[i] * kGaussWeights[j] * length(cross(frame.u, frame.v));
    }
  return sum * 0.25 * (u1 - u0) * (v1 - v0);
}

/// A parameter that left a periodic direction comes in at the other end; others stop at the end.
double kept(const Direction& direction, CurveForm form, double parameter) {
  const double first = direction.first(), last = direction.last();
  if (form == CurveForm::Open || (parameter >= first && parameter <= last))
    return std::clamp(parameter, first, last);
  const double wrapped = std::fmod(parameter - first, last - first);
  return wrapped < 0 ? wrapped + last : wrapped + first;
}

}  // namespace

SurfaceFrame NurbsSurface::frame(double u, double v) const {
  const Basis us = alongU(*this).basis(u), vs = alongV(*this).basis(v);
  // Homogeneous sums by derivative: 00 10 01 20 11 02.
  static constexpr std::size_t kOrders[][2] = {{0, 0}, {1, 0}, {0, 1}, {2, 0}, {1, 1}, {0, 2}};
  std::array<Vec3, 6> places{};
  std::array<double, 6> sums{};
  for (std::size_t i = 0; i <= host::at(degreeU); ++i)
    for (std::size_t j = 0; j <= host::at(degreeV); ++j) {
      const std::size_t index =
          (host::at(us.first) + i) * host::at(countV()) + host::at(vs.first) + j;
      const double weight = weights.empty() ? 1 : weights[index];
      for (std::size_t k = 0; k < 6; ++k) {
        const double share = us.by[kOrders[k][0]][i] * vs.by[kOrders[k][1]][j] * weight;
        places[k] = places[k] + points[index] * share;
        sums[k] += share;
      }
    }
  if (weights.empty()) return {places[0], places[1], places[2], places[3], places[4], places[5]};
  const double w = sums[0];
  SurfaceFrame frame;
  frame.place = places[0] / w;
  frame.u = (places[1] - frame.place * sums[1]) / w;
  frame.v = (places[2] - frame.place * sums[2]) / w;
  frame.uu = (places[3] - frame.u * (2 * sums[1]) - frame.place * sums[3]) / w;
  frame.uv = (places[4] - frame.u * sums[2] - frame.v * sums[1] - frame.place * sums[4]) / w;
  frame.vv = (places[5] - frame.v * (2 * sums[2]) - frame.place * sums[5]) / w;
  return frame;
}

SurfaceParameter NurbsSurface::closest(const Vec3& place) const {
  constexpr int kSamples = 6;
  SurfaceParameter best{firstU(), firstV()};
  double bestDistance = length(at(best.u, best.v) - place);
  for (const double u : spread(alongU(*this).breaks(), kSamples))
    for (const double v : spread(alongV(*this).breaks(), kSamples))
      if (const double distance = length(at(u, v) - place); distance < bestDistance) {
        best = {u, v};
        bestDistance = distance;
      }
  return closest(place, best);
}

namespace {

/// The step to where a quadratic with these slopes and curvatures is least, in the directions that
/// are free; along the slope when it has no least place.
SurfaceParameter newtonStep(double fu, double fv, double a, double b, double c, bool uIsFree,
                            bool vIsFree) {
  if (uIsFree && vIsFree && a > 0 && c > 0 && a * c - b * b > 1e-12 * a * c) {
    const double determinant = a * c - b * b;
    return {(b * fv - c * fu) / determinant, (b * fu - a * fv) / determinant};
  }
  return {uIsFree && a > 0 ? -fu / a : 0, vIsFree && c > 0 ? -fv / c : 0};
}

/// Whether a way down may lead on: not where it leads over the end of an open direction.
bool isFree(const Direction& direction, CurveForm form, double parameter, double slope) {
  if (form != CurveForm::Open) return true;
  return !(parameter <= direction.first() && slope > 0) &&
         !(parameter >= direction.last() && slope < 0);
}

}  // namespace

SurfaceParameter NurbsSurface::closest(const Vec3& place, SurfaceParameter best) const {
  const Direction along = alongU(*this), across = alongV(*this);
  best = {std::clamp(best.u, firstU(), lastU()), std::clamp(best.v, firstV(), lastV())};
  double bestDistance = length(at(best.u, best.v) - place);
  for (int round = 0; round < 60; ++round) {
    const SurfaceFrame f = frame(best.u, best.v);
    const Vec3 away = f.place - place;
    const double fu = dot(away, f.u), fv = dot(away, f.v);
    const double a = dot(f.u, f.u), b = dot(f.u, f.v), c = dot(f.v, f.v);
    const bool uIsFree = isFree(along, formU, best.u, fu),
               vIsFree = isFree(across, formV, best.v, fv);
    // By the curvature of the distance; where that leads up, by the plane that touches here.
    const SurfaceParameter steps[] = {newtonStep(fu, fv, a + dot(away, f.uu), b + dot(away, f.uv),
                                                 c + dot(away, f.vv), uIsFree, vIsFree),
                                      newtonStep(fu, fv, a, b, c, uIsFree, vIsFree),
                                      newtonStep(fu, fv, a, 0, c, uIsFree, vIsFree)};
    bool isBetter = false;
    for (SurfaceParameter step : steps)
      for (int halving = 0; halving < 16 && !isBetter; ++halving, step.u *= 0.5, step.v *= 0.5) {
        const SurfaceParameter next{kept(along, formU, best.u + step.u),
                                    kept(across, formV, best.v + step.v)};
        const double distance = length(at(next.u, next.v) - place);
        if (distance >= bestDistance) continue;
        best = next;
        bestDistance = distance;
        isBetter = true;
      }
    if (!isBetter) break;
  }
  return best;
}

double NurbsSurface::area() const {
  const std::vector<double> us = spread(breaksU(*this), 2), vs = spread(breaksV(*this), 2);
  double sum = 0;
  for (std::size_t i = 0; i + 1 < us.size(); ++i)
    for (std::size_t j = 0; j + 1 < vs.size(); ++j)
      sum += patchArea(*this, us[i], us[i + 1], vs[j], vs[j + 1]);
  return sum;
}

namespace {

Result<void> checkKnots(const std::vector<double>& knots, int degree, const char* name) {
  if (degree < 1 || degree > kMostDegree)
    return fail("A surface's degree is 1 to 7, not {} in {}", degree, name);
  if (knots.size() < 2 * at(degree))
    return fail("A surface of degree {} in {} needs {} knots, not {}", degree, name, 2 * degree,
                knots.size());
  const auto isFinite = [](double number) { return std::isfinite(number); };
  if (!std::ranges::all_of(knots, isFinite) || !std::ranges::is_sorted(knots))
    return fail("The knots of a surface don't descend");
  if (!(knots[knots.size() - at(degree)] > knots[at(degree) - 1]))
    return fail("The knots of a surface leave it no extent in {}", name);
  return {};
}

}  // namespace

Result<void> check(const NurbsSurface& surface) {
  HOST_TRY(checkKnots(surface.knotsU, surface.degreeU, "U"));
  HOST_TRY(checkKnots(surface.knotsV, surface.degreeV, "V"));
  if (surface.points.size() != at(surface.countU()) * at(surface.countV()))
    return fail("A surface with {} by {} knots has {} points, not {}", surface.knotsU.size(),
                surface.knotsV.size(), surface.countU() * surface.countV(), surface.points.size());
  if (!surface.weights.empty() && surface.weights.size() != surface.points.size())
    return fail("A surface has a weight for each point or none");
  if (!std::ranges::all_of(surface.points, [](const Vec3& p) { return math::isFinite(p); }))
    return fail("A point of the surface is not finite");
  if (!std::ranges::all_of(surface.weights, [](double w) { return std::isfinite(w) && w > 0; }))
    return fail("The weights of a surface are above 0");
  return {};
}

std::vector<double> breaksU(const NurbsSurface& surface) {
  return alongU(surface).breaks();
}
std::vector<double> breaksV(const NurbsSurface& surface) {
  return alongV(surface).breaks();
}

std::vector<double> spread(const std::vector<double>& breaks, int parts) {
  std::vector<double> all{breaks.front()};
  for (std::size_t i = 0; i + 1 < breaks.size(); ++i)
    for (int k = 1; k <= parts; ++k)
      all.push_back(breaks[i] + (breaks[i + 1] - breaks[i]) * k / parts);
  return all;
}

std::vector<SurfaceHit> intersect(const NurbsSurface& surface, const Vec3& start,
                                  const Vec3& direction) {
  constexpr int kSamples = 8;
  const Direction along = alongU(surface), across = alongV(surface);
  const std::vector<double> us = spread(along.breaks(), kSamples),
                            vs = spread(across.breaks(), kSamples);
  std::vector<SurfaceHit> hits;
  const double reach = dot(direction, direction);
  if (!(reach > 0)) return hits;
  // Where the surface crosses the two planes through the ray, from the middle of each small piece
  // that may reach the ray.
  const Vec3 helper =
      std::abs(direction.y) < 0.9 * std::sqrt(reach) ? Vec3{0, 1, 0} : Vec3{1, 0, 0};
  const Vec3 n1 = normalized(cross(direction, helper)), n2 = normalized(cross(direction, n1));
  for (std::size_t i = 0; i + 1 < us.size(); ++i)
    for (std::size_t j = 0; j + 1 < vs.size(); ++j) {
      SurfaceParameter p{0.5 * (us[i] + us[i + 1]), 0.5 * (vs[j] + vs[j + 1])};
      const Vec3 middle = surface.at(p.u, p.v) - start;
      double radius = 0;
      for (const double u : {us[i], us[i + 1]})
        for (const double v : {vs[j], vs[j + 1]})
          radius = std::max(radius, length(surface.at(u, v) - start - middle));
      const Vec3 aside = middle - direction * (dot(middle, direction) / reach);
      if (length(aside) > 1.5 * radius) continue;
      bool isFound = false;
      for (int round = 0; round < 30; ++round) {
        const SurfaceFrame f = surface.frame(p.u, p.v);
        const double d1 = dot(f.place - start, n1), d2 = dot(f.place - start, n2);
        isFound = std::hypot(d1, d2) < 1e-9 * std::max(1.0, radius);
        if (isFound) break;
        const double a = dot(f.u, n1), b = dot(f.v, n1), c = dot(f.u, n2), d = dot(f.v, n2);
        const double determinant = a * d - b * c;
        if (std::abs(determinant) < 1e-300) break;
        p.u = kept(along, surface.formU, p.u - (d * d1 - b * d2) / determinant);
        p.v = kept(across, surface.formV, p.v - (a * d2 - c * d1) / determinant);
      }
      if (!isFound) continue;
      const Vec3 place = surface.at(p.u, p.v);
      const double distance = dot(place - start, direction) / reach;
      const auto isSame = [&](const SurfaceHit& hit) {
        return length(hit.place - place) < 1e-6 * std::max(1.0, radius);
      };
      if (distance >= 0 && std::ranges::none_of(hits, isSame)) hits.push_back({p, place, distance});
    }
  std::ranges::sort(hits, {}, &SurfaceHit::distance);
  return hits;
}

NurbsSurface nurbsPlane(const NurbsPlaneOptions& options) {
  NurbsSurface plane;
  plane.degreeU = plane.degreeV = options.degree;
  const auto knotsOf = [&](int patches) {
    std::vector<double> knots;
    for (int i = 0; i < patches + 2 * options.degree - 1; ++i)
      knots.push_back(std::clamp((i - options.degree + 1.0) / patches, 0.0, 1.0));
    return knots;
  };
  plane.knotsU = knotsOf(options.patchesU);
  plane.knotsV = knotsOf(options.patchesV);
  const Vec3 up = normalized(length(options.normal) > 0 ? options.normal : Vec3{0, 1, 0});
  // Across Y the plane runs along X and -Z; other normals turn that the short way.
  const Vec3 y{0, 1, 0};
  const Vec3 axis = cross(y, up);
  const double sine = length(axis), cosine = dot(y, up);
  const Vec3 around = sine > 1e-12 ? axis / sine : Vec3{1, 0, 0};
  const auto turned = [&](const Vec3& way) {
    return way * cosine + cross(around, way) * sine + around * (dot(around, way) * (1 - cosine));
  };
  const Vec3 along = turned({1, 0, 0}), across = turned({0, 0, -1});
  // With control points at the means of `degree` knots the parameters run evenly.
  const auto mean = [&](const std::vector<double>& knots, int i) {
    double sum = 0;
    for (int k = 0; k < options.degree; ++k) sum += knots[at(i + k)];
    return sum / options.degree - 0.5;
  };
  for (int i = 0; i < plane.countU(); ++i)
    for (int j = 0; j < plane.countV(); ++j)
      plane.points.push_back(options.center + along * (options.width * mean(plane.knotsU, i)) +
                             across * (options.width * options.ratio * mean(plane.knotsV, j)));
  return plane;
}

}  // namespace host::math
