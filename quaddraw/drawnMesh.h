#pragma once

#include <maya/MDagPath.h>
#include <maya/MMatrix.h>
#include <maya/MPoint.h>
#include <maya/MPointArray.h>
#include <maya/MVector.h>

#include <vector>

#include "shared/tool/ownedCallbacks.h"

/// A vertex on the border of the mesh that is drawn on, world space.
struct borderVertex {
  MPoint place;
  MVector normal;
  int index = -1;
};

/// The mesh that is drawn on, read once and kept until it or its place in the world changes, so
/// that hovering costs nothing of its size.
class drawnMesh {
 public:
  drawnMesh() = default;
  drawnMesh(const drawnMesh&) = delete;
  drawnMesh& operator=(const drawnMesh&) = delete;

  /// Takes the first object of the active selection; none when nothing is selected or it is no
  /// mesh. Reads the mesh when it is another one or has changed: linear in it, free otherwise.
  void takeSelected();
  void clear();

  bool isThere() const { return mesh.isValid(); }
  /// The shape.
  const MDagPath& path() const { return mesh; }
  const std::vector<borderVertex>& border() const { return borders; }
  const MMatrix& toWorld() const { return matrix; }
  /// Of all vertices, world space, as they were read.
  const std::vector<MPoint>& vertexPlaces() const { return places; }
  /// Grows whenever the mesh was read anew.
  unsigned int revision() const { return reads; }

  /// How many of the points stand exactly on vertices of one and the same polygon: the most that
  /// any polygon has.
  unsigned int mostCornersOfOnePolygon(const MPointArray& points) const;
  /// The border vertex that stands exactly at a point; -1 for none.
  int borderVertexAt(const MPoint& point) const;
  /// Whether a polygon goes from one vertex to the other, in this order.
  bool hasCornerRun(int from, int to) const;

 private:
  void read();
  void gatherFacesAround();
  void gatherPlaces();
  void gatherBorders();
  bool isOnBorder(std::size_t vertex, std::vector<int>& neighbours) const;
  static void onDirty(MObject&, MPlug&, void* self);
  template <class Call>
  void eachVertexAt(const MPoint& point, Call call) const;

  MDagPath mesh;
  MMatrix matrix;
  ownedCallbacks callbacks;
  bool isStale = true;
  unsigned int reads = 0;
  std::vector<borderVertex> borders;
  std::vector<MPoint> places;                  ///< of all vertices, world space
  std::vector<int> firstAtPlace, nextAtPlace;  ///< vertices by a hash of where they stand
  std::vector<int> firstFace, faces;           ///< polygons around each vertex
  std::vector<int> firstCorner, corners;       ///< vertices around each polygon
};
