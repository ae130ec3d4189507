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

/// A mesh that a list of offsets makes of another, under the number of what the list holds.
struct OffsetMesh {
  std::uint64_t offsets = 0;
  Mesh mesh;
};

/// What a mesh keeps beside its points for as long as they are what they are.
struct BesidePoints {
  std::shared_ptr<void> accelerator;  ///< of host/spatial
  std::shared_ptr<PointHistory> history;
  std::vector<OffsetMesh> offsetMeshes;  ///< the last ones
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

/// Keeps with `base` what a list of offsets makes of it: the last two such meshes are found again,
/// as a drag under a person's hand goes to and fro between two.
void keepOffsetMesh(const Mesh& base, std::uint64_t offsets, const Mesh& mesh);
/// The one kept for these offsets; nothing when there is none or more than points have changed.
[[nodiscard]] std::optional<Mesh> findOffsetMesh(const Mesh& base, std::uint64_t offsets);

}  // namespace host::mesh
