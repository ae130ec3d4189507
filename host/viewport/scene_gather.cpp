#include "host/viewport/scene_gather.h"

#include <algorithm>

#include "host/scene/dag_paths.h"
#include "host/scene/mesh_data.h"

namespace host::viewport {

namespace {

using scene::Component;
using scene::ComponentType;
using scene::DagPath;
using scene::SelectionItem;

/// A number of a node, or `otherwise` where the type has no such attribute or it can't be computed.
double number(dg::Node& node, std::string_view attribute, double otherwise) {
  const dg::Plug plug = node.plug(attribute);
  if (plug.isNull()) return otherwise;
  const Result<dg::Value> value = node.graph().get(plug);
  if (!value) return otherwise;
  if (const auto* real = std::get_if<double>(&*value)) return *real;
  if (const auto* integer = std::get_if<std::int64_t>(&*value))
    return static_cast<double>(*integer);
  return otherwise;
}

bool isOn(dg::Node& node, std::string_view attribute, bool otherwise) {
  return number(node, attribute, otherwise ? 1 : 0) != 0;
}

bool isShown(dg::Node& node) {
  const bool overridden = isOn(node, "overrideEnabled", false);
  return isOn(node, "visibility", true) && isOn(node, "lodVisibility", true) &&
         !isOn(node, "intermediateObject", false) &&
         (!overridden || isOn(node, "overrideVisibility", true));
}

bool isTemplate(dg::Node& node) {
  constexpr double kTemplateType = 1;
  return isOn(node, "template", false) || (isOn(node, "overrideEnabled", false) &&
                                           number(node, "overrideDisplayType", 0) == kTemplateType);
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

/// Walks the hierarchy and collects the meshes that show.
class Gatherer {
 public:
  Gatherer(scene::Document& document, const GatherOptions& options)
      : document_(document), options_(options) {}

  std::vector<RenderMesh> run() {
    for (dg::Node* node : document_.worldChildren()) visit(DagPath({node}));
    return std::move(meshes_);
  }

  Result<RenderMesh> make(const DagPath& path, bool isTemplateObject) const {
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
    mesh.state = isTemplateObject ? ObjectState::Template : stateOf(path);
    mesh.showVertices = (options_.vertexMode && mesh.state == ObjectState::Hilited) ||
                        isOn(shape, "displayVertices", false);
    mesh.showHardEdges = isOn(shape, "displayEdges", false);
    mesh.showBorderEdges = isOn(shape, "displayBorders", false);
    mesh.showColors = isOn(shape, "displayColors", false);
    for (const SelectionItem& item : document_.selection().items())
      if (item.isDag() && !item.isObject() && item.path.toShape() == path)
        for (const Component& component : item.components)
          addComponents(component, mesh.mesh, mesh.selected);
    return mesh;
  }

 private:
  void visit(const DagPath& top) {
    struct Level {
      bool isTemplate, isListed;
    };
    std::vector<Level> levels;  // of the nodes from the top to the one visited
    scene::PathWalk walk(top);
    while (!walk.isDone()) {
      dg::Node& node = walk.node();
      if (&node == options_.hide || !isShown(node)) {
        walk.skipBelow();
        continue;
      }
      levels.resize(walk.depth());
      Level here{isTemplate(node), !options_.only || options_.only->count(&node) > 0};
      if (!levels.empty()) {
        here.isTemplate = here.isTemplate || levels.back().isTemplate;
        here.isListed = here.isListed || levels.back().isListed;
      }
      levels.push_back(here);
      if (here.isListed && node.type().isA("mesh")) {
        Result<RenderMesh> mesh = make(walk.path(), here.isTemplate);
        if (mesh) meshes_.push_back(std::move(*mesh));
      }
      walk.next();
    }
  }

  [[nodiscard]] ObjectState stateOf(const DagPath& path) const {
    const auto covers = [&](const SelectionItem& item) {
      return item.isDag() && (item.path == path || item.path.isAncestorOf(path));
    };
    for (const SelectionItem& item : document_.hilite().items())
      if (item.isDag() && item.path.toShape() == path) return ObjectState::Hilited;
    const std::vector<SelectionItem>& items = document_.selection().items();
    ObjectState state = ObjectState::Dormant;
    for (std::size_t i = 0; i < items.size(); ++i) {
      if (!items[i].isObject() || !covers(items[i])) continue;
      state = i + 1 == items.size() ? ObjectState::Lead : ObjectState::Selected;
    }
    return state;
  }

  scene::Document& document_;
  const GatherOptions& options_;
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
  return Gatherer(document, options).make(shape, false);
}

Result<Camera> gatherCamera(const DagPath& path) {
  if (path.isWorld() || !path.isValid()) return fail("There is no camera to look through.");
  const DagPath shape = path.toShape();
  if (shape.isWorld() || !shape.node()->type().isA("camera"))
    return fail("{} is not a camera.", path.partialName());
  dg::Node& node = *shape.node();
  Camera camera;
  camera.world = shape.inclusiveMatrix();
  camera.orthographic = isOn(node, "orthographic", false);
  camera.focalLength = number(node, "focalLength", camera.focalLength);
  camera.horizontalFilmAperture =
      number(node, "horizontalFilmAperture", camera.horizontalFilmAperture);
  camera.verticalFilmAperture = number(node, "verticalFilmAperture", camera.verticalFilmAperture);
  camera.filmFit =
      static_cast<FilmFit>(std::clamp(static_cast<int>(number(node, "filmFit", 0)), 0, 3));
  camera.nearClip = std::max(number(node, "nearClipPlane", camera.nearClip), 1e-6);
  camera.farClip =
      std::max(number(node, "farClipPlane", camera.farClip), camera.nearClip * (1 + 1e-6));
  camera.orthographicWidth =
      std::max(number(node, "orthographicWidth", camera.orthographicWidth), 1e-9);
  camera.centerOfInterest = number(node, "centerOfInterest", camera.centerOfInterest);
  camera.tumblePivot = {number(node, "tumblePivotX", 0), number(node, "tumblePivotY", 0),
                        number(node, "tumblePivotZ", 0)};
  return camera;
}

}  // namespace host::viewport
