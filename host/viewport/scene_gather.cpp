#include "host/viewport/scene_gather.h"

#include <algorithm>
#include <span>
#include <unordered_map>

#include "host/scene/dag_paths.h"
#include "host/scene/display_rules.h"
#include "host/scene/mesh_data.h"

namespace host::viewport {

namespace {

using scene::Component;
using scene::ComponentType;
using scene::DagPath;
using scene::SelectionItem;

bool isOn(dg::Node& node, std::string_view attribute) {
  return scene::numberOr(node, attribute, 0) != 0;
}

void addComponents(const Component& component, const mesh::Mesh& mesh, ComponentSets& sets) {
  // Selections may outlive an edit that took components away.
  const auto add = [](const std::vector<Index>& ids, Index count, std::vector<Index>& to) {
    std::ranges::copy_if(ids, std::back_inserter(to),
                         [&](Index id) { return id >= 0 && id < count; });
  };
  switch (component.type()) {
    case ComponentType::Vertex:
      return add(component.expanded(mesh.vertexCount()), mesh.vertexCount(), sets.vertices);
    case ComponentType::Edge:
      return add(component.expanded(mesh.edgeCount()), mesh.edgeCount(), sets.edges);
    case ComponentType::Face:
      return add(component.expanded(mesh.faceCount()), mesh.faceCount(), sets.faces);
    case ComponentType::VertexFace: {
      std::vector<Index> vertices;
      for (const Component::VertexFace& pair : component.pairs()) vertices.push_back(pair.vertex);
      return add(vertices, mesh.vertexCount(), sets.vertices);
    }
    case ComponentType::Uv:
      return;
  }
}

struct PathHash {
  std::size_t operator()(const DagPath& path) const {
    std::size_t hash = path.length();
    for (const dg::Node* node : path.nodes())
      hash = hash * 1099511628211ULL + std::hash<const dg::Node*>{}(node);
    return hash;
  }
};

/// What the selection and the hilite list say of each path, read once: asking takes constant time
/// however much is selected.
class PathStates {
 public:
  explicit PathStates(const scene::Document& document) {
    for (const SelectionItem& item : document.hilite().items())
      if (item.isDag()) hilited_.insert(item.path.toShape());
    const std::vector<SelectionItem>& items = document.selection().items();
    for (std::size_t i = 0; i < items.size(); ++i) {
      const SelectionItem& item = items[i];
      if (!item.isDag()) continue;
      if (!item.isObject())
        withComponents_[item.path.toShape()].push_back(&item);
      else
        objects_[item.path] = i + 1 == items.size() ? ObjectState::Lead : ObjectState::Selected;
    }
  }

  [[nodiscard]] bool isHilited(const DagPath& shape) const { return hilited_.contains(shape); }
  /// Selected, Lead or Dormant, by an item of exactly this path.
  [[nodiscard]] ObjectState objectState(const DagPath& path) const {
    const auto found = objects_.find(path);
    return found == objects_.end() ? ObjectState::Dormant : found->second;
  }
  /// The same by items of the path or of any above it.
  [[nodiscard]] ObjectState coveringState(DagPath path) const {
    ObjectState state = ObjectState::Dormant;
    for (; !objects_.empty() && !path.isWorld(); path = path.parent())
      state = stronger(state, objectState(path));
    return state;
  }
  [[nodiscard]] std::span<const SelectionItem* const> componentsOf(const DagPath& shape) const {
    const auto found = withComponents_.find(shape);
    if (found == withComponents_.end()) return {};
    return found->second;
  }

  /// The lead object stands out among all that are selected.
  static ObjectState stronger(ObjectState a, ObjectState b) {
    if (a == ObjectState::Lead || b == ObjectState::Lead) return ObjectState::Lead;
    return a == ObjectState::Selected ? a : b;
  }

 private:
  std::unordered_set<DagPath, PathHash> hilited_;
  std::unordered_map<DagPath, ObjectState, PathHash> objects_;
  std::unordered_map<DagPath, std::vector<const SelectionItem*>, PathHash> withComponents_;
};

/// Walks the hierarchy and collects the meshes that show.
class Gatherer {
 public:
  Gatherer(scene::Document& document, const GatherOptions& options)
      : document_(document), options_(options), states_(document) {}

  std::vector<RenderMesh> run() {
    for (dg::Node* node : document_.worldChildren()) visit(DagPath({node}));
    return std::move(meshes_);
  }

  Result<RenderMesh> makeAlone(const DagPath& path) const {
    return make(path, false, states_.coveringState(path));
  }

 private:
  /// What comes down from the nodes above.
  struct Above {
    ObjectState selected = ObjectState::Dormant;
    bool isTemplate = false, isListed = false;
  };

