#include "host/workspace/views.h"

#include "host/base/messages.h"
#include "host/math/transform.h"
#include "host/viewport/backends/gl_backend.h"
#include "host/viewport/scene_gather.h"
#include "host/workspace/lights.h"
#include "host/workspace/marks.h"
#include "host/workspace/materials.h"

namespace host::workspace {

Views::~Views() = default;

Views::Views() : materials_(std::make_unique<Materials>()) {
  const auto add = [this](const char* panel, const char* camera) {
    View view;
    view.panel = panel;
    view.cameraName = camera;
    views_.push_back(std::move(view));
  };
  add("modelPanel1", "top");
  add("modelPanel2", "side");
  add("modelPanel3", "front");
  add("modelPanel4", "persp");
}

View* Views::find(std::string_view panel) {
  for (View& view : views_)
    if (view.panel == panel) return &view;
  return nullptr;
}

void Views::setActive(std::string_view panel) {
  for (std::size_t i = 0; i < views_.size(); ++i)
    if (views_[i].panel == panel) active_ = i;
}

Result<viewport::Backend*> Views::offscreen() {
  if (!backend_) {
    auto made = viewport::GlBackend::createOffscreen();
    if (!made) return failWith(made.error());
    backend_ = std::move(*made);
  }
  return backend_.get();
}

Result<scene::DagPath> cameraPath(scene::Document& document, const std::string& name) {
  auto path = document.dagPath(name);
  if (!path) return path;
  const scene::DagPath shape = path->toShape();
  if (shape.isWorld() || !shape.node()->type().isA("camera")) return fail("{} is no camera", name);
  return shape;
}

bool isolationShows(const View& view, const scene::DagPath& path) {
  if (!view.isIsolated) return true;
  for (scene::DagPath at = path; !at.isWorld(); at = at.parent())
    for (const std::weak_ptr<dg::Node>& node : view.isolated)
      if (node.lock().get() == at.node()) return true;
  return false;
}

void removeFromIsolated(View& view, const dg::Node& node) {
  std::erase_if(view.isolated,
                [&](const auto& each) { return each.expired() || each.lock().get() == &node; });
}

void addToIsolated(View& view, dg::Node& node) {
  removeFromIsolated(view, node);
  view.isolated.push_back(node.weak_from_this());
}

std::vector<dg::Node*> isolatedNodes(const View& view) {
  std::vector<dg::Node*> nodes;
  for (const auto& each : view.isolated)
    if (const auto node = each.lock(); node && node->isAlive()) nodes.push_back(node.get());
  return nodes;
}

namespace {

Result<viewport::SceneView> emptyView(scene::Document& document, const View& view) {
  const auto path = cameraPath(document, view.cameraName);
  if (!path) return failWith(path.error());
  auto camera = viewport::gatherCamera(*path);
  if (!camera) return failWith(camera.error());
  viewport::SceneView scene;
  scene.camera = *camera;
  scene.port = view.port;
  scene.options = view.options;
  scene.options.lightMode = view.lightsShown == "default" ? viewport::LightMode::Default
                            : view.lightsShown == "flat"  ? viewport::LightMode::Flat
                                                          : viewport::LightMode::Scene;
  return scene;
}

/// Everything of a walk that a view shows: one walk, whatever kinds there are.
void gatherPlaces(scene::Document& document, const View& view, bool vertexMode,
                  viewport::SceneView& scene, scene::PlaceBudget& budget) {
  std::unordered_set<const dg::Node*> only;
  for (const std::weak_ptr<dg::Node>& node : view.isolated) only.insert(node.lock().get());
  const viewport::GatherOptions options{vertexMode, view.isIsolated ? &only : nullptr};
  const viewport::PathStates states(document);
  viewport::MeshGatherer meshes(document, states, options);
  LightGatherer lights(view.lightsShown);
  const auto shows = [&](const char* kind) {
    const auto flag = view.editorFlags.find(kind);
    return flag == view.editorFlags.end() || flag->second;
  };
  MarkGatherer marks(scene, states, {shows("nurbsSurfaces"), shows("deformers")});
  std::vector<viewport::PlaceVisitor*> visitors{&lights, &marks};
  if (view.options.showMeshes) visitors.push_back(&meshes);
  viewport::walkShown(document, states, {options.only}, visitors, budget);
  scene.meshes = std::move(meshes.meshes);
  scene.lights = std::move(lights.lights);
  const std::size_t first = scene.extra.items.size();
  scene.extra.append(marks.list);
  for (viewport::DrawnObject& object : marks.objects) {
    object.firstItem += first;
    scene.objects.push_back(std::move(object));
  }
}

/// Says once, not at every frame, that a scene has more places than views show.
void tellLeftOut(const scene::PlaceBudget& budget) {
  static std::weak_ptr<const dg::Node> told;  // one document lives at a time
  const dg::Node* node = budget.leftOut();
  if (!node || told.lock().get() == node) return;
  told = node->weak_from_this();
  postMessage(MessageKind::Warning, "Views: " + budget.warning());
}

}  // namespace

Result<viewport::SceneView> gatherView(scene::Document& document, const View& view) {
  auto scene = emptyView(document, view);
  if (!scene || !view.options.showMeshes) return scene;
  std::unordered_set<const dg::Node*> only;
  for (const std::weak_ptr<dg::Node>& node : view.isolated) only.insert(node.lock().get());
  scene->meshes = viewport::gatherMeshes(document, {false, view.isIsolated ? &only : nullptr});
  return scene;
}

Result<viewport::SceneView> gatherView(scene::Document& document, const Views& views,
                                       const View& view) {
  auto scene = emptyView(document, view);
  if (!scene) return scene;
  scene::PlaceBudget budget;
  gatherPlaces(document, view, views.showsVertices && views.showsVertices(), *scene, budget);
  tellLeftOut(budget);
  for (const Views::Gather& gather : views.gatherers) gather(document, view, *scene);
  return scene;
}

Result<void> placeCamera(scene::Document& document, const scene::DagPath& shape,
                         const viewport::Camera& camera) {
  const scene::DagPath transform = shape.transform();
  const auto parent = math::inverse(transform.exclusiveMatrix());
  if (!parent)
    return fail("the camera {} hangs under a transform with a zero scale", shape.partialName());
  dg::Graph& graph = document.graph();
  dg::Node* node = transform.node();
  const math::Matrix4 local = camera.world * *parent;
  HOST_TRY(
      graph.setVec3(node->plug("translate"), math::transformPoint(math::Vec3{0, 0, 0}, local)));
  HOST_TRY(graph.setVec3(node->plug("rotate"), math::decompose(local).rotate));
  dg::Node* lens = shape.node();
  HOST_TRY(graph.set(lens->plug("centerOfInterest"), camera.centerOfInterest));
  HOST_TRY(graph.setVec3(lens->plug("tumblePivot"), camera.tumblePivot));
  HOST_TRY(graph.set(lens->plug("nearClipPlane"), camera.nearClip));
  HOST_TRY(graph.set(lens->plug("farClipPlane"), camera.farClip));
  return graph.set(lens->plug("orthographicWidth"), camera.orthographicWidth);
}

Result<void> drawView(scene::Document& document, Views& views, const View& view,
                      viewport::PortSize size, viewport::Backend& backend) {
  View sized = view;
  sized.port = size;
  auto scene = gatherView(document, views, sized);
  if (!scene) return failWith(scene.error());
  views.materials().dress(document, *scene);
  viewport::FrameSettings frame;
  frame.camera = scene->camera;
  frame.port = size;
  HOST_TRY(backend.beginFrame(frame));
  backend.draw(viewport::buildDrawList(*scene, views.cache()));
  for (const Views::Direct& direct : views.directs) direct(document, sized, *scene, backend);
  backend.endFrame();
  return {};
}

Result<viewport::Image> renderView(scene::Document& document, Views& views, const View& view,
                                   viewport::PortSize size) {
  const auto backend = views.offscreen();
  if (!backend) return failWith(backend.error());
  HOST_TRY(drawView(document, views, view, size, **backend));
  return (*backend)->readPixels();
}

}  // namespace host::workspace
