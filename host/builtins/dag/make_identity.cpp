// makeIdentity: moves transforms into what is below them ("freeze"), or resets them.
#include "host/builtins/common/command.h"
#include "host/edits/freeze.h"

namespace host::builtins {

namespace {

CommandResult makeIdentity(Context& context, const ParsedArgs& args) {
  auto list = args.resolveObjects(context.document);
  if (!list) return failWith(std::move(list.error()));
  std::vector<dg::Node*> transforms;
  for (const scene::SelectionItem& item : list->items())
    if (item.isDag()) transforms.push_back(item.path.transform().node());
  if (transforms.empty()) return fail("makeIdentity: name or select transforms.");
  edits::TransformParts parts;
  if (args.has("translate") || args.has("rotate") || args.has("scale"))
    parts = {args.boolean("translate"), args.boolean("rotate"), args.boolean("scale")};
  HOST_TRY(args.boolean("apply") ? edits::freeze(context.document, transforms, parts)
                                 : edits::resetTransforms(context.document, transforms, parts));
  return mel::Value();
}

}  // namespace

void registerMakeIdentity(CommandRegistry& registry) {
  define(registry, "makeIdentity",
         Syntax()
             .flag("a", "apply", {ArgType::Bool})
             .flag("t", "translate", {ArgType::Bool})
             .flag("r", "rotate", {ArgType::Bool})
             .flag("s", "scale", {ArgType::Bool})
             .flag("n", "normal", {ArgType::Int})
             .flag("pn", "preserveNormals", {ArgType::Bool})
             .flag("jo", "jointOrient", {ArgType::Bool})
             .objects(0, -1, true),
         makeIdentity);
}

}  // namespace host::builtins
