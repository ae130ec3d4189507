#include "host/base/cancel_poll.h"
#include "host/modelling/declare/joined_parts.h"
#include "host/ops/topology/unite.h"

namespace host::modelling {

namespace {

void build(TypeBuilder& builder, const std::vector<const Attribute*>&) {
  const Attribute* meshes = builder.add(array(notStored(dg::makeTyped("inputPoly", "ip", "mesh"))));
  const Attribute* matrices = builder.add(array(nodes::matrix("inputMat", "im")));
  const Attribute* result = builder["output"];
  builder.affects({meshes, matrices}, {result});
  builder.type().compute = [=](Node& node, const Plug& plug, DataBlock& block) -> Result<Computed> {
    if (plug.attribute() != result) return Computed::Unhandled;
    const auto arriving = joinedParts(block, meshes, matrices);
    if (!arriving) return failWith(arriving.error());
    JoinedGroups groups;
    std::vector<ops::UnitePart> parts;
    for (const JoinedPart& part : *arriving) {
      groups.add(*part.data);
      parts.push_back({part.data->mesh, part.space});
    }
    auto united = cancellable([&] { return ops::unite(parts); });
    if (!united) return failAt(node.name(), united.error());
    block.output(result, dg::DataPtr(std::make_shared<scene::MeshData>(*std::move(united),
                                                                       groups.finish())));
    return Computed::Done;
  };
}

CommandResult create(Context& context, const ParsedArgs& args, const Declaration& declaration) {
  const auto items = partsToJoin(context, args, declaration);
  if (!items) return failWith(items.error());
  return joinObjects(context, args, declaration, *items);
}

}  // namespace

void polyUnite(Declarations& add) {
  add("polyUnite", "Makes one object of several.")
      .node("polyUnite", typeCode("PUNI"), "polyCreator")
      .nodesCalled("polySurface")
      .parameter(choice("mergeUVSets", "muv", {"Do not merge", "By name", "By UV links"}, 1),
                 "UV sets of one name become one")
      .withoutEffect()
      .extraFlag({.shortName = "cp",
                  .longName = "centerPivot",
                  .args = {},
                  .modes = kCreate,
                  .meaning = "puts the new object's pivots in its middle"})
      .builtBy(build)
      .objects(0, -1)
      .creates(create);
}

}  // namespace host::modelling
