#pragma once

#include <maya/MObjectHandle.h>
#include <maya/MPlug.h>
#include <maya/MPoint.h>
#include <maya/MString.h>

#include "modeling/toolState.h"

class M3dView;

/// A bevel or an extrusion that is dragged out: one step of undo from the press to the release.
///
/// A chunk of undo is open in between. Drags set the plugs of the node that the press created; the
/// release writes their last values as a command, so that redo has them too.
class interactiveNode {
 public:
  /// Creates a bevel of the selected edges or an extrusion of the selected faces.
  /// @param kind kEdgeKind or kFaceKind
  void begin(int kind);
  /// Sets the plugs from where the cursor is: the distance on the plane through what was selected,
  /// towards the left negative; for bevels sideways only, a tenth of it, and a segment more for
  /// every 50 pixels upwards.
  void drag(const M3dView& view, const portPlace& press, const portPlace& current);
  /// Writes the values and closes the chunk. @return what was done, as a short sentence
  MString finish();
  /// Closes the chunk without a word, and forgets the node.
  void close();
  /// Takes the node away again with all that it made.
  void cancel();

  bool isOpen() const { return chunkIsOpen; }
  /// Whether there is a node whose plugs a drag can set: it may have been undone meanwhile.
  bool hasNode() const;

 private:
  MString createdNodeName;
  MObjectHandle node;
  MPlug offset, segments, distance;
  MPoint centre;
  int kind = kNoComponent;
  bool chunkIsOpen = false;
};
