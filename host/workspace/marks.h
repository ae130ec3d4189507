#pragma once

#include "host/scene/document.h"
#include "host/viewport/scene_view.h"

namespace host::workspace {

struct View;

/// Adds what shows objects that have no surface: locators, lights, curves, and joints with their
/// bones. Kinds as the view's options ask for; hidden, template, coloured and isolated as meshes
/// are. Linear in the hierarchy; curves are evaluated anew.
void drawMarks(scene::Document& document, const View& view, viewport::SceneView& scene);

}  // namespace host::workspace
