#pragma once

#include <maya/MDagPath.h>
#include <maya/MMatrix.h>
#include <maya/MPoint.h>
#include <maya/MStatus.h>
#include <maya/MVector.h>

#include <cstdint>
#include <vector>

#include "brushes/faceTree.h"

/// What one dab reaches.
struct dabRegion {
  std::vector<int> vertices;
  std::vector<double> shares;   ///< distance from the centre as a share of the radius, below 1
  std::vector<double> weights;  ///< the falloff's
  /// Place of each vertex on the stamp: two numbers, in radii, across and along. Over a volume the
  /// vertex seen against the dab's normal, over the surface unrolled from the centre.
  std::vector<double> stamp;

  bool isEmpty() const { return vertices.empty(); }
  void clear();
};

/// What a dab is to reach; world space.
struct dabQuery {
  MPoint centre;
  MVector normal;  ///< unit
  MVector across;  ///< unit, in the tangent plane: the stamp's first axis
  double radius = 0.0;
  int startFace = -1;        ///< that the centre lies on; vertices are found from it on
  bool overSurface = false;  ///< distances along the surface, not through space
  bool islands = false;      ///< vertices of other shells count too
  bool backFaces = false;
  MVector towardsViewer;  ///< for back faces: what faces away from it is left alone; zero: none is
};

/// A mesh as brushes need it, in arrays of its own: points, faces, neighbours, normals and a tree
/// for rays, all mended where a dab has moved something. Reading a mesh costs the mesh, once; every
/// question afterwards costs what it touches.
///
/// It follows the mesh: `refresh` takes over what others have changed since.
class brushSurface {
 public:
  /// Reads the mesh at a path. @return failure for a path without a mesh
  MStatus read(const MDagPath& mesh);
  /// Takes over points that others have moved. @return false when the topology is another one and
  /// the surface has to be read anew; `moved` gets the vertices
  bool refresh(std::vector<int>* moved = nullptr);
  bool isRead() const { return arrays.faceCount() > 0; }
  const MDagPath& mesh() const { return path; }
  int vertexCount() const { return arrays.vertexCount(); }
  int faceCount() const { return arrays.faceCount(); }

  /// The way to the world as it is now; `placeIn` reads it from the path, at the start of a stroke
  /// and of a hover. @return false for one that has no way back
  bool placeInWorld();
  const MMatrix& toWorld() const { return worldMatrix; }
  const MMatrix& toObject() const { return objectMatrix; }

  MPoint objectPoint(int vertex) const;
  MPoint worldPoint(int vertex) const { return objectPoint(vertex) * worldMatrix; }
  /// Unit, from the faces' areas; zero where there is none.
  MVector worldNormal(int vertex) const;
  MVector worldFaceNormal(int face) const;
  const float* stored(int vertex) const { return arrays.point(vertex); }

  /// The first place a world ray meets. @return false when it meets nothing
  bool cast(const MPoint& origin, const MVector& direction, faceHit& hit, MPoint& place) const;
  /// What a dab reaches, in no order that matters, the same each time. Islands are told apart by
  /// way: only what hangs together with the start within the radius is reached.
  void gather(const dabQuery& query, dabRegion& region) const;
  /// The vertex nearest to a world place, no farther than `reach`; -1 for none; of equally near
  /// ones the lowest.
  int nearestVertex(const MPoint& place, double reach) const;

  /// Moves vertices to places in object space (three floats each), with normals and tree.
  void move(const std::vector<int>& vertices, const std::vector<float>& places);

  bool isBorder(int vertex) const { return borders[static_cast<std::size_t>(vertex)] != 0; }
  /// The vertices at the other ends of a vertex's edges.
  const int* neighboursBegin(int vertex) const;
  const int* neighboursEnd(int vertex) const;
  const int* facesBegin(int vertex) const;
  const int* facesEnd(int vertex) const;
  const faceArrays& faces() const { return arrays; }
  /// A thousandth of the world bounding box's diagonal: how far a mirror image may be off.
  double mirrorReach() const;
  std::size_t bytes() const;

 private:
  void findNeighbours();
  void refreshNormals(const std::vector<int>& faces);
  void facesOf(const std::vector<int>& vertices, std::vector<int>& faces) const;
  void gatherVolume(const dabQuery& query, dabRegion& region) const;
  void gatherSurface(const dabQuery& query, dabRegion& region) const;

  MDagPath path;
  MMatrix worldMatrix, objectMatrix, normalMatrix;
  faceArrays arrays;
  std::vector<float> faceAreas;  ///< three a face: the normal, as long as twice the area
  std::vector<int> neighbourOffsets, neighbours, faceOffsets, vertexFaces;
  std::vector<unsigned char> borders;
  faceTree tree;
  mutable std::vector<std::uint32_t> seen;  ///< a mark a vertex: the query that saw it
  mutable std::uint32_t query = 0;
  mutable std::vector<std::uint32_t> seenFaces;
};
