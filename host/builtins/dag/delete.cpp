#include "host/builtins/common/command.h"
#include "host/edits/remove.h"

namespace host::builtins {

namespace {

CommandResult deleteObjects(Context& context, const ParsedArgs& args) {
  scene::Document& document = context.document;
  auto list = args.resolveObjects(document);
  if (!list) return failWith(std::move(list.error()));
  if (args.has("constructionHistory")) {
    HOST_TRY(edits::removeHistory(document,
                                  args.has("all") ? edits::topObjects(document, true) : *list));
    return mel::Value();
  }
  // These name what drives objects, never the objects; there are no such drivers here to delete.
  if (args.has("channels") || args.has("expressions") || args.has("constraints"))
    return mel::Value();
  if (args.has("all")) *list = edits::topObjects(document, false);
  HOST_TRY(edits::remove(document, *list));
  return mel::Value();
}

/// What the Delete key does, after which nothing stays selected.
CommandResult deleteSelected(Context& context, const ParsedArgs&) {
  scene::Document& document = context.document;
  if (document.selection().isEmpty()) return mel::Value();
  HOST_TRY(edits::remove(document, document.selection()));
  document.setSelection({});
  return mel::Value();
}

}  // namespace

void registerDelete(CommandRegistry& registry) {
  define(registry, "delete",
         Syntax()
             .flag("ch", "constructionHistory")
             .flag("all", "all")
             .flag("hi", "hierarchy", {ArgType::String})
             .flag("s", "shape")
             .flag("c", "channels")
             .flag("e", "expressions")
             .flag("cn", "constraints")
             .objects(0, -1, true),
         deleteObjects);
  define(registry, "Delete", Syntax(), deleteSelected);
}

}  // namespace host::builtins
