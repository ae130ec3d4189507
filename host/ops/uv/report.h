#pragma once

#include <string>
#include <vector>

#include "host/mesh/mesh.h"

namespace host::ops {

struct UvReportOptions {
  bool findsOverlaps = true;
  int mapSize = 0;  ///< pixels across the unit square for coverage and gaps; 0 leaves them out
};

/// What a layout of UVs is worth. Faces count as fans of triangles from their first corner. A chart
/// is a set of faces joined over edges that have the same UVs on both sides. s1 >= s2 are the
/// stretches of a triangle from the surface to UV; areas are those of the surface.
struct UvReport {
  Index faces = 0, triangles = 0, charts = 0;
  Index facesWithoutUvs = 0;
  Index withoutArea = 0;  ///< triangles that have none on the surface; they count nowhere else
  Index flipped = 0;      ///< triangles wound against most of their chart
  Index mirrored = 0;     ///< charts wound backwards as a whole
  Index collapsed = 0;    ///< triangles without area in UV
  Index overlapping = 0;  ///< triangles that share more than 1 % of the smaller one's area
  std::size_t overlapPairs = 0;
  bool isOverlapPartial = false;          ///< thousands are stacked: not all pairs were looked at
  double overlapArea = 0;                 ///< over the whole area in UV
  double lengthStretch = 0;               ///< 1 at best, at the one best scale (Sander et al. 2001)
  double greatestStretch = 0;             ///< of a length, after the same scaling
  double symmetricDirichlet = 0;          ///< mean, at the one best scale; 4 at best
  double symmetricDirichletByChart = 0;   ///< at the best scale of each chart
  double conformal = 0, conformal99 = 0;  ///< s1 / s2: mean, and what 99 % of the area stay below
  double angle = 0, angle99 = 0;          ///< error of corner angles, degrees
  double area = 0, area99 = 0;            ///< ratio of areas to the mean ratio, 1 at best
  double uvArea = 0, surfaceArea = 0;
  double density = 0;    ///< UV length for a length of 1 cm on the surface: root of the area ratio
  double coverage = -1;  ///< part of the unit square that pixels of a map see covered; -1 not asked
  double inSquare = 0;   ///< part of the UV area whose triangles lie in the unit square
  int gapPixels = -1;    ///< least number of free pixels between charts; -1 none below 64
};

/// Measures one UV set. Linear but for overlaps, which cost what lies near each other; parallel.
/// @return an error when a UV or point is not a number, or the work was cancelled.
[[nodiscard]] Result<UvReport> uvReport(const mesh::Mesh& mesh, int uvSet,
                                        const UvReportOptions& options = {});

/// The report as one line of JSON.
[[nodiscard]] std::string uvReportJson(const UvReport& report, const std::string& label);

/// How much each face is stretched, for colours: the logarithm to base 2 of its UV area over its
/// surface area, relative to the whole set. Below 0 squeezed, above 0 stretched; 0 without UVs.
[[nodiscard]] std::vector<float> faceStretch(const mesh::Mesh& mesh, int uvSet);

}  // namespace host::ops
