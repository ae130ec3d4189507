#include <algorithm>

#include "host/nodes/history/deformers.h"
#include "host/nodes/history/group_carry.h"
#include "host/nodes/history/modifiers.h"
#include "host/nodes/type_builder.h"

namespace host::nodes {

namespace {

using scene::Component;

Index countOf(const mesh::Mesh& mesh, scene::ComponentType type) {
  switch (type) {
    case scene::ComponentType::Vertex:
      return mesh.vertexCount();
    case scene::ComponentType::Edge:
      return mesh.edgeCount();
    case scene::ComponentType::Face:
      return mesh.faceCount();
    case scene::ComponentType::Uv:
      return static_cast<Index>(mesh.uvSet(mesh.currentUvSet()).points.size());
    case scene::ComponentType::VertexFace:
      return mesh.cornerCount();
  }
  return 0;
}

void take(const mesh::Mesh& mesh, const std::vector<Component>& gone,
          std::vector<Component>& members) {
  for (Component& member : members)
    for (const Component& each : gone)
      if (each.type() == member.type()) member.subtract(each, countOf(mesh, each.type()));
  std::erase_if(members, [](const Component& each) { return each.isEmpty(); });
}

void add(const std::vector<Component>& more, std::vector<Component>& members) {
  for (const Component& each : more) {
    const auto same = std::find_if(members.begin(), members.end(),
                                   [&](const auto& m) { return m.type() == each.type(); });
    if (same != members.end())
      same->unite(each);
    else
      members.push_back(each);
  }
}

}  // namespace

void registerGroupNodes(dg::TypeRegistry& types) {
  TypeBuilder id(types, "groupId", {}, typeCode("GPID"));
  id.livesByItsOutputs();
  id.add(integer("groupId", "id"));
  id.finish();

  TypeBuilder parts(types, "groupParts", {}, typeCode("GRPP"));
  parts.livesByItsOutputs();
  const Attribute* input = parts.add(notStored(dg::makeTyped("inputGeometry", "ig", "mesh")));
  const Attribute* number = parts.add(integer("groupId", "gi", -1));
  const Attribute* added = parts.add(dg::makeTyped("inputComponents", "ic", "componentList"));
  const Attribute* removed =
      parts.add(dg::makeTyped("inputRemoveComponent", "irc", "componentList"));
  const Attribute* result = parts.add(output(dg::makeTyped("outputGeometry", "og", "mesh")));
  parts.affects({input, number, added, removed}, {result});
  parts.type().compute = [=](Node& node, const Plug& plug, DataBlock& block) -> Result<Computed> {
    if (plug.attribute() != result) return Computed::Unhandled;
    auto arriving = arrivingGeometry(block.graph(), Plug(&node, input));
    if (!arriving) return failWith(arriving.error());
    const auto* data = dg::dataAs<scene::MeshData>(*arriving);
    const std::int64_t group = block.integer(number);
    if (!data || group < 0) {
      block.output(result, *arriving);
      return Computed::Done;
    }
    std::vector<Component> members = membersOf(data->groups, group);
    if (const auto list = block.data<scene::ComponentListData>(removed))
      take(data->mesh, list->value, members);
    if (const auto list = block.data<scene::ComponentListData>(added)) add(list->value, members);
    block.output(result, dg::DataPtr(std::make_shared<scene::MeshData>(
                             data->mesh, withGroup(data->groups, group, std::move(members)))));
    return Computed::Done;
  };
  parts.finish();
}

}  // namespace host::nodes
