#pragma once

#include <maya/MDataHandle.h>
#include <maya/MObject.h>
#include <maya/MPlug.h>
#include <maya/MStatus.h>
#include <maya/MTypes.h>

/// What an evaluation graph knows of a node. The host pulls values and builds no such graph: no
/// object of this class is ever given out.
class MEvaluationNode {
 public:
  bool dirtyPlugExists(const MObject& attribute, MStatus* status = nullptr) const;
  MPlug dirtyPlug(const MObject& attribute, MStatus* status = nullptr) const;
  MObject dependencyNode(MStatus* status = nullptr) const;
  bool hasAttributeBeenDirtied(const MObject& attribute) const;

 private:
  MEvaluationNode() = default;
};
