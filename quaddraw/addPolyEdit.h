#pragma once

#include <maya/MDagPath.h>
#include <maya/MObject.h>
#include <maya/MPointArray.h>
#include <maya/MStatus.h>

/// One polygon in a mesh's construction history: what goes in, and the nodes that hold it while it
/// is there.
struct addPolyEdit {
  MDagPath mesh;       ///< the shape
  MPointArray points;  ///< world space, at least three
  MPointArray mirrorPoints;
  bool isMirrored = false;    ///< whether `mirrorPoints` make a second polygon
  bool hasTweakNode = false;  ///< whether the shape's tweaks move onto a node of their own
  MObject node, tweakNode;    ///< null while it is not inserted

  /// Makes the nodes and puts them between the shape and what drives it. A failure is shown and
  /// leaves no nodes behind.
  MStatus insert();
  /// Takes the nodes out of the history again and deletes them.
  MStatus remove();
};
