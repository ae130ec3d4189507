#include <algorithm>
#include <unordered_set>

#include "host/nodes/mesh_node.h"
#include "host/nodes/mesh_shape.h"
#include "host/nodes/set_group.h"

namespace host::nodes {

namespace {

using dg::Node;
using dg::Plug;
using scene::Document;
using scene::MeshData;

Result<void> moveTweaks(Node& from, const Plug& to) {
  dg::Graph& graph = from.graph();
  std::vector<Index> indices;
  std::vector<double> offsets;
  const Plug tweaks = from.plug("pnts");
  graph.getPacked(tweaks, indices, offsets);
  HOST_TRY(graph.setPacked(to, std::move(indices), std::move(offsets)));
  return graph.setPacked(tweaks, {}, {});
}

/// An intermediate shape beside `shape`, with no mesh of its own yet.
Result<Node*> addIntermediate(Document& document, Node& shape) {
  Node* parent = scene::dagLinks(shape).parents.front();
  auto created = document.createNode("mesh", shape.name() + "Orig", parent);
  if (!created) return failWith(created.error());
  HOST_TRY(document.graph().set((*created)->plug("intermediateObject"), std::int64_t{1}));
  return created->get();
}

/// Where the mesh comes from that reaches the shape's inMesh; makes the original shape when nothing
/// drives it.
Result<Plug> sourceOfShape(Document& document, Node& shape) {
  dg::Graph& graph = document.graph();
  const Plug inMesh = shape.plug("inMesh");
  if (const Plug source = graph.source(inMesh)) {
    HOST_TRY(graph.disconnect(source, inMesh));
    return source;
  }
  const auto stored = untweakedMesh(shape);
  if (!stored) return failWith(stored.error());
  const auto original = addIntermediate(document, shape);
  if (!original) return failWith(original.error());
  HOST_TRY(setStoredMesh(**original, *stored));
  return (*original)->plug("outMesh");
}

/// Puts what the shape does to its input in front of a node to be inserted, and returns where that
/// comes out.
Result<Plug> carryShapeEdits(Document& document, Node& shape, Plug source) {
  dg::Graph& graph = document.graph();
  if (hasOverride(shape)) {
    const auto carrier = addIntermediate(document, shape);
    if (!carrier) return failWith(carrier.error());
    HOST_TRY(graph.connect(source, (*carrier)->plug("inMesh")));
    const Plug override = shape.plug(kMeshOverrideAttribute);
    HOST_TRY(graph.set((*carrier)->plug(kMeshOverrideAttribute), graph.stored(override)));
    HOST_TRY(graph.set(override, {}));
    if (hasTweaks(shape)) HOST_TRY(moveTweaks(shape, (*carrier)->plug("pnts")));
    return (*carrier)->plug("outMesh");
  }
  if (!hasTweaks(shape)) return source;
  const auto tweak = document.createNode("polyTweak");
  if (!tweak) return failWith(tweak.error());
  HOST_TRY(graph.connect(source, (*tweak)->plug("inputPolymesh")));
  HOST_TRY(moveTweaks(shape, (*tweak)->plug("tweak")));
  return (*tweak)->plug("output");
}

bool carriesMesh(const Plug& plug) {
  return plug.attribute()->type == dg::AttributeType::Typed && plug.attribute()->dataType == "mesh";
}

/// The nodes upstream of `start` whose meshes go nowhere but into nodes of the answer.
class UnusedHistory {
 public:
  explicit UnusedHistory(dg::Graph& graph) : graph_(graph) {}

  void collectFrom(Node& start) {
    consider(start);
    for (std::size_t i = 0; i < found_.size(); ++i)
      for (const dg::Graph::Connection& feed : graph_.incoming(*found_[i]))
        if (carriesMesh(feed.source)) consider(*feed.source.node());
  }
  [[nodiscard]] const std::vector<Node*>& found() const { return found_; }

 private:
  void consider(Node& node) {
    if (members_.contains(&node) || node.isLocked() || node.isDefault()) return;
    // A plug-in's node is history like any other, though its type may exist by itself.
    if (scene::isDagNode(node) && !isIntermediateMesh(node)) return;
    for (const dg::Graph::Connection& use : graph_.outgoing(node))
      if (carriesMesh(use.source) && !members_.contains(use.destination.node())) return;
    members_.insert(&node);
    found_.push_back(&node);
  }
  /// Originals, and the parts of meshes that were united or separated.
  bool isIntermediateMesh(Node& node) const {
    if (!scene::isShape(node) || !node.type().isA("mesh")) return false;
    const auto flag = graph_.get(node.plug("intermediateObject"));
    return flag && dg::equal(*flag, std::int64_t{1});
  }

  dg::Graph& graph_;
  std::unordered_set<const Node*> members_;
  std::vector<Node*> found_;
};

/// The transforms of united objects, which hold nothing any more once `gone` has gone.
std::vector<Node*> emptiedTransforms(const Node& shape, const std::vector<Node*>& gone) {
  const std::unordered_set<const Node*> going(gone.begin(), gone.end());
  std::vector<Node*> emptied;
  for (Node* node : gone) {
    if (!scene::isShape(*node)) continue;
    for (Node* transform : scene::dagLinks(*node).parents) {
      const auto& children = scene::dagLinks(*transform).children;
      const bool isEmptied = !transform->isLocked() && !transform->isDefault() &&
                             std::ranges::all_of(children, [&](const Node* child) {
                               return child != &shape && going.contains(child);
                             });
      if (isEmptied && std::ranges::find(emptied, transform) == emptied.end())
        emptied.push_back(transform);
    }
  }
  return emptied;
}

}  // namespace

Result<void> insertHistoryNode(Document& document, Node& shape, const Plug& input,
                               const Plug& output) {
  if (!shape.plug("inMesh"))
    return fail(ErrorKind::BadArgument, "'{}' is not a mesh", shape.name());
  if (scene::dagLinks(shape).parents.empty()) return fail("'{}' is not in the scene", shape.name());
  const auto source = sourceOfShape(document, shape);
  if (!source) return failWith(source.error());
  const auto seen = carryShapeEdits(document, shape, *source);
  if (!seen) return failWith(seen.error());
  const auto grouped = bringGroups(document, shape, *seen);
  if (!grouped) return failWith(grouped.error());
  HOST_TRY(document.graph().connect(*grouped, input));
  return document.graph().connect(output, shape.plug("inMesh"));
}

Result<void> deleteHistory(Document& document, Node& shape) {
  dg::Graph& graph = document.graph();
  const Plug inMesh = shape.plug("inMesh");
  if (!inMesh) return fail(ErrorKind::BadArgument, "'{}' is not a mesh", shape.name());
  auto baked = evaluatedMesh(shape);
  if (!baked) return failWith(baked.error());
  const Plug source = graph.source(inMesh);
  if (!source) return hasTweaks(shape) ? setStoredMesh(shape, *std::move(baked)) : Result<void>();
  HOST_TRY(bakeGroups(shape));
  HOST_TRY(graph.disconnect(source, inMesh));
  HOST_TRY(setStoredMesh(shape, *std::move(baked)));
  UnusedHistory unused(graph);
  unused.collectFrom(*source.node());
  if (unused.found().empty()) return {};
  const std::vector<Node*> emptied = emptiedTransforms(shape, unused.found());
  HOST_TRY(document.deleteNodes(unused.found()));
  return emptied.empty() ? Result<void>() : document.deleteNodes(emptied);
}

}  // namespace host::nodes
