#include "modeling/toolState.h"

#include <cstdio>

#include "shared/settings/toolSettings.h"

MString shortNumber(double value) {
  char text[32];
  std::snprintf(text, sizeof text, "%.4g", value);
  return text;
}

gestureSettings gestureSettings::now() {
  const toolSettings& from = toolSettings::current();
  gestureSettings settings;
  settings.mirror = from.mirror;
  settings.mirrorAxis = from.mirrorAxis;
  settings.mirrorWorldSpace = from.mirrorWorldSpace;
  settings.lockAxis = from.lockAxis;
  settings.lockAxes[0] = from.lockXAxis;
  settings.lockAxes[1] = from.lockYAxis;
  settings.lockAxes[2] = from.lockZAxis;
  settings.intensity = from.intensity;
  settings.smoothIntensity = from.smoothIntensity;
  settings.smoothPush = from.smoothPush;
  settings.softSelect = from.slideSoftSelect;
  settings.slideOnItself = from.slideOnItself;
  settings.normalDirection = from.normalDirection;
  return settings;
}
