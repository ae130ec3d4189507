#include "host/viewport/scene_gather.h"

#include <algorithm>
#include <optional>
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

/// The 31 colours that override by number.
Rgba indexedColor(int index) {
  constexpr std::uint32_t kPalette[] = {
      0x787878, 0x000000, 0x404040, 0x808080, 0x9b0028, 0x000460, 0x0000ff, 0x004619,
      0x260043, 0xc800c8, 0x8a4833, 0x3f231f, 0x992600, 0xff0000, 0x00ff00, 0x004199,
      0xffffff, 0xffff00, 0x64dcff, 0x43ffa3, 0xffb0b0, 0xe4ac79, 0xffff63, 0x009954,
      0xa16a30, 0x9fa130, 0x68a130, 0x30a15d, 0x30a1a1, 0x3067a1, 0x6f30a1, 0xa1306a};
  const std::uint32_t color = kPalette[std::clamp(index, 0, 31)];
  const auto channel = [&](int shift) {
    return static_cast<float>((color >> shift) & 0xff) / 255.0f;
  };
  return {channel(16), channel(8), channel(0), 1};
}

/// How a node, and what hangs under it without an override of its own, is drawn instead.
struct DrawOverride {
  enum class Type : std::uint8_t { Normal, Template, Reference };
  Type type = Type::Normal;
  bool isBox = false, isShaded = true;
  std::optional<Rgba> color;
};

std::optional<DrawOverride> drawOverride(dg::Node& node) {
  if (!isOn(node, "overrideEnabled")) return std::nullopt;
  DrawOverride result;
  const auto type = static_cast<int>(scene::numberOr(node, "overrideDisplayType", 0));
  result.type = static_cast<DrawOverride::Type>(std::clamp(type, 0, 2));
  result.isBox = isOn(node, "overrideLevelOfDetail");
  result.isShaded = scene::numberOr(node, "overrideShading", 1) != 0;
  const auto channel = [&](const char* name) {
    return static_cast<float>(std::clamp(scene::numberOr(node, name, 0), 0.0, 1.0));
  };
  if (isOn(node, "overrideRGBColors")) {
    result.color =
        Rgba{channel("overrideColorR"), channel("overrideColorG"), channel("overrideColorB"), 1};
  } else if (const auto index = static_cast<int>(scene::numberOr(node, "overrideColor", 0));
             index > 0) {
    result.color = indexedColor(index);
  }
  return result;
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

struct PathHash {
  std::size_t operator()(const DagPath& path) const {
    return path.length() * 1099511628211ULL + std::hash<const dg::Node*>{}(path.node());
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
    return make(path, {states_.coveringState(path), false, true, std::nullopt});
  }

 private:
  /// What comes down from the nodes above.
  struct Above {
    ObjectState selected = ObjectState::Dormant;
    bool isTemplate = false, isListed = false;
    std::optional<DrawOverride> looks;
  };

  Result<RenderMesh> make(const DagPath& path, const Above& above) const {
    dg::Node& shape = *path.node();
    const Result<dg::Value> value = document_.graph().get(shape.plug("outMesh"));
    if (!value) return failWith(value.error());
    const auto* data = dg::dataAs<scene::MeshData>(*value);
    if (!data) return fail("The mesh {} is empty.", path.partialName());
    constexpr std::uint64_t kInstances = 1u << 20;
    RenderMesh mesh;
    mesh.id = shape.serial() * kInstances + path.instanceNumber();
    mesh.name = path.fullName();
    mesh.path = path;
    mesh.mesh = data->mesh;
    mesh.world = path.inclusiveMatrix();
    mesh.state = above.isTemplate          ? ObjectState::Template
                 : states_.isHilited(path) ? ObjectState::Hilited
                                           : above.selected;
    if (above.looks) apply(*above.looks, mesh);
    mesh.showVertices = (options_.vertexMode && mesh.state == ObjectState::Hilited) ||
                        isOn(shape, "displayVertices");
    mesh.showHardEdges = isOn(shape, "displayEdges");
    mesh.showBorderEdges = isOn(shape, "displayBorders");
    mesh.showColors = isOn(shape, "displayColors");
    mesh.showFaceCenters = isOn(shape, "displayCenter");
    mesh.showTriangles = isOn(shape, "displayTriangles");
    mesh.showUvBorders = isOn(shape, "displayMapBorders");
    if (isOn(shape, "displayNormal")) {
      const auto type = static_cast<int>(scene::numberOr(shape, "normalType", 0));
      mesh.showFaceNormals = type == 0;
      mesh.showVertexNormals = type == 1;
      mesh.showCornerNormals = type == 2;
      mesh.normalLength = scene::numberOr(shape, "normalSize", 0.4);
    }
    for (const SelectionItem* item : states_.componentsOf(path))
      for (const Component& component : item->components)
        addComponents(component, mesh.mesh, mesh.selected);
    return mesh;
  }

  static void apply(const DrawOverride& looks, RenderMesh& mesh) {
    if (looks.type == DrawOverride::Type::Template) mesh.state = ObjectState::Template;
    if (looks.type == DrawOverride::Type::Reference) mesh.state = ObjectState::Reference;
    if (!looks.isShaded) mesh.style = DisplayStyle::Wireframe;
    if (looks.isBox) mesh.style = DisplayStyle::BoundingBox;
    mesh.wireColor = looks.color;
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
                 !options_.only || options_.only->count(&node) > 0, drawOverride(node)};
      if (!levels.empty()) {
        here.selected = PathStates::stronger(levels.back().selected, here.selected);
        here.isTemplate = here.isTemplate || levels.back().isTemplate;
        here.isListed = here.isListed || levels.back().isListed;
        if (!here.looks) here.looks = levels.back().looks;
      }
      levels.push_back(here);
      if (here.isListed && node.type().isA("mesh")) {
        Result<RenderMesh> mesh = make(walk.path(), here);
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

std::optional<LineLooks> lineLooks(dg::Node& node) {
  const std::optional<DrawOverride> looks = drawOverride(node);
  if (!looks) return std::nullopt;
  return LineLooks{looks->type == DrawOverride::Type::Template, looks->color};
}

Result<RenderMesh> gatherMesh(scene::Document& document, const DagPath& shape) {
  if (shape.isWorld() || !shape.isValid() || !shape.node()->type().isA("mesh"))
    return fail(ErrorKind::NotFound, "There is no mesh to look at.");
  const GatherOptions options;
  return Gatherer(document, options).makeAlone(shape);
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
