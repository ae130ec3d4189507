#pragma once

#include <vector>

#include "host/dg/plug.h"

// Elements that computations add to arrays are of no step of undo: nobody edited. So that undo
// still gives back the arrays of that time, those whose inputs changed with the step lose them, and
// get anew what the computation makes of the inputs as they are then.

namespace host::dg {

struct Slot;

/// Says that a computation made an element. World-space arrays have their elements by places and
/// are left alone.
void noteEvaluatedElement(const Plug& element);

/// Says that something of a node is to be computed anew, lost a connection or is there again. Only
/// of such nodes elements are looked at: undoing costs what changed, however many nodes have some.
void noteChange(const Node& node);

/// After steps were taken back or done again: elements that computations made go from arrays that
/// are to be computed anew, but for those that are connected or flagged. On the main thread only,
/// as all of the graph.
void dropEvaluatedElements();

/// Whether the array's elements went that way and were not asked for since. Asks and answers once;
/// never while its node is being evaluated.
[[nodiscard]] bool takeAwaited(Slot& array);

/// An edit of what only a computation had made makes it its own.
/// @return the first array level on the way to the plug of which this is so, or -1
[[nodiscard]] int adoptEvaluated(const Plug& plug);

/// The elements of an array that are there by edits or connections.
[[nodiscard]] std::vector<Index> ownIndices(const Slot& array);

}  // namespace host::dg
