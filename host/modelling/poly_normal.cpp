#include "host/modelling/declare/declaration.h"
#include "host/ops/topology/normals.h"

namespace host::modelling {

namespace {

Result<void> change(HistoryContext& context) {
  const auto mode = context.choice("normalMode", 5);
  if (!mode) return failWith(mode.error());
  const auto done =
      ops::changeNormals(context.mesh, context.faces(), static_cast<ops::NormalMode>(*mode));
  return done ? Result<void>() : failWith(done.error());
}

}  // namespace

void polyNormal(Declarations& add) {
  add("polyNormal", "Turns faces over, or makes them agree.")
      .node("polyNormal", typeCode("PNRM"))
      .takes(ComponentType::Face)
      .parameter(
          choice("normalMode", "nm",
                 {"Reverse", "Unlock", "Conform", "Reverse and extract", "Reverse and propagate"}),
          "0 reverse, 1 unlock, 2 conform, 3 reverse and extract, 4 reverse and propagate")
      .parameter(boolean("userNormalMode", "unm", true),
                 "of locked normals; they turn with their faces")
      .recordedOnly()
      .trial("-nm 0", "f")
      .trial("-nm 2", "f")
      .trial("-nm 3", "f")
      .operation(change);
}

}  // namespace host::modelling
