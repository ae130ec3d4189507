#pragma once

#include "modeling/toolState.h"
#include "shared/selection/componentPick.h"

class M3dView;

/// Applies a component to the active selection, and its counterpart across the mirror plane with
/// the mirror option on. A counterpart joins what replaced, so that the pair stays selected.
void applyPick(const pickedComponent& hit, int adjustment, const gestureSettings& settings);

/// Applies the edge ring or loop of an edge in the same way.
/// @param isLoop a loop, else a ring
void applyEdgeRun(const pickedComponent& edge, bool isLoop, int adjustment,
                  const gestureSettings& settings);

/// The part of a loop or ring that a drag from an edge stands for.
struct edgeRunPart {
  bool isLoop = false;
  int last = -1;  ///< the edge where it ends; -1 when there is none
};

/// A drag within 60 degrees of the edge's direction on screen follows its loop, else its ring, up
/// to the edge of it whose centre shows nearest to the cursor. Costs the length of the loop or
/// ring.
edgeRunPart runTowards(const M3dView& view, const pickedComponent& edge, short x, short y);

/// Adds such a part to the selection, and its counterpart.
void addRunPart(const pickedComponent& edge, const edgeRunPart& part,
                const gestureSettings& settings);
