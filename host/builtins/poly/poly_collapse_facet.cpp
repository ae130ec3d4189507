#include "host/builtins/poly/modelling_command.h"

namespace host::builtins {

void registerPolyCollapseFacet(CommandRegistry& registry) {
  defineModelling(registry,
                  {.command = "polyCollapseFacet",
                   .nodeType = "polyCollapseF",
                   .works = scene::ComponentType::Face,
                   .leaves = Leaves::Nothing},
                  {});
}

}  // namespace host::builtins
