// doMenuComponentSelection and changeSelectMode: what the menus for component modes call.
#include "host/builtins/common/command.h"

namespace host::builtins {

namespace {

struct Mask {
  const char *name, *flags;
};
constexpr Mask kMasks[] = {
    {"vertex", "-vertex 1"},       {"edge", "-edge 1"},
    {"facet", "-facet 1"},         {"puv", "-polymeshUV 1"},
    {"pvf", "-polymeshVtxFace 1"}, {"meshComponents", "-vertex 1 -edge 1 -facet 1"},
};

/// Runs inside the command, so that hilite and selection belong to its step of undo.
Result<void> runMel(Context& context, const std::string& text) {
  auto done = context.session.interpreter().execute(text);
  if (!done) return failWith(std::move(done.error()));
  return {};
}

CommandResult doMenuComponentSelection(Context& context, const ParsedArgs& args) {
  const std::vector<std::string> words = args.objectNames();
  const Mask* mask = nullptr;
  for (const Mask& each : kMasks)
    if (words[1] == each.name) mask = &each;
  if (!mask)
    return fail(
        "doMenuComponentSelection: '{}' is no kind of component: use vertex, edge, facet, puv or "
        "pvf.",
        words[1]);
  // An object that is picked through its components: what is hilited are objects.
  const std::string object = words[0].substr(0, words[0].find('.'));
  if (!object.empty()) HOST_TRY(runMel(context, "hilite -r \"" + object + "\""));
  HOST_TRY(runMel(
      context,
      "selectMode -component; selectType -allComponents 0; selectType -ocm -allComponents 0"));
  HOST_TRY(runMel(context,
                  std::string("selectType ") + mask->flags + "; selectType -ocm " + mask->flags));
  return mel::Value();
}

CommandResult changeSelectMode(Context& context, const ParsedArgs& args) {
  for (const char* mode : {"component", "object", "hierarchical"})
    if (args.has(mode)) HOST_TRY(runMel(context, std::string("selectMode -") + mode));
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
