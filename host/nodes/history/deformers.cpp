#include "host/nodes/history/deformers.h"

#include <algorithm>

#include "host/dg/graph.h"
#include "host/nodes/history/modifiers.h"
#include "host/nodes/mesh_shape.h"
#include "host/scene/component.h"

namespace host::nodes {

namespace {

/// Without a plug-in's code the geometry passes unchanged.
void passThrough(TypeBuilder& builder, const Attribute* inputs, const Attribute* geometry,
                 const Attribute* result) {
  builder.type().compute = [=](Node& node, const Plug& plug, DataBlock& block) -> Result<Computed> {
    if (plug.attribute() != result || !plug.isElement()) return Computed::Unhandled;
    const Plug own = Plug(&node, inputs).element(plug.logicalIndex()).child(geometry);
    auto arriving = block.input(own);
    if (!arriving) return failWith(arriving.error());
    block.output(plug, *arriving);
    return Computed::Done;
  };
}

Plug inputOf(Node& deformer, Index geometry, std::string_view child) {
  const Plug inputs = deformer.plug("input");
  return inputs.element(geometry).child(inputs.attribute()->find(child));
}

}  // namespace

void registerDeformers(dg::TypeRegistry& types) {
  TypeBuilder filter(types, "geometryFilter", {}, typeCode("GMFT"));
  filter.setAbstract();
  filter.livesByItsOutputs();
  AttributePtr geometry = notStored(dg::makeTyped("inputGeometry", "ig", "mesh"));
  const Attribute* arriving = geometry.get();
  // The matrix takes the geometry to the world; it follows the shape that feeds the deformer.
  const Attribute* inputs = filter.add(
      array(compound("input", "ip",
                     {geometry, integer("groupId", "gi"), text("componentTagExpression", "gtg"),
                      notStored(hidden(matrix("geometryMatrix", "gmx")))})));
  const Attribute* envelope = filter.add(keyable(softLimited(single("envelope", "en", 1), 0, 1)));
  filter.add(choice("blockGPU", "bgp", {"Off", "On"}));
  const Attribute* result =
      filter.add(array(output(dg::makeTyped("outputGeometry", "og", "mesh"))));
  filter.affects({inputs, envelope, filter["nodeState"]}, {result});
  passThrough(filter, inputs, arriving, result);
  filter.finish();

  TypeBuilder weighted(types, "weightGeometryFilter", "geometryFilter", typeCode("WGFT"));
  weighted.setAbstract();
  weighted.livesByItsOutputs();
  const Attribute* weights =
      weighted.add(array(compound("weightList", "wl", {array(single("weights", "w", 1))})));
  weighted.affects({weights}, {weighted["outputGeometry"]});
  weighted.finish();
}

std::shared_ptr<const scene::ComponentListData> deformedComponents(Node& deformer, Index geometry) {
  dg::Graph& graph = deformer.graph();
  const Plug source = graph.source(inputOf(deformer, geometry, "inputGeometry"));
  if (!source || source.node()->type().name != "groupParts") return nullptr;
  const dg::Value value = graph.stored(source.node()->plug("inputComponents"));
  const auto* data = std::get_if<dg::DataPtr>(&value);
  return data ? std::dynamic_pointer_cast<const scene::ComponentListData>(*data) : nullptr;
}

Result<Index> addDeformedShape(scene::Document& document, Node& deformer, Node& shape,
                               const std::vector<scene::Component>& components) {
  dg::Graph& graph = document.graph();
  const auto known = deformedShapes(deformer);
  if (std::ranges::any_of(known, [&](const auto& each) { return each.second == &shape; }))
    return fail("'{}' deforms '{}' already.", deformer.name(), shape.name());
  Index index = 0;
  for (const auto& [number, other] : known) index = std::max(index, number + 1);
  const Plug arriving = inputOf(deformer, index, "inputGeometry");
  const Plug leaving = deformer.plug("outputGeometry").element(index);
  if (components.empty()) {
    HOST_TRY(insertHistoryNode(document, shape, arriving, leaving));
  } else {
    const auto parts = document.createNode("groupParts", "groupParts#");
    if (!parts) return failWith(parts.error());
    HOST_TRY(graph.set((*parts)->plug("inputComponents"),
                       dg::DataPtr(std::make_shared<scene::ComponentListData>(components))));
    HOST_TRY(graph.connect((*parts)->plug("outputGeometry"), arriving));
    HOST_TRY(insertHistoryNode(document, shape, (*parts)->plug("inputGeometry"), leaving));
  }
  HOST_TRY(graph.connect(shape.plug("worldMatrix").element(0),
                         inputOf(deformer, index, "geometryMatrix")));
  return index;
}

Result<void> removeDeformedShape(scene::Document& document, Node& deformer, Node& shape) {
  dg::Graph& graph = document.graph();
  for (const auto& [index, other] : deformedShapes(deformer)) {
    if (other != &shape) continue;
    const Plug leaving = deformer.plug("outputGeometry").element(index);
    const Plug arriving = inputOf(deformer, index, "inputGeometry");
    Plug source = graph.source(arriving);
    if (source) HOST_TRY(graph.disconnect(source, arriving));
    Node* parts = nullptr;
    if (source && source.node()->type().name == "groupParts") {
      parts = source.node();
      source = graph.source(parts->plug("inputGeometry"));
    }
    for (const Plug& destination : graph.destinations(leaving)) {
      HOST_TRY(graph.disconnect(leaving, destination));
      if (source) HOST_TRY(graph.connect(source, destination));
    }
    if (parts) HOST_TRY(document.deleteNodes({parts}));
    return graph.removeElement(deformer.plug("input").element(index), true);
  }
  return fail("'{}' does not deform '{}'.", deformer.name(), shape.name());
}

Plug arrivalBeforeDeformers(Node& shape) {
  dg::Graph& graph = shape.graph();
  Plug first;
  Plug source = graph.source(shape.plug("inMesh"));
  for (int steps = 0; source && steps < 1000; ++steps) {
    Node& node = *source.node();
    if (node.type().isA("geometryFilter")) {
      if (!source.isElement()) break;
      first = inputOf(node, source.logicalIndex(), "inputGeometry");
      source = graph.source(first);
    } else if (node.type().name == "groupParts") {
      // It names the components of the deformer behind it, or of the shape.
      source = graph.source(node.plug("inputGeometry"));
    } else {
      break;
    }
  }
  if (first && !graph.source(first)) return {};
  return first;
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
        const Plug element = next.isElement() ? next : next.parent();
        at = node->plug("outputGeometry").element(element.logicalIndex());
      } else {
        at = node->plug("output") ? node->plug("output") : node->plug("outputGeometry");
        if (!at || at.isArray()) break;
      }
    }
  }
  return found;
}

}  // namespace host::nodes
