#pragma once

#include "host/math/box.h"
#include "host/scene/dag.h"

namespace host::edits {

/// The box of a group that was made just now in the group's own space, when nothing in the scene
/// has changed since; empty otherwise. A hierarchy that is built from the bottom up, each group
/// around the last one, is so measured once and not again for each of its levels.
[[nodiscard]] math::Box takeLastGroupBox(const dg::Node& group);

/// Keeps the box of a group until the next change of its scene.
void keepLastGroupBox(dg::Node& group, const math::Box& box);

}  // namespace host::edits
