#include "host/ops/uv/unfold_newton.h"

#include <Eigen/SparseCholesky>
#include <algorithm>
#include <limits>

namespace host::ops::flat {
namespace {

using Vector6 = std::array<double, 6>;

/// The positive part of an element's second derivatives as up to four weighted directions.
struct Modes {
  std::array<Vector6, 4> direction;
  std::array<double, 4> weight;
};

/// What a 2 x 2 direction of change of the map is in terms of the corners' positions.
Vector6 atCorners(const Element& e, const Jacobian& m) {
  Vector6 out;
  for (int k = 0; k < 3; ++k) {
    const Point b = e.factor(k);
    out[at(2 * k)] = m.xx * b.x + m.xy * b.y;
    out[at(2 * k + 1)] = m.yx * b.x + m.yy * b.y;
  }
  return out;
}

/// The map as rotation by `left`, stretches s1 >= s2, rotation back by `right`.
struct Stretches {
  double s1, s2;
  Point left, right;  // cosine and sine
};
Stretches stretchesOf(const Jacobian& f) {
  const double e = 0.5 * (f.xx + f.yy), g = 0.5 * (f.yx - f.xy);
  const double p = 0.5 * (f.xx - f.yy), q = 0.5 * (f.yx + f.xy);
  const double same = std::hypot(e, g), opposed = std::hypot(p, q);
  const double sum = std::atan2(g, e), difference = std::atan2(q, p);
  const double left = 0.5 * (difference + sum), right = 0.5 * (difference - sum);
  return {same + opposed,
          same - opposed,
          {std::cos(left), std::sin(left)},
          {std::cos(right), std::sin(right)}};
}

/// U M V' for rotations U and V and a matrix M.
Jacobian turned(const Stretches& s, const Jacobian& m) {
  const Point u = s.left, v = s.right;
  const Jacobian um{u.x * m.xx - u.y * m.yx, u.x * m.xy - u.y * m.yy, u.y * m.xx + u.x * m.yx,
                    u.y * m.xy + u.x * m.yy};
  return {um.xx * v.x - um.xy * v.y, um.xx * v.y + um.xy * v.x, um.yx * v.x - um.yy * v.y,
          um.yx * v.y + um.yy * v.x};
}

Modes modesOf(const Element& e, const Jacobian& f, const Energy::Slopes& by) {
  const Stretches s = stretchesOf(f);
  const double root = std::sqrt(0.5);
  Modes modes;
  modes.direction[0] = atCorners(e, turned(s, {0, -root, root, 0}));
  modes.weight[0] = 2 * by.a + by.d;
  modes.direction[1] = atCorners(e, turned(s, {0, root, root, 0}));
  modes.weight[1] = 2 * by.a - by.d;
  const double h11 =
      2 * by.a + 4 * by.aa * s.s1 * s.s1 + 4 * by.ad * s.s1 * s.s2 + by.dd * s.s2 * s.s2;
  const double h22 =
      2 * by.a + 4 * by.aa * s.s2 * s.s2 + 4 * by.ad * s.s1 * s.s2 + by.dd * s.s1 * s.s1;
  const double h12 = by.d + 4 * by.aa * s.s1 * s.s2 + 2 * by.ad * (s.s1 * s.s1 + s.s2 * s.s2) +
                     by.dd * s.s1 * s.s2;
  const double mean = 0.5 * (h11 + h22), half = 0.5 * (h11 - h22);
  const double spread = std::hypot(half, h12);
  const double angle = 0.5 * std::atan2(h12, half);
  const double c = std::cos(angle), n = std::sin(angle);
  modes.direction[2] = atCorners(e, turned(s, {c, 0, 0, n}));
  modes.weight[2] = mean + spread;
  modes.direction[3] = atCorners(e, turned(s, {-n, 0, 0, c}));
  modes.weight[3] = mean - spread;
  for (double& w : modes.weight) w = std::max(w, 0.0);
  return modes;
}

/// The longest step along `d` that keeps an element's determinant positive; infinite without limit.
double reachOf(const Jacobian& f, const Jacobian& d) {
  const double c = f.det(), a = d.det();
  const double b = f.xx * d.yy + d.xx * f.yy - f.xy * d.yx - d.xy * f.yx;
  const double none = std::numeric_limits<double>::infinity();
  const double under = b * b - 4 * a * c;
  if (under < 0) return none;
  const double q = -0.5 * (b + std::copysign(std::sqrt(under), b));
  double least = none;
  for (const double root : {a != 0 ? q / a : none, q != 0 ? c / q : none})
    if (root > 0) least = std::min(least, root);
  return least;
}

}  // namespace

struct NewtonSolver::System {
  using Matrix = Eigen::SparseMatrix<double>;
  Energy energy;
  std::span<const Element> elements;
  std::vector<Index> unknownOf;  // per vertex, the first of its two; -1 for those that stay
  std::vector<Index> entries;    // per element 21 places in the matrix's values, -1 for none
  std::vector<Index> diagonal;   // per unknown its place
  Matrix matrix;
  Eigen::SimplicialLDLT<Matrix> factor;
  Index unknowns = 0;

