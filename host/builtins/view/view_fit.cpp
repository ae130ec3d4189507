#include "host/builtins/common/command.h"
#include "host/math/transform.h"
#include "host/nodes/mesh_components.h"
#include "host/scene/point_shape.h"
#include "host/viewport/scene_gather.h"
#include "host/workspace/framings.h"

namespace host::builtins {
namespace {

using workspace::View;
using workspace::Views;
using workspace::workspaceOf;

/// Collects what a view is to show of things that are named or selected.
class FramePoints {
 public:
  explicit FramePoints(const viewport::SceneView& shown, const scene::DagPath& camera)
      : shown_(shown), camera_(camera) {}

  Result<void> add(const scene::SelectionItem& item) {
    if (!item.isDag() || item.plug || item.path == camera_ || item.path == camera_.transform())
      return {};
    return item.isObject() ? addObject(item.path) : addComponents(item);
  }
  [[nodiscard]] std::vector<math::Vec3> take() { return std::move(points_); }

 private:
  Result<void> addComponents(const scene::SelectionItem& item) {
    scene::SelectionList one;
    one.merge(item);
    const auto meshes = nodes::meshItems(one);
    if (!meshes) return failWith(meshes.error());
    for (const nodes::MeshItem& each : *meshes) {
      const math::Matrix4 world = each.path.inclusiveMatrix();
      for (const VertexId v : each.vertices())
        points_.push_back(math::transformPoint(each.mesh.point(v), world));
    }
    for (const scene::PointItem& each : scene::pointItems(one)) {
      const auto own = each.points();
      if (!own) return failWith(own.error());
      const math::Matrix4 world = each.path.inclusiveMatrix();
      for (const scene::NumberedPoint& point : *own)
        points_.push_back(math::transformPoint(point.place, world));
    }
    return {};
  }

  /// What shows of it and of what is below it. What shows nothing, as cameras and empty groups do,
  /// is as large as a locator.
  Result<void> addObject(const scene::DagPath& top) {
    const std::size_t before = points_.size();
    const auto isBelow = [&](const scene::DagPath& path) {
      return path == top || top.isAncestorOf(path) ||
             (scene::isShape(*top.node()) && path == top.transform());
    };
    for (const viewport::RenderMesh& mesh : shown_.meshes)
      if (isBelow(mesh.path))
        for (const math::Vec3f& p : mesh.mesh.points())
          points_.push_back(math::transformPoint(math::Vec3(p), mesh.world));
    for (const viewport::DrawnObject& object : shown_.objects)
      if (isBelow(object.path)) {
        const std::vector<math::Vec3> own = viewport::framePoints(shown_, object);
        points_.insert(points_.end(), own.begin(), own.end());
      }
    if (points_.size() > before) return {};
    const math::Matrix4 world = top.inclusiveMatrix();
    for (int axis = 0; axis < 3; ++axis)
      for (const double end : {-1.0, 1.0}) {
        math::Vec3 arm;
        arm[axis] = end;
        points_.push_back(math::transformPoint(arm, world));
      }
    return {};
  }

