// ungroup: puts a group's children in its place and takes the group away.
#include "host/builtins/common/command.h"
#include "host/edits/hierarchy.h"

namespace host::builtins {

namespace {

CommandResult ungroup(Context& context, const ParsedArgs& args) {
  scene::Document& document = context.document;
  auto list = args.resolveObjects(document);
  if (!list) return failWith(std::move(list.error()));
  if (list->isEmpty()) return fail("ungroup: name or select groups.");
  scene::SelectionList freed;
  for (const scene::SelectionItem& item : list->items()) {
    if (!item.isDag()) return fail("ungroup: '{}' is no group.", item.node->name());
    // A group within one that went before has another path now.
    const scene::DagPath group =
        (item.path.isValid() ? item.path : scene::firstPath(*item.node)).transform();
    const auto children = edits::ungroup(document, group, args.has("world"), args.has("relative"));
    if (!children) return failWith(children.error());
    for (const dg::NodePtr& child : *children) freed.add(scene::firstPath(*child));
  }
  document.setSelection(std::move(freed));
  return toValue(document.selection().names());
}

}  // namespace

void registerUngroup(CommandRegistry& registry) {
  define(
      registry, "ungroup",
      Syntax().flag("w", "world").flag("r", "relative").flag("a", "absolute").objects(0, -1, true),
      ungroup);
}

}  // namespace host::builtins
