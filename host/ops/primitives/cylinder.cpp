#include "host/ops/primitives/cylinder.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

#include "host/ops/primitives/lathe.h"

namespace host::ops {
namespace {

struct UvLayout {
  double sideU0, sideU1, sideV0, sideV1;
  double capU, capBottomV, capTopV, capRadius;
};

UvLayout uvLayout(const CylinderOptions& o) {
  if (o.createUVs == 3) return {0.375, 0.625, 0.3125, 0.6875, 0.5, 0.15625, 0.84375, 0.15625};
  const double around = 2 * std::numbers::pi * o.radius, r = o.radius;
  UvLayout layout{0, around, 2 * r, 2 * r + o.height, 0.5 * around, r, 3 * r + o.height, r};
  if (o.createUVs == 1) return layout;
  const double su = 1 / around, sv = 1 / (o.height + 4 * r);
  // Discs stay round: the smaller of the two scales.
  layout = {0,   1,      layout.sideV0 * sv,      layout.sideV1 * sv,
            0.5, r * sv, (3 * r + o.height) * sv, r * std::min(su, sv)};
  return layout;
}

// Ring k of a cap, counted from its centre (k = 1) to its rim (k = count).
LatheProfile::Ring capRing(const CylinderOptions& o, double rimY, int k, int count, double side) {
  if (!o.roundCap) return {o.radius * k / count, rimY, !o.isFaceted};
  const double angle = 0.5 * std::numbers::pi * k / count;
  return {o.radius * std::sin(angle), rimY + side * o.radius * std::cos(angle), !o.isFaceted};
}

}  // namespace

Result<Mesh> makeCylinder(const CylinderOptions& options) {
  const int sx = options.subdivisionsAxis, sy = options.subdivisionsHeight,
            sc = options.subdivisionsCaps;
  HOST_TRY(checkSize("The cylinder's radius", options.radius));
  HOST_TRY(checkSize("The cylinder's height", options.height));
  HOST_TRY(checkSubdivisions("Subdivisions around the axis", sx, 3));
  HOST_TRY(checkSubdivisions("Subdivisions along the height", sy, 1));
  HOST_TRY(checkSubdivisions("Subdivisions of the caps", sc, 0));
  HOST_TRY(checkFaceCount(double(sx) * (double(sy) + 2.0 * sc)));
  HOST_TRY(checkAxis(options.axis));
  if (options.createUVs < 0 || options.createUVs > 3)
    return fail(ErrorKind::BadArgument, "createUVs of a cylinder must be 0 to 3, not {}",
                options.createUVs);

  double half = 0.5 * options.height;
  if (options.roundCap && options.roundCapHeightCompensate)
    half = std::max(half - options.radius, 1e-3 * half);
  const double poleOut = options.roundCap && sc > 0 ? options.radius : 0;
  const UvLayout layout = uvLayout(options);
  const bool hasUvs = options.createUVs != 0;
  PrimitiveBuilder builder;
  LatheProfile profile;
  profile.sides = sx;
  profile.hasUvs = hasUvs;
  std::vector<UvRow> capRows[2], sideRows;
  const auto capRow = [&](int k, bool isTop) {
    if (!hasUvs) return UvRow{};
    return addUvCircle(builder, sx, layout.capU, isTop ? layout.capTopV : layout.capBottomV,
                       layout.capRadius * k / std::max(sc, 1), isTop);
  };
  const int rimK = std::max(sc, 1);
  for (int k = 1; k < rimK; ++k) profile.rings.push_back(capRing(options, -half, k, sc, -1));
  for (int k = 1; k <= rimK; ++k) capRows[0].push_back(capRow(k, false));
  for (int j = 0; j <= sy; ++j) {
    const double t = double(j) / sy;
    const bool isRim = j == 0 || j == sy;
    profile.rings.push_back(
        {options.radius, -half + 2 * half * t, !options.isFaceted && (!isRim || poleOut > 0)});
    sideRows.push_back(hasUvs ? addUvLine(builder, sx, layout.sideU0, layout.sideU1,
                                          layout.sideV0 + (layout.sideV1 - layout.sideV0) * t)
                              : UvRow{});
  }
  for (int k = rimK; k >= 1; --k) capRows[1].push_back(capRow(k, true));
  for (int k = rimK - 1; k >= 1; --k) profile.rings.push_back(capRing(options, half, k, sc, 1));

  for (std::size_t k = 0; k + 1 < capRows[0].size(); ++k)
    profile.bands.push_back({!options.isFaceted, capRows[0][k], capRows[0][k + 1]});
  for (std::size_t j = 0; j + 1 < sideRows.size(); ++j)
    profile.bands.push_back({!options.isFaceted, sideRows[j], sideRows[j + 1]});
  for (std::size_t k = 0; k + 1 < capRows[1].size(); ++k)
    profile.bands.push_back({!options.isFaceted, capRows[1][k], capRows[1][k + 1]});
  profile.bottom.row = capRows[0].front();
  profile.top.row = capRows[1].back();
  profile.bottom.y = -half - poleOut;
  profile.top.y = half + poleOut;
  for (LatheEnd* end : {&profile.bottom, &profile.top}) {
    end->areSpokesSmooth = !options.isFaceted;
    end->kind = sc == 0 ? LatheEnd::Kind::Polygon : LatheEnd::Kind::Pole;
    if (sc > 0 && hasUvs)
      end->poleUv =
          builder.addUv(layout.capU, end == &profile.bottom ? layout.capBottomV : layout.capTopV);
  }
  addLathe(builder, profile);
  return std::move(builder).finish(options.axis);
}

Result<Mesh> makePrism(const PrismOptions& options) {
  HOST_TRY(checkSize("The prism's length", options.length));
  HOST_TRY(checkSize("The prism's side length", options.sideLength));
  HOST_TRY(checkSubdivisions("The sides of a prism", options.sides, 3));
  CylinderOptions cylinder;
  cylinder.radius = 0.5 * options.sideLength / std::sin(std::numbers::pi / options.sides);
  cylinder.height = options.length;
  cylinder.subdivisionsAxis = options.sides;
  cylinder.subdivisionsHeight = options.subdivisionsHeight;
  cylinder.subdivisionsCaps = options.subdivisionsCaps;
  cylinder.isFaceted = true;
  cylinder.axis = options.axis;
  cylinder.createUVs = options.createUVs;
  return makeCylinder(cylinder);
}

}  // namespace host::ops
