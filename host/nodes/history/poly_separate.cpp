#include <algorithm>
#include <memory>
#include <vector>

#include "host/nodes/history/modelling_nodes.h"
#include "host/nodes/type_builder.h"
#include "host/ops/topology/separate.h"
#include "host/scene/mesh_data.h"

namespace host::nodes {

void registerPolySeparate(dg::TypeRegistry& types) {
  TypeBuilder builder(types, "polySeparate", {}, typeCode("PSEP"));
  builder.livesByItsOutputs();
  const Attribute* input = builder.add(notStored(dg::makeTyped("inputPoly", "ip", "mesh")));
  const Attribute* count = builder.add(integer("icount", "ic", 1));
  const Attribute* results = builder.add(array(output(dg::makeTyped("output", "out", "mesh"))));
  builder.affects({input}, {results});
  builder.type().compute = [=](Node& node, const Plug& plug, DataBlock& block) -> Result<Computed> {
    if (plug.attribute() != results) return Computed::Unhandled;
    auto arriving = block.input(Plug(&node, input));
    if (!arriving) return failWith(arriving.error());
    const auto* data = dg::dataAs<scene::MeshData>(*arriving);
    std::vector<mesh::Mesh> parts = ops::separate(data ? data->mesh : mesh::Mesh());
    const Plug all(&node, results);
    const auto promised = static_cast<std::size_t>(std::max<std::int64_t>(1, block.integer(count)));
    // Pieces that an edit upstream took away arrive as empty meshes.
    parts.resize(
        std::max({promised, parts.size(), static_cast<std::size_t>(plug.logicalIndex() + 1)}));
    for (std::size_t i = 0; i < parts.size(); ++i)
      block.output(all.element(static_cast<Index>(i)),
                   dg::DataPtr(std::make_shared<scene::MeshData>(std::move(parts[i]))));
    return Computed::Done;
  };
  builder.finish();
}

}  // namespace host::nodes
