#pragma once

#include <maya/MHWGeometryUtilities.h>

#include "host/scene/dag.h"

namespace host::api {

/// How the object at a path stands out now. Linear in the path and the selection.
[[nodiscard]] MHWRender::DisplayStatus displayStatusOf(const scene::DagPath& path);

}  // namespace host::api
