#include "host/ops/primitives/sphere.h"

#include <cmath>
#include <numbers>
#include <utility>

#include "host/ops/primitives/lathe.h"

namespace host::ops {

Result<Mesh> makeSphere(const SphereOptions& options) {
  const int sx = options.subdivisionsAxis, sy = options.subdivisionsHeight;
  HOST_TRY(checkSize("The sphere's radius", options.radius));
  HOST_TRY(checkSubdivisions("Subdivisions around the axis", sx, 3));
  HOST_TRY(checkSubdivisions("Subdivisions along the height", sy, 2));
  HOST_TRY(checkFaceCount(double(sx) * sy));
  HOST_TRY(checkAxis(options.axis));
  if (options.createUVs < 0 || options.createUVs > 2)
    return fail(ErrorKind::BadArgument, "createUVs of a sphere must be 0 to 2, not {}",
                options.createUVs);

  PrimitiveBuilder builder;
  LatheProfile profile;
  profile.sides = sx;
  profile.hasUvs = options.createUVs != 0;
  std::vector<UvRow> rows;
  for (int j = 1; j < sy; ++j) {
    const double latitude = std::numbers::pi * (double(j) / sy - 0.5);
    profile.rings.push_back(
        {options.radius * std::cos(latitude), options.radius * std::sin(latitude), true});
    if (profile.hasUvs)
      rows.push_back(addUvLine(builder, sx, 0, 1, double(j) / sy));
    else
      rows.push_back({});
  }
  for (std::size_t j = 0; j + 1 < rows.size(); ++j)
    profile.bands.push_back({true, rows[j], rows[j + 1]});
  profile.bottom.y = -options.radius;
  profile.top.y = options.radius;
  profile.bottom.row = rows.front();
  profile.top.row = rows.back();
  for (LatheEnd* end : {&profile.bottom, &profile.top}) {
    const double v = end == &profile.bottom ? 0 : 1;
    end->hasUvAPoleFace = options.createUVs == 2;
    end->poleUv = builder.uvCount();
    if (options.createUVs == 1) builder.addUv(0.5, v);
    for (int i = 0; options.createUVs == 2 && i < sx; ++i) builder.addUv((i + 0.5) / sx, v);
  }
  addLathe(builder, profile);
  return std::move(builder).finish(options.axis);
}

}  // namespace host::ops
