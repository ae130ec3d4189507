#include "host/api/view/locator_draw.h"

#include <maya/MPxLocatorNode.h>

#include <algorithm>
#include <exception>

#include "host/api/node/px_node.h"
#include "host/api/view/direct_target.h"
#include "host/api/view/display_state.h"
#include "host/api/view/draw_registry.h"
#include "host/api/view/geometry_draw.h"
#include "host/api/view/view_access.h"
#include "host/api/view/view_rep.h"
#include "host/base/messages.h"
#include "host/scene/dag_paths.h"
#include "host/scene/display_rules.h"
#include "host/workspace/workspace.h"

namespace host::api {
namespace {

using MHWRender::MPxDrawOverride;

/// Only nodes of registered types have something that draws them.
bool mayBeDrawn(const dg::Node& node) {
  return !node.type().pluginName.empty() && scene::isDagNode(node) &&
         (drawRegistry().find(node.type().classification) ||
          geometryRegistry().find(node.type().classification) || findNodeClass(node.type()));
}

/// The visible shapes that plug-ins draw. Ends, as the view's own walk does and tells, where the
/// places are too many.
class LocatorWalk {
 public:
  LocatorWalk(scene::Document& document, const workspace::View& view) : view_(view) {
    const bool isAny = std::ranges::any_of(
        document.graph().nodes(), [](const dg::NodePtr& node) { return mayBeDrawn(*node); });
    if (!isAny) return;
    for (dg::Node* node : document.worldChildren()) visit(scene::DagPath({node}));
  }
  std::vector<scene::DagPath> found;

 private:
  void visit(const scene::DagPath& top) {
    scene::PathWalk walk(top, scene::PathWalk::Children::InOrder, &budget_);
    while (!walk.isDone()) {
      dg::Node& node = walk.node();
      if (!scene::isShown(node)) {
        walk.skipBelow();
        continue;
      }
      if (mayBeDrawn(node) && workspace::isolationShows(view_, walk.path()))
        found.push_back(walk.path());
      walk.next();
    }
  }
  const workspace::View& view_;
  scene::PlaceBudget budget_;
};

template <class Call>
void fenced(const scene::DagPath& path, const Call& call) {
  try {
    call();
  } catch (const std::exception& exception) {
    postMessage(MessageKind::Error, fmt::format("Drawing '{}' threw an exception: {}",
                                                path.partialName(), exception.what()));
  } catch (...) {
    postMessage(MessageKind::Error,
                fmt::format("Drawing '{}' threw an exception", path.partialName()));
  }
}

FrameRep* frameOf(const viewport::SceneView& scene, const scene::DagPath& camera) {
  auto* frame = new FrameRep(scene.camera, scene.port);
  frame->options = scene.options;
  frame->camera = camera;
  return frame;
}

/// Lets an override take what it needs from its node, and draw what is not OpenGL's.
void prepare(DrawRegistry::Live& live, const scene::DagPath& path, const scene::DagPath& camera,
             viewport::SceneView& scene) {
  MPxDrawOverride& drawOverride = *live.drawOverride;
  const MDagPath object = wrap(path), cameraPath = wrap(camera);
  const auto frame = Access::make<MHWRender::MFrameContext>(frameOf(scene, camera));
  std::unique_ptr<MUserData>& kept = live.prepared[path.fullName()];
  MUserData* data = drawOverride.prepareForDraw(object, cameraPath, frame, kept.get());
  if (data != kept.get()) kept.reset(data);
  if (!drawOverride.hasUIDrawables()) return;
  auto* pen = new DrawRep();
  auto manager = Access::make<MHWRender::MUIDrawManager>(pen);
  pen->list = &scene.extra;
  pen->world = toMatrix4(drawOverride.transform(object, cameraPath));
  drawOverride.addUIDrawables(object, manager, frame, data);
  pen->list = nullptr;
}

void drawByCallback(DrawRegistry::Live& live, const scene::DagPath& path,
                    const scene::DagPath& camera, const viewport::SceneView& scene,
                    viewport::Backend& backend) {
  MPxDrawOverride& drawOverride = *live.drawOverride;
  std::unique_ptr<MUserData>& data = live.prepared[path.fullName()];
  if (const DrawCallback callback = callbackOf(drawOverride)) {
    FrameRep* frame = frameOf(scene, camera);
    frame->world = toMatrix4(drawOverride.transform(wrap(path), wrap(camera)));
    const auto context = Access::make<MHWRender::MDrawContext>(frame);
    const DirectTarget::Scope scope(backend, frame->world);
    if (directTarget().begin()) fenced(path, [&] { callback(context, data.get()); });
    directTarget().end();
  }
  if (data && data->deleteAfterUse()) data.reset();
}

void drawItself(MPxLocatorNode& locator, const workspace::View& view, const scene::DagPath& path,
                viewport::Backend& backend) {
  const DirectTarget::Scope scope(backend, path.inclusiveMatrix());
  M3dView shown = wrap(view);
  // The two enumerations name the same states.
  const auto status = static_cast<M3dView::DisplayStatus>(displayStatusOf(path));
  const M3dView::DisplayStyle style = shown.displayStyle();
  fenced(path, [&] { locator.draw(shown, wrap(path), style, status); });
}

/// What the viewport's menu and plug-ins say about locators and about other shapes of plug-ins.
bool showsKind(const workspace::View& view, const dg::Node& node) {
  const auto kind =
      node.type().isA("surfaceShape") ? M3dView::kDisplayMeshes : M3dView::kDisplayLocators;
  return (view.objectKinds & kind) != 0;
}

}  // namespace

void installLocatorDrawing(cmd::Session& session) {
  auto& views = workspace::workspaceOf(session).views;
  views.gatherers.push_back(
      [](scene::Document& document, const workspace::View& view, viewport::SceneView& scene) {
        if (!(view.objectKinds & M3dView::kDisplayMeshes)) scene.meshes.clear();
        drawRegistry().dropDead();
        geometryRegistry().dropDead();
        const auto camera = workspace::cameraPath(document, view.cameraName);
        if (!camera || !view.usesDrawOverrides()) return;
        for (const scene::DagPath& path : LocatorWalk(document, view).found)
          fenced(path, [&] {
            if (!showsKind(view, *path.node())) return;
            if (GeometryRegistry::Live* live = geometryRegistry().liveOf(*path.node()))
              drawGeometry(*live, path, *camera, scene);
            else if (DrawRegistry::Live* other = drawRegistry().liveOf(*path.node()))
              prepare(*other, path, *camera, scene);
          });
      });
  views.directs.push_back([](scene::Document& document, const workspace::View& view,
                             const viewport::SceneView& scene, viewport::Backend& backend) {
    const auto camera = workspace::cameraPath(document, view.cameraName);
    if (!camera) return;
    for (const scene::DagPath& path : LocatorWalk(document, view).found) {
      if (!showsKind(view, *path.node())) continue;
      if (view.usesDrawOverrides() && geometryRegistry().find(path.node()->type().classification))
        continue;
      DrawRegistry::Live* live =
          view.usesDrawOverrides() ? drawRegistry().liveOf(*path.node()) : nullptr;
      if (live)
        drawByCallback(*live, path, *camera, scene, backend);
      else if (auto* locator = dynamic_cast<MPxLocatorNode*>(userNodeOf(*path.node())))
        drawItself(*locator, view, path, backend);
    }
  });
}

}  // namespace host::api
