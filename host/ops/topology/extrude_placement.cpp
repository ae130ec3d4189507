#include "host/ops/topology/extrude_placement.h"

#include <cmath>

#include "host/math/euler.h"

namespace host::ops {
namespace {

double blend(double from, double to, double t) {
  return from + (to - from) * t;
}

}  // namespace

Result<math::Matrix4> checkPlacement(const ExtrudePlacement& p) {
  constexpr int kMostDivisions = 10000;
  if (p.divisions < 1 || p.divisions > kMostDivisions)
    return fail("The number of divisions must be 1 to {}, not {}", kMostDivisions, p.divisions);
  for (const double value : {p.offset, p.thickness, p.taper, p.twist, p.smoothingAngle})
    if (!std::isfinite(value)) return fail("Extrusion needs finite numbers");
  for (const ExtrudeTransform* t : {&p.local, &p.world})
    for (const math::Vec3& v : {t->translate, t->rotate, t->scale})
      if (!math::isFinite(v)) return fail("Extrusion needs finite numbers");
  if (p.pivot && !math::isFinite(*p.pivot)) return fail("Extrusion needs a finite pivot");
  const auto inverse = math::inverse(p.space);
  if (!inverse) return fail("The object is scaled to nothing; extrusion has no space to work in");
  return *inverse;
}

ExtrudeMover::Motion::Motion(const ExtrudeTransform& by, double taper, double twist, double t)
    : cosine(std::cos(twist * t)),
      sine(std::sin(twist * t)),
      rotation(math::eulerToMatrix(by.rotate * t)),
      translation(by.translate * t) {
  const double size = blend(1, taper, t);
  scale = {blend(1, by.scale.x, t) * size, blend(1, by.scale.y, t) * size, blend(1, by.scale.z, t)};
  isPlain = scale == math::Vec3(1, 1, 1) && twist == 0 && by.rotate == math::Vec3();
}

math::Vec3 ExtrudeMover::Motion::moved(const math::Vec3& p) const {
  const math::Vec3 q(p.x * scale.x, p.y * scale.y, p.z * scale.z);
  const math::Vec3 turned(q.x * cosine - q.y * sine, q.x * sine + q.y * cosine, q.z);
  return math::transformPoint(turned, rotation) + translation;
}

ExtrudeMover::ExtrudeMover(const ExtrudePlacement& placement, const math::Frame& region,
                           const math::Vec3& pivot, double t)
    : local_(placement.local, placement.taper, placement.twist, t),
      world_(placement.world, 1, 0, t),
      region_(region),
      pivot_(pivot),
      t_(t) {}

math::Vec3 ExtrudeMover::place(const math::Vec3& p, const math::Vec3& inset,
                               const math::Vec3& push) const {
  math::Vec3 q = p + inset * t_ + push * t_;
  if (local_.isPlain)
    q += region_.x * local_.translation.x + region_.y * local_.translation.y +
         region_.z * local_.translation.z;
  else
    q = region_.toWorld(local_.moved(region_.toLocal(q)));
  return world_.isPlain ? q + world_.translation : pivot_ + world_.moved(q - pivot_);
}

}  // namespace host::ops
