#include "host/builtins/common/command.h"

#include <unordered_set>

#include "host/base/assert.h"

namespace host::builtins {

void define(CommandRegistry& registry, std::string name, Syntax syntax,
            cmd::CommandFunction function, bool isUndoable) {
  const Result<void> added = registry.add(
      cmd::CommandSpec{std::move(name), std::move(syntax), std::move(function), isUndoable});
  HOST_ASSERT(added.has_value(), "give every built-in command a name of its own");
}

std::string nodeName(const dg::Node& node, bool fullPath) {
  if (!scene::isDagNode(node)) return node.name();
  const scene::DagPath path = scene::firstPath(node);
  return fullPath ? path.fullName() : path.partialName();
}

std::string attributeName(const dg::Plug& plug, bool shortNames) {
  const std::string path = plug.attributePath(shortNames);
  const std::size_t bracket = path.find('[');
  const std::size_t dot = bracket == std::string::npos ? path.rfind('.') : path.rfind('.', bracket);
  return dot == std::string::npos ? path : path.substr(dot + 1);
}

std::string plugName(const dg::Plug& plug, bool shortAttribute) {
  return nodeName(*plug.node()) + "." + attributeName(plug, shortAttribute);
}

std::string shapeNameFor(const std::string& transformName) {
  std::size_t digits = transformName.size();
  while (digits > 0 && transformName[digits - 1] >= '0' && transformName[digits - 1] <= '9')
    --digits;
  return transformName.substr(0, digits) + "Shape" + transformName.substr(digits);
}

std::vector<dg::Node*> nodesOf(const scene::SelectionList& list) {
  std::vector<dg::Node*> nodes;
  std::unordered_set<dg::Node*> seen;
  for (const scene::SelectionItem& item : list.items())
    if (seen.insert(item.node.get()).second) nodes.push_back(item.node.get());
  return nodes;
}

}  // namespace host::builtins
