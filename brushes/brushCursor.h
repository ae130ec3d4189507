#pragma once

#include <maya/MDoubleArray.h>
#include <maya/MPoint.h>
#include <maya/MPointArray.h>
#include <maya/MVector.h>

#include "shared/tool/ownedLocator.h"

/// What a brush cursor shows at one place.
struct brushCursorPlace {
  MPoint centre;
  MVector normal;
  double radius = 0.0;    ///< cm
  double strength = 0.0;  ///< 0 to 1: the dot's height over the surface and its colour
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
  bool clearMirrored();
  void remove();

  static const char* const kName;
  static const char* const kMirroredName;

 private:
  struct ring {
    explicit ring(const char* name);
    bool show(const MPointArray& outline, const MPointArray& dot, const MDoubleArray& weight);
    ownedLocator locator;
    MPointArray shown;
  };
  static bool showAt(ring& ring, const brushCursorPlace& place);
  ring own, mirrored;
};
