#include "host/window/uv_display.h"

#include <algorithm>

namespace host::window {
namespace {

int numberOf(const cmd::OptionVars& kept, const char* name, int first) {
  const cmd::OptionVars::Value* value = kept.find(name);
  const int* number = value ? std::get_if<int>(value) : nullptr;
  return number ? *number : first;
}

}  // namespace

UvDisplay UvDisplay::read(const cmd::OptionVars& kept) {
  UvDisplay display;
  display.fill = static_cast<Fill>(std::clamp(numberOf(kept, "uvPanelFill", 1), 0, 2));
  display.texture = numberOf(kept, "uvPanelTexture", 0) != 0;
  display.checker = numberOf(kept, "uvPanelChecker", 0) != 0;
  display.borders = numberOf(kept, "uvPanelBorders", 1) != 0;
  display.pins = numberOf(kept, "uvPanelPins", 1) != 0;
  return display;
}

void UvDisplay::store(cmd::OptionVars& kept) const {
  kept.set("uvPanelFill", static_cast<int>(fill));
  kept.set("uvPanelTexture", texture ? 1 : 0);
  kept.set("uvPanelChecker", checker ? 1 : 0);
  kept.set("uvPanelBorders", borders ? 1 : 0);
  kept.set("uvPanelPins", pins ? 1 : 0);
}

}  // namespace host::window
