#pragma once

#include <maya/MDoubleArray.h>
#include <maya/MPointArray.h>

#include "shared/tool/ownedLocator.h"

/// The draw locator through which the tool shows what is under the cursor and what it moves. It is
/// made without a step of undo, and made anew when a new scene has taken it along.
class toolLocator {
 public:
  static const char* const kName;

  toolLocator();
  /// Makes the locator and shows nothing; one that was left over goes first. The selection and what
  /// is hilited stay as they are.
  void create();
  void remove() { locator.remove(); }
  bool isThere() const { return locator.isThere(); }

  /// The corners of the component that a click would take. @return whether the picture changes
  bool showComponent(const MPointArray& corners);
  /// What a gesture moves, with its weights, and how far it reaches.
  void showMoved(const MPointArray& points, const MDoubleArray& weights,
                 const MPointArray& outline);
  /// @return whether something was shown
  bool clear();

 private:
  ownedLocator locator;
  MPointArray shownComponent;
  bool showsMoved = false;
};
