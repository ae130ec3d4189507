#include <memory>

#include "host/nodes/history/group_carry.h"
#include "host/nodes/history/modifiers.h"
#include "host/nodes/type_builder.h"
#include "host/ops/topology/delete_edges.h"
#include "host/ops/topology/delete_faces.h"
#include "host/ops/topology/delete_vertices.h"
#include "host/scene/component.h"
#include "host/scene/mesh_data.h"

namespace host::nodes {

namespace {

using scene::Component;
using scene::ComponentType;

/// The listed components of a type that the arriving mesh has.
template <AnyId Id>
std::vector<Id> listed(const std::vector<Component>& components, Index count) {
  Component all(mesh::kTypeOf<Id>);
  for (const Component& each : components)
    if (each.type() == all.type()) all.unite(each);
  std::vector<Index> indices = all.expanded(count);
  std::erase_if(indices, [&](Index index) { return index >= count; });
  return copyIds<Id>(indices);
}

/// The ids after an operation; those that are gone are left out.
template <class Id>
void follow(std::vector<Id>& ids, const std::vector<Id>& map) {
  for (Id& id : ids) id = map[at(id)];
  std::erase(ids, kNone);
}

Result<void> deleteListed(mesh::Mesh& mesh, const std::vector<Component>& components) {
  const auto faces = listed<FaceId>(components, mesh.faceCount());
  auto edges = listed<EdgeId>(components, mesh.edgeCount());
  auto vertices = listed<VertexId>(components, mesh.vertexCount());
  if (!faces.empty()) {
    const auto maps = ops::deleteFaces(mesh, faces);
    if (!maps) return failWith(maps.error());
    follow(edges, maps->edges);
    follow(vertices, maps->vertices);
  }
  if (!edges.empty()) {
    const auto deleted = ops::deleteEdges(mesh, edges);
    if (!deleted) return failWith(deleted.error());
    follow(vertices, deleted->maps.vertices);
  }
  if (vertices.empty()) return {};
  const auto maps = ops::deleteVertices(mesh, vertices);
  return maps ? Result<void>() : failWith(maps.error());
}

}  // namespace

void registerDeleteComponent(dg::TypeRegistry& types) {
  TypeBuilder builder(types, "deleteComponent", {}, typeCode("DCMP"));
  builder.livesByItsOutputs();
  const Attribute* input = builder.add(notStored(dg::makeTyped("inputGeometry", "ig", "mesh")));
  const Attribute* list = builder.add(dg::makeTyped("deleteComponents", "dc", "componentList"));
  const Attribute* result = builder.add(output(dg::makeTyped("outputGeometry", "og", "mesh")));
  const Attribute* state = builder["nodeState"];
  builder.affects({input, list, state}, {result});
  builder.type().compute = [=](Node& node, const Plug& plug, DataBlock& block) -> Result<Computed> {
    if (plug.attribute() != result) return Computed::Unhandled;
    auto arriving = block.input(Plug(&node, input));
    if (!arriving) return failWith(arriving.error());
    const auto* data = dg::dataAs<scene::MeshData>(*arriving);
    const auto components = block.data<scene::ComponentListData>(list);
    if (!data || !components || block.integer(state) == 1) {
      block.output(result, *arriving);
      return Computed::Done;
    }
    mesh::Mesh mesh = data->mesh;
    const mesh::ProvenanceTrail trail(data->mesh);
    if (auto done = deleteListed(mesh, components->value); !done)
      return failAt(node.name(), done.error());
    scene::MeshGroupsPtr groups =
        data->groups ? carriedGroups(data->groups, mesh, trail.to(mesh)) : nullptr;
    block.output(
        result, dg::DataPtr(std::make_shared<scene::MeshData>(std::move(mesh), std::move(groups))));
    return Computed::Done;
  };
  builder.finish();
}

}  // namespace host::nodes
