#pragma once

#include <memory>
#include <span>
#include <vector>

#include "host/ops/topology/bevel_faces.h"
#include "host/ops/topology/soft_edges.h"

namespace host::ops {

/// A bevel of which new vertices came together. While the same ones do only their places differ, so
/// it is made once.
struct WeldedBevel {
  std::vector<Index> targets;  ///< of new vertices: which new one each becomes
  Mesh mesh;                   ///< not softened
  std::shared_ptr<const BevelEdgesResult> result;
  std::vector<VertexId> kept;       ///< where a new vertex is in `mesh`; kNone: gone
  std::vector<EdgeSides> softened;  ///< edges of new faces

  /// The mesh for other places that come together alike.
  /// @param open the bevel placed there and not welded
  [[nodiscard]] Mesh placedAs(const Mesh& open, VertexId firstNew) const;
  /// Whether its UVs are those of the open bevel one by one, so that they can be placed too.
  [[nodiscard]] bool keepsUvsOf(const Mesh& open) const;
};

/// Which new vertices come together: ends of the edges between them that are nearer than the
/// tolerance in a space. Each becomes the lowest of its kind; empty when none does.
[[nodiscard]] std::vector<Index> joinedVertices(const Mesh& open, VertexId firstNew,
                                                std::span<const mesh::EdgeVertices> newEdges,
                                                const math::Matrix4& space, double tolerance);

/// Welds a bevel that was placed.
[[nodiscard]] std::shared_ptr<const WeldedBevel> weldBevel(const BevelledMesh& built, Mesh open,
                                                           std::vector<Index> targets);

/// The edges of a bevel's new faces, with their sides.
[[nodiscard]] std::vector<EdgeSides> sidesOfNewFaces(const Mesh& mesh,
                                                     const BevelEdgesResult& result);

}  // namespace host::ops
