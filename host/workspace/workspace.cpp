#include "host/workspace/workspace.h"

#include "host/base/assert.h"
#include "host/cmd/loop.h"

namespace host::workspace {

Workspace& workspaceOf(cmd::Session& session) {
  HOST_ASSERT(session.workspace, "give the session a workspace when it is made");
  return static_cast<Workspace&>(*session.workspace);
}

/// Has the views drawn anew when what they show has changed.
class Workspace::Watcher final : public dg::GraphObserver, public scene::DocumentObserver {
 public:
  explicit Watcher(cmd::Session& session) : session_(session) {
    session.document().graph().addObserver(this);
    session.document().addObserver(this);
  }
  ~Watcher() override {
    session_.document().graph().removeObserver(this);
    session_.document().removeObserver(this);
  }
  Watcher(const Watcher&) = delete;
  Watcher& operator=(const Watcher&) = delete;

  void nodeRemoved(dg::Node&) override { session_.loop().requestRedraw(); }
  void plugDirty(const dg::Plug&) override { session_.loop().requestRedraw(); }
  void selectionChanged() override { session_.loop().requestRedraw(); }
  void hiliteChanged() override { session_.loop().requestRedraw(); }
  void dagChanged(dg::Node&, dg::Node*, bool) override { session_.loop().requestRedraw(); }

 private:
  cmd::Session& session_;
};

Workspace::Workspace(cmd::Session& session)
    : toolbox(session.loop().timers()),
      recordings(session, *this),
      session_(session),
      watcher_(std::make_unique<Watcher>(session)) {
  giveToolsTheirViews();
  toolbox.unusedKey = [this](const tools::InputEvent& event) {
    const std::string line = hotkeys.lineFor(event);
    if (!line.empty()) (void)session_.executeLine(line);
    return !line.empty();
  };
  connections_.push_back(toolbox.currentChanged.connect([this] {
    session_.loop().requestRedraw();
    session_.scriptJobs().triggerEvent("ToolChanged");
  }));
  connections_.push_back(controls.changed.connect(
      [this](const ui::Control&, ui::ControlChange) { session_.loop().requestRedraw(); }));
}

Workspace::~Workspace() = default;

View& Workspace::viewOf(const std::string& panel) {
  View* view = panel.empty() ? nullptr : views.find(panel);
  return view ? *view : views.active();
}

void Workspace::giveToolsTheirViews() {
  toolbox.views.scene = [this](const std::string& panel) {
    return gatherView(session_.document(), viewOf(panel));
  };
  toolbox.views.whole = [this](const std::string& panel) {
    return gatherView(session_.document(), views, viewOf(panel));
  };
  toolbox.views.setCamera = [this](const std::string& panel,
                                   const viewport::Camera& camera) -> Result<void> {
    scene::Document& document = session_.document();
    const auto path = cameraPath(document, viewOf(panel).cameraName);
    if (!path) return failWith(path.error());
    // Camera moves are not undone with the work on the scene.
    const scene::Journal::Scope unrecorded(document.journal(), nullptr);
    return placeCamera(document, *path, camera);
  };
  toolbox.views.pickOptions = [this] { return pickOptions(session_.document(), selectionModes); };
  toolbox.views.pointerAt = [this](const tools::InputEvent& event) {
    session_.loop().requestRedraw();
    if (event.kind == tools::InputKind::Press && !event.panel.empty()) views.setActive(event.panel);
    View& view = viewOf(event.panel);
    for (View& other : views.all()) other.hasCursor = false;
    view.cursor = event.position;
    const auto isWithin = [](double position, int extent) {
      return position >= 0 && position < extent;
    };
    view.hasCursor =
        isWithin(event.position.x, view.port.width) && isWithin(event.position.y, view.port.height);
  };
  views.showsVertices = [this] {
    return pickOptions(session_.document(), selectionModes).vertices;
  };
  views.gatherers.push_back([this](scene::Document&, const View& view, viewport::SceneView& scene) {
    toolbox.current()->mark(view.panel, scene);
    toolbox.current()->draw(view.panel, scene.extra);
  });
}

}  // namespace host::workspace
