#pragma once

#include <memory>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "host/mesh/provenance.h"
#include "host/ops/topology/bevel_faces.h"
#include "host/ops/topology/bevel_uvs.h"
#include "host/ops/topology/soft_edges.h"

namespace host::ops {

/// A bevel of which new vertices came together. While the same ones do only their places differ, so
/// it is made once.
struct WeldedBevel {
  std::vector<Index> targets;  ///< of new vertices: which new one each becomes
  Mesh mesh;                   ///< not softened
  std::shared_ptr<const BevelEdgesResult> result;
  std::vector<EdgeSides> softened;         ///< edges of new faces
  std::optional<mesh::Provenance> origin;  ///< of `mesh` in the one that was bevelled, if followed

  /// What is placed: where it is in the open bevel, and where here.
  using Move = std::pair<Index, Index>;
  std::vector<Move> points;
  std::vector<std::vector<Move>> uvs;  ///< by UV set

  /// Writes where an open bevel that comes together alike has been placed.
  /// @param placed this mesh, its points and UVs anywhere
  void follow(const Mesh& open, Mesh& placed) const;
};

/// Which new vertices come together: ends of the edges between them that are nearer than the
/// tolerance in a space. Each becomes the lowest of its kind; empty when none does.
[[nodiscard]] std::vector<Index> joinedVertices(const Mesh& open, VertexId firstNew,
                                                std::span<const mesh::EdgeVertices> newEdges,
                                                const math::Matrix4& space, double tolerance);

/// Welds a bevel that was placed; how smooth its edges are is what was built.
/// @param uvs says which UVs are placed
[[nodiscard]] std::shared_ptr<WeldedBevel> weldBevel(const BevelledMesh& built, const BevelUvs& uvs,
                                                     const Mesh& open, std::vector<Index> targets);

/// The edges of a bevel's new faces, with their sides.
[[nodiscard]] std::vector<EdgeSides> sidesOfNewFaces(const Mesh& mesh,
                                                     const BevelEdgesResult& result);

}  // namespace host::ops
