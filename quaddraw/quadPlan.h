#pragma once

#include <maya/MPoint.h>
#include <maya/MPointArray.h>
#include <maya/MString.h>

#include <vector>

/// A corner of a polygon that is to be made: a vertex that is there, or a new point.
struct quadCorner {
  int vertex = -1;  ///< of the mesh; -1: a new one
  MPoint place;     ///< object space of the mesh, cm
};
using quadCorners = std::vector<quadCorner>;

/// The corners as arguments of the commands that append and create polygons: " -v " and the vertex,
/// or " -p " and three coordinates. Numbers keep every digit.
/// @param unitsPerCentimetre the commands take lengths in the scene's unit
MString cornerArguments(const quadCorners& corners, double unitsPerCentimetre);

/// What the mirrored half of a quad needs to know of the mesh.
struct mirrorPlan {
  int axis = 0;            ///< of the plane's space
  double tolerance = 0.0;  ///< how near to the plane a point counts as on it, cm of that space
};

/// Puts the points that are within the tolerance of the plane onto it.
/// @param points in the plane's space
void snapToPlane(MPointArray& points, const mirrorPlan& plan);

/// The points across the plane, in reverse order, so that a polygon through them faces the other
/// way round as its mirror image must.
MPointArray mirrorReversed(const MPointArray& points, int axis);

/// The mirrored polygon's corners.
///
/// Where a mirrored corner falls on a corner of the first polygon (both stand on the plane, or are
/// each other's images) it is that corner's vertex, so that the halves share it.
/// @param first the first polygon's corners
/// @param firstPlane where they stand, in the plane's space
/// @param mirrored the corners across, in reverse order; those that are vertices already stay
/// @param mirroredPlane where these stand, in the plane's space
/// @param firstNewVertex the index that the first new corner of the first polygon gets
/// @return empty when nothing is left to add: the polygon is its own image
quadCorners shareCorners(const quadCorners& first, const MPointArray& firstPlane,
                         quadCorners mirrored, const MPointArray& mirroredPlane, double tolerance,
                         int firstNewVertex);

/// `points` without those that equal one of `used` exactly, in order.
MPointArray withoutPoints(const MPointArray& points, const MPointArray& used);
