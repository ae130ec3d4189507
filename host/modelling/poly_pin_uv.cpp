#include "host/modelling/declare/declaration.h"

namespace host::modelling {

/// A node whose command stands with the UV commands: it makes no history unless it is asked to.
/// The mesh passes through; what reads pins (host/nodes/uv_pins.h) finds the node upstream. That
/// `pin` goes by UV ids is this host's choice: how the original numbers it is not known here.
void polyPinUv(Declarations& add) {
  add("", "Pins UVs, so that unfolding and laying out leave them where they are.")
      .node("polyPinUV", typeCode("PPUV"), "polyModifierUV")
      .takes(ComponentType::Uv)
      .parameter(choice("operation", "op", {"Pin", "Remove", "RemoveAll"}),
                 "0 pins, 1 frees the UVs that have an element, 2 frees all")
      .parameter(array(single("pin", "pn", -1)), "weights by UV, 0 to 1; -1 changes nothing")
      .operation([](HistoryContext& context) {
        const auto operation = context.choice("operation", 3);
        return operation ? Result<void>() : failWith(operation.error());
      });
}

}  // namespace host::modelling
