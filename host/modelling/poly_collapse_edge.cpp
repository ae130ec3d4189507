#include "host/modelling/declare/history_command.h"
#include "host/ops/topology/collapse.h"

namespace host::modelling {

namespace {

Result<void> collapse(HistoryContext& context) {
  const auto done = ops::collapseEdges(context.mesh, context.edges());
  return done ? Result<void>() : failWith(done.error());
}

bool namesFaces(const scene::SelectionList& list) {
  for (const scene::SelectionItem& item : list.items())
    if (item.component(ComponentType::Face) && !item.component(ComponentType::Edge)) return true;
  return false;
}

/// Faces collapse as a whole, each connected patch of them to one point.
CommandResult create(Context& context, const ParsedArgs& args, const Declaration& declaration) {
  auto list = args.resolveObjects(context.document);
  if (!list) return failWith(std::move(list.error()));
  const Declaration& what =
      namesFaces(*list) ? *declarations().ofCommand("polyCollapseFacet") : declaration;
  auto names = runHistoryCommand(context, args, what, *list);
  if (!names) return failWith(std::move(names.error()));
  return mel::Value(std::move(*names));
}

}  // namespace

void polyCollapseEdge(Declarations& add) {
  add("polyCollapseEdge",
      "Brings the ends of edges together; of faces, each connected patch to one point.")
      .node("polyCollapseEdge", typeCode("PCOE"))
      .takes(ComponentType::Edge)
      .leaves(Leaves::Nothing)
      .creates(create)
      .trial("", "e")
      .trial("", "f")
      .operation(collapse);
}

}  // namespace host::modelling
