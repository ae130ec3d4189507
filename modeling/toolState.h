#pragma once

#include <maya/MSelectionList.h>
#include <maya/MString.h>

#include "shared/selection/componentPick.h"

/// How a pick changes the selection.
enum pickAdjustment { kPickReplace = 0, kPickRun = 1, kPickAdd = 2, kPickRemove = 3 };

/// The tool settings that a gesture works with, copied at its press: what a window changes
/// meanwhile counts from the next gesture on.
struct gestureSettings {
  bool mirror = false;
  int mirrorAxis = 0;
  bool mirrorWorldSpace = false;
  bool lockAxis = false;
  bool lockAxes[3] = {false, false, false};
  int intensity = 0;        ///< per cent
  int smoothIntensity = 0;  ///< per cent
  int smoothPush = 0;       ///< per cent
  bool softSelect = false;
  bool slideOnItself = false;
  int normalDirection = 0;  ///< 0 vertex normals, 1 towards the viewer

  /// What the settings are now.
  static gestureSettings now();
};

/// A number as sentences show it: four significant digits.
MString shortNumber(double value);

/// A place in a view, in port pixels.
struct portPlace {
  short x = 0, y = 0;
};

/// What a press found and what the drags since have done.
struct gestureState {
  enum buttonType { kNoButton, kLeft, kMiddle };
  buttonType button = kNoButton;
  bool shift = false, control = false;  ///< at the press

  int actionType = kNoComponent;
  int pickMode = kPickReplace;
  bool selectionWasEmpty = true;
  bool componentModeActive = false;
  bool hitAtPress = false;
  bool pickedInThisGesture = false;  ///< the press itself picked: no action at the release
  bool releaseNoPoints = false;
  bool isDragged = false;
  bool cannotMove = false;  ///< a push or slide was refused
  bool changedPoints = false;
  portPlace press, current;
  pickedComponent hovered;  ///< under the cursor at the press
  pickedComponent lastHit;  ///< what a pick took last
  MSelectionList selectionAtPress;
  MSelectionList selectionPicked;  ///< as the picks of the gesture have left it, if they have
  bool hasPicked = false;          ///< whether they, or a press on nothing, have changed it
  gestureSettings settings;

  bool isActive() const { return button != kNoButton; }
};
