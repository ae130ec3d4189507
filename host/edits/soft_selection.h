#pragma once

#include <span>
#include <vector>

#include "host/math/matrix4.h"
#include "host/math/ramp.h"
#include "host/mesh/mesh.h"

namespace host::edits {

/// How components around the selected ones go along with them.
struct SoftSelection {
  enum class Falloff : std::uint8_t {
    Volume,   ///< by the straight way to the nearest selected vertex
    Surface,  ///< by the way along edges, so that what is near but not joined stays
    Global,   ///< by the straight way, the vertices of all other meshes that show included
  };
  bool isOn = false;
  Falloff falloff = Falloff::Volume;
  double distance = 5;  ///< world space, cm: from here on nothing goes along
  /// The share by the distance: from 0 at the selection to 1 at `distance`.
  std::vector<math::RampEntry> curve = {{1, {0, 0, 0}, math::RampInterpolation::Smooth},
                                        {0, {1, 0, 0}, math::RampInterpolation::Smooth}};
};

/// A vertex and the share of a change that it takes.
struct SoftWeight {
  VertexId vertex;
  double weight;
};

/// Which vertices go along with the selected ones, these included with the whole change, ascending.
/// Costs the mesh's points by volume, what is within reach along the surface.
/// @param world takes the mesh's points to world space
[[nodiscard]] std::vector<SoftWeight> softWeights(const mesh::Mesh& mesh,
                                                  std::span<const VertexId> selected,
                                                  const math::Matrix4& world,
                                                  const SoftSelection& settings);

/// The same for points that no edges join: by the straight way, whatever the falloff.
/// @param points in world space
[[nodiscard]] std::vector<SoftWeight> softWeights(const std::vector<math::Vec3>& points,
                                                  std::span<const VertexId> selected,
                                                  const SoftSelection& settings);

}  // namespace host::edits
