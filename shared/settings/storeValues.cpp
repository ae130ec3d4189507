#include "shared/settings/storeValues.h"

#include "shared/settings/toolOptions.h"

namespace {

template <unsigned int count>
void readAll(const toolOption (&options)[count], toolSettings& settings) {
  int answer = 0;
  for (const toolOption& option : options)
    if (option.ask(answer)) option.store(settings, answer);
}

}  // namespace

void storeValues(toolSettings& settings) {
  if (modelingWindowIsOpen()) readAll(kModelingOptions, settings);
  if (uvWindowIsOpen()) readAll(kUvOptions, settings);
}
