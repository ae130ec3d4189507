#pragma once

#include "host/nodes/history/history_node.h"
#include "host/ops/topology/extrude_placement.h"

namespace host::nodes {

/// Adds what all operations have in common that move what they make: offset, the local and the
/// world transform with its pivot, and what is only recorded: randomSeed and the bounding box of
/// what was moved.
void addPlacementAttributes(HistoryNodeBuilder& builder);
/// Adds those and what the extrusions of faces and edges have beside: divisions, thickness, taper,
/// twist, smoothingAngle; taperCurve is only recorded.
void addExtrudeAttributes(HistoryNodeBuilder& builder);

/// The placement that the attributes describe, in the space of worldSpace and inputMatrix.
[[nodiscard]] ops::ExtrudePlacement placementOf(const HistoryContext& context);
[[nodiscard]] ops::ExtrudePlacement extrudePlacement(const HistoryContext& context);

}  // namespace host::nodes
