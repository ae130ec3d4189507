#include "host/builtins/poly/modelling_command.h"

namespace host::builtins {

void registerPolyTriangulate(CommandRegistry& registry) {
  defineModelling(registry,
                  {.command = "polyTriangulate",
                   .nodeType = "polyTriangulate",
                   .works = scene::ComponentType::Face,
                   .leaves = Leaves::Made},
                  {});
}

}  // namespace host::builtins
