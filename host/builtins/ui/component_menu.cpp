// doMenuComponentSelection and changeSelectMode: what the menus for component modes call.
#include "host/builtins/common/command.h"
#include "host/edits/select.h"
#include "host/workspace/edit_hooks.h"

namespace host::builtins {

namespace {

struct Mask {
  const char* name;
  workspace::SelectionModes::Kinds kinds;
};
const std::vector<Mask>& masks() {
  static const std::vector<Mask> table = {
      {"vertex", {"vertex"}},       {"edge", {"edge"}},
      {"facet", {"facet"}},         {"puv", {"polymeshUV"}},
      {"pvf", {"polymeshVtxFace"}}, {"meshComponents", {"vertex", "edge", "facet"}}};
  return table;
}

CommandResult doMenuComponentSelection(Context& context, const ParsedArgs& args) {
  const std::vector<std::string> words = args.objectNames();
  const Mask* mask = nullptr;
  for (const Mask& each : masks())
    if (words[1] == each.name) mask = &each;
  if (!mask)
    return fail(
        "doMenuComponentSelection: '{}' is no kind of component: use vertex, edge, facet, puv or "
        "pvf.",
        words[1]);
  // An object that is picked through its components: what is hilited are objects.
  const std::string object = words[0].substr(0, words[0].find('.'));
  if (!object.empty()) {
    const auto found = context.document.resolve(object);
    if (!found) return failWith(found.error());
    edits::hilite(context.document, *found);
  }
  workspace::pickComponents(context.session, mask->kinds);
  return mel::Value();
}

CommandResult changeSelectMode(Context& context, const ParsedArgs& args) {
  workspace::SelectionModes modes = workspace::workspaceOf(context.session).selectionModes;
  if (args.has("component")) modes.isComponentMode = true;
  if (args.has("object")) modes.isComponentMode = false;
  workspace::setSelectionModes(context.session, std::move(modes));
  return mel::Value();
}

}  // namespace

void registerComponentMenu(CommandRegistry& registry) {
  define(registry, "doMenuComponentSelection", Syntax().strings(2, 2), doMenuComponentSelection);
  defineQuery(registry, "changeSelectMode",
              Syntax().flag("co", "component").flag("o", "object").flag("h", "hierarchical"),
              changeSelectMode);
}

}  // namespace host::builtins
