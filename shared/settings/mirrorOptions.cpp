#include "shared/settings/mirrorOptions.h"

#include "shared/settings/toolOptions.h"

namespace {

int answerOf(modelingOption option, int otherwise) {
  int answer = 0;
  return kModelingOptions[option].ask(answer) && answer >= 0 ? answer : otherwise;
}

bool isWorldSelected(bool current) {
  return answerOf(kMirrorSpace, current ? 1 : 0) == 1;
}

}  // namespace

bool mirrorOptions::worldSpaceFromWindow(bool current) {
  return modelingWindowIsOpen() ? isWorldSelected(current) : true;
}

mirrorOptions mirrorOptions::fromWindow() {
  mirrorOptions options;
  if (!modelingWindowIsOpen()) return options;
  if (answerOf(kMirrorBox, 0) != 0) options.axis = answerOf(kMirrorAxis, kNoMirrorOption);
  options.inWorldSpace = isWorldSelected(options.inWorldSpace);
  return options;
}
