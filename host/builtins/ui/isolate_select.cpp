#include <algorithm>

#include "host/builtins/common/command.h"
#include "host/builtins/ui/isolation.h"
#include "host/builtins/view/views.h"

namespace host::builtins {

bool Isolation::shows(const std::string& panel, const dg::Node& node) const {
  const auto found = panels_.find(panel);
  if (found == panels_.end() || !found->second.isOn) return true;
  const auto& nodes = found->second.nodes;
  return std::any_of(nodes.begin(), nodes.end(), [&](const auto& each) { return each.lock().get() == &node; });
}

void Isolation::add(const std::string& panel, dg::Node& node) {
  remove(panel, node);
  of(panel).nodes.push_back(node.weak_from_this());
}

void Isolation::remove(const std::string& panel, const dg::Node& node) {
  std::erase_if(of(panel).nodes, [&](const auto& each) { return each.expired() || each.lock().get() == &node; });
}

namespace {

std::vector<std::string> namesIn(const Isolation::Panel& panel) {
  std::vector<std::string> names;
  for (const auto& each : panel.nodes)
    if (const auto node = each.lock(); node && !node->name().empty()) names.push_back(nodeName(*node));
  return names;
}

/// The flags may come in any order with the panel as the last word.
CommandResult isolateSelect(Context& context, const ParsedArgs& args) {
  const std::string panel = args.firstObject();
  if (!context.session.service<Views>().find(panel)) return fail("isolateSelect: Object '{}' not found.", panel);
  Isolation& isolation = context.session.service<Isolation>();
  Isolation::Panel& set = isolation.of(panel);
  if (args.isQuery()) {
    if (args.has("state")) return mel::Value(set.isOn);
    if (args.has("viewObjects")) return toValue(namesIn(set));
    return fail("isolateSelect: query -state or -viewObjects.");
  }
  std::vector<dg::Node*> added;
  if (args.has("addDagObject")) {
    auto object = context.document.resolveAll({args.text("addDagObject")});
    if (!object) return failWith(std::move(object.error()));
    added = nodesOf(*object);
  }
  std::vector<dg::Node*> removed;
  if (args.has("removeDagObject")) {
    auto object = context.document.resolveAll({args.text("removeDagObject")});
    if (!object) return failWith(std::move(object.error()));
    removed = nodesOf(*object);
  }
  const bool turnsOn = args.boolean("state") && !set.isOn;
  if (args.has("state")) set.isOn = args.boolean("state");
  if (turnsOn || args.has("loadSelected")) set.nodes.clear();
  if (turnsOn || args.has("loadSelected") || args.has("addSelected"))
    for (dg::Node* node : nodesOf(context.document.selection())) added.push_back(node);
  if (args.has("removeSelected"))
    for (dg::Node* node : nodesOf(context.document.selection())) removed.push_back(node);
  for (dg::Node* node : added) isolation.add(panel, *node);
  for (dg::Node* node : removed) isolation.remove(panel, *node);
  return mel::Value();
}

}  // namespace

void registerIsolateSelect(CommandRegistry& registry) {
  Syntax syntax;
  syntax.flag("s", "state", {ArgType::Bool}).flag("ado", "addDagObject", {ArgType::String});
  syntax.flag("rdo", "removeDagObject", {ArgType::String}).flag("vo", "viewObjects");
  syntax.flag("ls", "loadSelected").flag("as", "addSelected").flag("rs", "removeSelected").flag("u", "update");
  defineQuery(registry, "isolateSelect", syntax.queryable().strings(1, 1), isolateSelect);
}

}  // namespace host::builtins
