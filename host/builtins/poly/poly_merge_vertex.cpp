#include "host/builtins/poly/modelling_command.h"

namespace host::builtins {

void registerPolyMergeVertex(CommandRegistry& registry) {
  defineModelling(registry,
                  {.command = "polyMergeVertex",
                   .nodeType = "polyMergeVert",
                   .works = scene::ComponentType::Vertex,
                   .leaves = Leaves::Made},
                  {{"d", "distance", {ArgType::Distance}},
                   {"am", "alwaysMergeTwoVertices", {ArgType::Bool}},
                   worldSpaceFlag()});
}

}  // namespace host::builtins
