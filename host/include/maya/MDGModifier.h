#pragma once

#include <maya/MAngle.h>
#include <maya/MDistance.h>
#include <maya/MFnDependencyNode.h>
#include <maya/MObject.h>
#include <maya/MPlug.h>
#include <maya/MStatus.h>
#include <maya/MString.h>
#include <maya/MTime.h>
#include <maya/MTypeId.h>
#include <maya/MTypes.h>
#include <maya/detail/Handle.h>

/// Collects changes of the graph; `doIt` makes them, `undoIt` takes them back.
///
/// Nodes exist as soon as `createNode` returns, so that they can be named in later steps.
class MDGModifier {
 public:
  MDGModifier();
  virtual ~MDGModifier();
  MDGModifier(const MDGModifier&) = delete;
  MDGModifier& operator=(const MDGModifier&) = delete;

  MObject createNode(const MTypeId& typeId, MStatus* status = nullptr);
  MObject createNode(const MString& type, MStatus* status = nullptr);
  virtual MStatus deleteNode(const MObject& node);
  MStatus deleteNode(const MObject& node, bool includeParents);
  MStatus renameNode(const MObject& node, const MString& newName);
  MStatus setNodeLockState(const MObject& node, bool newState);

  MStatus connect(const MObject& sourceNode, const MObject& sourceAttr, const MObject& destNode,
                  const MObject& destAttr);
  MStatus connect(const MPlug& source, const MPlug& dest);
  MStatus disconnect(const MObject& sourceNode, const MObject& sourceAttr, const MObject& destNode,
                     const MObject& destAttr);
  MStatus disconnect(const MPlug& source, const MPlug& dest);
  MStatus addAttribute(const MObject& node, const MObject& attribute);
  MStatus addAttribute(const MObject& node, const MObject& attribute,
                       MFnDependencyNode::MAttrClass type);
  MStatus removeAttribute(const MObject& node, const MObject& attribute);
  MStatus removeAttribute(const MObject& node, const MObject& attribute,
                          MFnDependencyNode::MAttrClass type);
  MStatus removeMultiInstance(const MPlug& plug, bool breakConnections);

  MStatus newPlugValue(const MPlug& plug, const MObject& value);
  MStatus newPlugValueBool(const MPlug& plug, bool value);
  MStatus newPlugValueChar(const MPlug& plug, char value);
  MStatus newPlugValueShort(const MPlug& plug, short value);
  MStatus newPlugValueInt(const MPlug& plug, int value);
  MStatus newPlugValueInt64(const MPlug& plug, MInt64 value);
  MStatus newPlugValueFloat(const MPlug& plug, float value);
  MStatus newPlugValueDouble(const MPlug& plug, double value);
  MStatus newPlugValueString(const MPlug& plug, const MString& value);
  MStatus newPlugValueMAngle(const MPlug& plug, const MAngle& value);
  MStatus newPlugValueMDistance(const MPlug& plug, const MDistance& value);
  MStatus newPlugValueMTime(const MPlug& plug, const MTime& value);
  MStatus commandToExecute(const MString& command);
  MStatus pythonCommandToExecute(const MString& command);

  virtual MStatus doIt();
  virtual MStatus undoIt();

 protected:
  friend struct host::api::Access;
  host::api::Handle handle_;
};
