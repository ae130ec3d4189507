#pragma once

#include <maya/MFloatArray.h>
#include <maya/MIntArray.h>

#include <vector>

/// A change of places in UV space: scaled and turned about a pivot, then moved.
struct uvTweakOptions {
  double moveU = 0.0, moveV = 0.0;    ///< UV units
  double scaleU = 1.0, scaleV = 1.0;  ///< factors
  double angleDegrees = 0.0;          ///< from u towards v
  bool hasPivot = false;              ///< else the middle of the chosen UVs' box
  double pivotU = 0.0, pivotV = 0.0;
  double falloff = 0.0;   ///< how far from a chosen UV others follow, UV units; 0: none follow
  bool isLinear = false;  ///< others follow less in a straight line, instead of smoothly
};

/// UVs and the polygons that join them into shells.
struct uvTweakInput {
  MFloatArray u, v;
  MIntArray counts, ids;       ///< the UVs of polygons' corners, as of an assignment
  MIntArray chosen;            ///< UVs, in range
  std::vector<char> isPinned;  ///< one a UV, 1 stays where it is; empty: none is pinned
};

/// UVs that move, and where to.
struct uvTweakResult {
  MIntArray ids;  ///< ascending
  MFloatArray u, v;
};

/// Moves the chosen UVs, and those near them in the same shells by how near they are. Pinned UVs
/// stay and do not count for the middle. n log n in the UVs of the shells with a falloff, else
/// linear in the chosen ones.
uvTweakResult planUvTweak(const uvTweakInput& input, const uvTweakOptions& options);
