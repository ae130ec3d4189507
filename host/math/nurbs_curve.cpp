#include "host/math/nurbs_curve.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace host::math {

namespace {

/// A point with its weight: coordinates are multiplied by it.
struct Weighted {
  Vec3 place;
  double weight = 1;
};
Weighted mix(const Weighted& a, const Weighted& b, double t) {
  return {a.place * (1 - t) + b.place * t, a.weight * (1 - t) + b.weight * t};
}

Weighted pointOf(const NurbsCurve& curve, std::size_t i) {
  const double weight = curve.weights.empty() ? 1 : curve.weights[i];
  return {curve.points[i] * weight, weight};
}

/// The knot with the left-out ones at the ends in place.
double fullKnot(const NurbsCurve& curve, std::size_t i) {
  if (i == 0) return curve.knots.front();
  return curve.knots[std::min(i - 1, curve.knots.size() - 1)];
}

/// The span that holds a parameter: full knots [k, k + 1).
std::size_t spanOf(const NurbsCurve& curve, double parameter) {
  const auto degree = static_cast<std::size_t>(curve.degree);
  std::size_t span = degree;
  while (span + 1 < curve.points.size() && parameter >= fullKnot(curve, span + 1)) ++span;
  return span;
}

/// The homogeneous point and its first derivatives at a parameter.
std::array<Weighted, 3> homogeneous(const NurbsCurve& curve, double parameter) {
  const auto degree = static_cast<std::size_t>(curve.degree);
  const std::size_t span = spanOf(curve, parameter);
  const auto evaluate = [&](std::vector<Weighted> points, std::size_t order) {
    // `points` are those of a curve of degree `order` in this span.
    for (std::size_t level = 1; level <= order; ++level)
      for (std::size_t i = order; i >= level; --i) {
        const double low = fullKnot(curve, span - order + i),
                     high = fullKnot(curve, span + 1 + i - level);
        const double t = high > low ? (parameter - low) / (high - low) : 0;
        points[i] = mix(points[i - 1], points[i], t);
      }
    return points[order];
  };
  std::vector<Weighted> points;
  for (std::size_t i = 0; i <= degree; ++i) points.push_back(pointOf(curve, span - degree + i));
  const auto differences = [&](const std::vector<Weighted>& from, std::size_t order) {
    std::vector<Weighted> result;
    for (std::size_t i = 0; i < order; ++i) {
      const double low = fullKnot(curve, span - order + i + 1),
                   high = fullKnot(curve, span + 1 + i);
      const double factor = high > low ? static_cast<double>(order) / (high - low) : 0;
      result.push_back({(from[i + 1].place - from[i].place) * factor,
                        (from[i + 1].weight - from[i].weight) * factor});
    }
    return result;
  };
  std::array<Weighted, 3> result{evaluate(points, degree), Weighted{{}, 0}, Weighted{{}, 0}};
  const std::vector<Weighted> slopes = differences(points, degree);
  result[1] = evaluate(slopes, degree - 1);
  if (degree > 1) result[2] = evaluate(differences(slopes, degree - 1), degree - 2);
  return result;
}

double speedIntegral(const NurbsCurve& curve, double from, double to) {
  static constexpr double kPlaces[] = {-0.906179845938664, -0.538469310105683, 0, 0.538469310105683,
                                       0.906179845938664};
  static constexpr double kWeights[] = {0.236926885056189, 0.478628670499366, 0.568888888888889,
                                        0.478628670499366, 0.236926885056189};
  const double middle = 0.5 * (from + to), half = 0.5 * (to - from);
  double sum = 0;
  for (std::size_t i = 0; i < 5; ++i)
    sum += kWeights[i] * math::length(curve.derivative(middle + half * kPlaces[i]));
  return sum * half;
}

double refined(const NurbsCurve& curve, double from, double to, double whole, int depth) {
  const double middle = 0.5 * (from + to);
  const double left = speedIntegral(curve, from, middle), right = speedIntegral(curve, middle, to);
  const bool agrees = std::abs(left + right - whole) <= 1e-10 * std::max(1.0, whole);
  if (agrees || depth == 0) return left + right;
  return refined(curve, from, middle, left, depth - 1) +
         refined(curve, middle, to, right, depth - 1);
}

/// The knots within the domain, each once.
std::vector<double> breaks(const NurbsCurve& curve, double from, double to) {
  std::vector<double> all{from};
  for (const double knot : curve.knots)
    if (knot > all.back() && knot < to) all.push_back(knot);
  all.push_back(to);
  return all;
}

}  // namespace

