#pragma once

#include <maya/MFloatVectorArray.h>
#include <maya/MIntArray.h>
#include <maya/MPoint.h>
#include <maya/MPointArray.h>
#include <maya/MVector.h>

#include <vector>

/// The shading normals of a mesh as they run over its faces, from plain arrays. Corners are
/// numbered through all faces.
struct cornerNormals {
  MPointArray points;         ///< one a vertex
  MIntArray counts;           ///< corners a face
  MIntArray connects;         ///< vertices of all corners
  MIntArray triangleCounts;   ///< triangles a face
  MIntArray triangleCorners;  ///< three corners a triangle
  MIntArray normalIds;        ///< of all corners
  MFloatVectorArray normals;  ///< one a normal id, unit length

  /// Works out what `at` and `isAtHardEdge` need. To be called once the arrays are filled. Linear.
  void prepare();

  /// The normal at the point of a face that is nearest to `point`, interpolated over its corners'
  /// normals. Linear in the face's corners.
  MVector at(int face, const MPoint& point) const;
  /// Whether a point on a face lies on one of its edges beside which the shading may break: one
  /// whose ends have several normals.
  bool isAtHardEdge(int face, const MPoint& point) const;

  unsigned int firstCorner(int face) const {
    return static_cast<unsigned int>(firsts[static_cast<std::size_t>(face)]);
  }

 private:
  const MPoint& cornerPoint(int corner) const;
  MVector cornerNormal(int corner) const;

  std::vector<int> firsts, firstTriangles;  ///< one a face
  std::vector<char> hasSeveral;  ///< one a vertex: whether its corners differ in their normal
};
