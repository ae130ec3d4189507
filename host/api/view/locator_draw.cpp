#include "host/api/view/locator_draw.h"

#include <maya/MPxLocatorNode.h>

#include <algorithm>
#include <exception>

#include "host/api/node/px_node.h"
#include "host/api/view/direct_target.h"
#include "host/api/view/display_state.h"
#include "host/api/view/draw_registry.h"
#include "host/api/view/geometry_draw.h"
#include "host/api/view/shape_ui.h"
#include "host/api/view/view_access.h"
#include "host/api/view/view_rep.h"
#include "host/base/messages.h"
#include "host/scene/dag_paths.h"
#include "host/scene/display_rules.h"
#include "host/scene/point_shape.h"
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
      if (!scene::isShown(node) || scene::isIntermediate(node)) {
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
  if (node.type().isA("surfaceShape") && !view.options.showPluginShapes) return false;
  const auto kind =
      node.type().isA("surfaceShape") ? M3dView::kDisplayMeshes : M3dView::kDisplayLocators;
  return (view.objectKinds & kind) != 0;
}

viewport::ObjectState stateOf(const scene::DagPath& path) {
  for (dg::Node* node : path.upwards()) {
    if (scene::numberOr(*node, "overrideEnabled", 0) == 0) continue;
    constexpr double kReferenceType = 2;
    if (scene::numberOr(*node, "overrideDisplayType", 0) == kReferenceType)
      return viewport::ObjectState::Reference;
    break;
  }
  switch (displayStatusOf(path)) {
    case MHWRender::kHilite:
      return viewport::ObjectState::Hilited;
    case MHWRender::kLead:
      return viewport::ObjectState::Lead;
    case MHWRender::kActive:
      return viewport::ObjectState::Selected;
    case MHWRender::kTemplate:
    case MHWRender::kActiveTemplate:
      return viewport::ObjectState::Template;
    default:
      return viewport::ObjectState::Dormant;
  }
}

/// The edges of the object's box: what it is picked by where only OpenGL knows what it draws.
std::vector<math::Vec3> boxLines(const scene::DagPath& path) {
  dg::Graph& graph = path.node()->graph();
  const auto low = graph.getVec3(path.node()->plug("boundingBoxMin"));
  const auto high = graph.getVec3(path.node()->plug("boundingBoxMax"));
  if (!low || !high) return {};
  const math::Matrix4 world = path.inclusiveMatrix();
  const auto corner = [&](int bits) {
    return math::transformPoint(
        math::Vec3{(bits & 1) != 0 ? high->x : low->x, (bits & 2) != 0 ? high->y : low->y,
                   (bits & 4) != 0 ? high->z : low->z},
        world);
  };
  std::vector<math::Vec3> lines;
  for (int bits = 0; bits < 8; ++bits)
    for (int axis = 1; axis < 8; axis *= 2)
      if ((bits & axis) == 0) lines.insert(lines.end(), {corner(bits), corner(bits | axis)});
  return lines;
}

/// The object's components as far as they can be picked or are selected.
void addComponents(const scene::DagPath& path, viewport::DrawnObject& object) {
  const scene::PointShape* shape = scene::pointShapeOf(*path.node());
  if (!shape) return;
  const math::Matrix4 world = path.inclusiveMatrix();
  object.hasComponents = shape->count(*path.node(), scene::ComponentType::Vertex) > 0;
  if (object.state == viewport::ObjectState::Hilited && object.hasComponents)
    if (const auto points = shape->points(*path.node(), {}))
      for (const scene::NumberedPoint& point : *points)
        object.points.push_back({point.index, math::transformPoint(point.place, world)});
  for (const scene::SelectionItem& item : document().selection().items()) {
    if (!item.isDag() || item.components.empty() || item.path != path) continue;
    if (const auto points = shape->points(*path.node(), item.components))
      for (const scene::NumberedPoint& point : *points)
        object.selected.push_back(math::transformPoint(point.place, world));
  }
}

/// Draws an object that a plug-in draws, and says what it is picked and framed by.
void gather(const scene::DagPath& path, const scene::DagPath& camera, const workspace::View& view,
            viewport::SceneView& scene) {
  viewport::DrawnObject object;
  object.path = path;
  object.firstItem = scene.extra.items.size();
  if (view.usesDrawOverrides()) {
    if (GeometryRegistry::Live* live = geometryRegistry().liveOf(*path.node()))
      drawGeometry(*live, path, camera, scene);
    else if (DrawRegistry::Live* other = drawRegistry().liveOf(*path.node()))
      prepare(*other, path, camera, scene);
  }
  object.itemCount = scene.extra.items.size() - object.firstItem;
  if (object.itemCount == 0) object.outline = boxLines(path);
  object.state = stateOf(path);
  addComponents(path, object);
  if (shapeUiOf(*path.node()))
    object.answer = [panel = view.panel, path,
                     projection = viewport::ViewProjection(scene.camera, scene.port)](
                        const viewport::PickQuestion& question) {
      return askUi(panel, path, projection, question);
    };
  scene.objects.push_back(std::move(object));
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
        if (!camera) return;
        for (const scene::DagPath& path : LocatorWalk(document, view).found)
          fenced(path, [&] {
            if (showsKind(view, *path.node())) gather(path, *camera, view, scene);
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
      else if (MPxSurfaceShapeUI* ui = shapeUiOf(*path.node()))
        drawByUi(*ui, view, path, backend);
    }
  });
}

}  // namespace host::api
