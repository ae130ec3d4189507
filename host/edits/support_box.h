#pragma once

#include "host/math/box.h"
#include "host/scene/dag.h"

namespace host::edits {

struct NestedBox {
  math::Box box;
  bool isExact = true;  ///< false: a little larger than what is in it
};

/// How many points the walk through all places at and below a node comes to; stops counting at
/// 2^62.
[[nodiscard]] std::uint64_t pointsBelow(scene::Node& top);

/// The box around all meshes below a transform, for scenes whose places are too many to visit. How
/// far a node reaches in a direction is found once for all its places: with instances that are
/// moved and scaled there are six directions, turned ones add theirs. Where these are too many as
/// well the box is that of the boxes below. Takes the top's space by `matrix`; transforms that do
/// not inherit go by `outer` alone.
///
/// Linear in nodes, times the directions. Rounds otherwise than the visit of all points does.
[[nodiscard]] NestedBox nestedBox(scene::Node& top, const math::Matrix4& matrix,
                                  const math::Matrix4& outer);

}  // namespace host::edits
