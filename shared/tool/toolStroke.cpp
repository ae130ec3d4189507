#include "shared/tool/toolStroke.h"

#include <cstdlib>

void toolStroke::press(MEvent& event) {
  *this = toolStroke();
  isDown = true;
  button = event.mouseButton();
  isShift = event.isModifierShift();
  isControl = event.isModifierControl();
  event.getPosition(pressX, pressY);
  x = pressX;
  y = pressY;
}

void toolStroke::move(MEvent& event) {
  event.getPosition(x, y);
}

bool toolStroke::isBeyond(int pixels) const {
  return std::abs(x - pressX) > pixels || std::abs(y - pressY) > pixels;
}
