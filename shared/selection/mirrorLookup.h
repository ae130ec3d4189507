#pragma once

#include <maya/MDagPath.h>
#include <maya/MFnMesh.h>
#include <maya/MIntArray.h>
#include <maya/MItMeshPolygon.h>
#include <maya/MMatrix.h>
#include <maya/MPoint.h>
#include <maya/MVector.h>

#include "shared/selection/componentPick.h"

/// Finds single components on the other side of a mesh's mirror plane, by asking for what lies at
/// the mirrored place: logarithmic, where a table of all counterparts would cost the whole mesh.
///
/// A vertex's counterpart is the vertex nearest to its mirrored place, no farther than a thousandth
/// of the mesh's bounding box, when that vertex's counterpart is the first one again.
class mirrorLookup {
 public:
  /// @param axis 0 x, 1 y, 2 z
  mirrorLookup(const MDagPath& meshPath, int axis, bool inWorldSpace);

  /// The counterpart of a vertex, which may be itself; -1 for none.
  int vertex(int index) const;
  /// The edge or face whose vertices are the counterparts; -1 for none.
  int edge(int index) const;
  int face(int index) const;
  /// The same by kind.
  int counterpart(int kind, int index) const;
  /// Turns a world vector to the other side.
  MVector reflect(const MVector& vector) const;
  /// Puts a world point onto the plane.
  MPoint onPlane(const MPoint& point) const;

 private:
  MPoint mirrored(const MPoint& point) const;
  int nearestVertex(const MPoint& place) const;
  bool counterparts(const MIntArray& vertices, MIntArray& found) const;

  MDagPath path;
  MFnMesh mesh;
  mutable MItMeshPolygon polygon;
  unsigned int axis;
  bool inObjectSpace;
  MMatrix toPlane, fromPlane;  ///< world to the space whose axis is 0 on the plane, and back
  double reach() const;
  mutable double tolerance = -1.0;  ///< world; negative until it is first wanted
};
