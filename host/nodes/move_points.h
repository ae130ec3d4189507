#pragma once

#include <span>

#include "host/base/result.h"
#include "host/mesh/mesh.h"
#include "host/nodes/vertex_offsets.h"
#include "host/scene/document.h"

namespace host::nodes {

/// Moves some vertices, each listed once, by the shape's offsets, so that the evaluated mesh has
/// them at the targets (object space), with history and without: as a person moves them. What is
/// stored or arrives stays as it is. Recorded. Costs what is moved and the shape's offsets.
Result<void> tweakPoints(dg::Node& shape, PointTargets targets);
/// The same of all vertices; those that stay where they are get no offset.
Result<void> tweakPoints(dg::Node& shape, std::span<const math::Vec3f> points);

/// Moves some vertices, each listed once, so that the evaluated mesh has them at `places` (object
/// space); the others stay where they are, as setEvaluatedPoints has it: as programs write points.
/// Recorded. Costs what is moved and the shape's offsets.
Result<void> moveEvaluatedPoints(dg::Node& shape, std::span<const VertexId> vertices,
                                 std::span<const math::Vec3f> places);
/// The same of ascending vertices that exist, of a mesh that was evaluated.
Result<void> moveVertices(dg::Node& shape, const mesh::Mesh& now, const PointTargets& targets);

}  // namespace host::nodes
