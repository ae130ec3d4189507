#include "host/ops/primitives/plane.h"

#include <algorithm>
#include <utility>

#include "host/ops/primitives/primitive_builder.h"

namespace host::ops {

// Scenes store this tilt with every default plane; it is kept so that results compare equal to
// them.
constexpr double kStoredTilt = 2.220446049250313e-16;

Result<Mesh> makePlane(const PlaneOptions& options) {
  const int sw = options.subdivisionsWidth, sh = options.subdivisionsHeight;
  HOST_TRY(checkSize("The plane's width", options.width));
  HOST_TRY(checkSize("The plane's height", options.height));
  HOST_TRY(checkSubdivisions("Subdivisions along the width", sw, 1));
  HOST_TRY(checkSubdivisions("Subdivisions along the height", sh, 1));
  HOST_TRY(checkFaceCount(double(sw) * sh));
  HOST_TRY(checkAxis(options.axis));
  if (options.createUVs < 0 || options.createUVs > 2)
    return fail(ErrorKind::BadArgument, "createUVs of a plane must be 0 to 2, not {}",
                options.createUVs);

  PrimitiveBuilder builder;
  const double largest = std::max(options.width, options.height);
  const double uvWidth = options.createUVs == 2 ? options.width / largest : 1;
  const double uvHeight = options.createUVs == 2 ? options.height / largest : 1;
  for (int row = 0; row <= sh; ++row)
    for (int c = 0; c <= sw; ++c) {
      const double u = double(c) / sw, v = double(row) / sh;
      const double z = options.height * (0.5 - v);
      builder.addPoint({options.width * (u - 0.5), -z * kStoredTilt, z});
      if (options.createUVs != 0) builder.addUv(u * uvWidth, v * uvHeight);
    }
  for (int row = 0; row <= sh; ++row)
    for (int c = 0; c <= sw; ++c) {
      const VertexId vertex = row * (sw + 1) + c;
      if (c < sw) builder.addEdge(vertex, vertex + 1, row != 0 && row != sh);
      if (row < sh) builder.addEdge(vertex, vertex + sw + 1, c != 0 && c != sw);
    }
  for (int row = 0; row < sh; ++row)
    for (int c = 0; c < sw; ++c) {
      const VertexId low = row * (sw + 1) + c, high = low + sw + 1;
      const std::array<VertexId, 4> loop{low, low + 1, high + 1, high};
      if (options.createUVs != 0)
        builder.addFace(loop, viewIds<UvId>(loop));  // a UV at each vertex
      else
        builder.addFace(loop, {});
    }
  return std::move(builder).finish(options.axis);
}

}  // namespace host::ops
