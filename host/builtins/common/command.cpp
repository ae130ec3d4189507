#include "host/builtins/common/command.h"

#include <unordered_set>

#include "host/base/assert.h"
#include "host/scene/name_index.h"
#include "host/scene/node_names.h"

namespace host::builtins {

void define(CommandRegistry& registry, std::string name, Syntax syntax,
            cmd::CommandFunction function, bool isUndoable) {
  const Result<void> added = registry.add(
      cmd::CommandSpec{std::move(name), std::move(syntax), std::move(function), isUndoable});
  HOST_ASSERT(added.has_value(), "give every built-in command a name of its own");
}

std::string nodeName(const dg::Node& node, bool fullPath) {
  return scene::nodeName(node, fullPath);
}

std::string attributeName(const dg::Plug& plug, bool shortNames) {
  return scene::attributeName(plug, shortNames);
}

std::string plugName(const dg::Plug& plug, bool shortAttribute) {
  return scene::plugName(plug, shortAttribute);
}

std::string shapeNameFor(const std::string& transformName) {
  return scene::shapeNameFor(transformName);
}

std::vector<dg::Node*> nodesOf(const scene::SelectionList& list) {
  std::vector<dg::Node*> nodes;
  std::unordered_set<dg::Node*> seen;
  for (const scene::SelectionItem& item : list.items())
    if (seen.insert(item.node.get()).second) nodes.push_back(item.node.get());
  return nodes;
}

}  // namespace host::builtins
