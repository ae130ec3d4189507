#include "host/builtins/view/tool_views.h"

#include "host/builtins/view/views.h"
#include "host/cmd/loop.h"

namespace host::builtins {
namespace {

View& viewOf(cmd::Session& session, const std::string& panel) {
  Views& views = session.service<Views>();
  View* view = panel.empty() ? nullptr : views.find(panel);
  return view ? *view : views.active();
}

/// Tells script jobs of the tools; lives with the session.
struct ToolEvents {
  Connection changed;
};

bool isOn(cmd::Session& session, const char* query) {
  const auto value = session.executeLine(query, {.undo = false, .postErrors = false});
  return value && value->toInt().value_or(0) != 0;
}

/// What a click may pick: in component mode the kinds that are on, else objects, and the kinds that
/// are on for objects whose components are shown.
viewport::PickOptions pickOptions(cmd::Session& session) {
  const bool isComponentMode = isOn(session, "selectMode -q -component");
  viewport::PickOptions options;
  options.objects = options.onlyHilited = true;
  if (!isComponentMode && session.document().hilite().isEmpty()) return options;
  const std::string query = isComponentMode ? "selectType -q " : "selectType -q -objectComponent ";
  options.vertices = isOn(session, (query + "-vertex").c_str());
  options.edges = isOn(session, (query + "-edge").c_str());
  options.faces = isOn(session, (query + "-facet").c_str());
  return options;
}

}  // namespace

tools::ToolRegistry& toolsOf(cmd::Session& session) {
  if (auto* made = session.findService<tools::ToolRegistry>()) return *made;
  const auto made = std::make_shared<tools::ToolRegistry>(session.loop().timers());
  session.setService(made);
  tools::ToolRegistry& registry = *made;
  cmd::Session* const owner = &session;
  registry.views.scene = [owner](const std::string& panel) {
    return gatherView(owner->document(), viewOf(*owner, panel));
  };
  registry.views.setCamera = [owner](const std::string& panel,
                                     const viewport::Camera& camera) -> Result<void> {
    const auto path = cameraPath(owner->document(), viewOf(*owner, panel).cameraName);
    if (!path) return failWith(path.error());
    // Camera moves are not undone with the work on the scene.
    const scene::Journal::Scope unrecorded(owner->document().journal(), nullptr);
    return placeCamera(owner->document(), *path, camera);
  };
  registry.views.pickOptions = [owner] { return pickOptions(*owner); };
  registry.views.pointerAt = [owner](const tools::InputEvent& event) {
    owner->loop().requestRedraw();
    if (event.kind == tools::InputKind::Press && !event.panel.empty())
      owner->service<Views>().setActive(event.panel);
    View& view = viewOf(*owner, event.panel);
    for (View& other : owner->service<Views>().all()) other.hasCursor = false;
    view.cursor = event.position;
    const auto isWithin = [](double position, int extent) {
      return position >= 0 && position < extent;
    };
    view.hasCursor =
        isWithin(event.position.x, view.port.width) && isWithin(event.position.y, view.port.height);
  };
  session.service<Views>().gatherers.push_back(
      [owner](scene::Document&, const View& view, viewport::SceneView& scene) {
        toolsOf(*owner).current()->draw(view.panel, scene.extra);
      });
  session.service<ToolEvents>().changed =
      registry.currentChanged.connect([owner] { owner->scriptJobs().triggerEvent("ToolChanged"); });
  return registry;
}

}  // namespace host::builtins
