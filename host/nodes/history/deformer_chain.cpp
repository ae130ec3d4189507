// Where deformers stand in the history of the shapes that they deform.
#include <algorithm>

#include "host/dg/graph.h"
#include "host/nodes/history/blend_shape.h"
#include "host/nodes/history/deformers.h"
#include "host/nodes/mesh_node.h"
#include "host/nodes/mesh_shape.h"

namespace host::nodes {

namespace {

using Where = DeformerPlace::Where;

Plug inputOf(Node& deformer, Index geometry, std::string_view child) {
  const Plug inputs = deformer.plug("input");
  return inputs.element(geometry).child(inputs.attribute()->find(child));
}

/// The groupParts node that names what a deformer works on in a geometry: right in front of it, of
/// the same group. Others on the way belong to sets that have parts of the shape. Null for none.
Node* ownParts(Node& deformer, Index geometry) {
  dg::Graph& graph = deformer.graph();
  const Plug source = graph.source(inputOf(deformer, geometry, "inputGeometry"));
  if (!source || source.node()->type().name != "groupParts") return nullptr;
  const Plug group = graph.source(source.node()->plug("groupId"));
  return graph.source(inputOf(deformer, geometry, "groupId")) == group ? source.node() : nullptr;
}

/// Where the mesh of a geometry arrives at a deformer, its groupParts node included.
Plug headOf(Node& deformer, Index geometry) {
  if (Node* parts = ownParts(deformer, geometry)) return parts->plug("inputGeometry");
  return inputOf(deformer, geometry, "inputGeometry");
}

Index geometryOf(Node& deformer, const Node& shape) {
  for (const auto& [index, other] : deformedShapes(deformer))
    if (other == &shape) return index;
  return kNone;
}

/// A step up the history of a shape.
struct Link {
  Node* deformer = nullptr;
  Index geometry = 0;
};

/// The deformers in front of a shape, the last first, up to the first node that is none.
std::vector<Link> linksBefore(Node& shape) {
  dg::Graph& graph = shape.graph();
  std::vector<Link> links;
  Plug source = graph.source(shape.plug("inMesh"));
  while (source && links.size() < 1000) {
    Node& node = *source.node();
    if (node.type().isA("geometryFilter")) {
      if (!source.isElement()) break;
      links.push_back({&node, source.logicalIndex()});
      source = graph.source(inputOf(node, source.logicalIndex(), "inputGeometry"));
    } else if (node.type().name == "groupParts") {
      // It names the components of the deformer behind it, or of the shape.
      source = graph.source(node.plug("inputGeometry"));
    } else {
      break;
    }
  }
  return links;
}

/// Has `in` to `out` stand between a plug and what drives it.
Result<void> insertBefore(dg::Graph& graph, const Plug& destination, const Plug& in,
                          const Plug& out) {
  const Plug source = graph.source(destination);
  if (!source) return fail("nothing arrives at '{}'", destination.name());
  HOST_TRY(graph.disconnect(source, destination));
  HOST_TRY(graph.connect(source, in));
  return graph.connect(out, destination);
}

/// Offsets of a shape that gets its first deformer move in front of it, so that what is moved by
/// hand is deformed as well.
Result<void> tweaksToFront(scene::Document& document, Node& shape) {
  if (!hasTweaks(shape) || hasOverride(shape) || !linksBefore(shape).empty()) return {};
  const auto tweak = document.createNode("tweak", "tweak#");
  if (!tweak) return failWith(tweak.error());
  dg::Graph& graph = document.graph();
  std::vector<Index> vertices;
  std::vector<double> offsets;
  graph.getPacked(shape.plug("pnts"), vertices, offsets);
  const Plug lists = (*tweak)->plug("vlist");
  const Plug list = lists.element(0).child(lists.attribute()->find("vertex"));
  HOST_TRY(graph.setPacked(list, std::move(vertices), std::move(offsets)));
  HOST_TRY(graph.setPacked(shape.plug("pnts"), {}, {}));
  return insertHistoryNode(document, shape, inputOf(**tweak, 0, "inputGeometry"),
                           (*tweak)->plug("outputGeometry").element(0));
}

Result<void> insertAt(scene::Document& document, Node& shape, const DeformerPlace& place,
                      const Plug& in, const Plug& out) {
  dg::Graph& graph = document.graph();
  if (place.where == Where::First) {
    const std::vector<Link> links = linksBefore(shape);
    for (auto link = links.rbegin(); link != links.rend(); ++link)
      if (link->deformer->type().name != "tweak")
        return insertBefore(graph, headOf(*link->deformer, link->geometry), in, out);
    return insertHistoryNode(document, shape, in, out);
  }
  if (place.where == Where::Last) return insertHistoryNode(document, shape, in, out);
  const Index geometry = place.other ? geometryOf(*place.other, shape) : kNone;
  if (geometry == kNone)
    return fail("'{}' does not deform '{}'.", place.other ? place.other->name() : "", shape.name());
  if (place.where == Where::Before)
    return insertBefore(graph, headOf(*place.other, geometry), in, out);
  const Plug leaving = place.other->plug("outputGeometry").element(geometry);
  const std::vector<Plug> after = graph.destinations(leaving);
  for (const Plug& destination : after) {
    HOST_TRY(graph.disconnect(leaving, destination));
    HOST_TRY(graph.connect(out, destination));
  }
  return graph.connect(leaving, in);
}

/// Has one more deformer work on what arrives at the first one, and a blendShape node add up what
/// they do.
Result<void> insertBeside(scene::Document& document, Node& shape, const Plug& in, const Plug& out) {
  dg::Graph& graph = document.graph();
  const std::vector<Link> links = linksBefore(shape);
  const Plug first = arrivalBeforeDeformers(shape);
  if (links.empty() || !first) return insertHistoryNode(document, shape, in, out);
  Node* blender = links.front().deformer;
  Index geometry = links.front().geometry;
  if (!blender->type().isA("blendShape") || !isParallelBlender(*blender)) {
    const auto made = document.createNode("blendShape", "parallelBlender#");
    if (!made) return failWith(made.error());
    blender = made->get();
    HOST_TRY(graph.set(blender->plug("parallelBlender"), std::int64_t{1}));
    const Plug last = links.front().deformer->plug("outputGeometry").element(geometry);
    const auto added = addDeformedShape(document, *blender, shape, {});
    if (!added) return failWith(added.error());
    geometry = *added;
    const Plug base = inputOf(*blender, geometry, "inputGeometry");
    HOST_TRY(graph.disconnect(graph.source(base), base));
    HOST_TRY(graph.connect(graph.source(first), base));
    HOST_TRY(graph.connect(last, blendTargetPlug(*blender, geometry, 0, 1)));
    HOST_TRY(graph.set(blender->plug("weight").element(0), 1.0));
  }
  Index target = 0;
  for (const Index index : blendTargets(*blender)) target = std::max(target, index + 1);
  HOST_TRY(graph.connect(graph.source(inputOf(*blender, geometry, "inputGeometry")), in));
  HOST_TRY(graph.connect(out, blendTargetPlug(*blender, geometry, target, 1)));
  return graph.set(blender->plug("weight").element(target), 1.0);
}

/// Takes the links of a geometry out of the history: what came in goes straight on.
Result<void> takeOut(dg::Graph& graph, const Plug& head, const Plug& leaving) {
  const Plug source = graph.source(head);
  if (source) HOST_TRY(graph.disconnect(source, head));
  for (const Plug& destination : graph.destinations(leaving)) {
    HOST_TRY(graph.disconnect(leaving, destination));
    if (source) HOST_TRY(graph.connect(source, destination));
  }
  return {};
}

}  // namespace

std::shared_ptr<const scene::ComponentListData> deformedComponents(Node& deformer, Index geometry) {
  Node* parts = ownParts(deformer, geometry);
  if (!parts) return nullptr;
  const dg::Value value = deformer.graph().stored(parts->plug("inputComponents"));
  const auto* data = std::get_if<dg::DataPtr>(&value);
  return data ? std::dynamic_pointer_cast<const scene::ComponentListData>(*data) : nullptr;
}

Result<Index> addDeformedShape(scene::Document& document, Node& deformer, Node& shape,
                               const std::vector<scene::Component>& components,
                               const DeformerPlace& place) {
  dg::Graph& graph = document.graph();
  const auto known = deformedShapes(deformer);
  if (std::ranges::any_of(known, [&](const auto& each) { return each.second == &shape; }))
    return fail("'{}' deforms '{}' already.", deformer.name(), shape.name());
  Index index = 0;
  for (const auto& [number, other] : known) index = std::max(index, number + 1);
  if (deformer.type().name != "tweak") HOST_TRY(tweaksToFront(document, shape));
  Plug arriving = inputOf(deformer, index, "inputGeometry");
  const Plug leaving = deformer.plug("outputGeometry").element(index);
  if (!components.empty()) {
    const auto parts = document.createNode("groupParts", "groupParts#");
    if (!parts) return failWith(parts.error());
    HOST_TRY(graph.set((*parts)->plug("inputComponents"),
                       dg::DataPtr(std::make_shared<scene::ComponentListData>(components))));
    HOST_TRY(graph.connect((*parts)->plug("outputGeometry"), arriving));
    arriving = (*parts)->plug("inputGeometry");
  }
  if (place.where == Where::Parallel)
    HOST_TRY(insertBeside(document, shape, arriving, leaving));
  else
    HOST_TRY(insertAt(document, shape, place, arriving, leaving));
  HOST_TRY(graph.connect(shape.plug("worldMatrix").element(0),
                         inputOf(deformer, index, "geometryMatrix")));
  return index;
}

Result<void> moveDeformer(scene::Document& document, Node& deformer, Node& shape,
                          const DeformerPlace& place) {
  const Index geometry = geometryOf(deformer, shape);
  if (geometry == kNone) return fail("'{}' does not deform '{}'.", deformer.name(), shape.name());
  if (place.other && geometryOf(*place.other, shape) == kNone)
    return fail("'{}' does not deform '{}'.", place.other->name(), shape.name());
  const Plug head = headOf(deformer, geometry);
  const Plug leaving = deformer.plug("outputGeometry").element(geometry);
  HOST_TRY(takeOut(document.graph(), head, leaving));
  return insertAt(document, shape, place, head, leaving);
}

Result<void> removeDeformedShape(scene::Document& document, Node& deformer, Node& shape) {
  const Index geometry = geometryOf(deformer, shape);
  if (geometry == kNone) return fail("'{}' does not deform '{}'.", deformer.name(), shape.name());
  dg::Graph& graph = document.graph();
  const Plug arriving = inputOf(deformer, geometry, "inputGeometry");
  Node* parts = ownParts(deformer, geometry);
  HOST_TRY(takeOut(graph, headOf(deformer, geometry),
                   deformer.plug("outputGeometry").element(geometry)));
  if (parts) {
    HOST_TRY(graph.disconnect(parts->plug("outputGeometry"), arriving));
    HOST_TRY(document.deleteNodes({parts}));
  }
  return graph.removeElement(deformer.plug("input").element(geometry), true);
}

void placeDeformedGeometry(scene::Document& document) {
  dg::Graph& graph = document.graph();
  std::vector<dg::Graph::Connection> missing;
  for (const dg::NodePtr& node : graph.nodes()) {
    const dg::NodeType& type = node->type();
    if (!type.isA("geometryFilter") || type.name == "tweak" || type.isA("skinCluster")) continue;
    for (const auto& [geometry, shape] : deformedShapes(*node)) {
      const Plug place = inputOf(*node, geometry, "geometryMatrix");
      if (!graph.isDriven(place)) missing.push_back({shape->plug("worldMatrix").element(0), place});
    }
  }
  // Refused where something is locked: then points are taken to be in the world.
  for (const auto& [from, to] : missing) (void)graph.connect(from, to);
}

Plug arrivalBeforeDeformers(Node& shape) {
  const std::vector<Link> links = linksBefore(shape);
  if (links.empty()) return {};
  const Plug first = inputOf(*links.back().deformer, links.back().geometry, "inputGeometry");
  return shape.graph().source(first) ? first : Plug();
}

std::vector<std::pair<Index, Node*>> deformedShapes(Node& deformer) {
  dg::Graph& graph = deformer.graph();
  std::vector<std::pair<Index, Node*>> found;
  const Plug all = deformer.plug("outputGeometry");
  for (const Index index : graph.elementIndices(all)) {
    Plug at = all.element(index);
    // Other history may stand between the deformer and the shape.
    for (int steps = 0; steps < 1000; ++steps) {
      const auto destinations = graph.destinations(at);
      if (destinations.empty()) break;
      const Plug next = destinations.front();
      Node* node = next.node();
      if (scene::isDagNode(*node)) {
        found.emplace_back(index, node);
        break;
      }
      if (node->type().isA("geometryFilter")) {
        // `input[n].inputGeometry`, or a target of the geometry n of a blendShape.
        at = node->plug("outputGeometry").element(next.index(0));
      } else {
        at = node->plug("output") ? node->plug("output") : node->plug("outputGeometry");
        if (!at || at.isArray()) break;
      }
    }
  }
  return found;
}

}  // namespace host::nodes
