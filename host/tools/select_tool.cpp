#include "host/tools/select_tool.h"

#include "host/base/messages.h"
#include "host/cmd/session.h"
#include "host/tools/screen_pick.h"
#include "host/tools/tool_registry.h"

namespace host::tools {
namespace {

/// Applies a pick as the modifiers say. In component mode a click on an object makes its components
/// ready to be picked instead of selecting it.
void apply(scene::Document& document, const scene::SelectionList& picked, const InputEvent& event,
           bool objectsAreHilited) {
  scene::SelectionList objects =
      picked.filtered([](const scene::SelectionItem& item) { return item.isObject(); });
  if (objectsAreHilited && !objects.isEmpty()) {
    scene::SelectionList hilite =
        event.shift || event.control ? document.hilite() : scene::SelectionList();
    hilite.merge(objects,
                 event.control ? scene::SelectionMerge::Remove : scene::SelectionMerge::Add);
    document.setHilite(std::move(hilite));
    return;
  }
  if (!event.shift && !event.control) return document.setSelection(picked);
  scene::SelectionList list = document.selection();
  list.merge(picked, event.shift && event.control ? scene::SelectionMerge::Add
                     : event.shift                ? scene::SelectionMerge::Toggle
                                                  : scene::SelectionMerge::Remove);
  document.setSelection(std::move(list));
}

}  // namespace

void SelectTool::moved(const InputEvent& event) {
  pointed_.reset();
  if (!registry_.views.scene || !registry_.views.pickOptions) return;
  viewport::PickOptions options = registry_.views.pickOptions();
  if (!options.vertices && !options.edges && !options.faces) return;
  options.objects = false;
  const auto view = registry_.views.scene(event.panel);
  if (!view) return;
  if (const auto hit = registry_.picker().pick(*view, event.position, options))
    pointed_ = {event.panel, view->meshes[hit->mesh].id, hit->type, hit->component};
}

void SelectTool::cleanup() {
  pointed_.reset();
}

void SelectTool::mark(const std::string& panel, viewport::SceneView& scene) {
  if (!pointed_ || (!pointed_->panel.empty() && pointed_->panel != panel)) return;
  for (viewport::RenderMesh& mesh : scene.meshes) {
    if (mesh.id != pointed_->mesh) continue;
    const Index component = pointed_->component;
    if (pointed_->type == mesh::ComponentType::Vertex && component < mesh.mesh.vertexCount())
      mesh.hovered.vertices = {component};
    if (pointed_->type == mesh::ComponentType::Edge && component < mesh.mesh.edgeCount())
      mesh.hovered.edges = {component};
    if (pointed_->type == mesh::ComponentType::Face && component < mesh.mesh.faceCount())
      mesh.hovered.faces = {component};
  }
}

void SelectTool::press(const InputEvent& event) {
  pointed_.reset();
  isPressed_ = event.button == MouseButton::Left;
  start_ = end_ = event.position;
  panel_ = event.panel;
}

void SelectTool::drag(const InputEvent& event) {
  end_ = event.position;
}

void SelectTool::abort() {
  isPressed_ = false;
}

void SelectTool::release(const InputEvent& event) {
  if (!isPressed_) return;
  isPressed_ = false;
  if (!registry_.views.scene || !registry_.views.pickOptions) return;
  const auto view = registry_.views.wholeOf(panel_);
  if (!view) return postMessage(MessageKind::Error, view.error().message);
  cmd::Session& session = cmd::currentSession();
  const viewport::PickOptions options = registry_.views.pickOptions();
  const auto picked = pickFromScreen(session.document(), registry_.picker(), *view,
                                     {start_, event.position}, options);
  if (!picked) return postMessage(MessageKind::Error, picked.error().message);
  const bool wantsComponents = options.vertices || options.edges || options.faces;
  const auto done = session.dispatcher().recordStep("select", [&]() -> Result<void> {
    apply(session.document(), *picked, event, wantsComponents && options.onlyHilited);
    return {};
  });
  if (!done) postMessage(MessageKind::Error, done.error().message);
}

void SelectTool::draw(const std::string& panel, viewport::DrawList& list) {
  if (isPressed_ && panel == panel_) drawMarquee(start_, end_, list);
}

void drawMarquee(viewport::ViewPoint from, viewport::ViewPoint to, viewport::DrawList& list) {
  const auto x0 = static_cast<float>(from.x), y0 = static_cast<float>(from.y);
  const auto x1 = static_cast<float>(to.x), y1 = static_cast<float>(to.y);
  viewport::DrawItem& item = list.add(viewport::Primitive::Lines, viewport::Pass::Overlay,
                                      {{x0, y0, 0},
                                       {x1, y0, 0},
                                       {x1, y0, 0},
                                       {x1, y1, 0},
                                       {x1, y1, 0},
                                       {x0, y1, 0},
                                       {x0, y1, 0},
                                       {x0, y0, 0}});
  item.space = viewport::Space::Screen;
  item.color = {0.95f, 0.95f, 0.95f, 0.9f};
  item.stipple = viewport::Stipple::Dashed;
}

}  // namespace host::tools
