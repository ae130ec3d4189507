#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "host/mesh/mesh.h"

namespace host::mesh {

/// How a mesh's points came from those of earlier states.
struct PointHistory;

/// What a mesh keeps beside its points for as long as they are what they are.
struct BesidePoints {
  std::shared_ptr<void> accelerator;  ///< of host/spatial
  std::shared_ptr<PointHistory> history;
};
/// The contents of a slot, whose mutex must be held.
[[nodiscard]] BesidePoints& besidePoints(AcceleratorSlot& slot);

/// Moves some points, each listed once, to `places` in object space, as writing them in place does.
///
/// The state before is kept in waiting with the new one: the next move brings that one up to date
/// instead of copying the mesh's points, once nobody else looks at it any more. So a stroke that
/// moves a few points at a time costs those points, whatever the mesh, for one further array of
/// points.
void movePoints(Mesh& mesh, std::span<const VertexId> vertices, std::span<const Vec3f> places);

/// The vertices that movePoints has moved since an earlier state of the same mesh, some perhaps
/// twice; nothing when the points are not told to come from that state's by a few moves.
[[nodiscard]] std::optional<std::vector<VertexId>> movedSince(const Mesh& mesh, const Mesh& before);

}  // namespace host::mesh
