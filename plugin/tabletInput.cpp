#include "plugin/tabletInput.h"

tabletInput& tabletInput::instance() {
  static tabletInput input;
  return input;
}

void tabletInput::attach(std::uintptr_t window, int device) {
  windowHandle = window;
  deviceIndex = device;
}
