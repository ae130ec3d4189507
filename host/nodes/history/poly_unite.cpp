#include <memory>
#include <vector>

#include "host/nodes/history/modelling_nodes.h"
#include "host/nodes/type_builder.h"
#include "host/ops/topology/unite.h"
#include "host/scene/mesh_data.h"

namespace host::nodes {

namespace {

/// The meshes at `inputPoly` with their matrices, in order of the indices; empty slots are left
/// out.
Result<std::vector<ops::UnitePart>> partsOf(DataBlock& block, const Attribute* meshes,
                                            const Attribute* matrices) {
  std::vector<ops::UnitePart> parts;
  const Plug all(&block.node(), meshes), spaces(&block.node(), matrices);
  for (const Index index : block.graph().elementIndices(all)) {
    auto value = block.input(all.element(index));
    if (!value) return failWith(value.error());
    const auto* data = dg::dataAs<scene::MeshData>(*value);
    if (!data) continue;
    const auto space = block.data<dg::MatrixData>(spaces.element(index));
    parts.push_back({data->mesh, space ? space->value : math::Matrix4()});
  }
  return parts;
}

}  // namespace

void registerPolyUnite(dg::TypeRegistry& types) {
  TypeBuilder builder(types, "polyUnite", "polyBase", typeCode("PUNI"));
  const Attribute* meshes = builder.add(array(notStored(dg::makeTyped("inputPoly", "ip", "mesh"))));
  const Attribute* matrices = builder.add(array(matrix("inputMat", "im")));
  const Attribute* mergeSets =
      builder.add(choice("mergeUVSets", "muv", {"Do not merge", "By name", "By UV links"}, 1));
  const Attribute* result = builder["output"];
  builder.affects({meshes, matrices, mergeSets}, {result});
  builder.type().compute = [=](Node& node, const Plug& plug, DataBlock& block) -> Result<Computed> {
    if (plug.attribute() != result) return Computed::Unhandled;
    const auto parts = partsOf(block, meshes, matrices);
    if (!parts) return failWith(parts.error());
    auto united = ops::unite(*parts);
    if (!united) return fail("{}: {}", node.name(), united.error().message);
    block.output(result, dg::DataPtr(std::make_shared<scene::MeshData>(*std::move(united))));
    return Computed::Done;
  };
  builder.finish();
}

}  // namespace host::nodes
