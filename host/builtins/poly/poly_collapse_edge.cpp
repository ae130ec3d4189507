#include "host/builtins/poly/modelling_command.h"

namespace host::builtins {

namespace {

bool namesFaces(const scene::SelectionList& list) {
  for (const scene::SelectionItem& item : list.items())
    if (item.component(scene::ComponentType::Face) && !item.component(scene::ComponentType::Edge))
      return true;
  return false;
}

CommandResult polyCollapseEdge(Context& context, const ParsedArgs& args) {
  if (!args.isCreate()) return editOrQuery(context, args, "polyCollapseEdge", {});
  auto list = args.resolveObjects(context.document);
  if (!list) return failWith(std::move(list.error()));
  // Faces collapse as a whole, each connected patch of them to one point.
  const bool isFaces = namesFaces(*list);
  HistoryCommand command{.command = "polyCollapseEdge",
                         .nodeType = isFaces ? "polyCollapseF" : "polyCollapseEdge",
                         .works = isFaces ? scene::ComponentType::Face : scene::ComponentType::Edge,
                         .leaves = Leaves::Nothing,
                         .setUp = [](dg::Node&, const MeshItem&, const std::vector<Index>&) {
                           return Result<void>();
                         }};
  auto names = runHistoryCommand(context, args, command);
  if (!names) return failWith(std::move(names.error()));
  return toValue(std::move(*names));
}

}  // namespace

void registerPolyCollapseEdge(CommandRegistry& registry) {
  Syntax syntax;
  addFlags(syntax, {}).editable().queryable().objects(0, -1, true);
  define(registry, "polyCollapseEdge", syntax, polyCollapseEdge);
}

}  // namespace host::builtins
