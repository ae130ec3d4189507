#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/scene/document.h"
#include "host/viewport/backends/backend.h"
#include "host/viewport/mesh_draw.h"
#include "host/viewport/projection.h"
#include "host/viewport/scene_view.h"

namespace host::builtins {

/// One view of the scene: what a model panel shows, whether or not a window shows the panel.
struct View {
  std::string panel;         ///< "modelPanel4"
  std::string cameraName;    ///< the camera's transform
  viewport::PortSize port{960, 540};
  viewport::ViewOptions options;
  viewport::ViewPoint cursor;
  bool hasCursor = false;    ///< the cursor is over the view
};

/// The session's views: the four panels of a new layout, and what draws them.
class Views {
 public:
  Views();
  [[nodiscard]] std::vector<View>& all() { return views_; }
  [[nodiscard]] View& active() { return views_[active_]; }
  [[nodiscard]] View* find(std::string_view panel);
  void setActive(std::string_view panel);
  [[nodiscard]] viewport::MeshDrawCache& cache() { return cache_; }
  /// The backend that draws off screen; made on first use. Fails where the machine has none.
  Result<viewport::Backend*> offscreen();

 private:
  std::vector<View> views_;
  std::size_t active_ = 3;
  viewport::MeshDrawCache cache_;
  std::unique_ptr<viewport::Backend> backend_;
};

/// The path of a view's camera shape. Fails, naming it, when the camera is gone.
[[nodiscard]] Result<scene::DagPath> cameraPath(scene::Document& document, const std::string& name);

/// What a view shows now. The clip planes are those of the camera.
[[nodiscard]] Result<viewport::SceneView> gatherView(scene::Document& document, const View& view);

/// Draws a view at a size of its own.
[[nodiscard]] Result<viewport::Image> renderView(scene::Document& document, Views& views, const View& view,
                                                 viewport::PortSize size);

}  // namespace host::builtins
