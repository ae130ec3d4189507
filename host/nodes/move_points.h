#pragma once

#include <span>

#include "host/base/result.h"
#include "host/mesh/mesh.h"
#include "host/scene/document.h"

namespace host::nodes {

/// Moves some vertices, each listed once, so that the evaluated mesh has them at `places` (object
/// space); the others stay where they are, as setEvaluatedPoints has it. Recorded. Costs those that
/// are moved, on a shape that nothing drives and that has no tweaks.
Result<void> moveEvaluatedPoints(dg::Node& shape, std::span<const VertexId> vertices,
                                 std::span<const math::Vec3f> places);

}  // namespace host::nodes
