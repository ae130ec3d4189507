#include "host/builtins/poly/modelling_command.h"

#include <memory>
#include <utility>

#include "host/builtins/common/plug_values.h"

namespace host::builtins {

namespace {

const HistoryFlag* findFlag(const HistoryFlags& flags, std::string_view longName) {
  for (const HistoryFlag& flag : flags)
    if (flag.longName == longName) return &flag;
  return nullptr;
}

const std::string& attributeOf(const HistoryFlag& flag) {
  return flag.attribute.empty() ? flag.longName : flag.attribute;
}

}  // namespace

void addTriple(HistoryFlags& flags, const std::string& shortName, const std::string& longName,
               ArgType type, std::string childShortName) {
  if (childShortName.empty()) childShortName = shortName;
  flags.push_back({shortName, longName, {type, type, type}});
  for (const auto& [small, large] : {std::pair{"x", "X"}, {"y", "Y"}, {"z", "Z"}})
    flags.push_back({childShortName + small, longName + large, {type}});
}

HistoryFlag worldSpaceFlag() {
  return {"ws", "worldSpace", {ArgType::Bool}};
}

Result<void> applyFlags(Context& context, const HistoryFlags& flags, const ParsedArgs& args,
                        dg::Node& node) {
  for (const ParsedArgs::FlagUse& use : args.flagUses())
    if (const HistoryFlag* flag = findFlag(flags, use.spec->longName))
      HOST_TRY(setFromFlag(context, node, attributeOf(*flag), args.values(use)));
  return {};
}

Syntax& addFlags(Syntax& syntax, const HistoryFlags& flags) {
  for (const HistoryFlag& flag : flags) syntax.flag(flag.shortName, flag.longName, flag.args);
  return addHistoryFlags(syntax);
}

CommandResult editOrQuery(Context& context, const ParsedArgs& args, const std::string& nodeType,
                          const HistoryFlags& flags) {
  auto found = findHistoryNode(context, args, nodeType);
  if (!found) return failWith(std::move(found.error()));
  dg::Node& node = **found;
  dg::Graph& graph = context.document.graph();
  if (args.isEdit()) {
    if (args.has("nodeState"))
      HOST_TRY(setFromFlag(context, node, "nodeState", args.values("nodeState")));
    HOST_TRY(applyFlags(context, flags, args, node));
    if (const dg::Plug output = node.plug("output"); output && !output.isArray())
      HOST_TRY(graph.evaluate(output));
    return mel::Value();
  }
  const std::string_view asked = args.queried();
  if (asked == "name") return mel::Value(node.name());
  if (asked == "constructionHistory") return mel::Value(true);
  const HistoryFlag* flag = findFlag(flags, asked);
  const std::string attribute = flag                                         ? attributeOf(*flag)
                                : asked == "nodeState" || asked == "caching" ? std::string(asked)
                                                                             : "";
  if (attribute.empty()) return fail("Say which flag to query of '{}'.", node.name());
  return readPlug(graph, context.document.units(), node.plug(attribute));
}

void defineModelling(CommandRegistry& registry, HistoryCommand node, HistoryFlags flags,
                     AfterFlags afterFlags) {
  struct Definition {
    HistoryCommand node;
    HistoryFlags flags;
    AfterFlags afterFlags;
  };
  Syntax syntax;
  addFlags(syntax, flags).editable().queryable().objects(0, -1, true);
  const std::string name = node.command;
  const auto own = std::make_shared<const Definition>(
      Definition{std::move(node), std::move(flags), std::move(afterFlags)});
  define(registry, name, syntax, [own](Context& context, const ParsedArgs& args) -> CommandResult {
    if (!args.isCreate()) return editOrQuery(context, args, own->node.nodeType, own->flags);
    HistoryCommand command = own->node;
    command.setUp = [&](dg::Node& made, const MeshItem& item,
                        const std::vector<Index>& ids) -> Result<void> {
      HOST_TRY(applyFlags(context, own->flags, args, made));
      return own->afterFlags ? own->afterFlags(context, args, made, item, ids) : Result<void>();
    };
    auto names = runHistoryCommand(context, args, command);
    if (!names) return failWith(std::move(names.error()));
    return toValue(std::move(*names));
  });
}

}  // namespace host::builtins
