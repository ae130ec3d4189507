#include "shared/settings/toolSettings.h"

toolSettings& toolSettings::current() {
  static toolSettings settings;
  return settings;
}

void toolSettings::reset() {
  current() = toolSettings();
}
