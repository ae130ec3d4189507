// ungroup: puts a group's children in its place and takes the group away.
#include "host/builtins/common/command.h"
#include "host/builtins/dag/hierarchy.h"

namespace host::builtins {

namespace {

CommandResult ungroup(Context& context, const ParsedArgs& args) {
  scene::Document& document = context.document;
  auto list = args.resolveObjects(document);
  if (!list) return failWith(std::move(list.error()));
  if (list->isEmpty()) return fail("ungroup: name or select groups.");
  std::vector<scene::DagPath> groups;
  for (const scene::SelectionItem& item : list->items()) {
    const scene::DagPath path = item.isDag() ? item.path.transform() : scene::DagPath();
    if (path.isWorld() || !path.shapes(true).empty() ||
        scene::dagLinks(*path.node()).children.empty())
      return fail("ungroup: '{}' is no group.", item.node->name());
    groups.push_back(path);
  }
  scene::SelectionList freed;
  for (const scene::DagPath& group : groups) {
    dg::Node* above = args.has("world") ? nullptr : group.parent().node();
    const std::vector<dg::Node*> children = scene::dagLinks(*group.node()).children;
    for (dg::Node* child : children) {
      HOST_TRY(reparentObject(document, group.child(child), above, args.has("relative")));
      freed.add(scene::firstPath(*child));
    }
    HOST_TRY(document.deleteNodes({group.node()}));
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
