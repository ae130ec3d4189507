#pragma once

#include "host/nodes/history/history_node.h"
#include "host/ops/topology/extrude_placement.h"

namespace host::nodes {

/// Adds what the extrusions of faces and edges have in common: divisions, offset, thickness, taper,
/// twist, smoothingAngle, the local and the world transform with its pivot, and what is only
/// recorded: randomSeed, taperCurve and the bounding box of what was extruded.
void addExtrudeAttributes(HistoryNodeBuilder& builder);

/// The placement that the attributes describe, in the space of worldSpace and inputMatrix.
[[nodiscard]] ops::ExtrudePlacement extrudePlacement(const HistoryContext& context);

}  // namespace host::nodes
