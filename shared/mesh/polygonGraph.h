#pragma once

#include <vector>

class MIntArray;

/// The faces of a mesh and how they meet, from plain arrays. Corners are numbered through all
/// faces.
class polygonGraph {
 public:
  /// Takes a corner count a face and the vertices of all corners. n log n in corners.
  polygonGraph(const MIntArray& counts, const MIntArray& connects, unsigned int vertexCount);

  int faceCount() const { return static_cast<int>(firsts.size()) - 1; }
  int vertexCount() const { return vertices; }
  int faceOf(int corner) const { return faces[static_cast<std::size_t>(corner)]; }
  int vertexAt(int corner) const { return connects[static_cast<std::size_t>(corner)]; }
  int firstCorner(int face) const { return firsts[static_cast<std::size_t>(face)]; }
  int size(int face) const { return firstCorner(face + 1) - firstCorner(face); }
  /// The corner `steps` further round the same face.
  int turn(int corner, int steps) const {
    const int first = firstCorner(faceOf(corner));
    return first + (corner - first + steps) % size(faceOf(corner));
  }
  /// The corner from which the neighbouring face runs the edge that starts at `corner`, the other
  /// way; -1 where the edge does not join exactly two faces of one winding.
  int across(int corner) const { return opposites[static_cast<std::size_t>(corner)]; }

 private:
  void joinEdges();

  int vertices;
  std::vector<int> connects, firsts, faces, opposites;
};
