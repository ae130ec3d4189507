#include "host/nodes/history/deformers.h"

#include <algorithm>

#include "host/dg/graph.h"
#include "host/mesh/components.h"
#include "host/nodes/history/modifiers.h"
#include "host/nodes/mesh_components.h"
#include "host/scene/component.h"
#include "host/scene/mesh_data.h"

namespace host::nodes {

void registerDeformers(dg::TypeRegistry& types) {
  TypeBuilder filter(types, "geometryFilter", {}, typeCode("GMFT"));
  filter.setAbstract();
  filter.livesByItsOutputs();
  AttributePtr geometry = notStored(dg::makeTyped("inputGeometry", "ig", "mesh"));
  // The matrix takes the geometry to the world; it follows the shape that feeds the deformer.
  const Attribute* inputs = filter.add(
      array(compound("input", "ip",
                     {geometry, integer("groupId", "gi"), text("componentTagExpression", "gtg"),
                      notStored(hidden(matrix("geometryMatrix", "gmx")))})));
  const Attribute* envelope = filter.add(keyable(softLimited(single("envelope", "en", 1), 0, 1)));
  filter.add(choice("blockGPU", "bgp", {"Off", "On"}));
  filter.add(hidden(message("function", "f")));
  filter.add(hidden(message("map64BitIndices", "map")));
  const Attribute* result =
      filter.add(array(output(dg::makeTyped("outputGeometry", "og", "mesh"))));
  filter.affects({inputs, envelope, filter["nodeState"]}, {result});
  // Without a plug-in's code the geometry passes unchanged.
  setDeformation(filter, [](DeformInput&) -> Result<void> { return {}; });
  filter.finish();

  TypeBuilder weighted(types, "weightGeometryFilter", "geometryFilter", typeCode("WGFT"));
  weighted.setAbstract();
  weighted.livesByItsOutputs();
  const Attribute* weights =
      weighted.add(array(compound("weightList", "wl", {array(single("weights", "w", 1))})));
  weighted.affects({weights}, {weighted["outputGeometry"]});
  weighted.finish();
}

// What deformers work with
// -------------------------------------------------------------------------------------------------

double DeformInput::real(std::string_view attribute) const {
  return block.real(node().findAttribute(attribute));
}
std::int64_t DeformInput::integer(std::string_view attribute) const {
  return block.integer(node().findAttribute(attribute));
}
math::Vec3 DeformInput::vec3(std::string_view attribute) const {
  return block.vec3(node().findAttribute(attribute));
}
math::Matrix4 DeformInput::matrix(const Plug& plug) const {
  const auto data = block.data<dg::MatrixData>(plug);
  return data ? data->value : math::Matrix4();
}
math::Matrix4 DeformInput::geometryMatrix() const {
  const Plug inputs = plug("input");
  return matrix(inputs.element(geometry).child(inputs.attribute()->find("geometryMatrix")));
}

void setDeformation(TypeBuilder& builder, Deformation deform) {
  const Attribute* inputs = builder["input"];
  const Attribute* arriving = inputs->find("inputGeometry");
  const Attribute* result = builder["outputGeometry"];
  const Attribute* envelope = builder["envelope"];
  const Attribute* state = builder["nodeState"];
  builder.type().compute = [=, deform = std::move(deform)](Node& node, const Plug& plug,
                                                           DataBlock& block) -> Result<Computed> {
    if (plug.attribute() != result || !plug.isElement()) return Computed::Unhandled;
    const Index geometry = plug.logicalIndex();
    const Plug own = Plug(&node, inputs).element(geometry).child(arriving);
    auto value = arrivingGeometry(block.graph(), own);
    if (!value) return failWith(std::move(value.error()));
    const auto* data = dg::dataAs<scene::MeshData>(*value);
    const double strength = block.real(envelope);
    constexpr std::int64_t kHasNoEffect = 1;
    if (!data || strength == 0 || block.integer(state) == kHasNoEffect) {
      block.output(plug, *value);
      return Computed::Done;
    }
    DeformInput input{block, geometry, data->mesh, strength};
    if (const auto done = deform(input); !done)
      return fail("{}: {}", node.name(), done.error().message);
    block.output(plug, input.mesh.sharesPointsWith(data->mesh)
                           ? *value
                           : dg::Value(dg::DataPtr(std::make_shared<scene::MeshData>(
                                 std::move(input.mesh), data->groups))));
    return Computed::Done;
  };
}

Result<dg::Value> arrivingGeometry(dg::Graph& graph, const Plug& plug) {
  // Read in any case: what is not read is not told when it changes.
  auto arriving = graph.get(plug);
  const Plug source = graph.source(plug);
  if (source && arriving && source.attribute()->longName == "worldMesh")
    if (const Plug own = source.node()->plug("outMesh")) return graph.get(own);
  return arriving;
}

std::vector<float> numbersByVertex(dg::Graph& graph, const Plug& numbers, Index count,
                                   float otherwise) {
  std::vector<float> all;
  std::vector<Index> indices;
  std::vector<double> values;
  if (numbers.isNull() || !graph.getPacked(numbers, indices, values) || indices.empty()) return all;
  all.assign(at(count), otherwise);
  for (std::size_t i = 0; i < indices.size(); ++i)
    if (indices[i] < count) all[at(indices[i])] = static_cast<float>(values[i]);
  return all;
}

std::vector<float> vertexStrengths(Node& deformer, Index geometry, const mesh::Mesh& mesh,
                                   const Plug& weights) {
  std::vector<float> strengths = numbersByVertex(deformer.graph(), weights, mesh.vertexCount(), 1);
  const auto named = deformedComponents(deformer, geometry);
  const bool isAll = !named || std::ranges::any_of(named->value, [](const auto& each) {
    return each.type() == scene::ComponentType::Vertex && each.isComplete();
  });
  if (isAll) return strengths;
  std::vector<float> limited(at(mesh.vertexCount()), 0.0F);
  for (const scene::Component& component : named->value)
    for (const Index v : mesh::convertComponents(
             mesh, component.type(), componentIds(mesh, component), mesh::ComponentType::Vertex))
      limited[at(v)] = strengths.empty() ? 1.0F : strengths[at(v)];
  return limited;
}

}  // namespace host::nodes
