#pragma once

#include <maya/MDGModifier.h>
#include <maya/MTypes.h>

/// Collects changes of the scene's hierarchy and of the graph.
class MDagModifier : public MDGModifier {
 public:
  MDagModifier();
  ~MDagModifier() override;

  /// Makes a node under `parent`; a shape without one gets a new transform, which is what is
  /// returned.
  MObject createNode(const MTypeId& typeId, const MObject& parent = MObject::kNullObj,
                     MStatus* status = nullptr);
  MObject createNode(const MString& type, const MObject& parent = MObject::kNullObj,
                     MStatus* status = nullptr);
  /// Moves a node under `newParent`, or under the root.
  MStatus reparentNode(const MObject& node, const MObject& newParent = MObject::kNullObj);
};