  Result<RenderMesh> make(const DagPath& path, bool isTemplateObject, ObjectState selected) const {
    dg::Node& shape = *path.node();
    const Result<dg::Value> value = document_.graph().get(shape.plug("outMesh"));
    if (!value) return failWith(value.error());
    const auto* data = dg::dataAs<scene::MeshData>(*value);
    if (!data) return fail("The mesh {} is empty.", path.partialName());
    constexpr std::uint64_t kInstances = 1u << 20;
    RenderMesh mesh;
    mesh.id = shape.serial() * kInstances + path.instanceNumber();
    mesh.name = path.fullName();
    mesh.mesh = data->mesh;
    mesh.world = path.inclusiveMatrix();
    mesh.state = isTemplateObject          ? ObjectState::Template
                 : states_.isHilited(path) ? ObjectState::Hilited
                                           : selected;
    mesh.showVertices = (options_.vertexMode && mesh.state == ObjectState::Hilited) ||
                        isOn(shape, "displayVertices");
    mesh.showHardEdges = isOn(shape, "displayEdges");
    mesh.showBorderEdges = isOn(shape, "displayBorders");
    mesh.showColors = isOn(shape, "displayColors");
    for (const SelectionItem* item : states_.componentsOf(path))
      for (const Component& component : item->components)
        addComponents(component, mesh.mesh, mesh.selected);
    return mesh;
  }

  void visit(const DagPath& top) {
    std::vector<Above> levels;  // of the nodes from the top to the one visited
    scene::PathWalk walk(top);
    while (!walk.isDone()) {
      dg::Node& node = walk.node();
      if (!scene::isShown(node) || scene::isIntermediate(node)) {
        walk.skipBelow();
        continue;
      }
      levels.resize(walk.depth());
      Above here{states_.objectState(walk.path()), scene::isTemplate(node),
                 !options_.only || options_.only->count(&node) > 0};
      if (!levels.empty()) {
        here.selected = PathStates::stronger(levels.back().selected, here.selected);
        here.isTemplate = here.isTemplate || levels.back().isTemplate;
        here.isListed = here.isListed || levels.back().isListed;
      }
      levels.push_back(here);
      if (here.isListed && node.type().isA("mesh")) {
        Result<RenderMesh> mesh = make(walk.path(), here.isTemplate, here.selected);
        if (mesh) meshes_.push_back(std::move(*mesh));
      }
      walk.next();
    }
  }

  scene::Document& document_;
  const GatherOptions& options_;
  PathStates states_;
  std::vector<RenderMesh> meshes_;
};

}  // namespace

std::vector<RenderMesh> gatherMeshes(scene::Document& document, const GatherOptions& options) {
  return Gatherer(document, options).run();
}

Result<RenderMesh> gatherMesh(scene::Document& document, const DagPath& shape) {
  if (shape.isWorld() || !shape.isValid() || !shape.node()->type().isA("mesh"))
    return fail("There is no mesh to look at.");
  const GatherOptions options;
  return Gatherer(document, options).makeAlone(shape);
}

Result<Camera> gatherCamera(const DagPath& path) {
  if (path.isWorld() || !path.isValid()) return fail("There is no camera to look through.");
  const DagPath shape = path.toShape();
  if (shape.isWorld() || !shape.node()->type().isA("camera"))
    return fail("{} is not a camera.", path.partialName());
  dg::Node& node = *shape.node();
  Camera camera;
  camera.world = shape.inclusiveMatrix();
  camera.orthographic = isOn(node, "orthographic");
  camera.focalLength = scene::numberOr(node, "focalLength", camera.focalLength);
  camera.horizontalFilmAperture =
      scene::numberOr(node, "horizontalFilmAperture", camera.horizontalFilmAperture);
  camera.verticalFilmAperture =
      scene::numberOr(node, "verticalFilmAperture", camera.verticalFilmAperture);
  camera.filmFit =
      static_cast<FilmFit>(std::clamp(static_cast<int>(scene::numberOr(node, "filmFit", 0)), 0, 3));
  camera.nearClip = std::max(scene::numberOr(node, "nearClipPlane", camera.nearClip), 1e-6);
  camera.farClip =
      std::max(scene::numberOr(node, "farClipPlane", camera.farClip), camera.nearClip * (1 + 1e-6));
  camera.orthographicWidth =
      std::max(scene::numberOr(node, "orthographicWidth", camera.orthographicWidth), 1e-9);
  camera.centerOfInterest = scene::numberOr(node, "centerOfInterest", camera.centerOfInterest);
  camera.tumblePivot = {scene::numberOr(node, "tumblePivotX", 0),
                        scene::numberOr(node, "tumblePivotY", 0),
                        scene::numberOr(node, "tumblePivotZ", 0)};
  return camera;
}

}  // namespace host::viewport
