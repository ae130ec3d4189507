// pickWalk: from the selected objects to their parents, children or neighbours.
#include <algorithm>

#include "host/builtins/common/command.h"

namespace host::builtins {

namespace {

using scene::DagPath;

/// The sibling `step` places on, going round.
DagPath sibling(scene::Document& document, const DagPath& path, int step) {
  const DagPath above = path.parent();
  const auto& siblings =
      above.isWorld() ? document.worldChildren() : scene::dagLinks(*above.node()).children;
  const auto at = std::find(siblings.begin(), siblings.end(), path.node());
  if (at == siblings.end()) return path;
  const auto count = static_cast<std::ptrdiff_t>(siblings.size());
  return above.child(
      siblings[static_cast<std::size_t>((at - siblings.begin() + step + count) % count)]);
}

CommandResult pickWalk(Context& context, const ParsedArgs& args) {
  scene::Document& document = context.document;
  const std::string direction = args.text("direction", "right");
  auto list = args.resolveObjects(document);
  if (!list) return failWith(std::move(list.error()));
  scene::SelectionList walked;
  for (const scene::SelectionItem& item : list->items()) {
    if (!item.isDag()) continue;
    const DagPath& path = item.path;
    if (direction == "up") {
      walked.add(path.parent().isWorld() ? path : path.parent());
    } else if (direction == "down") {
      const auto& children = scene::dagLinks(*path.node()).children;
      walked.add(children.empty() ? path : path.child(children.front()));
    } else if (direction == "left" || direction == "right") {
      walked.add(sibling(document, path, direction == "left" ? -1 : 1));
    } else {
      return fail("pickWalk: '{}' is no direction: use up, down, left or right.", direction);
    }
  }
  if (!walked.isEmpty()) document.setSelection(std::move(walked));
  return toValue(document.selection().names());
}

}  // namespace

void registerPickWalk(CommandRegistry& registry) {
  define(registry, "pickWalk",
         Syntax()
             .flag("d", "direction", {ArgType::String})
             .flag("typ", "type", {ArgType::String})
             .objects(0, -1, true),
         pickWalk);
}

}  // namespace host::builtins