Vec3 NurbsCurve::at(double parameter) const {
  const Weighted point = homogeneous(*this, std::clamp(parameter, first(), last()))[0];
  return point.place / point.weight;
}

Vec3 NurbsCurve::derivative(double parameter, int order) const {
  const auto h = homogeneous(*this, std::clamp(parameter, first(), last()));
  const Vec3 place = h[0].place / h[0].weight;
  const Vec3 once = (h[1].place - place * h[1].weight) / h[0].weight;
  if (order == 1) return once;
  return (h[2].place - once * (2 * h[1].weight) - place * h[2].weight) / h[0].weight;
}

double NurbsCurve::length(double from, double to) const {
  from = std::clamp(from, first(), last());
  to = std::clamp(to, first(), last());
  if (to <= from) return 0;
  double sum = 0;
  const std::vector<double> ends = breaks(*this, from, to);
  for (std::size_t i = 0; i + 1 < ends.size(); ++i)
    sum += refined(*this, ends[i], ends[i + 1], speedIntegral(*this, ends[i], ends[i + 1]), 12);
  return sum;
}

double NurbsCurve::parameterAtLength(double wanted) const {
  if (wanted <= 0) return first();
  const std::vector<double> ends = breaks(*this, first(), last());
  for (std::size_t i = 0; i + 1 < ends.size(); ++i) {
    const double piece = length(ends[i], ends[i + 1]);
    if (wanted > piece) {
      wanted -= piece;
      continue;
    }
    double low = ends[i], high = ends[i + 1];
    for (int round = 0; round < 60 && high - low > 1e-13 * std::max(1.0, std::abs(high)); ++round) {
      const double middle = 0.5 * (low + high);
      (length(ends[i], middle) < wanted ? low : high) = middle;
    }
    return 0.5 * (low + high);
  }
  return last();
}

double NurbsCurve::closest(const Vec3& place) const {
  constexpr int kSamples = 16;
  const std::vector<double> ends = breaks(*this, first(), last());
  double best = first(), bestDistance = math::length(at(best) - place);
  for (std::size_t i = 0; i + 1 < ends.size(); ++i)
    for (int k = 1; k <= kSamples; ++k) {
      const double t = ends[i] + (ends[i + 1] - ends[i]) * k / kSamples;
      const double distance = math::length(at(t) - place);
      if (distance < bestDistance) {
        best = t;
        bestDistance = distance;
      }
    }
  for (int round = 0; round < 20; ++round) {
    const Vec3 away = at(best) - place, slope = derivative(best), bend = derivative(best, 2);
    const double value = dot(away, slope), rate = dot(slope, slope) + dot(away, bend);
    if (rate <= 0) break;
    const double next = std::clamp(best - value / rate, first(), last());
    const double distance = math::length(at(next) - place);
    if (distance > bestDistance || next == best) break;
    best = next;
    bestDistance = distance;
  }
  return best;
}

Result<void> check(const NurbsCurve& curve) {
  if (curve.degree < 1 || curve.degree > 7)
    return fail("A curve's degree is 1 to 7, not {}", curve.degree);
  const auto degree = static_cast<std::size_t>(curve.degree);
  if (curve.points.size() < degree + 1)
    return fail("A curve of degree {} needs {} points, not {}", curve.degree, degree + 1,
                curve.points.size());
  if (curve.knots.size() != curve.points.size() + degree - 1)
    return fail("A curve of degree {} with {} points has {} knots, not {}", curve.degree,
                curve.points.size(), curve.points.size() + degree - 1, curve.knots.size());
  if (!curve.weights.empty() && curve.weights.size() != curve.points.size())
    return fail("A curve has as many weights as points");
  const auto isFinite = [](double number) { return std::isfinite(number); };
  if (!std::ranges::all_of(curve.knots, isFinite) || !std::ranges::is_sorted(curve.knots))
    return fail("The knots of a curve don't descend");
  if (!(curve.last() > curve.first())) return fail("The knots of a curve leave it no length");
  if (!std::ranges::all_of(curve.points, [](const Vec3& p) { return math::isFinite(p); }))
    return fail("A point of the curve is not finite");
  if (!std::ranges::all_of(curve.weights, [](double w) { return std::isfinite(w) && w > 0; }))
    return fail("The weights of a curve are above 0");
  return {};
}

std::vector<double> uniformKnots(int degree, std::size_t points, CurveForm form) {
  std::vector<double> knots;
  const auto spans = static_cast<double>(points) - degree;
  for (std::size_t i = 0; i < points + static_cast<std::size_t>(degree) - 1; ++i) {
    const double place = static_cast<double>(i) - (degree - 1);
    knots.push_back(form == CurveForm::Periodic ? place : std::clamp(place, 0.0, spans));
  }
  return knots;
}

