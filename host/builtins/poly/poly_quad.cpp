#include "host/builtins/poly/modelling_command.h"

namespace host::builtins {

void registerPolyQuad(CommandRegistry& registry) {
  defineModelling(registry,
                  {.command = "polyQuad",
                   .nodeType = "polyQuad",
                   .works = scene::ComponentType::Face,
                   .leaves = Leaves::Made},
                  {{"a", "angle", {ArgType::Angle}},
                   {"kgb", "keepGroupBorder", {ArgType::Bool}},
                   {"ktb", "keepTextureBorders", {ArgType::Bool}},
                   {"khe", "keepHardEdges", {ArgType::Bool}},
                   worldSpaceFlag()});
}

}  // namespace host::builtins
