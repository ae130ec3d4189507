#include "host/edits/select.h"

#include <algorithm>

#include "host/builtins/common/command.h"
#include "host/builtins/select/selection_order.h"
#include "host/nodes/sets.h"
#include "host/scene/dag_paths.h"
#include "host/workspace/workspace.h"

namespace host::builtins {

namespace {

using scene::SelectionItem;
using scene::SelectionList;

void addHierarchy(SelectionList& list, const scene::DagPath& path, scene::PlaceBudget& budget) {
  scene::PathWalk walk(path, scene::PathWalk::Children::InOrder, &budget);
  while (!walk.isDone()) {
    if (walk.depth() > 0 && !scene::isTransform(walk.node())) {
      walk.skipBelow();
      continue;
    }
    list.add(walk.path());
    walk.next();
  }
}

bool isVisible(scene::Document& document, const scene::DagPath& path) {
  for (scene::Node* node : path.upwards()) {
    const dg::Plug plug = node->plug("visibility");
    if (!plug) continue;
    auto value = document.graph().get(plug);
    const auto* on = value ? std::get_if<std::int64_t>(&*value) : nullptr;
    if (on && *on == 0) return false;
  }
  return true;
}

/// What -all means: the top-level transforms, without the cameras of a new scene.
SelectionList everything(scene::Document& document, bool dagObjects, bool dependencyNodes) {
  SelectionList list;
  if (dependencyNodes) {
    for (const dg::NodePtr& node : document.graph().nodes()) list.add(node);
    return list;
  }
  for (scene::Node* node : document.worldChildren())
    if (!node->isDefault()) list.add(scene::firstPath(*node));
  if (dagObjects) return list;
  for (const dg::NodePtr& node : document.graph().nodes())
    if (!node->isDefault() && node->type().isA("objectSet")) list.add(node);
  return list;
}

Result<SelectionList> wanted(Context& context, const ParsedArgs& args) {
  scene::Document& document = context.document;
  const bool all = args.has("all"), dagObjects = args.has("allDagObjects"),
             everyNode = args.has("allDependencyNodes");
  if (all || dagObjects || everyNode) return everything(document, dagObjects, everyNode);
  if (!args.hasObjects() && (args.has("hierarchy") || args.has("visible")))
    return document.selection();
  auto list = args.resolveObjects(document);
  if (!list) return list;
  const auto hasSet = [](const SelectionItem& item) {
    return item.isObject() && nodes::isSet(*item.node);
  };
  if (args.has("noExpand") || std::none_of(list->items().begin(), list->items().end(), hasSet))
    return list;
  return edits::expandSets(*list);
}

/// The words one by one: components named in one call are ordered as they are named.
void announceOrder(Context& context, const ParsedArgs& args) {
  auto& order = workspace::workspaceOf(context.session).kept<SelectionOrder>();
  if (!order.isTracking()) return;
  // A new selection forgets where things stood in the one before.
  const bool adds = args.has("add") || args.has("toggle") || args.has("deselect");
  if (!adds) {
    order.track(nullptr);
    order.track(&context.document);
    context.document.setSelection({});
  }
  std::vector<SelectionList> words;
  for (const std::string& name : args.objectNames())
    if (auto word = context.document.resolve(name)) words.push_back(*std::move(word));
  order.announce(words);
}

CommandResult select(Context& context, const ParsedArgs& args) {
  scene::Document& document = context.document;
  // -deselect without names is about all that is selected.
  if ((args.has("clear") || args.has("deselect")) && !args.hasObjects()) {
    document.setSelection({});
    return mel::Value();
  }
  auto list = wanted(context, args);
  if (!list) return failWith(std::move(list.error()));
  if (args.has("hierarchy")) {
    SelectionList deep;
    scene::PlaceBudget budget;
    for (const SelectionItem& item : list->items()) {
      if (item.isDag() && item.isObject())
        addHierarchy(deep, item.path, budget);
      else
        deep.merge(item);
    }
    if (budget.leftOut()) postMessage(MessageKind::Warning, "select: " + budget.warning());
    *list = std::move(deep);
  }
  if (args.has("visible")) {
    SelectionList shown;
    for (const SelectionItem& item : list->items())
      if (!item.isDag() || isVisible(document, item.path)) shown.merge(item);
    *list = std::move(shown);
  }
  using edits::SelectHow;
  announceOrder(context, args);
  edits::select(document, *std::move(list),
                args.has("add")        ? SelectHow::Add
                : args.has("toggle")   ? SelectHow::Toggle
                : args.has("deselect") ? SelectHow::Remove
                : args.has("addFirst") ? SelectHow::AddFirst
                                       : SelectHow::Replace);
  return mel::Value();
}

CommandResult hilite(Context& context, const ParsedArgs& args) {
  scene::Document& document = context.document;
  auto list = args.resolveObjects(document);
  if (!list) return failWith(std::move(list.error()));
  using edits::SelectHow;
  edits::hilite(document, *list,
                args.has("toggle")     ? SelectHow::Toggle
                : args.has("unHilite") ? SelectHow::Remove
                : args.has("replace")  ? SelectHow::Replace
                                       : SelectHow::Add);
  return mel::Value();
}

}  // namespace

void registerSelect(CommandRegistry& registry) {
  define(registry, "select",
         Syntax()
             .flag("add", "add")
             .flag("af", "addFirst")
             .flag("d", "deselect")
             .flag("tgl", "toggle")
             .flag("r", "replace")
             .flag("cl", "clear")
             .flag("all", "all")
             .flag("ado", "allDagObjects")
             .flag("adn", "allDependencyNodes")
             .flag("hi", "hierarchy")
             .flag("ne", "noExpand")
             .flag("vis", "visible")
             .objects(),
         select);
  define(registry, "hilite",
         Syntax()
             .flag("r", "replace")
             .flag("tgl", "toggle")
             .flag("u", "unHilite")
             .objects(0, -1, true),
         hilite);
}

}  // namespace host::builtins
