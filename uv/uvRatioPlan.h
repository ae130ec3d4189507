#pragma once

#include <maya/MIntArray.h>
#include <maya/MPointArray.h>

struct uvArrays;

/// What the ratio of a mesh's UV shells is computed from.
struct uvRatioInput {
  MPointArray points;   ///< of the vertices, cm, in the space that lengths are measured in
  MIntArray counts;     ///< corners a polygon, as the polygons' UV counts
  MIntArray connects;   ///< the vertex of every corner, polygon after polygon
  MIntArray shellOfUv;  ///< the shell of every UV; negative: of none
  unsigned int shellCount = 0;
};

/// How the shells are scaled.
struct uvRatioOptions {
  double ratio = 1.0;     ///< cm of surface in one UV unit
  bool isGlobal = false;  ///< about the centre of all UVs, instead of each shell's own
};

/// Scales shells so that the summed length of their polygons' edges, divided by the summed length
/// of the same edges in UV space, is the ratio.
///
/// A shell's own centre is the mean over its corners. A face belongs to the shell of its first UV.
/// A shell without any size in UV space gets UVs that are no numbers. Linear in the corners.
/// @param wanted the UVs whose shells are scaled; null: all shells
/// @param uvs the mesh's UVs, one count a polygon and none of them 0; changed in place
void scaleToRatio(const uvRatioInput& input, const uvRatioOptions& options, const MIntArray* wanted,
                  uvArrays& uvs);
