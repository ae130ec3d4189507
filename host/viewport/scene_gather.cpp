#include "host/viewport/scene_gather.h"

#include <algorithm>

#include "host/base/messages.h"
#include "host/scene/display_rules.h"
#include "host/scene/mesh_data.h"
#include "host/viewport/instance_id.h"

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
  const auto add = [](IdView ids, Index count, auto& to) {
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
    case ComponentType::Uv: {
      if (mesh.uvSetCount() == 0) return;
      const auto count = static_cast<Index>(mesh.uvSet(mesh.currentUvSet()).points.size());
      return add(component.expanded(count), count, sets.uvs);
    }
  }
}

void apply(const DrawOverride& looks, RenderMesh& mesh) {
  if (looks.type == DrawOverride::Type::Template) mesh.state = ObjectState::Template;
  if (looks.type == DrawOverride::Type::Reference) mesh.state = ObjectState::Reference;
  if (!looks.isShaded) mesh.style = DisplayStyle::Wireframe;
  if (looks.isBox) mesh.style = DisplayStyle::BoundingBox;
  mesh.wireColor = looks.color;
}

/// What a shape is wherever it stands.
Result<RenderMesh> meshOf(scene::Document& document, dg::Node& shape) {
  const Result<dg::Value> value = document.graph().get(shape.plug("outMesh"));
  if (!value) return failWith(value.error());
  const auto* data = dg::dataAs<scene::MeshData>(*value);
  if (!data) return fail("The mesh {} is empty.", shape.name());
  RenderMesh mesh;
  mesh.mesh = data->mesh;
  mesh.showVertices = isOn(shape, "displayVertices");
  mesh.showHardEdges = isOn(shape, "displayEdges");
  mesh.showBorderEdges = isOn(shape, "displayBorders");
  mesh.showColors = isOn(shape, "displayColors");
  mesh.showFaceCenters = isOn(shape, "displayCenter");
  mesh.showTriangles = isOn(shape, "displayTriangles");
  mesh.showUvBorders = isOn(shape, "displayMapBorders");
  if (!isOn(shape, "displayNormal")) return mesh;
  const auto type = static_cast<int>(scene::numberOr(shape, "normalType", 0));
  mesh.showFaceNormals = type == 0;
  mesh.showVertexNormals = type == 1;
  mesh.showCornerNormals = type == 2;
  mesh.normalLength = scene::numberOr(shape, "normalSize", 0.4);
  return mesh;
}

void place(const ShownPlace& at, const PathStates& states, bool vertexMode, RenderMesh& mesh) {
  mesh.id = instanceId(at.node.serial(), at.number);
  mesh.name = at.path.fullName();
  mesh.path = at.path;
  mesh.world = at.world;
  mesh.state = at.isTemplate               ? ObjectState::Template
               : states.isHilited(at.path) ? ObjectState::Hilited
                                           : at.selected;
  if (at.looks) apply(*at.looks, mesh);
  if (vertexMode && mesh.state == ObjectState::Hilited) mesh.showVertices = true;
  for (const SelectionItem* item : states.componentsOf(at.path))
    for (const Component& component : item->components)
      addComponents(component, mesh.mesh, mesh.selected);
}

}  // namespace

void MeshGatherer::visit(const ShownPlace& at) {
  if (!at.isListed || !at.node.type().isA("mesh")) return;
  if (!at.isShared) {
    Result<RenderMesh> made = meshOf(document_, at.node);
    if (!made) return;
    meshes.push_back(std::move(*made));
  } else {
    const auto [known, isNew] = shared_.try_emplace(&at.node);
    if (isNew)
      if (Result<RenderMesh> made = meshOf(document_, at.node)) known->second = std::move(*made);
    if (!known->second) return;
    meshes.push_back(*known->second);
  }
  place(at, states_, options_.vertexMode, meshes.back());
}

std::vector<RenderMesh> gatherMeshes(scene::Document& document, const GatherOptions& options) {
  const PathStates states(document);
  MeshGatherer gatherer(document, states, options);
  PlaceVisitor* const visitors[] = {&gatherer};
  scene::PlaceBudget budget;
  walkShown(document, states, {options.only}, visitors, budget);
  if (budget.leftOut()) postMessage(MessageKind::Warning, budget.warning());
  return std::move(gatherer.meshes);
}

Result<RenderMesh> gatherMesh(scene::Document& document, const DagPath& shape) {
  if (shape.isWorld() || !shape.isValid() || !shape.node()->type().isA("mesh"))
    return fail(ErrorKind::NotFound, "There is no mesh to look at.");
  Result<RenderMesh> mesh = meshOf(document, *shape.node());
  if (!mesh) return mesh;
  const PathStates states(document);
  const Matrix4 world = shape.inclusiveMatrix();
  place({shape, *shape.node(), world, shape.instanceNumber(), false, states.coveringState(shape),
         false, true, std::nullopt},
        states, false, *mesh);
  return mesh;
}

Result<Camera> gatherCamera(const DagPath& path) {
  if (path.isWorld() || !path.isValid())
    return fail(ErrorKind::NotFound, "There is no camera to look through.");
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
