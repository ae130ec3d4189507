#pragma once

#include <vector>

#include "brushes/uvLayout.h"

/// Where UVs want to go so that their polygons look like those of the surface they lie on.
///
/// Every UV is drawn to where its polygons would have it if each were only turned, neither bent nor
/// scaled (one local and one Jacobi step of Liu et al. 2008, "A Local/Global Approach to Mesh
/// Parameterization"). Sizes are those of the surface, times what the shell as a whole has now, so
/// that crowded places widen and a shell keeps its size. A polygon counts by the triangles at its
/// corners.
class uvRelax {
 public:
  /// @param surface three numbers a corner of the layout's polygons, in their order: its place on
  /// the surface. Empty: there is no surface, and UVs go to the middle of their neighbours.
  void begin(const uvLayout& layout, std::vector<float> surface);
  bool hasSurface() const { return !surface.empty(); }

  /// Where one UV wants to be. @param evensOut to the middle of its neighbours, whatever the
  /// surface is like; a border stays then
  /// @return false for one that wants nothing: it hangs on no polygon with an area
  bool target(const uvLayout& layout, int uv, bool evensOut, double (&place)[2]) const;

 private:
  bool middleOfNeighbours(const uvLayout& layout, int uv, double (&place)[2]) const;
  struct pull;
  void addCorner(const uvLayout& layout, int face, int corner, pull& sum) const;

  std::vector<float> surface;
  std::vector<double> scales;  ///< one a shell: UV length for a length of surface
};
