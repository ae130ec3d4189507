#pragma once

#include "host/base/result.h"
#include "host/math/box.h"
#include "host/scene/selection.h"

namespace host::edits {

/// The box around all meshes at and below a path; intermediate shapes don't count. In the space of
/// the object itself, or of the world.
[[nodiscard]] math::Box objectBox(const scene::DagPath& path);
[[nodiscard]] math::Box worldBox(const scene::DagPath& path);
/// The same around evaluated components, exact.
[[nodiscard]] Result<math::Box> worldBox(const scene::SelectionItem& item);

}  // namespace host::edits