namespace {

/// Solves a dense system by elimination with row exchange; three right sides at once.
bool solve(std::vector<std::vector<double>>& matrix, std::vector<Vec3>& right) {
  const std::size_t n = matrix.size();
  for (std::size_t column = 0; column < n; ++column) {
    std::size_t best = column;
    for (std::size_t row = column + 1; row < n; ++row)
      if (std::abs(matrix[row][column]) > std::abs(matrix[best][column])) best = row;
    if (std::abs(matrix[best][column]) < 1e-14) return false;
    std::swap(matrix[best], matrix[column]);
    std::swap(right[best], right[column]);
    for (std::size_t row = column + 1; row < n; ++row) {
      const double factor = matrix[row][column] / matrix[column][column];
      if (factor == 0) continue;
      for (std::size_t k = column; k < n; ++k) matrix[row][k] -= factor * matrix[column][k];
      right[row] = right[row] - right[column] * factor;
    }
  }
  for (std::size_t row = n; row-- > 0;) {
    for (std::size_t k = row + 1; k < n; ++k) right[row] = right[row] - right[k] * matrix[row][k];
    right[row] = right[row] / matrix[row][row];
  }
  return true;
}

}  // namespace

Result<NurbsCurve> curveThrough(const std::vector<Vec3>& places, int degree) {
  const std::size_t count = places.size();
  if (count < 2) return fail("A curve goes through two points at least");
  if (count > 2000) return fail("A curve through {} points is more than 2000", count);
  NurbsCurve curve;
  curve.degree = std::min(degree, static_cast<int>(count) - 1);
  const auto order = static_cast<std::size_t>(curve.degree);
  std::vector<double> parameters{0};
  for (std::size_t i = 1; i < count; ++i)
    parameters.push_back(parameters.back() + math::length(places[i] - places[i - 1]));
  if (!(parameters.back() > 0)) return fail("The points of the curve are all in one place");
  for (double& parameter : parameters)
    parameter *= static_cast<double>(count - order) / parameters.back();
  parameters.back() = static_cast<double>(count - order);
  // Knots are means of neighbouring parameters, so that every span has points.
  curve.knots.assign(order, 0);
  for (std::size_t j = 1; j + order < count; ++j) {
    double sum = 0;
    for (std::size_t i = j; i < j + order; ++i) sum += parameters[i];
    curve.knots.push_back(sum / static_cast<double>(order));
  }
  curve.knots.insert(curve.knots.end(), order, parameters.back());
  curve.points.assign(count, Vec3());
  std::vector<std::vector<double>> matrix(count, std::vector<double>(count, 0));
  for (std::size_t column = 0; column < count; ++column) {
    curve.points[column] = {1, 0, 0};
    for (std::size_t row = 0; row < count; ++row) matrix[row][column] = curve.at(parameters[row]).x;
    curve.points[column] = {};
  }
  std::vector<Vec3> right = places;
  if (!solve(matrix, right)) return fail("No curve goes through these points");
  curve.points = std::move(right);
  return curve;
}

NurbsCurve circleCurve(double radius, int degree, int sections, const Vec3& center,
                       const Vec3& normal) {
  const Vec3 z = math::normalized(math::length(normal) > 0 ? normal : Vec3{0, 1, 0});
  const Vec3 helper = std::abs(z.y) < 0.9 ? Vec3{0, 1, 0} : Vec3{0, 0, 1};
  const Vec3 x = math::normalized(math::cross(helper, z)), y = math::cross(z, x);
  const int count = std::max(sections, degree == 1 ? 3 : 4);
  // The control points of a cubic lie outside, so that the knots lie on the circle.
  const double step = 2 * std::numbers::pi / count;
  const double reach = degree == 1 ? radius : radius * 3 / (2 + std::cos(step));
  NurbsCurve curve;
  curve.degree = degree == 1 ? 1 : 3;
  curve.form = CurveForm::Periodic;
  for (int i = 0; i < count + curve.degree; ++i) {
    const double angle = step * (i % count);
    curve.points.push_back(center + x * (reach * std::cos(angle)) + y * (reach * std::sin(angle)));
  }
  if (degree == 1) curve.form = CurveForm::Closed;
  curve.knots = uniformKnots(curve.degree, curve.points.size(),
                             degree == 1 ? CurveForm::Open : CurveForm::Periodic);
  return curve;
}

}  // namespace host::math
