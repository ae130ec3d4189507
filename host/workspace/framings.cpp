#include "host/workspace/framings.h"

namespace host::workspace {
namespace {

bool standsThere(const viewport::Camera& a, const viewport::Camera& b) {
  for (int row = 0; row < 4; ++row)
    for (int column = 0; column < 4; ++column)
      if (a.world[row][column] != b.world[row][column]) return false;
  return a.orthographic == b.orthographic && a.focalLength == b.focalLength &&
         a.orthographicWidth == b.orthographicWidth;
}

}  // namespace

void Framings::keep(Workspace& workspace, const std::string& camera, const viewport::Camera& placed,
                    const viewport::ViewExtents& extents) {
  byCamera_[camera] = {placed, extents};
  if (isWatching_) return;
  isWatching_ = true;
  // The workspace keeps both this and its views.
  workspace.views.gatherers.emplace_back(
      [this, &views = workspace.views](scene::Document&, const View& sized,
                                       viewport::SceneView& scene) {
        const View* panel = views.find(sized.panel);
        if (panel && panel->port.aspect() != sized.port.aspect()) zoom(sized, scene);
      });
}

void Framings::zoom(const View& view, viewport::SceneView& scene) const {
  const auto framing = byCamera_.find(view.cameraName);
  if (framing != byCamera_.end() && standsThere(scene.camera, framing->second.camera))
    viewport::zoomTo(scene.camera, view.port.aspect(), framing->second.extents);
}

}  // namespace host::workspace
