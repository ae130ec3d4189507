#pragma once

#include <vector>

#include "host/mesh/mesh.h"
#include "host/ops/uv/unfold_plane.h"

namespace host::ops {

/// One triangle of a face's fan, as measured.
struct UvTriangle {
  FaceId face = kNone;
  std::array<CornerId, 3> corners{kNone, kNone, kNone};
  Index chart = kNone;
  double surface = 0, signedUv = 0;  ///< areas
  double s1 = 0, s2 = 0;             ///< stretches, s1 >= s2
  bool isCollapsed = false;
};

/// All triangles of the faces that have UVs, in order of faces; those without area on the surface
/// are only counted.
struct UvTriangles {
  std::vector<UvTriangle> all;
  Index charts = 0, withoutArea = 0, facesWithoutUvs = 0;
  double surface = 0, uv = 0;  ///< sums of the areas' sizes
};
[[nodiscard]] UvTriangles uvTriangles(const mesh::Mesh& mesh, int uvSet);

/// The UV of a corner that has one.
[[nodiscard]] inline flat::Point uvPoint(const mesh::UvSet& set, CornerId corner) {
  const mesh::Vec2f& p = set.points[at(set.cornerIds[corner])];
  return {p.u, p.v};
}

struct UvOverlaps {
  Index triangles = 0;
  std::size_t pairs = 0;
  double area = 0;
  bool isPartial =
      false;  ///< so many triangles lie on each other that not all pairs were looked at
};
/// Pairs of triangles that share more than 1 % of the smaller one's area; collapsed ones don't
/// count. Triangles lie in grids by their size; each looks at what is near in its own grid and the
/// coarser ones. Where thousands are stacked, each looks at some of the others only.
[[nodiscard]] UvOverlaps uvOverlaps(const mesh::UvSet& set, const UvTriangles& triangles);

/// The pairs of different faces of one chart of which triangles overlap so, each once, the lower
/// face first.
[[nodiscard]] std::vector<std::pair<FaceId, FaceId>> overlappingFaces(const mesh::UvSet& set,
                                                                      const UvTriangles& triangles);

struct UvCoverage {
  double covered = 0;
  int gapPixels = -1;
};
/// Draws the unit square at `size` pixels across, by pixel centres at 1/256 pixel, and grows the
/// charts ring by ring until two meet.
[[nodiscard]] UvCoverage uvCoverage(const mesh::UvSet& set, const UvTriangles& triangles, int size);

}  // namespace host::ops
