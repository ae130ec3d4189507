#pragma once

#include "host/base/result.h"
#include "host/math/box.h"
#include "host/scene/document.h"

namespace host::builtins {

/// Moves an instance under a parent (null: the world) so that it stays where it is in the world, unless `isRelative`:
/// then its own transform stays.
Result<void> reparentObject(scene::Document& document, const scene::DagPath& path, scene::Node* parent,
                            bool isRelative);

/// The box around what is below a path and at it, in world space; intermediate shapes don't count.
[[nodiscard]] math::Box worldBox(const scene::DagPath& path);
/// The same around evaluated components, exact.
[[nodiscard]] Result<math::Box> worldBox(const scene::SelectionItem& item);

}  // namespace host::builtins
