#include "host/builtins/poly/modelling_command.h"

namespace host::builtins {

void registerPolyDelVertex(CommandRegistry& registry) {
  defineModelling(registry,
                  {.command = "polyDelVertex",
                   .nodeType = "polyDelVertex",
                   .works = scene::ComponentType::Vertex,
                   .leaves = Leaves::Nothing},
                  {});
}

}  // namespace host::builtins
