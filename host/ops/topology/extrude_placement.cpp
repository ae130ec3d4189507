#include "host/ops/topology/extrude_placement.h"

#include <cmath>

#include "host/math/euler.h"

namespace host::ops {
namespace {

double blend(double from, double to, double t) {
  return from + (to - from) * t;
}

math::Vec3 moved(const math::Vec3& p, const ExtrudeTransform& by, double taper, double twist,
                 double t) {
  const double size = blend(1, taper, t);
  math::Vec3 q(p.x * blend(1, by.scale.x, t) * size, p.y * blend(1, by.scale.y, t) * size,
               p.z * blend(1, by.scale.z, t));
  const double c = std::cos(twist * t), s = std::sin(twist * t);
  q = {q.x * c - q.y * s, q.x * s + q.y * c, q.z};
  q = math::transformPoint(q, math::eulerToMatrix(by.rotate * t));
  return q + by.translate * t;
}

}  // namespace

math::Vec3 ExtrudeMover::place(const math::Vec3& p, const math::Vec3& inset, const math::Vec3& push,
                               double t) const {
  const math::Vec3 start = p + inset * t + push * t;
  const math::Vec3 local =
      moved(region_.toLocal(start), placement_.local, placement_.taper, placement_.twist, t);
  return pivot_ + moved(region_.toWorld(local) - pivot_, placement_.world, 1, 0, t);
}

}  // namespace host::ops
