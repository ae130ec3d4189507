#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "host/scene/document.h"
#include "host/viewport/backends/backend.h"
#include "host/viewport/mesh_draw.h"
#include "host/viewport/projection.h"
#include "host/viewport/scene_view.h"

namespace host::workspace {

/// One view of the scene: what a model panel shows, whether or not a window shows the panel.
struct View {
  std::string panel;       ///< "modelPanel4"
  std::string cameraName;  ///< the camera's transform
  viewport::PortSize port{960, 540};
  viewport::ViewOptions options;
  /// "vp2Renderer" draws plug-ins' shapes by their draw overrides, the other two let them draw
  /// themselves.
  std::string rendererName = "vp2Renderer";
  viewport::ViewPoint cursor;
  std::string lightsShown = "default";  ///< default, all, selected, active, none, flat
  bool hasCursor = false;               ///< the cursor is over the view
  bool isIsolated = false;              ///< shows only the nodes below and what hangs under them
  std::vector<std::weak_ptr<dg::Node>> isolated;
  [[nodiscard]] bool usesDrawOverrides() const { return rendererName == "vp2Renderer"; }
  /// What it is told to show and can't show otherwise than it does: kept for who asks, by flag.
  std::map<std::string, bool, std::less<>> editorFlags;
  /// Kinds of objects that plug-ins have set it to show, a bit each.
  std::uint32_t objectKinds = ~0U;
};

class Materials;

/// The session's views: the four panels of a new layout, and what draws them.
class Views {
 public:
  Views();
  ~Views();
  [[nodiscard]] std::vector<View>& all() { return views_; }
  [[nodiscard]] View& active() { return views_[active_]; }
  [[nodiscard]] View* find(std::string_view panel);
  void setActive(std::string_view panel);
  [[nodiscard]] viewport::MeshDrawCache& cache() { return cache_; }
  [[nodiscard]] Materials& materials() { return *materials_; }
  /// The backend that draws off screen; made on first use. Fails where the machine has none.
  Result<viewport::Backend*> offscreen();

  /// What other layers draw into views: items that go with the scene, and direct sections after it.
  using Gather = std::function<void(scene::Document&, const View&, viewport::SceneView&)>;
  using Direct = std::function<void(scene::Document&, const View&, const viewport::SceneView&,
                                    viewport::Backend&)>;
  std::vector<Gather> gatherers;
  /// Whether hilited meshes show their vertices: they can be picked now.
  std::function<bool()> showsVertices;
  std::vector<Direct> directs;

 private:
  std::vector<View> views_;
  std::size_t active_ = 3;
  viewport::MeshDrawCache cache_;
  std::unique_ptr<Materials> materials_;
  std::unique_ptr<viewport::Backend> backend_;
};

/// The path of a view's camera shape. Fails, naming it, when the camera is gone.
[[nodiscard]] Result<scene::DagPath> cameraPath(scene::Document& document, const std::string& name);

/// Whether a view that isolates lets an object show: it, or something above it, is in the view's
/// set.
[[nodiscard]] bool isolationShows(const View& view, const scene::DagPath& path);

/// What a view shows now. The clip planes are those of the camera.
[[nodiscard]] Result<viewport::SceneView> gatherView(scene::Document& document, const View& view);

/// The same with all that other layers draw.
[[nodiscard]] Result<viewport::SceneView> gatherView(scene::Document& document, const Views& views,
                                                     const View& view);

/// Moves a camera's node to where the framed camera stands: transform, centre of interest, clip
/// planes, width.
[[nodiscard]] Result<void> placeCamera(scene::Document& document, const scene::DagPath& shape,
                                       const viewport::Camera& camera);

// The set of a view that isolates.
void addToIsolated(View& view, dg::Node& node);
void removeFromIsolated(View& view, const dg::Node& node);
[[nodiscard]] std::vector<dg::Node*> isolatedNodes(const View& view);  ///< that still live

/// Draws a frame of a view into a backend; the backend's last picture is the result.
[[nodiscard]] Result<void> drawView(scene::Document& document, Views& views, const View& view,
                                    viewport::PortSize size, viewport::Backend& backend);

/// Draws a view at a size of its own.
[[nodiscard]] Result<viewport::Image> renderView(scene::Document& document, Views& views,
                                                 const View& view, viewport::PortSize size);

}  // namespace host::workspace
