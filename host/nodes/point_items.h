#pragma once

#include <vector>

#include "host/nodes/mesh_components.h"
#include "host/nodes/vertex_offsets.h"

namespace host::nodes {

/// What a list covers by points: meshes as `meshItems` gives them, and points of lattices, whose
/// items have a mesh of these points and nothing else. Whole lattices are left out.
[[nodiscard]] Result<std::vector<MeshItem>> pointItems(const scene::SelectionList& list);

/// The points of a mesh shape as they are seen, with its mesh, or those of a lattice.
[[nodiscard]] Result<mesh::Mesh> evaluatedPoints(dg::Node& shape);

/// Moves points of either so that they are seen there, in the shape's own space, as a person moves
/// them: those of a mesh by its offsets.
Result<void> movePoints(dg::Node& shape, PointTargets targets);

}  // namespace host::nodes
