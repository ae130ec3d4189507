#include "host/ops/primitives/lathe.h"

#include <cmath>
#include <numbers>

namespace host::ops {
namespace {

double ringAngle(int i, int sides) {
  return -2 * std::numbers::pi * ((i + 1) % sides) / sides;
}

void addPolygonEnd(PrimitiveBuilder& builder, const LatheProfile& profile, const LatheEnd& end,
                   bool isTop) {
  const int n = profile.sides;
  const VertexId first = isTop ? static_cast<Index>(profile.rings.size() - 1) * n : 0;
  std::vector<VertexId> loop;
  std::vector<UvId> uvs;
  for (int k = 0; k < n; ++k) {
    const int i = isTop ? k : (n - k) % n;
    loop.push_back(first + i);
    if (profile.hasUvs) uvs.push_back(end.row.at(i, n));
  }
  builder.addFace(loop, uvs);
}

void addPoleFaces(PrimitiveBuilder& builder, const LatheProfile& profile, const LatheEnd& end,
                  VertexId pole, bool isTop) {
  const int n = profile.sides;
  const VertexId first = isTop ? static_cast<Index>(profile.rings.size() - 1) * n : 0;
  for (int i = 0; i < n; ++i) {
    const VertexId a = first + i, b = first + (i + 1) % n;
    const UvId p = end.poleUv + (end.hasUvAPoleFace ? i : 0);
    const UvId ua = end.row.at(i, n), ub = end.row.at(i + 1, n);
    if (!profile.hasUvs)
      builder.addFace({isTop ? a : b, isTop ? b : a, pole}, {});
    else if (isTop)
      builder.addFace({a, b, pole}, {ua, ub, p});
    else
      builder.addFace({b, a, pole}, {ub, ua, p});
  }
}

}  // namespace

Vec3 ringPoint(double radius, double y, int i, int sides) {
  const double angle = ringAngle(i, sides);
  return {radius * std::cos(angle), y, radius * std::sin(angle)};
}

void addLathe(PrimitiveBuilder& builder, const LatheProfile& profile) {
  const int n = profile.sides;
  const auto rings = static_cast<int>(profile.rings.size());
  for (const auto& ring : profile.rings)
    for (int i = 0; i < n; ++i) builder.addPoint(ringPoint(ring.radius, ring.y, i, n));
  const bool hasBottomPole = profile.bottom.kind == LatheEnd::Kind::Pole;
  const bool hasTopPole = profile.top.kind == LatheEnd::Kind::Pole;
  const VertexId bottomPole = hasBottomPole ? builder.addPoint({0, profile.bottom.y, 0}) : kNone;
  const VertexId topPole = hasTopPole ? builder.addPoint({0, profile.top.y, 0}) : kNone;
  const VertexId lastRing = (rings - 1) * n;

  for (int j = 0; j < rings; ++j)
    for (int i = 0; i < n; ++i)
      builder.addEdge(j * n + i, j * n + (i + 1) % n, profile.rings[at(j)].isSmooth);
  for (int j = 0; j + 1 < rings; ++j)
    for (int i = 0; i < n; ++i)
      builder.addEdge(j * n + i, (j + 1) * n + i, profile.bands[at(j)].areVerticalsSmooth);
  for (int i = 0; hasBottomPole && i < n; ++i)
    builder.addEdge(bottomPole, i, profile.bottom.areSpokesSmooth);
  for (int i = 0; hasTopPole && i < n; ++i)
    builder.addEdge(lastRing + i, topPole, profile.top.areSpokesSmooth);

  const bool isBottomFirst = !hasBottomPole && profile.bottom.isFirst;
  if (isBottomFirst) addPolygonEnd(builder, profile, profile.bottom, false);
  for (int j = 0; j + 1 < rings; ++j) {
    const auto& band = profile.bands[at(j)];
    for (int i = 0; i < n; ++i) {
      const VertexId a = j * n + i, b = j * n + (i + 1) % n;
      if (!profile.hasUvs)
        builder.addFace({a, b, b + n, a + n}, {});
      else
        builder.addFace({a, b, b + n, a + n}, {band.low.at(i, n), band.low.at(i + 1, n),
                                               band.high.at(i + 1, n), band.high.at(i, n)});
    }
  }
  if (hasBottomPole)
    addPoleFaces(builder, profile, profile.bottom, bottomPole, false);
  else if (!isBottomFirst)
    addPolygonEnd(builder, profile, profile.bottom, false);
  if (hasTopPole)
    addPoleFaces(builder, profile, profile.top, topPole, true);
  else
    addPolygonEnd(builder, profile, profile.top, true);
}

UvRow addUvCircle(PrimitiveBuilder& builder, int sides, double centreU, double centreV,
                  double radius, bool isTop) {
  const UvRow row{builder.uvCount(), true};
  for (int i = 0; i < sides; ++i) {
    const double angle = ringAngle(i, sides);
    const double down = radius * std::sin(angle);
    builder.addUv(centreU + radius * std::cos(angle), isTop ? centreV - down : centreV + down);
  }
  return row;
}

UvRow addUvLine(PrimitiveBuilder& builder, int sides, double u0, double u1, double v) {
  const UvRow row{builder.uvCount(), false};
  for (int i = 0; i <= sides; ++i) builder.addUv(u0 + (u1 - u0) * i / sides, v);
  return row;
}

}  // namespace host::ops
