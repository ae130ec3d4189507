#include "host/builtins/poly/modelling_command.h"

namespace host::builtins {

void registerPolyBridgeEdge(CommandRegistry& registry) {
  constexpr ArgType kCount = ArgType::Int;
  defineModelling(registry,
                  {.command = "polyBridgeEdge",
                   .nodeType = "polyBridgeEdge",
                   .works = scene::ComponentType::Edge,
                   .leaves = Leaves::Made},
                  {{"dv", "divisions", {kCount}},
                   {"twt", "twist", {ArgType::Angle}},
                   {"tp", "taper", {ArgType::Double}},
                   {"bo", "bridgeOffset", {kCount}},
                   {"ctp", "curveType", {kCount}},
                   {"sma", "smoothingAngle", {ArgType::Angle}},
                   {"sv1", "startVert1", {kCount}},
                   {"sv2", "startVert2", {kCount}},
                   {"ev1", "endVert1", {kCount}},
                   {"ev2", "endVert2", {kCount}},
                   {"d", "direction", {ArgType::Bool}},
                   {"sd", "sourceDirection", {kCount}},
                   {"td", "targetDirection", {kCount}},
                   worldSpaceFlag()});
}

}  // namespace host::builtins
