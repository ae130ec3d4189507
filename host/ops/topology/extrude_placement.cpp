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
    return fail(ErrorKind::BadArgument, "The number of divisions must be 1 to {}, not {}",
                kMostDivisions, p.divisions);
  // Beyond this the points would overflow the floats they are stored in.
  constexpr double kLargest = 1e30;
  const auto isUsable = [](double value) { return std::abs(value) <= kLargest; };
  const auto areUsable = [&](const math::Vec3& v) {
    return isUsable(v.x) && isUsable(v.y) && isUsable(v.z);
  };
  for (const double value : {p.offset, p.thickness, p.taper, p.twist, p.smoothingAngle})
    if (!isUsable(value))
      return fail(ErrorKind::BadArgument, "{} is no number that an extrusion can use", value);
  for (const ExtrudeTransform* t : {&p.local, &p.world})
    for (const math::Vec3& v : {t->translate, t->rotate, t->scale})
      if (!areUsable(v))
        return fail("({}, {}, {}) is nothing that an extrusion can use", v.x, v.y, v.z);
  if (p.pivot && !areUsable(*p.pivot))
    return fail(ErrorKind::BadArgument, "The pivot of an extrusion needs usable numbers");
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

math::Vec3 ExtrudeMover::Motion::turned(const math::Vec3& p) const {
  const math::Vec3 q(p.x * scale.x, p.y * scale.y, p.z * scale.z);
  const math::Vec3 twisted(q.x * cosine - q.y * sine, q.x * sine + q.y * cosine, q.z);
  return math::transformPoint(twisted, rotation);
}

ExtrudeMover::ExtrudeMover(const ExtrudePlacement& placement, const math::Frame& region,
                           const math::Vec3& pivot, double t)
    : local_(placement.local, placement.taper, placement.twist, t),
      world_(placement.world, 1, 0, t),
      region_(region),
      pivot_(pivot),
      t_(t) {}

math::Vec3 ExtrudeMover::place(const math::Vec3& p, const math::Vec3& inset, const math::Vec3& push,
                               const math::Vec3& normal) const {
  math::Vec3 q = p + inset * t_ + push * t_;
  if (!local_.isPlain) q = region_.toWorld(local_.turned(region_.toLocal(q)));
  // Along z each point follows its own normal: a region that closes in itself grows all round.
  q += region_.x * local_.translation.x + region_.y * local_.translation.y +
       normal * local_.translation.z;
  return world_.isPlain ? q + world_.translation
                        : pivot_ + world_.turned(q - pivot_) + world_.translation;
}

}  // namespace host::ops