  const viewport::SceneView& shown_;
  scene::DagPath camera_;
  std::vector<math::Vec3> points_;
};

/// Points to frame: those of what is named, else of the selection, else of all that shows.
Result<std::vector<math::Vec3>> pointsToFrame(Context& context, const viewport::SceneView& shown,
                                              const scene::DagPath& camera,
                                              const std::vector<std::string>& names, bool all) {
  scene::SelectionList list;
  if (!names.empty()) {
    auto named = context.document.resolveAll(names);
    if (!named) return failWith(named.error());
    list = std::move(*named);
  } else if (!all) {
    list = context.document.selection();
  }
  FramePoints wanted(shown, camera);
  for (const scene::SelectionItem& item : list.items()) HOST_TRY(wanted.add(item));
  std::vector<math::Vec3> points = wanted.take();
  if (!points.empty() || !names.empty()) return points;
  points = framePoints(shown);
  for (const viewport::DrawnObject& object : shown.objects) {
    const std::vector<math::Vec3> own = framePoints(shown, object);
    points.insert(points.end(), own.begin(), own.end());
  }
  return points;
}

/// Moves the camera node to where the framed camera stands. Its angles stay as they were written.
Result<void> place(scene::Document& document, const scene::DagPath& shape,
                   const viewport::Camera& camera) {
  dg::Node* transform = shape.transform().node();
  dg::Graph& graph = document.graph();
  const math::Vec3 eye = camera.eye();
  const auto parent = math::inverse(shape.transform().exclusiveMatrix());
  if (!parent)
    return fail("the camera {} hangs under a transform with a zero scale", shape.partialName());
  HOST_TRY(graph.setVec3(transform->plug("translate"), math::transformPoint(eye, *parent)));
  dg::Node* node = shape.node();
  HOST_TRY(graph.set(node->plug("centerOfInterest"), camera.centerOfInterest));
  HOST_TRY(graph.setVec3(node->plug("tumblePivot"), camera.tumblePivot));
  HOST_TRY(graph.set(node->plug("nearClipPlane"), camera.nearClip));
  HOST_TRY(graph.set(node->plug("farClipPlane"), camera.farClip));
  return graph.set(node->plug("orthographicWidth"), camera.orthographicWidth);
}

CommandResult viewFit(Context& context, const ParsedArgs& args) {
  Views& views = workspaceOf(context.session).views;
  View view = views.active();
  std::vector<std::string> names = args.objectNames();
  if (!names.empty() && workspace::cameraPath(context.document, names.front())) {
    view.cameraName = names.front();
    names.erase(names.begin());
  }
  const auto path = workspace::cameraPath(context.document, view.cameraName);
  if (!path) return failWith(path.error());
  auto shown = workspace::gatherView(context.document, views, view);
  if (!shown) return failWith(shown.error());
  const auto points = pointsToFrame(context, *shown, *path, names, args.has("allObjects"));
  if (!points) return failWith(points.error());
  const double fit = args.real("fitFactor", 0.9);
  if (!(fit > 0 && fit <= 1))
    return fail("viewFit: the fit factor {} does not lie above 0 and up to 1", fit);
  viewport::Camera camera = shown->camera;
  if (!viewport::frame(camera, view.port.aspect(), *points, fit)) return mel::Value();
  context.session.undo().noteUnrecorded();  // a camera move is no step of undo
  HOST_TRY(place(context.document, *path, camera));
  // As it stands now, to the bit.
  const auto placed = viewport::gatherCamera(*path);
  if (!placed) return failWith(placed.error());
  viewport::ViewExtents extents = viewport::extentsOf(*placed, *points);
  extents.halfWidth /= fit;
  extents.halfHeight /= fit;
  workspace::Workspace& workspace = workspaceOf(context.session);
  workspace.kept<workspace::Framings>().keep(workspace, view.cameraName, *placed, extents);
  return mel::Value();
}

CommandResult lookThru(Context& context, const ParsedArgs& args) {
  Views& views = workspaceOf(context.session).views;
  if (args.isQuery()) return mel::Value(views.active().cameraName);
  const std::vector<std::string> names = args.objectNames();
  if (names.empty()) return fail("lookThru: name a camera");
  View* view = names.size() > 1 ? views.find(names.front()) : &views.active();
  if (!view) return fail("lookThru: there is no panel named {}", names.front());
  const auto path = workspace::cameraPath(context.document, names.back());
  if (!path) return failWith(path.error());
  view->cameraName = path->transform().partialName();
  return mel::Value();
}

}  // namespace

void registerViewFit(CommandRegistry& registry) {
  defineQuery(registry, "viewFit",
              Syntax()
                  .flag("all", "allObjects", {}, kCreate)
                  .flag("f", "fitFactor", {ArgType::Double}, kCreate)
                  .flag("an", "animate", {ArgType::Bool}, kCreate)
                  .flag("p", "panel", {}, kCreate)
                  .strings(),
              viewFit);
  defineQuery(registry, "lookThru", Syntax().queryable().strings(), lookThru);
}

}  // namespace host::builtins
