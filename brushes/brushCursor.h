#pragma once

#include <maya/MPoint.h>
#include <maya/MPointArray.h>

#include "shared/tool/ownedLocator.h"

/// What a brush cursor shows at one place, in the world.
struct brushCursorPlace {
  MPointArray outline;    ///< the brush's circle laid on the surface; empty: nothing is shown
  MPoint dot;             ///< over the centre, as high as the brush is strong
  double strength = 0.0;  ///< 0 to 1: the dot's colour
};

/// The circle of a brush on the surface with its strength dot, and the same on the mirrored side.
/// It is shown through draw locators, so that both viewports draw it, and is made and moved without
/// a step of undo.
class brushCursor {
 public:
  brushCursor();
  /// @return whether the picture changes
  bool show(const brushCursorPlace& place);
  bool showMirrored(const brushCursorPlace& place);
  /// @return whether something was shown
  bool clear();
  void remove();

  static const char* const kName;
  static const char* const kMirroredName;

 private:
  struct ring {
    explicit ring(const char* name);
    bool show(const brushCursorPlace& place);
    void remove();
    ownedLocator locator;
    MPointArray shown;
    double strength = 0.0;
  };
  ring own, mirrored;
};
