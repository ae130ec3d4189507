#pragma once

#include <maya/MGlobal.h>
#include <maya/MIntArray.h>

#include "shared/selection/componentPick.h"

/// Where the other half of a pick lies.
struct pickMirror {
  bool isOn = false;
  int axis = 0;  ///< 0 x, 1 y, 2 z
  bool isWorld = false;

  /// As the tool settings say now.
  static pickMirror now();
};

/// Applies components of one mesh and kind to the active selection, and their counterparts across
/// the mirror plane; the counterparts join what replaced.
void adjustSelection(const MDagPath& mesh, int kind, const MIntArray& indices,
                     MGlobal::ListAdjustment adjustment, const pickMirror& mirror);

/// Applies the one that was picked in the same way; nothing for a miss.
void adjustSelection(const pickedComponent& picked, MGlobal::ListAdjustment adjustment,
                     const pickMirror& mirror);
