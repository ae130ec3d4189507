#pragma once

#include <maya/MString.h>

#include "modeling/toolState.h"

/// The edits of the middle button on what is selected. Each runs the host's own commands with undo
/// on and leaves nothing selected.
namespace meshOperations {

/// Action codes by the modifiers of the middle button's release.
enum action { kConnect = 0, kCollapse = 1, kDelete = 2, kFinishNode = 3 };

/// The action that modifiers stand for.
action actionFor(bool shift, bool control);

/// Connects the selected edges or vertices, or subdivides the edges when there are too few to
/// connect: one, or with mirroring, where the mirrored edge is selected too, up to two.
/// @return what was done, as a short sentence; empty when there was nothing to do or the host
/// refused
MString connect(const gestureState& gesture);

/// Collapses edges or faces, and merges vertices to the one under the cursor at the press.
MString collapse(const gestureState& gesture);

/// Deletes edges with their spare vertices, vertices or faces.
MString remove(const gestureState& gesture);

}  // namespace meshOperations
