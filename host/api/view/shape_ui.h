#pragma once

#include <maya/MPxSurfaceShapeUI.h>

#include "host/viewport/backends/backend.h"
#include "host/viewport/scene_view.h"
#include "host/workspace/views.h"

namespace host::api {

/// What draws a plug-in's shape with OpenGL, made on first use; null where its plug-in has
/// registered no such class.
[[nodiscard]] MPxSurfaceShapeUI* shapeUiOf(dg::Node& node);

/// Draws a shape by its class of the interface, into the frame that is being drawn.
void drawByUi(MPxSurfaceShapeUI& ui, const workspace::View& view, const scene::DagPath& path,
              viewport::Backend& backend);

/// Asks a shape's class of the interface what of the shape is hit in a view.
/// @return nothing where it has no say, or where there is nothing to draw with
[[nodiscard]] std::optional<viewport::PickAnswer> askUi(const std::string& panel,
                                                        const scene::DagPath& path,
                                                        const viewport::ViewProjection& projection,
                                                        const viewport::PickQuestion& question);

}  // namespace host::api
