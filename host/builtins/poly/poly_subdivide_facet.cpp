#include "host/builtins/poly/modelling_command.h"

namespace host::builtins {

void registerPolySubdivideFacet(CommandRegistry& registry) {
  defineModelling(registry,
                  {.command = "polySubdivideFacet",
                   .nodeType = "polySubdFace",
                   .works = scene::ComponentType::Face,
                   .leaves = Leaves::Made},
                  {{"dv", "divisions", {ArgType::Int}}, {"m", "mode", {ArgType::Int}}});
}

}  // namespace host::builtins
