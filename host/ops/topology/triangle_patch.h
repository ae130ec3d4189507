#pragma once

#include <array>
#include <vector>

#include "host/base/ids.h"
#include "host/math/vec.h"

namespace host::ops {

/// Triangles that are split, collapsed and flipped one edge at a time.
///
/// Some edges are fixed: they stay edges, or become two by a split. Vertices at fixed edges keep
/// their place. All steps cost the triangles around the vertices concerned.
class TrianglePatch {
 public:
  using Triangle = std::array<Index, 3>;

  Index addVertex(const math::Vec3& point);
  void addTriangle(const Triangle& corners);
  void fixEdge(Index a, Index b);

  [[nodiscard]] Index vertexCount() const { return static_cast<Index>(points_.size()); }
  [[nodiscard]] const math::Vec3& point(Index v) const { return points_[at(v)]; }
  void setPoint(Index v, const math::Vec3& place) { points_[at(v)] = place; }
  [[nodiscard]] Index triangleCount() const { return alive_; }
  /// Those that are left, in the order in which they were made.
  [[nodiscard]] std::vector<Triangle> triangles() const;
  /// Every edge once, the lower vertex first.
  [[nodiscard]] std::vector<std::array<Index, 2>> edges() const;

  [[nodiscard]] bool isFixed(Index a, Index b) const;
  [[nodiscard]] Index fixedEdges(Index v) const { return static_cast<Index>(fixed_[at(v)].size()); }
  [[nodiscard]] std::vector<Index> neighbours(Index v) const;
  [[nodiscard]] bool areJoined(Index a, Index b) const;
  [[nodiscard]] double lengthOf(Index a, Index b) const {
    return math::length(points_[at(a)] - points_[at(b)]);
  }
  /// The area-weighted normal there, not a unit vector.
  [[nodiscard]] math::Vec3 normalAt(Index v) const;

  /// Puts a vertex in the middle of an edge. @return it
  Index split(Index a, Index b);
  /// Takes vertex `from` into `into` when that leaves a sound surface without turned triangles,
  /// fixed edges where they were, and no edge longer than `longest`.
  bool collapse(Index from, Index into, double longest);
  /// Turns the edge between two triangles when that brings its four vertices nearer to six edges
  /// each (four at fixed edges), bends nothing and makes no edge longer than `longest`.
  bool flip(Index a, Index b, double longest);
  /// The third corners of the triangles at an edge.
  [[nodiscard]] std::vector<Index> beside(Index a, Index b) const;

 private:
  [[nodiscard]] std::vector<Index> trianglesAt(Index a, Index b) const;
  [[nodiscard]] Index opposite(Index triangle, Index a, Index b) const;
  [[nodiscard]] math::Vec3 normalOf(const Triangle& t) const;
  void replace(Index triangle, Index from, Index into);
  void detach(Index triangle, Index v);
  void unfix(Index a, Index b);
  [[nodiscard]] bool keepsFixedEdges(Index from, Index into) const;

  std::vector<math::Vec3> points_;
  std::vector<Triangle> triangles_;  ///< gone ones start with kNone
  std::vector<std::vector<Index>> around_, fixed_;
  Index alive_ = 0;
};

}  // namespace host::ops
