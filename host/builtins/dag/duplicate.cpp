// duplicate and instance.
#include "host/edits/duplicate.h"

#include "host/builtins/common/command.h"
#include "host/workspace/edit_hooks.h"

namespace host::builtins {

namespace {

CommandResult duplicate(Context& context, const ParsedArgs& args) {
  auto list = args.resolveObjects(context.document);
  if (!list) return failWith(std::move(list.error()));
  if (list->isEmpty()) return fail("duplicate: name or select objects.");
  const edits::DuplicateHooks hooks = workspace::duplicateHooks(context.session);
  const auto copies = edits::duplicate(context.document, *std::move(list),
                                       {.name = args.text("name"),
                                        .renamesChildren = args.has("renameChildren"),
                                        .withoutChildren = args.has("parentOnly"),
                                        .sharesShapes = args.has("instanceLeaf"),
                                        .connectsInputs = args.has("inputConnections"),
                                        .copiesUpstream = args.has("upstreamNodes"),
                                        .hooks = &hooks});
  if (!copies) return failWith(copies.error());
  std::vector<std::string> names;
  for (const edits::Copy& copy : *copies) {
    names.push_back(nodeName(*copy.node));
    if (args.has("returnRootsOnly")) continue;
    for (const dg::NodePtr& below : copy.below) names.push_back(nodeName(*below));
  }
  return toValue(std::move(names));
}

CommandResult instance(Context& context, const ParsedArgs& args) {
  auto list = args.resolveObjects(context.document);
  if (!list) return failWith(std::move(list.error()));
  if (list->isEmpty()) return fail("instance: name or select objects.");
  const edits::DuplicateHooks hooks = workspace::duplicateHooks(context.session);
  const auto made =
      edits::instance(context.document, *std::move(list),
                      {.name = args.text("name"), .onlyShapes = args.has("leaf"), .hooks = &hooks});
  if (!made) return failWith(made.error());
  std::vector<std::string> names;
  for (const dg::NodePtr& node : *made) names.push_back(nodeName(*node));
  return toValue(std::move(names));
}

}  // namespace

void registerDuplicate(CommandRegistry& registry) {
  define(registry, "duplicate",
         Syntax()
             .flag("n", "name", {ArgType::String})
             .flag("rr", "returnRootsOnly")
             .flag("rc", "renameChildren")
             .flag("po", "parentOnly")
             .flag("ic", "inputConnections")
             .flag("un", "upstreamNodes")
             .flag("st", "smartTransform")
             .flag("ilf", "instanceLeaf")
             .objects(0, -1, true),
         duplicate);
  define(registry, "instance",
         Syntax()
             .flag("n", "name", {ArgType::String})
             .flag("lf", "leaf")
             .flag("st", "smartTransform")
             .objects(0, -1, true),
         instance);
}

}  // namespace host::builtins
