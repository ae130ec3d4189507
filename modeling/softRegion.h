#pragma once

#include <maya/MDagPath.h>
#include <maya/MIntArray.h>

#include <vector>

/// Vertices that move with picked ones, and how far each goes along.
struct softRegion {
  std::vector<int> vertices;    ///< the picked ones first
  std::vector<double> weights;  ///< 1 for the picked ones, falling to 0 at the radius
  double radius = 0.0;          ///< cm along the surface; 0: the picked ones alone
};

/// The picked vertices alone.
softRegion pickedOnly(const MIntArray& picked);

/// The vertices within a distance along the surface, found from vertex to vertex of one face.
///
/// Costs the region, not the mesh. The weight falls off evenly; `smoothness` (0 to 1) bends that
/// towards a curve that is flat at both ends.
softRegion regionAround(const MDagPath& mesh, const MIntArray& picked, double radius,
                        double smoothness);

/// The radius that the option "intensity" stands for: at 100 per cent half of the mesh's bounding
/// diagonal, in the world.
double softRadius(const MDagPath& mesh, int intensityPerCent);

/// The weight at a share (0 to 1) of the radius.
double falloff(double share, double smoothness);
