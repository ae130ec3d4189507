#include "host/tools/hand.h"

#include <utility>

namespace host::tools {

int buttonNumber(MouseButton button) {
  return static_cast<int>(button);
}

MouseButton buttonOf(int number) {
  return number >= 1 && number <= 3 ? static_cast<MouseButton>(number) : MouseButton::None;
}

Result<void> Hand::use(const HandOptions& options) {
  if (isDown_) {
    if (options.button && *options.button != state_.button)
      return fail("Button {} is down; release it before another one.", buttonNumber(state_.button));
    if (!options.panel.empty() && options.panel != state_.panel)
      return fail("The gesture began in {}; it ends there, not in {}.", state_.panel,
                  options.panel);
  } else {
    const viewport::ViewPoint at = state_.position;
    state_ = {};
    state_.position = at;
    state_.panel = options.panel;
    state_.button = MouseButton::Left;
  }
  state_.button = options.button.value_or(state_.button);
  state_.shift = options.shift.value_or(state_.shift);
  state_.control = options.control.value_or(state_.control);
  state_.alt = options.alt.value_or(state_.alt);
  state_.pressure = options.pressure.value_or(state_.pressure);
  state_.tiltX = options.tiltX.value_or(state_.tiltX);
  state_.tiltY = options.tiltY.value_or(state_.tiltY);
  return {};
}

void Hand::send(InputKind kind, viewport::ViewPoint at) {
  state_.position = at;
  InputEvent event = state_;
  if (!isDown_ && kind != InputKind::Release) event.button = MouseButton::None;
  if (event.isMouse() && over_ != state_.panel) {
    over_ = state_.panel;
    event.kind = InputKind::Enter;
    const MouseButton button = std::exchange(event.button, MouseButton::None);
    send_(event);
    event.button = button;
  }
  event.kind = kind;
  send_(event);
}

Result<void> Hand::hover(viewport::ViewPoint to) {
  if (isDown_) return fail("Button {} is down: drag or release.", buttonNumber(state_.button));
  send(InputKind::Move, to);
  return {};
}

Result<void> Hand::press(viewport::ViewPoint at) {
  if (isDown_) return fail("Button {} is down already.", buttonNumber(state_.button));
  isDown_ = true;
  send(InputKind::Press, at);
  return {};
}

Result<void> Hand::drag(viewport::ViewPoint to) {
  if (!isDown_) return fail(ErrorKind::NotFound, "No button is down: press before you drag.");
  send(InputKind::Drag, to);
  return {};
}

Result<void> Hand::release(viewport::ViewPoint at) {
  if (!isDown_) return fail(ErrorKind::NotFound, "No button is down: press before you release.");
  isDown_ = false;
  send(InputKind::Release, at);
  return {};
}

void Hand::strike(const std::string& key) {
  state_.key = key;
  send(InputKind::KeyPress, state_.position);
  send(InputKind::KeyRelease, state_.position);
  state_.key.clear();
}

}  // namespace host::tools
