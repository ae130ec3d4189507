#include "host/builtins/common/command.h"
#include "host/workspace/workspace.h"

namespace host::builtins {

namespace {

using workspace::View;

std::vector<std::string> isolatedNames(const View& view) {
  std::vector<std::string> names;
  for (const dg::Node* node : workspace::isolatedNodes(view)) names.push_back(nodeName(*node));
  return names;
}

/// The flags may come in any order with the panel as the last word.
CommandResult isolateSelect(Context& context, const ParsedArgs& args) {
  const std::string panel = args.firstObject();
  View* const view = workspace::workspaceOf(context.session).views.find(panel);
  if (!view) return fail(ErrorKind::NotFound, "isolateSelect: Object '{}' not found.", panel);
  if (args.isQuery()) {
    if (args.has("state")) return mel::Value(view->isIsolated);
    if (args.has("viewObjects")) return toValue(isolatedNames(*view));
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
  const bool turnsOn = args.boolean("state") && !view->isIsolated;
  if (args.has("state")) view->isIsolated = args.boolean("state");
  if (turnsOn || args.has("loadSelected")) view->isolated.clear();
  if (turnsOn || args.has("loadSelected") || args.has("addSelected"))
    for (dg::Node* node : nodesOf(context.document.selection())) added.push_back(node);
  if (args.has("removeSelected"))
    for (dg::Node* node : nodesOf(context.document.selection())) removed.push_back(node);
  for (dg::Node* node : added) workspace::addToIsolated(*view, *node);
  for (dg::Node* node : removed) workspace::removeFromIsolated(*view, *node);
  return mel::Value();
}

}  // namespace

void registerIsolateSelect(CommandRegistry& registry) {
  Syntax syntax;
  syntax.flag("s", "state", {ArgType::Bool}).flag("ado", "addDagObject", {ArgType::String});
  syntax.flag("rdo", "removeDagObject", {ArgType::String}).flag("vo", "viewObjects");
  syntax.flag("ls", "loadSelected")
      .flag("as", "addSelected")
      .flag("rs", "removeSelected")
      .flag("u", "update");
  defineQuery(registry, "isolateSelect", syntax.queryable().strings(1, 1), isolateSelect);
}

}  // namespace host::builtins
