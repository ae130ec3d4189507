// partition: sets that share no members.
#include <algorithm>

#include "host/builtins/common/command.h"
#include "host/nodes/sets.h"
#include "host/scene/selection_algebra.h"

namespace host::builtins {

namespace {

Result<scene::Node*> partitionNamed(Context& context, const std::string& name) {
  auto node = context.document.node(name);
  if (!node) return node;
  if (!(*node)->type().isA("partition")) return fail("{} is not a partition.", name);
  return node;
}

std::vector<scene::Node*> setsIn(scene::Node& partition) {
  std::vector<scene::Node*> sets;
  for (const dg::Graph::Connection& each : partition.graph().incoming(partition))
    if (each.destination.attribute()->longName == "sets" && nodes::isSet(*each.source.node()))
      sets.push_back(each.source.node());
  return sets;
}

Result<std::vector<scene::Node*>> setsGiven(Context& context, const ParsedArgs& args) {
  std::vector<scene::Node*> sets;
  for (const std::string& name : args.objectNames()) {
    auto node = context.document.node(name);
    if (!node) return failWith(std::move(node.error()));
    if (!nodes::isSet(**node)) return fail("{} is not a set.", name);
    sets.push_back(*node);
  }
  return sets;
}

/// Sets of one partition share no members, so what joins one may not.
Result<void> addTo(scene::Node& partition, const std::vector<scene::Node*>& sets) {
  dg::Graph& graph = partition.graph();
  for (scene::Node* set : sets) {
    const std::vector<scene::Node*> present = setsIn(partition);
    if (std::find(present.begin(), present.end(), set) != present.end()) continue;
    const scene::SelectionList members = nodes::setMembers(*set);
    for (scene::Node* other : present)
      if (!scene::intersectionOf(members, nodes::setMembers(*other)).items().empty())
        return fail("partition: '{}' and '{}' share members.", set->name(), other->name());
    const dg::Plug slots = partition.plug("sets");
    HOST_TRY(
        graph.connect(set->plug("partition"), slots.element(graph.nextFreeIndex(slots)), true));
  }
  return {};
}

CommandResult partition(Context& context, const ParsedArgs& args) {
  scene::Document& document = context.document;
  if (args.isQuery()) {
    // Of a partition its sets; of a set the partitions that it is in.
    auto node = document.node(args.firstObject());
    if (!node) return failWith(std::move(node.error()));
    std::vector<std::string> names;
    if (args.has("render")) return mel::Value((*node)->name() == "renderPartition");
    if ((*node)->type().isA("partition")) {
      for (const scene::Node* set : setsIn(**node)) names.push_back(set->name());
    } else if (nodes::isSet(**node)) {
      for (const dg::Plug& slot : document.graph().destinations((*node)->plug("partition")))
        names.push_back(slot.node()->name());
    } else {
      return fail("{} is neither a partition nor a set.", args.firstObject());
    }
    return toValue(std::move(names));
  }
  auto sets = setsGiven(context, args);
  if (!sets) return failWith(std::move(sets.error()));
  if (args.has("addSet") || args.has("removeSet")) {
    const bool adds = args.has("addSet");
    auto target = partitionNamed(context, args.text(adds ? "addSet" : "removeSet"));
    if (!target) return failWith(std::move(target.error()));
    if (adds) {
      HOST_TRY(addTo(**target, *sets));
    } else {
      dg::Graph& graph = document.graph();
      for (scene::Node* set : *sets)
        for (const dg::Plug& slot : graph.destinations(set->plug("partition")))
          if (slot.node() == *target) HOST_TRY(graph.disconnect(set->plug("partition"), slot));
    }
    return mel::Value((*target)->name());
  }
  auto made = document.createNode("partition", args.text("name", "partition#"));
  if (!made) return failWith(std::move(made.error()));
  HOST_TRY(addTo(**made, *sets));
  return mel::Value((*made)->name());
}

}  // namespace

void registerPartition(CommandRegistry& registry) {
  define(registry, "partition",
         Syntax()
             .flag("n", "name", {ArgType::String})
             .flag("add", "addSet", {ArgType::String})
             .flag("rm", "removeSet", {ArgType::String})
             .flag("re", "render")
             .queryable()
             .strings(0, -1),
         partition);
}

}  // namespace host::builtins
