#include "host/builtins/poly/modelling_command.h"

namespace host::builtins {

void registerPolyCloseBorder(CommandRegistry& registry) {
  defineModelling(registry,
                  {.command = "polyCloseBorder",
                   .nodeType = "polyCloseBorder",
                   .works = scene::ComponentType::Edge,
                   .leaves = Leaves::Made},
                  {});
}

}  // namespace host::builtins
