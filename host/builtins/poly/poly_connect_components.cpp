#include "host/builtins/poly/modelling_command.h"

namespace host::builtins {

void registerPolyConnectComponents(CommandRegistry& registry) {
  defineModelling(registry,
                  {.command = "polyConnectComponents",
                   .nodeType = "polyConnectComponents",
                   .works = scene::ComponentType::Edge,
                   .alsoTakes = {scene::ComponentType::Vertex},
                   .leaves = Leaves::Made},
                  {{"ief", "insertWithEdgeFlow", {ArgType::Bool}},
                   {"aef", "adjustEdgeFlow", {ArgType::Double}}});
}

}  // namespace host::builtins
