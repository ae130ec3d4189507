#pragma once

#include <maya/MDGModifier.h>
#include <maya/MDagPath.h>
#include <maya/MObject.h>
#include <maya/MPointArray.h>
#include <maya/MStatus.h>

#include <memory>

/// One polygon in a mesh's construction history: what goes in, and the nodes that hold it. The same
/// nodes go out and come back, with whatever later steps have made of them.
struct addPolyEdit {
  MDagPath mesh;       ///< the shape
  MPointArray points;  ///< world space, at least three
  MPointArray mirrorPoints;
  bool isMirrored = false;    ///< whether `mirrorPoints` make a second polygon
  bool hasTweakNode = false;  ///< whether the shape's tweaks move onto a node of their own
  MObject node, tweakNode;    ///< null before it was ever inserted
  MObject original;           ///< the intermediate shape that a mesh without history got

  /// Puts the nodes between the shape and what drives it; makes them the first time. A failure is
  /// shown and leaves none behind.
  MStatus insert();
  /// Takes the nodes out of the history again and out of the scene, until `insert`.
  MStatus remove();

 private:
  MStatus make();
  MStatus fill() const;

  std::shared_ptr<MDGModifier> removal;  ///< brings back what `remove` took away
};
