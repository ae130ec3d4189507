#include "host/ops/primitives/pipe.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

#include "host/ops/primitives/lathe.h"

namespace host::ops {
namespace {

struct SectionPoint {
  double radius = 0, y = 0;
  bool isRim = false;
};

/// Adds the end's points between the two rims, from one to the other.
void addEnd(std::vector<SectionPoint>& section, const PipeOptions& o, double side) {
  const int count = std::max(o.subdivisionsCaps, 1);
  const double middle = o.radius - 0.5 * o.thickness, half = 0.5 * o.thickness;
  for (int k = 1; k < count; ++k) {
    const double along = std::cos(std::numbers::pi * k / count) * side;
    const double t = 1 - 2.0 * k / count;
    section.push_back({middle + half * (o.roundCap ? along : t * side),
                       side * 0.5 * o.height +
                           (o.roundCap ? side * half * std::sin(std::numbers::pi * k / count) : 0),
                       false});
  }
}

/// Once around the wall, beginning at the lower outer rim.
std::vector<SectionPoint> sectionOf(const PipeOptions& o) {
  std::vector<SectionPoint> section;
  const int sy = o.subdivisionsHeight;
  const double inner = o.radius - o.thickness, half = 0.5 * o.height;
  for (int j = 0; j <= sy; ++j)
    section.push_back({o.radius, -half + o.height * j / sy, j == 0 || j == sy});
  addEnd(section, o, 1);
  for (int j = 0; j <= sy; ++j)
    section.push_back({inner, half - o.height * j / sy, j == 0 || j == sy});
  addEnd(section, o, -1);
  return section;
}

Result<void> checkPipe(const PipeOptions& o) {
  HOST_TRY(checkSize("The pipe's radius", o.radius));
  HOST_TRY(checkSize("The pipe's height", o.height));
  HOST_TRY(checkSize("The pipe's thickness", o.thickness));
  if (o.thickness >= o.radius)
    return fail(ErrorKind::BadArgument,
                "The pipe's thickness must be less than its radius of {}, not {}", o.radius,
                o.thickness);
  HOST_TRY(checkSubdivisions("Subdivisions around the axis", o.subdivisionsAxis, 3));
  HOST_TRY(checkSubdivisions("Subdivisions along the height", o.subdivisionsHeight, 1));
  HOST_TRY(checkSubdivisions("Subdivisions of the caps", o.subdivisionsCaps, 0));
  HOST_TRY(checkFaceCount(double(o.subdivisionsAxis) * 2 *
                          (double(o.subdivisionsHeight) + o.subdivisionsCaps)));
  return checkAxis(o.axis);
}

}  // namespace

Result<Mesh> makePipe(const PipeOptions& options) {
  HOST_TRY(checkPipe(options));
  const std::vector<SectionPoint> section = sectionOf(options);
  const int sx = options.subdivisionsAxis, rings = static_cast<int>(section.size());
  PrimitiveBuilder builder;
  for (const SectionPoint& point : section)
    for (int i = 0; i < sx; ++i) builder.addPoint(ringPoint(point.radius, point.y, i, sx));
  if (options.createUVs)
    for (int j = 0; j <= rings; ++j) addUvLine(builder, sx, 0, 1, double(j) / rings);
  for (int j = 0; j < rings; ++j)
    for (int i = 0; i < sx; ++i)
      builder.addEdge(j * sx + i, j * sx + (i + 1) % sx,
                      !section[static_cast<std::size_t>(j)].isRim || options.roundCap);
  for (int j = 0; j < rings; ++j)
    for (int i = 0; i < sx; ++i) builder.addEdge(j * sx + i, (j + 1) % rings * sx + i, true);
  for (int j = 0; j < rings; ++j)
    for (int i = 0; i < sx; ++i) {
      const Index low = j * sx, high = (j + 1) % rings * sx, right = (i + 1) % sx;
      const UvId uvLow = j * (sx + 1) + i, uvHigh = uvLow + sx + 1;
      if (options.createUVs)
        builder.addFace({low + i, low + right, high + right, high + i},
                        {uvLow, uvLow + 1, uvHigh + 1, uvHigh});
      else
        builder.addFace({low + i, low + right, high + right, high + i}, {});
    }
  return std::move(builder).finish(options.axis);
}

}  // namespace host::ops
