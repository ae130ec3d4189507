#include "brushes/tabletInput.h"

#include <algorithm>
#include <cmath>

#include "brushes/tabletHook.h"

namespace {

double within(double value, double low, double high, double otherwise) {
  return std::isfinite(value) ? std::clamp(value, low, high) : otherwise;
}

}  // namespace

tabletInput& tabletInput::instance() {
  static tabletInput input;
  return input;
}

void tabletInput::attach(std::uintptr_t window, int device) {
  windowHandle = window;
  deviceIndex = device;
  isGiven = true;
  if (users > 0) listen();
}

void tabletInput::detach() {
  tabletHook::remove();
  windowHandle = 0;
  users = 0;
  isGiven = hooked = false;
}

void tabletInput::listen() {
  tabletHook::remove();
  hooked = tabletHook::install(windowHandle, deviceIndex);
}

void tabletInput::beginUse() {
  if (!isGiven) return;
  if (users++ == 0) listen();
}

void tabletInput::endUse() {
  if (users == 0 || --users > 0) return;
  tabletHook::remove();
  hooked = false;
}

penState tabletInput::pen() const {
  if (!hooked) return {};
  penState now = tabletHook::read();
  now.pressure = within(now.pressure, 0.0, 1.0, 1.0);
  now.tiltX = within(now.tiltX, -90.0, 90.0, 0.0);
  now.tiltY = within(now.tiltY, -90.0, 90.0, 0.0);
  return now;
}

void tabletUse::begin() {
  if (isOn) return;
  isOn = true;
  tabletInput::instance().beginUse();
}

void tabletUse::end() {
  if (!isOn) return;
  isOn = false;
  tabletInput::instance().endUse();
}
