#include "host/ops/uv/unfold_relax.h"

#include <algorithm>

#include "host/base/parallel.h"

namespace host::ops::flat {
namespace {

constexpr std::size_t kGrain = 4096;  ///< vertices worth a thread

}  // namespace

/// One element as seen from the vertex that moves by s: its invariants are a + 2 f.s + b2 s.s and
/// d + c.s.
struct Relaxer::Term {
  double a, d, weight, b2;
  Point f, c;
};

Relaxer::Relaxer(const Energy& energy, std::span<const Element> elements, std::size_t vertexCount,
                 const Border* border, std::span<const std::uint8_t> isFixed, Axes axes)
    : energy_(energy), elements_(elements), border_(border), axes_(axes) {
  start_.assign(vertexCount + 1, 0);
  for (const Element& e : elements)
    for (const Index v : e.corners) ++start_[at(v) + 1];
  for (std::size_t v = 0; v < vertexCount; ++v) start_[v + 1] += start_[v];
  corners_.resize(3 * elements.size());
  std::vector<Index> next(start_.begin(), start_.end() - 1);
  for (std::size_t e = 0; e < elements.size(); ++e)
    for (std::size_t k = 0; k < 3; ++k)
      corners_[at(next[at(elements[e].corners[k])]++)] = static_cast<Index>(3 * e + k);
  makeGroups(isFixed);
}

void Relaxer::makeGroups(std::span<const std::uint8_t> isFixed) {
  const std::size_t count = start_.size() - 1;
  std::vector<std::uint8_t> color(count, 255);
  for (std::size_t v = 0; v < count; ++v) {
    if (start_[v] == start_[v + 1] || (!isFixed.empty() && isFixed[v])) continue;
    if (border_ && border_->next[v] != kNone) {
      borderVertices_.push_back(static_cast<Index>(v));
      continue;
    }
    std::array<bool, 256> isUsed{};
    for (Index i = start_[v]; i < start_[v + 1]; ++i)
      for (const Index n : elements_[at(corners_[at(i)]) / 3].corners) isUsed[color[at(n)]] = true;
    std::uint8_t mine = 0;
    while (mine < 254 && isUsed[mine]) ++mine;
    color[v] = mine;
    if (groups_.size() <= mine) groups_.resize(std::size_t{mine} + 1);
    groups_[mine].push_back(static_cast<Index>(v));
  }
}

bool Relaxer::relax(Index v, std::vector<Point>& x, BorderGuard* guard) const {
  constexpr std::size_t kInPlace = 32;
  std::array<Term, kInPlace> inPlace;
  std::vector<Term> many;
  const std::size_t count = at(start_[at(v) + 1] - start_[at(v)]);
  if (count > kInPlace) many.resize(count);
  Term* terms = count > kInPlace ? many.data() : inPlace.data();
  double before = 0, gx = 0, gy = 0, hxx = 0, hxy = 0, hyy = 0;
  for (std::size_t i = 0; i < count; ++i) {
    const std::size_t code = at(corners_[at(start_[at(v)]) + i]);
    const Element& e = elements_[code / 3];
    const Point b = e.factor(static_cast<int>(code % 3));
    const Jacobian j = jacobian(e, x);
    Term& t = terms[i];
    t = {j.norm2(),
         j.det(),
         e.weight,
         dot(b, b),
         {j.xx * b.x + j.xy * b.y, j.yx * b.x + j.yy * b.y},
         {j.yy * b.x - j.yx * b.y, j.xx * b.y - j.xy * b.x}};
    const Energy::Slopes s = energy_.slopes(t.a, t.d);
    before += t.weight * energy_.value(t.a, t.d);
    gx += t.weight * (2 * s.a * t.f.x + s.d * t.c.x);
    gy += t.weight * (2 * s.a * t.f.y + s.d * t.c.y);
    hxx += t.weight * (2 * s.a * t.b2 + 4 * s.aa * t.f.x * t.f.x + 4 * s.ad * t.f.x * t.c.x +
                       s.dd * t.c.x * t.c.x);
    hyy += t.weight * (2 * s.a * t.b2 + 4 * s.aa * t.f.y * t.f.y + 4 * s.ad * t.f.y * t.c.y +
                       s.dd * t.c.y * t.c.y);
    hxy += t.weight * (4 * s.aa * t.f.x * t.f.y + 2 * s.ad * (t.f.x * t.c.y + t.f.y * t.c.x) +
                       s.dd * t.c.x * t.c.y);
  }
  // A saddle becomes a bowl by lifting the smaller eigenvalue.
  const double mean = 0.5 * (hxx + hyy);
  const double spread = std::sqrt(0.25 * (hxx - hyy) * (hxx - hyy) + hxy * hxy);
  const double lift = std::max(0.0, 1e-3 * (std::abs(mean) + spread) - (mean - spread));
  hxx += lift;
  hyy += lift;
  Point step;
  if (axes_ == Axes::Both) {
    const double det = hxx * hyy - hxy * hxy;
    step = {-(hyy * gx - hxy * gy) / det, -(hxx * gy - hxy * gx) / det};
  } else if (axes_ == Axes::VerticalOnly) {
    step = {0, -gy / hyy};
  } else {
    step = {-gx / hxx, 0};
  }
  const double slope = gx * step.x + gy * step.y;
  if (!(slope < -1e-13 * before)) return false;  // also when something is not a number
  double reach = 1;
  for (std::size_t i = 0; i < count && energy_.softness == 0; ++i)
    if (const double change = dot(terms[i].c, step); terms[i].d + 1.1 * change < 0)
      reach = std::min(reach, -0.9 * terms[i].d / change);
  const double stepSquared = dot(step, step);
  const Point origin = x[at(v)];
  for (int tries = 0; tries < 12; ++tries, reach *= 0.5) {
    double after = 0;
    for (std::size_t i = 0; i < count; ++i) {
      const Term& t = terms[i];
      after +=
          t.weight * energy_.value(t.a + reach * (2 * dot(t.f, step) + reach * t.b2 * stepSquared),
                                   t.d + reach * dot(t.c, step));
    }
    if (!(after <= before + 1e-4 * reach * slope)) continue;
    const Point place = origin + reach * step;
    if (guard && (!guard->allows(v, place) || !guard->allows(v, guard->beyond(origin, place))))
      continue;
    x[at(v)] = place;
    if (guard) guard->moved(v);
    return true;
  }
  return false;
}

void Relaxer::sweep(std::vector<Point>& x) const {
  for (const std::vector<Index>& group : groups_)
    parallelFor(group.size(), kGrain, [&](std::size_t begin, std::size_t end) {
      for (std::size_t i = begin; i < end; ++i) relax(group[i], x, nullptr);
    });
  if (borderVertices_.empty()) return;
  BorderGuard guard(*border_, x);
  for (const Index v : borderVertices_) relax(v, x, &guard);
}

}  // namespace host::ops::flat
