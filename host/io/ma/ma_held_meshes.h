#pragma once

#include <functional>
#include <vector>

#include "host/dg/graph.h"
#include "host/mesh/mesh.h"

namespace host::io {

/// A mesh that a history node works on and that no written node gives it: what stayed behind when
/// its source was deleted or disconnected, or comes from a node that is not written.
struct HeldMesh {
  dg::Plug input;
  dg::Node* shape = nullptr;  ///< the first one that shows what comes of it
  mesh::Mesh mesh;
};

/// Finds them on nodes outside of the hierarchy, in order of the nodes and their attributes.
[[nodiscard]] std::vector<HeldMesh> heldMeshes(
    dg::Graph& graph, const std::vector<dg::Node*>& nodes,
    const std::function<bool(const dg::Node&)>& isWritten);

}  // namespace host::io
