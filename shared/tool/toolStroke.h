#pragma once

#include <maya/MEvent.h>

/// The mouse button that a tool has been given, from press to release; positions in pixels from the
/// view's lower left corner.
struct toolStroke {
  bool isDown = false;
  MEvent::MouseButtonType button = MEvent::kLeftMouse;  ///< the one that went down
  bool isShift = false, isControl = false;              ///< held when the button went down
  short pressX = 0, pressY = 0;
  short x = 0, y = 0;      ///< of the latest event
  bool isDragged = false;  ///< whether the tool took it for a drag; set by the tool

  void press(MEvent& event);
  void move(MEvent& event);
  /// Whether the cursor is farther than `pixels` from where it went down, across or up.
  bool isBeyond(int pixels) const;
};
