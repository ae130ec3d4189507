// Nodes that make, copy and delete UV sets and colour sets in the history.
#include <memory>

#include "host/nodes/history/modifiers.h"
#include "host/nodes/type_builder.h"
#include "host/scene/mesh_data.h"

namespace host::nodes {

namespace {

using mesh::Mesh;

using Names = std::vector<std::string>;
using SetEdit = std::function<void(Mesh&, const Names&, DataBlock&)>;

/// A node between two meshes whose edit knows the values of the text attributes, in order.
void registerSetNode(dg::TypeRegistry& types, std::string_view name, std::uint32_t id,
                     std::initializer_list<AttributePtr> texts,
                     std::initializer_list<AttributePtr> others, SetEdit edit) {
  TypeBuilder builder(types, name, {}, id);
  builder.livesByItsOutputs();
  const Attribute* input = builder.add(notStored(dg::makeTyped("inputGeometry", "ig", "mesh")));
  const Attribute* result = builder.add(output(dg::makeTyped("outputGeometry", "og", "mesh")));
  const Attribute* state = builder["nodeState"];
  std::vector<const Attribute*> words;
  for (const AttributePtr& each : texts) words.push_back(builder.add(each));
  builder.affects({input, state}, {result});
  for (const Attribute* each : words) builder.affects({each}, {result});
  for (const AttributePtr& each : others) builder.affects({builder.add(each)}, {result});
  builder.type().compute = [=](Node& node, const Plug& plug, DataBlock& block) -> Result<Computed> {
    if (plug.attribute() != result) return Computed::Unhandled;
    auto arriving = block.input(Plug(&node, input));
    if (!arriving) return failWith(arriving.error());
    const auto* data = dg::dataAs<scene::MeshData>(*arriving);
    if (!data || block.integer(state) == 1) {
      block.output(result, *arriving);
      return Computed::Done;
    }
    Names names;
    for (const Attribute* each : words) names.push_back(block.text(each));
    Mesh mesh = data->mesh;
    edit(mesh, names, block);
    block.output(result,
                 dg::DataPtr(std::make_shared<scene::MeshData>(std::move(mesh), data->groups)));
    return Computed::Done;
  };
  builder.finish();
}

void createUvSet(Mesh& mesh, const Names& names, DataBlock&) {
  if (!names[0].empty() && mesh.findUvSet(names[0]) < 0) mesh.addUvSet({names[0], {}, {}});
}

void copyUvSet(Mesh& mesh, const Names& names, DataBlock&) {
  const int from = mesh.findUvSet(names[0]);
  if (from < 0 || names[1].empty()) return;
  int to = mesh.findUvSet(names[1]);
  mesh::UvSet copied = mesh.uvSet(from);
  copied.name = names[1];
  if (to < 0)
    mesh.addUvSet(std::move(copied));
  else
    mesh.editUvSet(to) = std::move(copied);
}

void deleteUvSet(Mesh& mesh, const Names& names, DataBlock&) {
  // The first one stays, as every mesh has one.
  if (const int set = mesh.findUvSet(names[0]); set > 0) mesh.removeUvSet(set);
}

void deleteColorSet(Mesh& mesh, const Names& names, DataBlock&) {
  if (const int set = mesh.findColorSet(names[0]); set >= 0) mesh.removeColorSet(set);
}

}  // namespace

void registerNamedSetNodes(dg::TypeRegistry& types) {
  registerSetNode(types, "createUVSet", typeCode("CUVS"), {text("uvSetName", "uvs")}, {},
                  createUvSet);
  registerSetNode(types, "copyUVSet", typeCode("CPUV"),
                  {text("uvSetName", "uvs"), text("uvSetName2", "uv2")}, {}, copyUvSet);
  registerSetNode(types, "deleteUVSet", typeCode("DUVS"), {text("uvSetName", "uvs")}, {},
                  deleteUvSet);
  registerSetNode(types, "deleteColorSet", typeCode("DCLS"), {text("colorSetName", "cols")}, {},
                  deleteColorSet);
  const AttributePtr clamped = boolean("clamped", "clam", true);
  const AttributePtr representation =
      choice("representation", "rprt", {"Unused", "A", "Unused2", "RGB", "RGBA"}, 3);
  const Attribute *isClamped = clamped.get(), *channels = representation.get();
  registerSetNode(
      types, "createColorSet", typeCode("CCLS"), {text("colorSetName", "colos")},
      {clamped, representation}, [=](Mesh& mesh, const Names& names, DataBlock& block) {
        if (names[0].empty() || mesh.findColorSet(names[0]) >= 0) return;
        const auto said = static_cast<int>(block.integer(channels));
        const int added = mesh.addColorSet(
            {names[0], said == 1 || said == 3 ? said : 4, block.boolean(isClamped), {}, {}});
        if (mesh.currentColorSet() < 0) mesh.setCurrentColorSet(added);
      });
}

}  // namespace host::nodes
