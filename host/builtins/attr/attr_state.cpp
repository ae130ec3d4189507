#include "host/builtins/common/command.h"

namespace host::builtins {

namespace {

/// The aliases at and below a plug, each followed by the attribute it stands for.
void collectAliases(dg::Graph& graph, const dg::Plug& plug, std::vector<std::string>& pairs) {
  const std::string alias = graph.alias(plug);
  if (!alias.empty()) pairs.insert(pairs.end(), {alias, attributeName(plug)});
  if (plug.isArray()) {
    for (const Index index : graph.elementIndices(plug))
      collectAliases(graph, plug.element(index), pairs);
    return;
  }
  for (std::size_t i = 0; plug.isCompound() && i < plug.attribute()->children.size(); ++i)
    collectAliases(graph, plug.child(static_cast<int>(i)), pairs);
}

CommandResult aliasAttr(Context& context, const ParsedArgs& args) {
  dg::Graph& graph = context.document.graph();
  const std::vector<std::string> names = args.objectNames();
  if (args.isQuery()) {
    if (names.empty()) return fail("aliasAttr: name an attribute or a node.");
    auto plug = context.document.plug(names[0]);
    if (plug) return mel::Value(graph.alias(*plug));
    auto node = context.document.node(names[0]);
    if (!node) return failWith(std::move(node.error()));
    std::vector<std::string> pairs;
    for (const dg::AttributePtr& attribute : (*node)->type().attributes())
      collectAliases(graph, (*node)->plug(attribute.get()), pairs);
    for (const dg::AttributePtr& attribute : (*node)->dynamicAttributes())
      collectAliases(graph, (*node)->plug(attribute.get()), pairs);
    return toValue(std::move(pairs));
  }
  if (args.has("remove")) {
    for (const std::string& name : names) {
      auto plug = context.document.plug(name);
      if (!plug) return failWith(std::move(plug.error()));
      HOST_TRY(graph.setAlias(*plug, {}));
    }
    return mel::Value();
  }
  if (names.empty() || names.size() % 2 != 0)
    return fail("aliasAttr: give pairs of a new name and an attribute.");
  for (std::size_t i = 0; i < names.size(); i += 2) {
    auto plug = context.document.plug(names[i + 1]);
    if (!plug) return failWith(std::move(plug.error()));
    HOST_TRY(graph.setAlias(*plug, names[i]));
  }
  return mel::Value(names[names.size() - 2]);
}

CommandResult lockNode(Context& context, const ParsedArgs& args) {
  auto objects = args.resolveObjects(context.document);
  if (!objects) return failWith(std::move(objects.error()));
  const std::vector<dg::Node*> nodes = nodesOf(*objects);
  if (args.isQuery()) {
    mel::IntArray states;
    for (const dg::Node* node : nodes)
      states.push_back(args.has("lock") && node->isLocked() ? 1 : 0);
    return mel::Value(std::move(states));
  }
  const bool isLocked = args.boolean("lock", true);
  for (dg::Node* node : nodes) HOST_TRY(context.document.graph().setNodeLocked(*node, isLocked));
  return mel::Value();
}

CommandResult dgDirty(Context& context, const ParsedArgs& args) {
  dg::Graph& graph = context.document.graph();
  std::vector<dg::Node*> nodes;
  if (args.has("allPlugs") || !args.hasObjects()) {
    for (const dg::NodePtr& node : graph.nodes()) nodes.push_back(node.get());
  }
  auto objects = args.resolveObjects(context.document);
  if (!objects) return failWith(std::move(objects.error()));
  for (const scene::SelectionItem& item : objects->items()) {
    if (item.plug)
      graph.dirty(item.plug);
    else
      nodes.push_back(item.node.get());
  }
  for (dg::Node* node : nodes)
    for (const dg::AttributePtr& attribute : node->type().attributes())
      graph.dirty(node->plug(attribute.get()));
  return mel::Value();
}

CommandResult dgEval(Context& context, const ParsedArgs& args) {
  for (const std::string& name : args.objectNames()) {
    auto plug = context.document.plug(name);
    if (!plug) return failWith(std::move(plug.error()));
    HOST_TRY(context.document.graph().evaluate(*plug));
  }
  return mel::Value();
}

}  // namespace

void registerAttrState(CommandRegistry& registry) {
  define(registry, "aliasAttr", Syntax().flag("rm", "remove").queryable().strings(), aliasAttr);
  define(registry, "lockNode",
         Syntax()
             .flag("l", "lock", {ArgType::Bool})
             .flag("lu", "lockUnpublished", {ArgType::Bool})
             .flag("ln", "lockName", {ArgType::Bool})
             .flag("ic", "ignoreComponents")
             .queryable()
             .objects(0, -1, true),
         lockNode);
  defineQuery(registry, "dgdirty",
              Syntax().flag("a", "allPlugs").flag("c", "clean").flag("v", "verbose").objects(),
              dgDirty);
  defineQuery(registry, "dgeval", Syntax().flag("v", "verbose").flag("src", "src").strings(1),
              dgEval);
}

}  // namespace host::builtins
