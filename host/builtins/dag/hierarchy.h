#pragma once

#include "host/base/result.h"
#include "host/math/box.h"
#include "host/scene/document.h"

namespace host::builtins {

/// Moves an instance under a parent (null: the world) so that it stays where it is in the world,
/// unless `isRelative`: then its own transform stays.
Result<void> reparentObject(scene::Document& document, const scene::DagPath& path,
                            scene::Node* parent, bool isRelative);

/// The box around all meshes at and below a path; intermediate shapes don't count. In the space of
/// the object itself, or of the world.
[[nodiscard]] math::Box objectBox(const scene::DagPath& path);
[[nodiscard]] math::Box worldBox(const scene::DagPath& path);
/// The same around evaluated components, exact.
[[nodiscard]] Result<math::Box> worldBox(const scene::SelectionItem& item);

}  // namespace host::builtins
