#include "host/io/ma/ma_held_meshes.h"

#include <unordered_set>

#include "host/io/ma/ma_mesh_writer.h"
#include "host/scene/dag.h"
#include "host/scene/mesh_data.h"

namespace host::io {
namespace {

using dg::Node;
using dg::Plug;

bool carriesMesh(const dg::Attribute& attribute) {
  return attribute.type == dg::AttributeType::Typed && attribute.dataType == "mesh";
}

class Search {
 public:
  Search(dg::Graph& graph, const std::function<bool(const Node&)>& isWritten)
      : graph_(graph), isWritten_(isWritten) {}

  void visit(const Plug& plug) {
    if (plug.isArray()) {
      if (!holdsMeshes(*plug.attribute())) return;
      for (const Index index : graph_.elementIndices(plug)) visit(plug.element(index));
    } else if (plug.isCompound()) {
      for (const dg::AttributePtr& child : plug.attribute()->children)
        visit(plug.child(child.get()));
    } else if (carriesMesh(*plug.attribute())) {
      look(plug);
    }
  }
  std::vector<HeldMesh> found;

 private:
  static bool holdsMeshes(const dg::Attribute& attribute) {
    if (carriesMesh(attribute)) return true;
    for (const dg::AttributePtr& child : attribute.children)
      if (holdsMeshes(*child)) return true;
    return false;
  }

  void look(const Plug& plug) {
    const dg::NodeType& type = plug.node()->type();
    // What has no effect is a cache; what is stored is written with the node.
    if (plug.attribute()->isDynamic || !plug.attribute()->writable ||
        type.reach(plug.attribute()).empty())
      return;
    const Plug source = graph_.source(plug);
    if (source ? isWritten_(*source.node()) : graph_.isDriven(plug)) return;
    dg::Value value = graph_.stored(plug);
    if (source)
      if (auto arriving = graph_.get(plug)) value = *std::move(arriving);
    const auto* data = dg::dataAs<scene::MeshData>(value);
    if (!data || isBlank(data->mesh)) return;
    if (Node* shape = shapeBehind(*plug.node())) found.push_back({plug, shape, data->mesh});
  }

  /// The first mesh shape that is written and that something of the node goes to.
  Node* shapeBehind(Node& start) {
    std::vector<Node*> open{&start};
    std::unordered_set<const Node*> seen{&start};
    for (std::size_t i = 0; i < open.size(); ++i)
      for (const dg::Graph::Connection& use : graph_.outgoing(*open[i])) {
        if (!carriesMesh(*use.source.attribute())) continue;
        Node* next = use.destination.node();
        if (scene::isShape(*next) && isWritten_(*next) && !scene::dagLinks(*next).parents.empty())
          return next;
        if (seen.insert(next).second) open.push_back(next);
      }
    return nullptr;
  }

  dg::Graph& graph_;
  const std::function<bool(const Node&)>& isWritten_;
};

}  // namespace

std::vector<HeldMesh> heldMeshes(dg::Graph& graph, const std::vector<Node*>& nodes,
                                 const std::function<bool(const Node&)>& isWritten) {
  Search search(graph, isWritten);
  for (Node* node : nodes) {
    if (scene::isDagNode(*node)) continue;
    for (const dg::AttributePtr& attribute : node->type().attributes())
      if (!attribute->storable || attribute->isCompound())
        search.visit(node->plug(attribute.get()));
  }
  return std::move(search.found);
}

}  // namespace host::io
