#include <algorithm>
#include <map>

#include "host/builtins/common/command.h"
#include "host/builtins/mesh/corner_record.h"
#include "host/nodes/mesh_components.h"
#include "host/nodes/mesh_shape.h"

namespace host::builtins {

using nodes::componentIds;
using nodes::MeshItem;
using nodes::meshItems;

namespace {

using scene::ComponentType;

enum Operation { kAddOrSet = 0, kRemove = 1, kRemoveAll = 2 };

/// Components of a type that the item names itself; an object stands for all its edges and no
/// vertices.
std::vector<Index> named(const MeshItem& item, ComponentType type) {
  if (item.isObject()) return type == ComponentType::Edge ? item.ids(type) : std::vector<Index>{};
  std::vector<Index> ids;
  for (const scene::Component& component : item.components) {
    const bool isFace = component.type() == ComponentType::Face && type == ComponentType::Edge;
    if (component.type() == type) ids = componentIds(item.mesh, component);
    if (!isFace) continue;
    const std::vector<Index> edges =
        mesh::convertComponents(item.mesh, mesh::ComponentType::Face,
                                componentIds(item.mesh, component), mesh::ComponentType::Edge);
    ids.insert(ids.end(), edges.begin(), edges.end());
  }
  mesh::sortUnique(ids);
  return ids;
}

void write(std::vector<float>& weights, Index count, const std::vector<Index>& ids, double value,
           bool isRelative) {
  if (weights.empty()) weights.assign(at(count), 0.0f);
  for (const Index id : ids) {
    float& weight = weights[at(id)];
    weight = static_cast<float>(std::max(0.0, isRelative ? weight + value : value));
  }
  if (std::all_of(weights.begin(), weights.end(), [](float weight) { return weight == 0; }))
    weights.clear();
}

CommandResult queryCrease(const std::vector<MeshItem>& items, bool ofVertices) {
  mel::FloatArray values;
  for (const MeshItem& item : items) {
    for (const Index id : named(item, ofVertices ? ComponentType::Vertex : ComponentType::Edge))
      values.push_back(ofVertices ? item.mesh.vertexCrease(id) : item.mesh.edgeCrease(id));
  }
  // Negative: not creased, as scripts expect of edges that never were.
  for (double& value : values)
    if (value == 0) value = -1;
  return mel::Value(std::move(values));
}

/// Adds the weights that differ to those that an array of a node has.
Result<void> recordWeights(dg::Graph& graph, const dg::Plug& array,
                           const std::vector<float>& before, const std::vector<float>& after) {
  std::vector<Index> indices;
  std::vector<double> values;
  graph.getPacked(array, indices, values);
  std::map<Index, double> all;
  for (std::size_t i = 0; i < indices.size(); ++i) all[indices[i]] = values[i];
  for (std::size_t i = 0; i < std::max(before.size(), after.size()); ++i) {
    const float was = i < before.size() ? before[i] : 0, is = i < after.size() ? after[i] : 0;
    if (was != is) all[static_cast<Index>(i)] = is;
  }
  indices.clear();
  values.clear();
  for (const auto& [index, value] : all) {
    indices.push_back(index);
    values.push_back(value);
  }
  return graph.setPacked(array, std::move(indices), std::move(values));
}

/// Leaves the creases with the shape's history: in the node that has some already, or a new one.
Result<void> keep(scene::Document& document, const MeshItem& item, mesh::Mesh mesh, bool removesAll,
                  bool makesHistory) {
  dg::Node& shape = *item.path.node();
  if (!makesHistory && !nodes::hasHistory(shape))
    return nodes::setEvaluatedMesh(shape, std::move(mesh));
  dg::Graph& graph = document.graph();
  const mesh::Creases before = item.mesh.creases(), &after = mesh.creases();
  const auto fill = [&](dg::Node& node) -> Result<void> {
    if (removesAll) return graph.set(node.plug("operation"), std::int64_t{kRemoveAll});
    HOST_TRY(recordWeights(graph, node.plug("crease"), before.edges, after.edges));
    return recordWeights(graph, node.plug("creaseVertex"), before.vertices, after.vertices);
  };
  dg::Node* present = removesAll ? nullptr : cornerNodeInFront(graph, shape, "polyCrease");
  return present ? fill(*present) : insertCornerNode(document, shape, "polyCrease", fill);
}

Result<void> creaseOne(scene::Document& document, const MeshItem& item, const ParsedArgs& args) {
  mesh::Mesh mesh = item.mesh;
  const bool makesHistory =
      args.boolean("constructionHistory", false) || args.boolean("createHistory", false);
  const int operation = args.integer("operation", kAddOrSet);
  mesh::Creases& creases = mesh.editCreases();
  if (operation == kRemoveAll) {
    creases = {};
    return keep(document, item, std::move(mesh), true, makesHistory);
  }
  const bool removes = operation == kRemove;
  const std::vector<Index> edges = named(item, ComponentType::Edge),
                           vertices = named(item, ComponentType::Vertex);
  if (args.has("value") || args.has("relativeValue") || removes)
    write(creases.edges, mesh.edgeCount(), edges,
          removes ? 0 : args.real("value", args.real("relativeValue")),
          !removes && args.has("relativeValue"));
  if (args.has("vertexValue") || args.has("relativeVertexValue") || removes)
    write(creases.vertices, mesh.vertexCount(), vertices,
          removes ? 0 : args.real("vertexValue", args.real("relativeVertexValue")),
          !removes && args.has("relativeVertexValue"));
  return keep(document, item, std::move(mesh), false, makesHistory);
}

CommandResult polyCrease(Context& context, const ParsedArgs& args) {
  auto list = args.resolveObjects(context.document);
  if (!list) return failWith(std::move(list.error()));
  auto items = meshItems(*list);
  if (!items) return failWith(std::move(items.error()));
  if (items->empty()) return fail("polyCrease: name or select edges or vertices.");
  if (args.isQuery()) return queryCrease(*items, args.has("vertexValue"));
  if (args.uses("value") + args.uses("vertexValue") + args.uses("relativeValue") +
          args.uses("relativeVertexValue") + args.uses("operation") ==
      0)
    return fail("polyCrease: give a -value, a -vertexValue or an -operation.");
  for (const MeshItem& item : *items) HOST_TRY(creaseOne(context.document, item, args));
  return mel::Value();
}

}  // namespace

void registerPolyCrease(CommandRegistry& registry) {
  define(registry, "polyCrease",
         Syntax()
             .flag("v", "value", {ArgType::Double})
             .flag("vv", "vertexValue", {ArgType::Double})
             .flag("re", "relativeValue", {ArgType::Double})
             .flag("rvv", "relativeVertexValue", {ArgType::Double})
             .flag("op", "operation", {ArgType::Int})
             .flag("c", "createHistory", {ArgType::Bool})
             .flag("ch", "constructionHistory", {ArgType::Bool})
             .queryable()
             .objects(0, -1, true),
         polyCrease);
}

}  // namespace host::builtins
