#pragma once

#include <optional>
#include <vector>

#include "host/ops/primitives/primitive_builder.h"

namespace host::ops {

/// A row of UVs around a ring: closed rows share the first UV with the last face, open ones have
/// one more.
struct UvRow {
  UvId first = kNone;
  bool isClosed = false;
  [[nodiscard]] UvId at(int i, int sides) const { return first + (isClosed ? i % sides : i); }
};

/// What closes a lathed surface at one end.
struct LatheEnd {
  enum class Kind { Polygon, Pole };
  Kind kind = Kind::Pole;
  double y = 0;  ///< of the pole
  bool areSpokesSmooth = true;
  bool isFirst = false;  ///< a polygon's face precedes all others instead of following
  UvRow row;
  UvId poleUv = kNone;
  bool hasUvAPoleFace = false;  ///< pole faces use poleUv, poleUv + 1, ... instead of one UV
};

/// Rings of equal vertex counts stacked along y, from the bottom to the top.
struct LatheProfile {
  struct Ring {
    double radius = 1, y = 0;
    bool isSmooth = true;
  };
  struct Band {  ///< faces between a ring and the next
    bool areVerticalsSmooth = true;
    UvRow low, high;
  };
  int sides = 3;
  std::vector<Ring> rings;
  std::vector<Band> bands;  ///< one fewer than rings
  LatheEnd bottom, top;
  bool hasUvs = true;
};

/// Point i of a ring: at the angle -360 (i + 1) / sides degrees from x towards z.
[[nodiscard]] Vec3 ringPoint(double radius, double y, int i, int sides);

/// Adds vertices (rings, bottom pole, top pole), edges (rings, verticals, bottom spokes, top
/// spokes) and faces (side quads, bottom, top) of a lathed surface to an empty builder that already
/// holds the UVs the profile names.
void addLathe(PrimitiveBuilder& builder, const LatheProfile& profile);

/// Adds a row of UVs at the angles of ring vertices on a circle, wound as seen from above or from
/// below.
UvRow addUvCircle(PrimitiveBuilder& builder, int sides, double centreU, double centreV,
                  double radius, bool isTop);
/// Adds sides + 1 UVs from u0 to u1 at height v.
UvRow addUvLine(PrimitiveBuilder& builder, int sides, double u0, double u1, double v);

}  // namespace host::ops
