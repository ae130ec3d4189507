#include <algorithm>

#include "host/base/messages.h"
#include "host/builtins/common/command.h"
#include "host/edits/hierarchy.h"

namespace host::builtins {

namespace {

using scene::DagPath;

Result<std::vector<DagPath>> pathsOf(Context& context, const ParsedArgs& args) {
  auto list = args.resolveObjects(context.document);
  if (!list) return failWith(std::move(list.error()));
  if (list->isEmpty()) list = context.document.selection();
  std::vector<DagPath> paths;
  for (const scene::SelectionItem& item : list->items()) {
    if (!item.isDag())
      return fail(ErrorKind::BadArgument, "'{}' is not in the hierarchy of transforms and shapes",
                  item.node->name());
    paths.push_back(item.isObject() ? item.path : item.path.transform());
  }
  return paths;
}

CommandResult parent(Context& context, const ParsedArgs& args) {
  scene::Document& document = context.document;
  auto paths = pathsOf(context, args);
  if (!paths) return failWith(std::move(paths.error()));
  const bool toWorld = args.has("world");
  if (paths->empty()) return fail("parent: name or select objects.");
  if (args.has("removeObject")) {
    for (const DagPath& path : *paths) HOST_TRY(document.removeInstance(path));
    return mel::Value();
  }
  scene::Node* newParent = nullptr;
  if (!toWorld) {
    if (paths->size() < 2)
      return fail("parent: the last object named is the new parent, so two are needed.");
    newParent = paths->back().node();
    paths->pop_back();
    if (!scene::isTransform(*newParent))
      return fail("'{}' can't have children.", newParent->name());
  }
  std::vector<std::string> names;
  for (const DagPath& path : *paths) {
    scene::Node& node = *path.node();
    if (scene::isShape(node) && !args.has("shape"))
      return fail("parent: '{}' is a shape: use -shape to move it to another transform.",
                  node.name());
    if (args.has("addObject")) {
      HOST_TRY(document.addInstance(node, newParent));
    } else {
      const bool isThere = path.parent().node() == newParent;
      if (isThere) {
        postMessage(MessageKind::Warning,
                    fmt::format("Object, '{}', skipped. It is already a child of the parent, '{}'.",
                                nodeName(node), newParent ? newParent->name() : "world"));
        continue;
      }
      HOST_TRY(edits::reparent(document, path, newParent, args.has("relative")));
    }
    names.push_back(nodeName(node));
  }
  return toValue(std::move(names));
}

CommandResult group(Context& context, const ParsedArgs& args) {
  scene::Document& document = context.document;
  std::vector<DagPath> paths;
  if (!args.has("empty")) {
    auto found = pathsOf(context, args);
    if (!found) return failWith(std::move(found.error()));
    paths = std::move(*found);
    if (paths.empty()) return fail("group: name or select objects, or use -empty.");
  }
  edits::GroupOptions options{.name = args.text("name", "group#"),
                              .parent = args.has("world") ? nullptr : edits::commonParent(paths),
                              .isRelative = args.has("relative")};
  if (args.has("parent")) {
    auto found = document.node(args.text("parent"));
    if (!found) return failWith(std::move(found.error()));
    options.parent = *found;
  }
  const auto made = edits::group(document, paths, options);
  if (!made) return failWith(made.error());
  return mel::Value(nodeName(**made));
}

CommandResult reorder(Context& context, const ParsedArgs& args) {
  scene::Document& document = context.document;
  auto paths = pathsOf(context, args);
  if (!paths) return failWith(std::move(paths.error()));
  for (const DagPath& path : *paths) {
    scene::Node* above = path.parent().node();
    const auto& siblings = above ? scene::dagLinks(*above).children : document.worldChildren();
    const auto at = std::find(siblings.begin(), siblings.end(), path.node());
    const int last = static_cast<int>(siblings.size()) - 1;
    int position = static_cast<int>(at - siblings.begin());
    if (args.has("front")) position = 0;
    if (args.has("back")) position = last;
    if (args.has("relative"))
      position = ((position + args.integer("relative")) % (last + 1) + last + 1) % (last + 1);
    HOST_TRY(document.reorder(*path.node(), above, position));
  }
  std::vector<std::string> names;
  for (const DagPath& path : *paths) names.push_back(path.partialName());
  return toValue(std::move(names));
}

}  // namespace

void registerParent(CommandRegistry& registry) {
  define(registry, "parent",
         Syntax()
             .flag("w", "world")
             .flag("r", "relative")
             .flag("a", "absolute")
             .flag("s", "shape")
             .flag("add", "addObject")
             .flag("rm", "removeObject")
             .flag("nc", "noConnections")
             .flag("nis", "noInvScale")
             .objects(),
         parent);
  define(registry, "group",
         Syntax()
             .flag("n", "name", {ArgType::String})
             .flag("em", "empty")
             .flag("p", "parent", {ArgType::String})
             .flag("w", "world")
             .flag("r", "relative")
             .flag("a", "absolute")
             .flag("uag", "useAsGroup", {ArgType::String})
             .objects(),
         group);
  define(registry, "reorder",
         Syntax()
             .flag("f", "front")
             .flag("b", "back")
             .flag("r", "relative", {ArgType::Int})
             .objects(0, -1, true),
         reorder);
}

}  // namespace host::builtins
