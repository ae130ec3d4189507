#include "host/builtins/poly/modelling_command.h"

namespace host::builtins {

void registerPolyPoke(CommandRegistry& registry) {
  HistoryFlags flags = {worldSpaceFlag()};
  addTriple(flags, "lt", "localTranslate", ArgType::Distance);
  defineModelling(registry,
                  {.command = "polyPoke",
                   .nodeType = "polyPoke",
                   .works = scene::ComponentType::Face,
                   .leaves = Leaves::Made},
                  std::move(flags));
}

}  // namespace host::builtins
