#pragma once

#include <maya/MDagPath.h>
#include <maya/MMatrix.h>
#include <maya/MPoint.h>
#include <maya/MStatus.h>
#include <maya/MVector.h>

#include <cstdint>
#include <vector>

#include "brushes/faceTree.h"
#include "brushes/falloffCurve.h"

/// What one dab reaches.
struct dabRegion {
  std::vector<int> vertices;
  std::vector<double> shares;   ///< distance from the centre as a share of the radius, below 1
  std::vector<double> weights;  ///< the falloff's, less where the surface turns away
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
  bool islands = false;      ///< vertices count that don't hang together with the start, too
  bool backFaces = false;
  MVector towardsViewer;  ///< unit; what faces away from it is left alone unless `backFaces`
  const falloffCurve* falloff = nullptr;  ///< null: all weights are 1
};

/// A mesh as brushes need it, in arrays of its own: points, faces, neighbours, normals and a tree
/// for rays, all mended where a dab has moved something. Reading a mesh costs the mesh, once; every
/// question afterwards costs what it touches. Vertices without faces are never reached.
class brushSurface {
 public:
  /// Reads the mesh at a path. @return failure for a path without a mesh
  MStatus read(const MDagPath& mesh);
  /// Takes over points that others have moved since; costs the mesh.
  /// @param moved gets their vertices, when it is given
  /// @return false when the topology is another one and the surface has to be read anew
  bool refresh(std::vector<int>* moved = nullptr);
  bool isRead() const { return arrays.faceCount() > 0; }
  const MDagPath& mesh() const { return path; }
  int vertexCount() const { return arrays.vertexCount(); }
  int faceCount() const { return arrays.faceCount(); }
  const faceArrays& faces() const { return arrays; }

  /// Reads where the mesh stands; all that is in world space below means that place.
  /// @return false for a transform that has no way back (a zero scale)
  bool placeInWorld();
  const MMatrix& toWorld() const { return worldMatrix; }
  const MMatrix& toObject() const { return objectMatrix; }

  MPoint objectPoint(int vertex) const;
  MPoint worldPoint(int vertex) const { return objectPoint(vertex) * worldMatrix; }
  /// Unit, weighted by the faces' areas; zero where they have none.
  MVector worldNormal(int vertex) const;
  MVector worldFaceNormal(int face) const;
  /// Three floats, as the mesh stores them.
  const float* stored(int vertex) const { return arrays.point(vertex); }

  /// The first place that a world ray meets. @return false when it meets nothing
  bool cast(const MPoint& origin, const MVector& direction, faceHit& hit, MPoint& place) const;
  /// What a dab reaches, in an order that is the same each time.
  void gather(const dabQuery& query, dabRegion& region) const;
  /// The vertex nearest to a world place, no farther than `reach`; -1 for none; of equally near
  /// ones the lowest.
  int nearestVertex(const MPoint& place, double reach) const;
  /// How far a mirror image may be off: a thousandth of the diagonal of the world bounding box that
  /// the surface had when it was read.
  double mirrorReach() const;

  /// Moves vertices (each once) to places in object space, three floats each, with the normals and
  /// the tree. Costs what is moved.
  void move(const std::vector<int>& vertices, const std::vector<float>& places);

  bool isBorder(int vertex) const { return borders[static_cast<std::size_t>(vertex)] != 0; }
  /// The vertices at the other ends of a vertex's edges, ascending.
  const int* neighboursBegin(int vertex) const;
  const int* neighboursEnd(int vertex) const;
  /// The faces at a vertex, ascending.
  const int* facesBegin(int vertex) const;
  const int* facesEnd(int vertex) const;
  std::size_t bytes() const;

 private:
  struct unrolled;
  MStatus readTopology();
  void findFaces();
  void findNeighbours();
  void measure(int face);
  void newSearch() const;
  bool seeFirst(int vertex) const;
  void keep(const dabQuery& query, int vertex, double distance, const MVector& normal,
            const double* onStamp, dabRegion& region) const;
  void gatherVolume(const dabQuery& query, dabRegion& region) const;
  void gatherIslands(const dabQuery& query, dabRegion& region) const;
  void gatherSurface(const dabQuery& query, dabRegion& region) const;
  void keepByPlace(const dabQuery& query, int vertex, dabRegion& region) const;
  void boxAround(const MPoint& centre, double radius, double* low, double* high) const;

  MDagPath path;
  MMatrix worldMatrix, objectMatrix, normalMatrix;
  faceArrays arrays;
  std::vector<float> areas;  ///< three a face: along the normal, as long as twice the area
  std::vector<int> neighbourOffsets, neighbours, faceOffsets, vertexFaces;
  std::vector<unsigned char> borders;
  faceTree tree;
  double extentLow[3] = {0, 0, 0}, extentHigh[3] = {0, 0, 0};
  mutable std::vector<std::uint32_t> seen, seenFaces;  ///< the search that saw it last
  mutable std::vector<std::uint32_t> slotOf;           ///< place of what a surface walk has met
  mutable std::uint32_t search = 0;
};
