#include "host/ops/primitives/torus.h"

#include <cmath>
#include <numbers>
#include <utility>

#include "host/ops/primitives/lathe.h"

namespace host::ops {

Result<Mesh> makeTorus(const TorusOptions& options) {
  const int sx = options.subdivisionsAxis, sy = options.subdivisionsHeight;
  HOST_TRY(checkSize("The torus's radius", options.radius));
  HOST_TRY(checkSize("The torus's section radius", options.sectionRadius));
  HOST_TRY(checkSubdivisions("Subdivisions around the axis", sx, 3));
  HOST_TRY(checkSubdivisions("Subdivisions around the section", sy, 3));
  HOST_TRY(checkFaceCount(double(sx) * sy));
  HOST_TRY(checkAxis(options.axis));
  if (!std::isfinite(options.twist))
    return fail(ErrorKind::BadArgument, "The torus's twist must be a finite angle");
  if (options.createUVs < 0 || options.createUVs > 1)
    return fail(ErrorKind::BadArgument, "createUVs of a torus must be 0 or 1, not {}",
                options.createUVs);

  PrimitiveBuilder builder;
  for (int j = 0; j < sy; ++j) {
    const double angle = 2 * std::numbers::pi * j / sy - options.twist;
    const double radius = options.radius - options.sectionRadius * std::cos(angle);
    const double y = options.sectionRadius * std::sin(angle);
    for (int i = 0; i < sx; ++i) builder.addPoint(ringPoint(radius, y, i, sx));
  }
  if (options.createUVs != 0)
    for (int j = 0; j <= sy; ++j) addUvLine(builder, sx, 0, 1, 1 - double(j) / sy);
  for (int j = 0; j < sy; ++j)
    for (int i = 0; i < sx; ++i) builder.addEdge(j * sx + i, j * sx + (i + 1) % sx, true);
  for (int j = 0; j < sy; ++j)
    for (int i = 0; i < sx; ++i) builder.addEdge(j * sx + i, (j + 1) % sy * sx + i, true);
  for (int j = 0; j < sy; ++j)
    for (int i = 0; i < sx; ++i) {
      const Index next = (j + 1) % sy * sx, right = (i + 1) % sx;
      const UvId low = j * (sx + 1) + i, high = low + sx + 1;
      if (options.createUVs == 0)
        builder.addFace({j * sx + right, j * sx + i, next + i, next + right}, {});
      else
        builder.addFace({j * sx + right, j * sx + i, next + i, next + right},
                        {low + 1, low, high, high + 1});
    }
  return std::move(builder).finish(options.axis);
}

}  // namespace host::ops
