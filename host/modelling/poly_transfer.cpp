#include "host/modelling/declare/history_command.h"
#include "host/modelling/declare/uv_edit.h"
#include "host/ops/uv/transfer_attributes.h"

namespace host::modelling {

namespace {

Result<void> transfer(HistoryContext& context) {
  const auto other = context.block.data<scene::MeshData>(context.node().type().find("otherPoly"));
  if (!other) return {};
  return ops::copyByTopology(context.mesh, other->mesh,
                             {.points = context.boolean("vertices"),
                              .uvSets = context.boolean("uvSets"),
                              .colors = context.boolean("vertexColor")});
}

Result<void> connectOther(Context& context, const ParsedArgs& args, Node& node,
                          const MeshItem& item, const std::vector<Index>&) {
  const std::string name = args.text("alternateObject");
  auto list = context.document.resolve(name);
  if (!list) return failWith(list.error());
  auto items = distinctMeshItems(*list);
  if (!items) return failWith(items.error());
  if (items->size() != 1) return fail("polyTransfer: '{}' is not one polygon object", name);
  if (items->front().path.node() == item.path.node())
    return fail("polyTransfer: '{}' can't take from itself", name);
  return context.document.graph().connect(items->front().path.node()->plug("outMesh"),
                                          node.plug("otherPoly"));
}

CommandResult create(Context& context, const ParsedArgs& args, const Declaration& declaration) {
  if (args.text("alternateObject").empty())
    return fail("polyTransfer: say with -alternateObject what to take from");
  auto names = runHistoryCommand(context, args, declaration);
  if (!names) return failWith(std::move(names.error()));
  return mel::Value(std::move(*names));
}

}  // namespace

void polyTransfer(Declarations& add) {
  ExtraFlag other{"ao", "alternateObject", {ArgType::String}, kCreate};
  other.meaning = "the object to take from; its faces are those of the target";
  add("polyTransfer", "Takes points, UV sets or colours from an object of the same topology.")
      .node("polyTransfer", typeCode("PTRN"))
      .takes(ComponentType::Face)
      .parameter(boolean("vertices", "v"), "points")
      .parameter(boolean("uvSets", "uv", true), "all UV sets")
      .parameter(boolean("vertexColor", "vc"), "all colour sets")
      .parameter(hidden(dg::makeTyped("otherPoly", "op", "mesh")), "the other mesh")
      .extraFlag(other)
      .afterFlags(connectOther)
      .creates(create)
      .operation(transfer);
}

}  // namespace host::modelling
