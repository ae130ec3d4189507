#include <algorithm>
#include <memory>
#include <vector>

#include "host/mesh/shells.h"
#include "host/nodes/history/modelling_nodes.h"
#include "host/nodes/type_builder.h"
#include "host/ops/topology/delete_faces.h"
#include "host/scene/mesh_data.h"

namespace host::nodes {

namespace {

/// One mesh a connected piece, in order of the lowest faces.
Result<std::vector<mesh::Mesh>> pieces(const mesh::Mesh& mesh) {
  const auto shells = mesh::findShells(mesh).faces();
  std::vector<mesh::Mesh> parts;
  for (const std::vector<FaceId>& own : shells) {
    std::vector<FaceId> others;
    for (const std::vector<FaceId>& shell : shells)
      if (&shell != &own) others.insert(others.end(), shell.begin(), shell.end());
    mesh::Mesh part = mesh;
    if (auto done = ops::deleteFaces(part, others); !done) return failWith(done.error());
    parts.push_back(std::move(part));
  }
  return parts;
}

}  // namespace

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
    auto parts = pieces(data ? data->mesh : mesh::Mesh());
    if (!parts) return fail("{}: {}", node.name(), parts.error().message);
    const Plug all(&node, results);
    const auto promised = static_cast<std::size_t>(std::max<std::int64_t>(1, block.integer(count)));
    // Pieces that an edit upstream took away arrive as empty meshes.
    parts->resize(std::max({promised, parts->size(), static_cast<std::size_t>(plug.logicalIndex() + 1)}));
    for (std::size_t i = 0; i < parts->size(); ++i)
      block.output(all.element(static_cast<Index>(i)),
                   dg::DataPtr(std::make_shared<scene::MeshData>(std::move((*parts)[i]))));
    return Computed::Done;
  };
  builder.finish();
}

}  // namespace host::nodes
