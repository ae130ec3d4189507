#include "host/builtins/poly/modelling_command.h"

namespace host::builtins {

void registerPolyDelEdge(CommandRegistry& registry) {
  defineModelling(registry,
                  {.command = "polyDelEdge",
                   .nodeType = "polyDelEdge",
                   .works = scene::ComponentType::Edge,
                   .leaves = Leaves::Nothing},
                  {{"cv", "cleanVertices", {ArgType::Bool}}});
}

}  // namespace host::builtins
