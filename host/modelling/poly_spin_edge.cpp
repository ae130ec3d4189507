#include "host/modelling/declare/declaration.h"
#include "host/ops/topology/spin_edges.h"

namespace host::modelling {

namespace {

Result<void> spin(HistoryContext& context) {
  std::vector<EdgeId> edges = context.edges();
  const int offset = context.integer("offset");
  constexpr int kMost = 1000000;
  if (offset < -kMost || offset > kMost) return fail("the offset must be {} at most", kMost);
  const auto spun =
      ops::spinEdges(context.mesh, edges, context.boolean("reverse") ? -offset : offset);
  if (!spun) return failWith(spun.error());
  context.makes(std::move(edges));
  return {};
}

}  // namespace

void polySpinEdge(Declarations& add) {
  add("polySpinEdge", "Turns edges within the two faces that they part.")
      .node("polySpinEdge", typeCode("PSPE"))
      .takes(ComponentType::Edge)
      .leaves(Leaves::Made)
      .parameter(integer("offset", "off", 1), "how many corners on")
      .parameter(boolean("reverse", "rev"), "the other way round")
      .trial("", "e")
      .trial("-off 2 -rev 1", "e")
      .operation(spin);
}

}  // namespace host::modelling
