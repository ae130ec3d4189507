#include "host/nodes/history/modifiers.h"
#include "host/nodes/type_builder.h"

namespace host::nodes {

void registerGroupNodes(dg::TypeRegistry& types) {
  TypeBuilder id(types, "groupId", {}, typeCode("GPID"));
  id.livesByItsOutputs();
  id.add(integer("groupId", "id"));
  id.finish();

  TypeBuilder parts(types, "groupParts", {}, typeCode("GRPP"));
  parts.livesByItsOutputs();
  const Attribute* input = parts.add(notStored(dg::makeTyped("inputGeometry", "ig", "mesh")));
  parts.add(integer("groupId", "gi", -1));
  parts.add(dg::makeTyped("inputComponents", "ic", "componentList"));
  parts.add(dg::makeTyped("inputRemoveComponent", "irc", "componentList"));
  const Attribute* result = parts.add(output(dg::makeTyped("outputGeometry", "og", "mesh")));
  parts.affects({input}, {result});
  // Who is in which group stands on the shape; on its way there the mesh only passes through.
  parts.type().compute = [input, result](Node& node, const Plug& plug,
                                         DataBlock& block) -> Result<Computed> {
    if (plug.attribute() != result) return Computed::Unhandled;
    auto arriving = block.input(Plug(&node, input));
    if (!arriving) return failWith(arriving.error());
    block.output(result, *arriving);
    return Computed::Done;
  };
  parts.finish();
}

}  // namespace host::nodes