  void makePattern() {
    std::vector<Eigen::Triplet<double>> triplets;
    triplets.reserve(21 * elements.size() + at(unknowns));
    overEntries(
        [&](std::size_t, Index row, Index column) { triplets.emplace_back(row, column, 0); });
    for (Index u = 0; u < unknowns; ++u) triplets.emplace_back(u, u, 0);
    matrix.resize(unknowns, unknowns);
    matrix.setFromTriplets(triplets.begin(), triplets.end());
    const auto placeOf = [&](Index row, Index column) {
      const int* begin = matrix.innerIndexPtr() + matrix.outerIndexPtr()[column];
      const int* end = matrix.innerIndexPtr() + matrix.outerIndexPtr()[column + 1];
      return static_cast<Index>(std::lower_bound(begin, end, row) - matrix.innerIndexPtr());
    };
    entries.assign(21 * elements.size(), kNone);
    overEntries([&](std::size_t i, Index row, Index column) { entries[i] = placeOf(row, column); });
    for (Index u = 0; u < unknowns; ++u) diagonal.push_back(placeOf(u, u));
    factor.analyzePattern(matrix);
  }

  /// Visits the lower triangle of every element: the place of the entry, its row and column.
  template <class Visit>
  void overEntries(Visit visit) const {
    for (std::size_t e = 0; e < elements.size(); ++e) {
      std::size_t i = 21 * e;
      for (std::size_t r = 0; r < 6; ++r)
        for (std::size_t c = 0; c <= r; ++c, ++i) {
          const Index row = unknownOf[at(elements[e].corners[r / 2])];
          const Index column = unknownOf[at(elements[e].corners[c / 2])];
          if (row == kNone || column == kNone) continue;
          const Index a = row + static_cast<Index>(r % 2), b = column + static_cast<Index>(c % 2);
          visit(i, std::max(a, b), std::min(a, b));
        }
    }
  }

  void fill(std::span<const Point> x, Eigen::VectorXd& gradient) {
    double* values = matrix.valuePtr();
    std::fill(values, values + matrix.nonZeros(), 0.0);
    gradient.setZero(unknowns);
    for (std::size_t n = 0; n < elements.size(); ++n) {
      const Element& e = elements[n];
      const Jacobian f = jacobian(e, x);
      const Energy::Slopes by = energy.slopes(f.norm2(), f.det());
      const Vector6 pull =
          atCorners(e, {2 * by.a * f.xx + by.d * f.yy, 2 * by.a * f.xy - by.d * f.yx,
                        2 * by.a * f.yx - by.d * f.xy, 2 * by.a * f.yy + by.d * f.xx});
      for (std::size_t k = 0; k < 6; ++k)
        if (const Index u = unknownOf[at(e.corners[k / 2])]; u != kNone)
          gradient[u + static_cast<Index>(k % 2)] += e.weight * pull[k];
      const Modes modes = modesOf(e, f, by);
      std::size_t i = 21 * n;
      for (std::size_t r = 0; r < 6; ++r)
        for (std::size_t c = 0; c <= r; ++c, ++i) {
          if (entries[i] == kNone) continue;
          double sum = 0;
          for (std::size_t m = 0; m < 4; ++m)
            sum += modes.weight[m] * modes.direction[m][r] * modes.direction[m][c];
          values[entries[i]] += e.weight * sum;
        }
    }
    double trace = 0;
    for (const Index d : diagonal) trace += values[d];
    for (const Index d : diagonal) values[d] += 1e-7 * trace / unknowns;
  }
};

NewtonSolver::NewtonSolver(const Energy& energy, std::span<const Element> elements,
                           std::size_t vertexCount, std::span<const std::uint8_t> isFixed)
    : system_(std::make_unique<System>()) {
  System& s = *system_;
  s.energy = energy;
  s.elements = elements;
  s.unknownOf.assign(vertexCount, kNone);
  for (const Element& e : elements)
    for (const Index v : e.corners)
      if (isFixed.empty() || !isFixed[at(v)]) s.unknownOf[at(v)] = 0;
  for (Index& unknown : s.unknownOf)
    if (unknown == 0) {
      unknown = s.unknowns;
      s.unknowns += 2;
    }
  if (s.unknowns > 0) s.makePattern();
}

NewtonSolver::~NewtonSolver() = default;

double NewtonSolver::step(std::vector<Point>& x, const Border* border) {
  System& s = *system_;
  if (s.unknowns == 0) return 0;
  Eigen::VectorXd gradient;
  s.fill(x, gradient);
  s.factor.factorize(s.matrix);
  if (s.factor.info() != Eigen::Success) return 0;
  const Eigen::VectorXd solution = s.factor.solve(-gradient);
  const double slope = gradient.dot(solution);
  if (!(slope < 0)) return 0;
  std::vector<Point> direction(x.size());
  for (std::size_t v = 0; v < x.size(); ++v)
    if (const Index u = s.unknownOf[v]; u != kNone) direction[v] = {solution[u], solution[u + 1]};
  double reach = 1, weights = 0;
  for (const Element& e : s.elements) {
    reach = std::min(reach, 0.9 * reachOf(jacobian(e, x), jacobian(e, direction)));
    weights += e.weight;
  }
  const double before = meanEnergy(s.energy, s.elements, x);
  std::vector<Point> trial(x);
  for (int tries = 0; tries < 10; ++tries, reach *= 0.5) {
    for (std::size_t v = 0; v < x.size(); ++v)
      if (s.unknownOf[v] != kNone) trial[v] = x[v] + reach * direction[v];
    const double after = meanEnergy(s.energy, s.elements, trial);
    if (!(after <= before + 1e-4 * reach * slope / weights)) continue;
    if (border && !BorderGuard(*border, trial).isSimple()) continue;
    x.swap(trial);
    return (before - after) / before;
  }
  return 0;
}

}  // namespace host::ops::flat
