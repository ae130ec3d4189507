#include "host/builtins/common/plug_values.h"
#include "host/builtins/poly/history_command.h"

namespace host::builtins {

namespace {

CommandResult polySoftEdge(Context& context, const ParsedArgs& args) {
  if (!args.isCreate()) {
    auto node = findHistoryNode(context, args, "polySoftEdge");
    if (!node) return failWith(std::move(node.error()));
    if (args.isQuery())
      return readPlug(context.document.graph(), context.document.units(), (*node)->plug("angle"));
    HOST_TRY(setFromFlag(context, **node, "angle", args.values("angle")));
    return mel::Value();
  }
  HistoryCommand command;
  command.nodeType = "polySoftEdge";
  command.works = scene::ComponentType::Edge;
  command.setUp = [&](dg::Node& node, const MeshItem&, const std::vector<Index>&) {
    return setFromFlag(context, node, "angle", args.values("angle"));
  };
  auto names = runHistoryCommand(context, args, command);
  if (!names) return failWith(std::move(names.error()));
  return toValue(std::move(*names));
}

}  // namespace

void registerPolySoftEdge(CommandRegistry& registry) {
  Syntax syntax;
  syntax.flag("a", "angle", {ArgType::Angle}).flag("ws", "worldSpace", {ArgType::Bool});
  addHistoryFlags(syntax).editable().queryable().objects(0, -1, true);
  define(registry, "polySoftEdge", syntax, polySoftEdge);
}

}  // namespace host::builtins
