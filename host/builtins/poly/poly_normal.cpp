#include "host/builtins/poly/modelling_command.h"

namespace host::builtins {

void registerPolyNormal(CommandRegistry& registry) {
  defineModelling(
      registry,
      {.command = "polyNormal",
       .nodeType = "polyNormal",
       .works = scene::ComponentType::Face,
       .leaves = Leaves::Selection},
      {{"nm", "normalMode", {ArgType::Int}}, {"unm", "userNormalMode", {ArgType::Bool}}});
}

}  // namespace host::builtins
