#pragma once

#include <maya/MDGModifier.h>
#include <maya/MDagPath.h>
#include <maya/MObject.h>
#include <maya/MStatus.h>

#include <memory>

/// A step of a mesh's construction history that goes in, out and in again: the same nodes each
/// time, with whatever later steps have made of them.
struct historyStep {
  MDagPath mesh;      ///< the shape
  MObject node;       ///< with `inMesh` and `outMesh`; null before `make`
  MObject tweakNode;  ///< takes the shape's own offsets; null when it had none
  MObject original;   ///< the intermediate shape that a mesh without history got

  /// Makes the nodes, connected to nothing yet: the node and, for a mesh that has offsets, a
  /// polyTweak in front of it.
  /// @param nodeText, tweakText what is shown when one of them can't be made; nothing is left then
  MStatus make(const MDagPath& meshIn, const MTypeId& type, const char* nodeText,
               const char* tweakText = "error creating tweak node");
  /// Puts the nodes between the shape and what drives it. A failure leaves the scene as it was.
  MStatus insert();
  /// Takes them out of the history again and out of the scene, until `insert`.
  MStatus remove();
  /// Deletes nodes that were made and never put in.
  void discard();
  /// Whether they were put in and not taken out since.
  bool isIn() const { return !node.isNull() && !removal && wasInserted; }

 private:
  bool wasInserted = false;
  std::shared_ptr<MDGModifier> removal;  ///< brings back what `remove` took away
};
