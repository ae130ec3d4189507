// copyAttr: values and connections of one node's attributes on another one.
#include <algorithm>

#include "host/builtins/common/command.h"
#include "host/edits/connect.h"

namespace host::builtins {

namespace {

using dg::Plug;

/// What is copied from one plug to its like on the other node. What the source drives is driven by
/// the goal from then on: an input has one source.
struct Copier {
  Context& context;
  bool values, inConnections, outConnections;

  Result<void> copy(const Plug& from, const Plug& to) const {
    dg::Graph& graph = context.document.graph();
    if (inConnections)
      if (const Plug source = graph.source(from))
        if (graph.source(to) != source)
          HOST_TRY(edits::connect(context.document, source, to, true));
    if (outConnections)
      for (const Plug& end : graph.destinations(from))
        HOST_TRY(edits::connect(context.document, to, end, true));
    if (from.isArray()) {
      for (const Index index : graph.elementIndices(from))
        HOST_TRY(copy(from.element(index), to.element(index)));
      return {};
    }
    if (from.isCompound()) {
      for (std::size_t i = 0; i < from.attribute()->children.size(); ++i)
        HOST_TRY(copy(from.child(static_cast<int>(i)), to.child(static_cast<int>(i))));
      return {};
    }
    if (!values || from.attribute()->type == dg::AttributeType::Message) return {};
    // What something drives, is locked or is computed stays as it is.
    if (!graph.settable(to) || to.node()->type().isComputed(to.attribute())) return {};
    const auto value = graph.get(from);
    if (!value) return failWith(value.error());
    return graph.set(to, *value);
  }
};

/// Attributes of one name and one kind at the top of both nodes.
Result<std::vector<std::pair<Plug, Plug>>> pairsOf(dg::Node& from, dg::Node& to,
                                                   const std::vector<std::string>& names) {
  std::vector<std::pair<Plug, Plug>> pairs;
  const auto add = [&](const dg::Attribute& attribute) {
    const dg::Attribute* same = to.findAttribute(attribute.longName);
    if (same && same->type == attribute.type && same->isArray == attribute.isArray &&
        same->children.size() == attribute.children.size() && !same->parent)
      pairs.emplace_back(from.plug(&attribute), to.plug(same));
  };
  if (names.empty()) {
    for (const dg::AttributePtr& each : from.type().attributes())
      if (!each->parent) add(*each);
    for (const dg::AttributePtr& each : from.dynamicAttributes())
      if (!each->parent) add(*each);
    return pairs;
  }
  for (const std::string& name : names) {
    auto source = dg::parsePlug(from, name), goal = dg::parsePlug(to, name);
    if (!source) return failWith(source.error());
    if (!goal) return failWith(goal.error());
    pairs.emplace_back(*source, *goal);
  }
  return pairs;
}

CommandResult copyAttr(Context& context, const ParsedArgs& args) {
  const std::vector<std::string> names = args.objectNames();
  auto from = context.document.node(names[0]), to = context.document.node(names[1]);
  if (!from) return failWith(from.error());
  if (!to) return failWith(to.error());
  if (*from == *to) return fail("copyAttr: '{}' is both the source and the goal.", names[0]);
  const Copier copier{context, args.has("values"), args.has("inConnections"),
                      args.has("outConnections")};
  if (!copier.values && !copier.inConnections && !copier.outConnections)
    return fail("copyAttr: say what to copy: -values, -inConnections or -outConnections.");
  auto pairs = pairsOf(**from, **to, args.texts("attribute"));
  if (!pairs) return failAt("copyAttr", pairs.error());
  for (const auto& [source, goal] : *pairs) HOST_TRY(copier.copy(source, goal));
  return mel::Value();
}

}  // namespace

void registerCopyAttr(CommandRegistry& registry) {
  define(registry, "copyAttr",
         Syntax()
             .flag("v", "values")
             .flag("ic", "inConnections")
             .flag("oc", "outConnections")
             .flag("at", "attribute", {ArgType::String})
             .multiUse()
             .strings(2, 2),
         copyAttr);
}

}  // namespace host::builtins
