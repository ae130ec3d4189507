#include "host/builtins/mesh/corner_record.h"

#include <algorithm>
#include <map>

#include "host/mesh/adjacency.h"
#include "host/nodes/mesh_node.h"
#include "host/nodes/mesh_shape.h"

namespace host::builtins {

dg::Node* cornerNodeInFront(dg::Graph& graph, dg::Node& shape, std::string_view type) {
  const dg::Plug source = graph.source(shape.plug("inMesh"));
  if (!source || source.node()->type().name != type || source.node()->isLocked()) return nullptr;
  if (graph.destinations(source).size() != 1) return nullptr;
  if (nodes::hasTweaks(shape) || nodes::hasOverride(shape)) return nullptr;
  const auto state = graph.get(source.node()->plug("nodeState"));
  const bool isNormal = state && dg::equal(*state, std::int64_t{0});
  return isNormal ? source.node() : nullptr;
}

Result<void> insertCornerNode(scene::Document& document, dg::Node& shape, const char* type,
                              const std::function<Result<void>(dg::Node&)>& fill) {
  const auto created = document.createNode(type, std::string(type) + "#");
  if (!created) return failWith(created.error());
  dg::Node& node = **created;
  HOST_TRY(fill(node));
  const bool isModifier = !node.plug("inputPolymesh").isNull();
  const dg::Plug input = node.plug(isModifier ? "inputPolymesh" : "inputGeometry");
  const dg::Plug output = node.plug(isModifier ? "output" : "outputGeometry");
  HOST_TRY(nodes::insertHistoryNode(document, shape, input, output));
  return document.graph().evaluate(output);
}

std::vector<VertexCorners> byVertex(const mesh::Mesh& mesh, const std::vector<CornerId>& corners) {
  std::map<VertexId, std::vector<std::pair<FaceId, CornerId>>> found;
  for (const CornerId corner : corners)
    found[mesh.topology().cornerVertices[corner]].emplace_back(mesh.adjacency().cornerFace(corner),
                                                               corner);
  std::vector<VertexCorners> all;
  all.reserve(found.size());
  for (auto& [vertex, own] : found) {
    const bool isWhole = own.size() == mesh.adjacency().vertexCorners(vertex).size();
    all.push_back({vertex, std::move(own), isWhole});
  }
  return all;
}

Result<void> setNumbers(dg::Graph& graph, const dg::Plug& compound,
                        std::initializer_list<double> numbers) {
  Index child = 0;
  for (const double number : numbers) HOST_TRY(graph.set(compound.child(child++), number));
  return {};
}

}  // namespace host::builtins
