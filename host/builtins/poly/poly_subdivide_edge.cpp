#include "host/builtins/poly/modelling_command.h"

namespace host::builtins {

void registerPolySubdivideEdge(CommandRegistry& registry) {
  defineModelling(
      registry,
      {.command = "polySubdivideEdge",
       .nodeType = "polySubdEdge",
       .works = scene::ComponentType::Edge,
       .leaves = Leaves::Made},
      {{"dv", "divisions", {ArgType::Int}}, {"s", "size", {ArgType::Distance}}, worldSpaceFlag()});
}

}  // namespace host::builtins
