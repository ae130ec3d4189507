#include "shared/settings/storeValues.h"

#include "shared/settings/toolOptions.h"

namespace {

template <unsigned int count>
void readAll(const toolOption (&options)[count], toolSettings& settings) {
  for (const toolOption& option : options) {
    int answer = -1;
    if ((option.onlyWhile && !(settings.*option.onlyWhile)) || option.ask(answer))
      option.store(settings, answer);
  }
}

}  // namespace

void storeValues(toolSettings& settings) {
  if (modelingWindowIsOpen()) readAll(kModelingOptions, settings);
  if (uvWindowIsOpen()) readAll(kUvOptions, settings);
}
