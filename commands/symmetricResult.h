#pragma once

#include <maya/MIntArray.h>
#include <maya/MPointArray.h>

#include <vector>

/// A mesh's symmetry across a plane where a coordinate is `at`.
struct meshSymmetry {
  double at = 0.0;
  MIntArray partners;       ///< one a vertex: its counterpart, itself on the plane, -1 for none
  unsigned int paired = 0;  ///< how many have one
};

/// Finds the plane square to an axis across which a mesh is symmetric: the one through the origin,
/// or else the one through the middle of its bounding box. Of the two the one that pairs more
/// vertices, the first of equals. n log n.
/// @param axis 0 x, 1 y, 2 z
meshSymmetry symmetryOf(const MPointArray& points, unsigned int axis);

/// Where the plane of `symmetryOf` lies for a shape that another mesh takes: where the shape is
/// symmetric, if most of it is; else the origin, if the shape lies on both sides of it, and the
/// middle of the shape if not.
double symmetricPlaneOf(const MPointArray& shape, unsigned int axis);

/// Makes the places of a symmetric mesh symmetric across the plane where the coordinate is `at`:
/// vertices that are each other's counterparts take the mean of their places and each other's
/// mirror images; those on the plane go onto it. A vertex without a place takes the mirror image of
/// its partner's. Vertices without a partner keep theirs.
///
/// @param places where the vertices go, one a vertex
/// @param isPlaced whether a vertex has a place; vertices that get one here are marked
void makeSymmetric(const meshSymmetry& symmetry, unsigned int axis, double at, MPointArray& places,
                   std::vector<char>& isPlaced);
