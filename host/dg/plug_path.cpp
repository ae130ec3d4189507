#include <charconv>

#include "host/dg/graph.h"

namespace host::dg {
namespace {

/// The next name of a path, up to '.' or '['.
std::string_view takeName(std::string_view& rest) {
  const std::size_t end = std::min(rest.find_first_of(".["), rest.size());
  const std::string_view name = rest.substr(0, end);
  rest.remove_prefix(end);
  return name;
}

Result<Plug> takeIndices(Plug plug, std::string_view& rest) {
  while (!rest.empty() && rest.front() == '[') {
    const std::size_t close = rest.find(']');
    const std::string_view digits =
        rest.substr(1, close == std::string_view::npos ? close : close - 1);
    Index index = kNone;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), index);
    if (close == std::string_view::npos || error != std::errc{} ||
        end != digits.data() + digits.size() || index < 0)
      return fail(ErrorKind::BadArgument, "'[{}' is not the index of an element of '{}'", digits,
                  plug.name());
    if (!plug.attribute()->isArray || plug.isElement())
      return fail(ErrorKind::BadArgument, "Attribute '{}' on node '{}' is not an array",
                  plug.attributePath(), plug.node()->name());
    plug = plug.element(index);
    rest.remove_prefix(close + 1);
  }
  return plug;
}

/// Extends `plug` down to `target`, somewhere below it, leaving indices on the way missing.
Plug descend(const Plug& plug, const Attribute* target) {
  if (target == plug.attribute()) return plug;
  return descend(plug, target->parent).child(target);
}

const Attribute* findBelow(const Attribute& attribute, std::string_view name) {
  for (const AttributePtr& child : attribute.children)
    if (child->isNamed(name)) return child.get();
  for (const AttributePtr& child : attribute.children)
    if (const Attribute* found = child->find(name)) return found;
  return nullptr;
}

}  // namespace

Result<Plug> parsePlug(Node& node, std::string_view path) {
  std::string_view rest = path;
  const std::string_view first = takeName(rest);
  Plug plug(&node, node.findAttribute(first));
  if (!plug) plug = node.graph().findAlias(node, first);
  if (!plug) return fail(ErrorKind::NotFound, "No attribute '{}' on node '{}'", first, node.name());
  while (true) {
    auto indexed = takeIndices(plug, rest);
    if (!indexed) return indexed;
    plug = *indexed;
    if (rest.empty()) return plug;
    if (rest.front() != '.')
      return fail(ErrorKind::BadArgument, "'{}' in '{}.{}' is not part of an attribute name", rest,
                  node.name(), path);
    rest.remove_prefix(1);
    const std::string_view name = takeName(rest);
    const Attribute* below = findBelow(*plug.attribute(), name);
    if (!below)
      return fail(ErrorKind::NotFound, "Attribute '{}' on node '{}' has no child '{}'",
                  plug.attributePath(), node.name(), name);
    plug = descend(plug, below);
  }
}

}  // namespace host::dg
