#pragma once

#include "host/viewport/scene_view.h"

namespace host::viewport {

/// Adds the vertices that stand out in colours of their own, and the edges between them, which
/// blend from one to the other. Costs these vertices when they, or the places of some, have
/// changed; nothing worth speaking of else.
/// @param edgePixels how long edges are on the screen; dots are no larger
void drawReach(const RenderMesh& object, double edgePixels, DrawList& list);

}  // namespace host::viewport
