#pragma once

#include "host/modelling/declare/declaration.h"
#include "host/ops/topology/edge_flow.h"

namespace host::modelling {

/// With `insertWithEdgeFlow` on, moves new edges so that the surface follows the curvature around,
/// by `adjustEdgeFlow`. Of several loops beside each other each goes by those next to it.
[[nodiscard]] inline Result<void> followEdgeFlow(HistoryContext& context,
                                                 std::span<const EdgeId> edges) {
  if (!context.boolean("insertWithEdgeFlow")) return {};
  const auto moved = ops::editEdgeFlow(context.mesh, edges, context.real("adjustEdgeFlow"));
  return moved ? Result<void>() : failWith(moved.error());
}

}  // namespace host::modelling
