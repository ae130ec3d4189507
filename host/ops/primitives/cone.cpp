#include "host/ops/primitives/cone.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

#include "host/ops/primitives/lathe.h"

namespace host::ops {
namespace {

struct ConeShape {
  ConeOptions options;
  bool areEdgesSmooth;  // those of the side and of the cap, not the rim
};

struct UvLayout {
  double u0, u1, v0, v1;  // the side's triangle
  double capV, capRadius;
};

UvLayout uvLayout(const ConeOptions& o) {
  if (o.createUVs == 3) return {0.25, 0.75, 0.5, 1, 0.25, 0.25};
  const double around = 2 * std::numbers::pi * o.radius, slant = std::hypot(o.radius, o.height);
  if (o.createUVs == 1) return {0, around, 2 * o.radius, 2 * o.radius + slant, o.radius, o.radius};
  const double sv = 1 / (2 * o.radius + slant);
  return {0, 1, 2 * o.radius * sv, 1, o.radius * sv, o.radius * std::min(1 / around, sv)};
}

Mesh makeConeShape(const ConeShape& shape) {
  const ConeOptions& o = shape.options;
  const int sx = o.subdivisionsAxis, sy = o.subdivisionsHeight, sc = o.subdivisionsCap;
  const bool hasUvs = o.createUVs != 0, isRound = o.roundCap && sc > 0;
  const UvLayout layout = uvLayout(o);
  const double baseY = -0.5 * o.height, middleU = 0.5 * (layout.u0 + layout.u1);
  PrimitiveBuilder builder;
  LatheProfile profile;
  profile.sides = sx;
  profile.hasUvs = hasUvs;
  std::vector<UvRow> capRows, sideRows;
  for (int k = 1; k <= std::max(sc, 1); ++k) {
    const double t = double(k) / std::max(sc, 1), angle = 0.5 * std::numbers::pi * t;
    if (k < sc && isRound)
      profile.rings.push_back(
          {o.radius * std::sin(angle), baseY - o.radius * std::cos(angle), true});
    else if (k < sc)
      profile.rings.push_back({o.radius * t, baseY, shape.areEdgesSmooth});
    capRows.push_back(
        hasUvs ? addUvCircle(builder, sx, middleU, layout.capV, layout.capRadius * t, false)
               : UvRow{});
  }
  for (int j = 0; j < sy; ++j) {
    const double t = double(j) / sy;
    profile.rings.push_back(
        {o.radius * (1 - t), baseY + o.height * t, j == 0 ? isRound : shape.areEdgesSmooth});
    const double u0 = layout.u0 + (middleU - layout.u0) * t,
                 u1 = layout.u1 + (middleU - layout.u1) * t;
    sideRows.push_back(
        hasUvs ? addUvLine(builder, sx, u0, u1, layout.v0 + (layout.v1 - layout.v0) * t) : UvRow{});
  }
  for (const std::vector<UvRow>* rows : {&capRows, &sideRows})
    for (std::size_t k = 0; k + 1 < rows->size(); ++k)
      profile.bands.push_back({shape.areEdgesSmooth, (*rows)[k], (*rows)[k + 1]});
  profile.bottom.kind = sc == 0 ? LatheEnd::Kind::Polygon : LatheEnd::Kind::Pole;
  profile.bottom.isFirst = true;
  profile.bottom.y = isRound ? baseY - o.radius : baseY;
  profile.bottom.row = capRows.front();
  profile.bottom.areSpokesSmooth = profile.top.areSpokesSmooth = shape.areEdgesSmooth;
  if (sc > 0 && hasUvs) profile.bottom.poleUv = builder.addUv(middleU, layout.capV);
  profile.top.y = 0.5 * o.height;
  profile.top.row = sideRows.back();
  if (hasUvs) profile.top.poleUv = builder.addUv(middleU, layout.v1);
  addLathe(builder, profile);
  return std::move(builder).finish(o.axis);
}

Result<void> checkCone(const char* what, const ConeOptions& o) {
  HOST_TRY(checkSubdivisions("Subdivisions around the axis", o.subdivisionsAxis, 3));
  HOST_TRY(checkSubdivisions("Subdivisions along the height", o.subdivisionsHeight, 1));
  HOST_TRY(checkSubdivisions("Subdivisions of the cap", o.subdivisionsCap, 0));
  HOST_TRY(checkFaceCount(double(o.subdivisionsAxis) *
                          (double(o.subdivisionsHeight) + o.subdivisionsCap)));
  HOST_TRY(checkAxis(o.axis));
  if (o.createUVs < 0 || o.createUVs > 3)
    return fail(ErrorKind::BadArgument, "createUVs of a {} must be 0 to 3, not {}", what,
                o.createUVs);
  return {};
}

}  // namespace

Result<Mesh> makeCone(const ConeOptions& options) {
  HOST_TRY(checkSize("The cone's radius", options.radius));
  HOST_TRY(checkSize("The cone's height", options.height));
  HOST_TRY(checkCone("cone", options));
  return makeConeShape({options, true});
}

Result<Mesh> makePyramid(const PyramidOptions& options) {
  HOST_TRY(checkSize("The pyramid's side length", options.sideLength));
  ConeOptions cone;
  cone.subdivisionsAxis = options.sides;
  cone.subdivisionsHeight = options.subdivisionsHeight;
  cone.subdivisionsCap = options.subdivisionsCap;
  cone.axis = options.axis;
  cone.createUVs = options.createUVs;
  HOST_TRY(checkCone("pyramid", cone));
  const double side = options.sideLength;
  cone.radius = 0.5 * side / std::sin(std::numbers::pi / options.sides);
  cone.height = options.sides <= 5 ? std::sqrt(side * side - cone.radius * cone.radius) : side;
  return makeConeShape({cone, false});
}

}  // namespace host::ops
