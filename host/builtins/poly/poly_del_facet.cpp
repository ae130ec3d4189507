#include "host/builtins/poly/modelling_command.h"

namespace host::builtins {

void registerPolyDelFacet(CommandRegistry& registry) {
  defineModelling(registry,
                  {.command = "polyDelFacet",
                   .nodeType = "polyDelFacet",
                   .works = scene::ComponentType::Face,
                   .leaves = Leaves::Nothing},
                  {});
}

}  // namespace host::builtins
