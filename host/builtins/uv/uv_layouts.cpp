// The commands that lay UVs out as a whole, measure and draw them.
#include "host/builtins/common/command.h"

namespace host::builtins {

void registerPolyMultiLayoutUv(CommandRegistry& registry);
void registerPolyPinUv(CommandRegistry& registry);
void registerPolyUvReport(CommandRegistry& registry);
void registerUntangleUv(CommandRegistry& registry);
void registerUvSnapshot(CommandRegistry& registry);

void registerUvLayouts(CommandRegistry& registry) {
  registerPolyMultiLayoutUv(registry);
  registerPolyPinUv(registry);
  registerPolyUvReport(registry);
  registerUntangleUv(registry);
  registerUvSnapshot(registry);
}

}  // namespace host::builtins
