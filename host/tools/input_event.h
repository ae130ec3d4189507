#pragma once

#include <cstdint>
#include <string>

#include "host/viewport/projection.h"

namespace host::tools {

enum class MouseButton : std::uint8_t { None, Left, Middle, Right };
enum class InputKind : std::uint8_t {
  Press,
  Drag,
  Release,
  Hold,
  Move,
  Enter,
  KeyPress,
  KeyRelease
};

/// Something a person did in a view, as data: a recorded gesture reads the same.
struct InputEvent {
  InputKind kind = InputKind::Move;
  viewport::ViewPoint position;  ///< pixels, (0, 0) lower left
  MouseButton button = MouseButton::None;
  bool shift = false, control = false, alt = false;
  std::string key;              ///< of key events: "a", "Return", "Delete", "Escape", ...
  std::string panel;            ///< the view; empty: the active one
  double pressure = 1;          ///< of a pen, 0..1; a mouse presses fully
  double tiltX = 0, tiltY = 0;  ///< degrees that a pen leans from upright: right, away

  [[nodiscard]] bool isMouse() const { return kind <= InputKind::Enter; }
};

}  // namespace host::tools
