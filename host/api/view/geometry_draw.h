#pragma once

#include "host/api/view/draw_registry.h"
#include "host/viewport/scene_view.h"

namespace host::api {

/// Lets a geometry override bring its items up to date and adds what they show to the view. What is
/// wrong with an item (no positions, indices of vertices that there are none of, coordinates that
/// are not finite) leaves the item out.
void drawGeometry(GeometryRegistry::Live& live, const scene::DagPath& path,
                  const scene::DagPath& camera, viewport::SceneView& scene);

}  // namespace host::api
