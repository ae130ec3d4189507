#pragma once

#include <array>
#include <cstddef>
#include <vector>

/// Faces and points in plain arrays, as a brush reads them. Face f has the corners
/// [offsets[f], offsets[f + 1]) of `corners`.
struct faceArrays {
  std::vector<int> offsets, corners;
  std::vector<float> points;  ///< three a vertex, object space

  int faceCount() const { return static_cast<int>(offsets.size()) - 1; }
  int vertexCount() const { return static_cast<int>(points.size() / 3); }
  const float* point(int vertex) const { return &points[static_cast<std::size_t>(vertex) * 3]; }
};

/// Where a ray meets a face.
struct faceHit {
  int face = -1;
  std::array<int, 3> triangle{{-1, -1, -1}};  ///< vertices of the face's triangle that is met
  double distance = 0.0;                      ///< in lengths of the ray's direction
  bool isHit() const { return face >= 0; }
};

/// A tree of boxes over faces that is mended where points have moved, so that a step of a stroke
/// costs what it touched, not the mesh.
///
/// Faces are sorted along a Morton curve into a complete binary tree; boxes of moved faces grow and
/// shrink in place. Building sorts the faces; a ray or a box costs about the logarithm plus what it
/// finds; mending the faces times the tree's depth at most, shared ways once.
class faceTree {
 public:
  void build(const faceArrays& mesh);
  bool isBuilt() const { return leafCount > 0; }
  /// Takes the new places of the vertices of some faces (each at most once).
  void mend(const faceArrays& mesh, const std::vector<int>& faces);

  /// The first face that a ray meets from either side. Triangles are fans from a face's first
  /// corner; those without area, and places that are not numbers, are not met.
  /// @param origin, direction in object space, three numbers each
  faceHit cast(const faceArrays& mesh, const double* origin, const double* direction) const;
  /// Appends the faces whose boxes meet a box (object space, three numbers each).
  void facesInBox(const double* low, const double* high, std::vector<int>& faces) const;
  std::size_t bytes() const;

 private:
  struct box {
    float low[3], high[3];
    bool isEmpty() const { return !(low[0] <= high[0]); }
  };
  bool isLeaf(std::size_t node) const { return node + 1 >= leafCount; }
  void range(std::size_t leafNode, std::size_t& begin, std::size_t& end) const;
  std::size_t leafOf(int face) const;
  box boxOfLeaf(const faceArrays& mesh, std::size_t leafNode) const;

  std::vector<int> order;   ///< faces along the curve
  std::vector<int> places;  ///< of each face in `order`
  std::vector<box> boxes;   ///< heap order: the children of i are 2i + 1 and 2i + 2
  std::size_t leafCount = 0;
  std::vector<std::size_t> dirty;     ///< scratch of `mend`
  std::vector<unsigned char> marked;  ///< one a node, for `dirty`
};
