#pragma once

#include "host/math/box.h"

namespace host::spatial {

/// Whether a triangle and a box share a point, touching included (separating axes, Akenine-Moeller
/// 2001). Triangles without area act as segments or points.
[[nodiscard]] bool overlaps(const math::Box& box, const math::Vec3& a, const math::Vec3& b,
                            const math::Vec3& c);

}  // namespace host::spatial
