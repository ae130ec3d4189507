#include "host/modelling/declare/joined_parts.h"

#include <algorithm>

#include "host/math/box.h"
#include "host/modelling/declare/history_command.h"
#include "host/modelling/declare/mesh_objects.h"
#include "host/nodes/mesh_shape.h"
#include "host/nodes/set_group.h"
#include "host/nodes/sets.h"

namespace host::modelling {

void JoinedGroups::add(const scene::MeshData& part) {
  const mesh::Mesh& mesh = part.mesh;
  if (part.groups)
    for (const scene::MeshGroup& group : *part.groups) addGroup(group, mesh);
  vertices_ += mesh.vertexCount();
  edges_ += mesh.edgeCount();
  faces_ += mesh.faceCount();
}

scene::MeshGroupsPtr JoinedGroups::finish() {
  if (members_.empty()) return nullptr;
  auto groups = std::make_shared<scene::MeshGroups>();
  for (auto& [key, ids] : members_)
    groups->push_back({key.first, std::make_shared<scene::Component>(key.second, std::move(ids))});
  return groups;
}

void JoinedGroups::addGroup(const scene::MeshGroup& group, const mesh::Mesh& mesh) {
  const ComponentType type = group.members->type();
  const bool isFace = type == ComponentType::Face, isEdge = type == ComponentType::Edge;
  if (!isFace && !isEdge && type != ComponentType::Vertex) return;
  const Index first = isFace ? faces_ : isEdge ? edges_ : vertices_;
  const Index count = isFace ? mesh.faceCount() : isEdge ? mesh.edgeCount() : mesh.vertexCount();
  std::vector<Index>& ids = members_[{group.id, type}];
  for (const Index id : group.members->expanded(count)) ids.push_back(id + first);
}

Result<std::vector<JoinedPart>> joinedParts(DataBlock& block, const Attribute* meshes,
                                            const Attribute* matrices) {
  std::vector<JoinedPart> parts;
  const Plug all(&block.node(), meshes), spaces(&block.node(), matrices);
  for (const Index index : block.graph().elementIndices(all)) {
    auto value = block.input(all.element(index));
    if (!value) return failWith(value.error());
    auto data = block.data<scene::MeshData>(all.element(index));
    if (!data) continue;
    const auto space = block.data<dg::MatrixData>(spaces.element(index));
    parts.push_back({std::move(data), space ? space->value : math::Matrix4()});
  }
  return parts;
}

namespace {

/// The shading group that all parts are in as a whole; null where they differ, or where one has
/// parts of its own in groups.
Node* commonShading(const std::vector<MeshItem>& items) {
  Node* common = nodes::shadingGroupOfWhole(items.front().path);
  for (const MeshItem& item : items) {
    if (nodes::shadingGroupOfWhole(item.path) != common) return nullptr;
    for (const nodes::SetGroup& group : nodes::groupsOf(item.path, nullptr))
      if (nodes::isShadingGroup(*group.set)) return nullptr;
  }
  return common;
}

/// Feeds the meshes, their groups and the matrices of their places to the node.
Result<void> connectParts(scene::Document& document, Node& node, const std::vector<MeshItem>& items,
                          bool withWhole, std::vector<nodes::ComingGroup>& groups) {
  dg::Graph& graph = document.graph();
  for (std::size_t i = 0; i < items.size(); ++i) {
    Node& shape = *items[i].path.node();
    const auto at = static_cast<Index>(i),
               instance = static_cast<Index>(items[i].path.instanceNumber());
    const auto mesh =
        nodes::bringAllGroups(document, items[i].path, shape.plug("outMesh"), withWhole, groups);
    if (!mesh) return failWith(mesh.error());
    HOST_TRY(graph.connect(*mesh, node.plug("inputPoly").element(at)));
    HOST_TRY(graph.connect(shape.plug("worldMatrix").element(instance),
                           node.plug("inputMat").element(at)));
  }
  return {};
}

/// The new shape is where its parts were.
Result<void> joinShading(scene::Document& document, Node& shape, Node* common,
                         const std::vector<nodes::ComingGroup>& groups) {
  scene::SelectionList whole;
  whole.add(scene::firstPath(shape));
  if (common) {
    HOST_TRY(nodes::addToSet(document, *common, whole));
  } else if (!groups.empty()) {
    if (Node* initial = nodes::shadingGroupOfWhole(scene::firstPath(shape)))
      HOST_TRY(nodes::removeFromSet(document, *initial, whole));
  }
  return nodes::joinGroups(document, shape, groups);
}

/// Without history the parts go: with their transforms, where these hold nothing else.
Result<void> deleteParts(scene::Document& document, const std::vector<MeshItem>& items) {
  std::vector<scene::Node*> gone;
  for (const MeshItem& item : items) {
    scene::Node* transform = item.path.transform().node();
    bool holdsMore = false;
    for (scene::Node* child : scene::dagLinks(*transform).children)
      holdsMore = holdsMore || !scene::isShape(*child);
    scene::Node* own = holdsMore ? item.path.node() : transform;
    if (std::ranges::find(gone, own) == gone.end()) gone.push_back(own);  // instances share a shape
  }
  return document.deleteNodes(std::move(gone));
}

/// Puts the pivots of an object that stands at the origin in the middle of its mesh.
Result<void> centrePivots(scene::Document& document, Node& transform, Node& shape) {
  const auto mesh = nodes::evaluatedMesh(shape);
  if (!mesh) return failWith(mesh.error());
  math::Box box;
  for (const math::Vec3f& point : mesh->points()) box.add(math::Vec3(point));
  if (box.isEmpty()) return {};
  HOST_TRY(document.graph().setVec3(transform.plug("rotatePivot"), box.center()));
  return document.graph().setVec3(transform.plug("scalePivot"), box.center());
}

}  // namespace

Result<std::vector<MeshItem>> partsToJoin(Context& context, const ParsedArgs& args,
                                          const Declaration& declaration) {
  auto list = args.resolveObjects(context.document);
  if (!list) return failWith(std::move(list.error()));
  auto items = nodes::meshItems(*list);
  if (!items) return items;
  // Whole objects: what is named in parts is one of them, and each instance is one of its own.
  std::vector<MeshItem> parts;
  for (MeshItem& item : *items) {
    item.components.clear();
    if (std::ranges::none_of(parts, [&](const MeshItem& each) { return each.path == item.path; }))
      parts.push_back(std::move(item));
  }
  items = std::move(parts);
  if (items->size() < 2)
    return fail("{}: name or select two or more polygon objects.", declaration.command);
  return items;
}

CommandResult joinObjects(Context& context, const ParsedArgs& args, const Declaration& declaration,
                          const std::vector<MeshItem>& items) {
  scene::Document& document = context.document;
  auto node = document.createNode(declaration.nodeTypes.front().type);
  if (!node) return failWith(std::move(node.error()));
  Node* const common = commonShading(items);
  std::vector<nodes::ComingGroup> groups;
  HOST_TRY(connectParts(document, **node, items, common == nullptr, groups));
  HOST_TRY(setParameters(context, args, declaration, **node));
  HOST_TRY(document.graph().evaluate((*node)->plug("output")));
  auto shape = addMeshObject(document, declaration.wantedName(args), (*node)->plug("output"));
  if (!shape) return failWith(std::move(shape.error()));
  HOST_TRY(joinShading(document, **shape, common, groups));
  const bool keepsHistory = args.boolean("constructionHistory", true);
  const std::string nodeName = (*node)->name();
  if (keepsHistory) {
    for (const MeshItem& item : items) HOST_TRY(makeIntermediate(document, *item.path.node()));
  } else {
    HOST_TRY(nodes::deleteHistory(document, **shape));
    HOST_TRY(deleteParts(document, items));
  }
  const scene::DagPath transform = scene::firstPath(**shape).transform();
  if (args.has("centerPivot")) HOST_TRY(centrePivots(document, *transform.node(), **shape));
  std::vector<std::string> names{transform.partialName()};
  if (keepsHistory) names.push_back(nodeName);
  selectObjects(document, {transform});
  return mel::Value(std::move(names));
}

}  // namespace host::modelling
