#pragma once

#include <span>
#include <vector>

#include "host/base/result.h"
#include "host/mesh/mesh.h"
#include "host/nodes/type_builder.h"

namespace host::nodes {

/// A shape's offsets of its vertices, `pnts`: how they are read, and how points are moved by them.

/// A mesh with the offsets of a plug added; points without one, or with one of zero, keep their
/// bits, and a mesh without any shares its points. What has been made before is found again.
[[nodiscard]] mesh::Mesh withOffsets(const mesh::Mesh& mesh, const Plug& offsets);

/// The offsets of a shape's vertices as they are now, ascending: good until the next edit of them.
class VertexOffsets {
 public:
  explicit VertexOffsets(Node& shape);
  VertexOffsets(const VertexOffsets&) = delete;
  VertexOffsets& operator=(const VertexOffsets&) = delete;

  [[nodiscard]] std::span<const Index> vertices() const { return vertices_; }
  /// Three a vertex, object space, cm.
  [[nodiscard]] std::span<const double> offsets() const { return offsets_; }
  [[nodiscard]] bool hold(Index vertex) const;

 private:
  std::span<const Index> vertices_;
  std::span<const double> offsets_;
  std::vector<Index> fetchedVertices_;  ///< when some come over connections
  std::vector<double> fetchedOffsets_;
};

/// Where some vertices are to be, ascending, each listed once, object space.
struct PointTargets {
  std::vector<VertexId> vertices;
  std::vector<math::Vec3f> places;

  [[nodiscard]] bool isEmpty() const { return vertices.empty(); }
  void add(VertexId vertex, const math::Vec3f& place) {
    vertices.push_back(vertex);
    places.push_back(place);
  }
};

/// Has the offsets of a shape take its points from `base` to the targets; vertices that are there
/// already get none, the others keep theirs. Recorded. `now` is the mesh as it shows.
///
/// Costs the targets and the shape's offsets, not the mesh: the mesh that shows afterwards is made
/// of `now`.
Result<void> setOffsets(Node& shape, const VertexOffsets& before, const mesh::Mesh& base,
                        const mesh::Mesh& now, const PointTargets& targets);

}  // namespace host::nodes
