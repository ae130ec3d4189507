#pragma once

#include <span>

#include "host/ops/topology/edit_maps.h"

namespace host::ops {

/// Makes edges smooth where the faces meet at no more than an angle, and hard elsewhere.
///
/// The angle between two faces is the one between their normals; faces without area count as flat.
/// 0 makes all listed edges hard and pi or more makes them smooth; in between, border edges keep
/// their state and non-manifold ones become hard. Nothing else changes. Linear in the listed edges
/// and their faces.
/// @param angle radians
/// @return an error for a bad id or an angle that is no number, with `mesh` untouched.
[[nodiscard]] Result<void> softenEdges(Mesh& mesh, std::span<const EdgeId> edges, double angle);

}  // namespace host::ops
