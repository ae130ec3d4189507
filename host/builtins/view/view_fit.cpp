#include "host/builtins/common/command.h"
#include "host/math/transform.h"
#include "host/viewport/scene_gather.h"
#include "host/workspace/framings.h"

namespace host::builtins {
namespace {

using workspace::View;
using workspace::Views;
using workspace::workspaceOf;

/// Points to frame: those of the objects named, else of the selection, else of everything.
Result<std::vector<math::Vec3>> pointsToFrame(Context& context, const viewport::SceneView& shown,
                                              const std::vector<std::string>& names, bool all) {
  if (!names.empty()) {
    auto list = context.document.resolveAll(names);
    if (!list) return failWith(list.error());
    viewport::SceneView named = shown;
    std::erase_if(named.meshes, [&](const viewport::RenderMesh& object) {
      for (const scene::SelectionItem& item : list->items())
        if (item.isDag() && item.path.toShape().fullName() == object.name) return false;
      return true;
    });
    return framePoints(named);
  }
  if (!all && !context.document.selection().isEmpty()) {
    auto points = selectionPoints(shown);
    if (!points.empty()) return points;
  }
  return framePoints(shown);
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
  auto shown = workspace::gatherView(context.document, view);
  if (!shown) return failWith(shown.error());
  const auto points = pointsToFrame(context, *shown, names, args.has("allObjects"));
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
