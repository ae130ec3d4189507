#pragma once

#include <maya/MBoundingBox.h>
#include <maya/MDagPath.h>
#include <maya/MDagPathArray.h>
#include <maya/MFnDependencyNode.h>
#include <maya/MMatrix.h>
#include <maya/MObject.h>
#include <maya/MTypes.h>

/// Works on nodes of the scene's hierarchy; attached to a path, on that instance of the node.
class MFnDagNode : public MFnDependencyNode {
 public:
  enum MObjectColorType { kUseDefaultColor, kUseIndexColor, kUseRGBColor };
  enum { kNextPos = 0xFF };

  MFnDagNode() = default;
  MFnDagNode(const MObject& object, MStatus* status = nullptr) { attach(object, status); }
  MFnDagNode(const MDagPath& path, MStatus* status = nullptr) { attach(path, status); }
  MFn::Type type() const override { return MFn::kDagNode; }

  using MFnDependencyNode::create;
  MObject create(const MTypeId& typeId, MObject& parent, MStatus* status = nullptr);
  MObject create(const MTypeId& typeId, const MString& name,
                 const MObject& parent = MObject::kNullObj, MStatus* status = nullptr);
  MObject create(const MString& type, MObject& parent, MStatus* status = nullptr);
  MObject create(const MString& type, const MString& name,
                 const MObject& parent = MObject::kNullObj, MStatus* status = nullptr);

  unsigned int parentCount(MStatus* status = nullptr) const;
  MObject parent(unsigned int i, MStatus* status = nullptr) const;
  MStatus addChild(MObject& child, unsigned int index = kNextPos, bool keepExistingParents = false);
  MStatus removeChild(MObject& child);
  MStatus removeChildAt(unsigned int index);
  unsigned int childCount(MStatus* status = nullptr) const;
  MObject child(unsigned int i, MStatus* status = nullptr) const;
  MObject dagRoot(MStatus* status = nullptr);
  bool hasParent(const MObject& node, MStatus* status = nullptr) const;
  bool hasChild(const MObject& node, MStatus* status = nullptr) const;
  bool isChildOf(const MObject& node, MStatus* status = nullptr) const;
  bool isParentOf(const MObject& node, MStatus* status = nullptr) const;
  bool inUnderWorld(MStatus* status = nullptr) const;
  bool inModel(MStatus* status = nullptr) const;
  bool isInstanceable(MStatus* status = nullptr) const;
  MStatus setInstanceable(bool how);
  bool isInstanced(bool indirect = true, MStatus* status = nullptr) const;
  bool isInstancedAttribute(const MObject& attribute, MStatus* status = nullptr) const;
  unsigned int instanceCount(bool total, MStatus* status = nullptr) const;
  MObject duplicate(bool instance = false, bool instanceLeaf = false,
                    MStatus* status = nullptr) const;

  MStatus getPath(MDagPath& path);
  MStatus getAllPaths(MDagPathArray& paths);
  MString fullPathName(MStatus* status = nullptr) const;
  MString partialPathName(MStatus* status = nullptr) const;
  MDagPath dagPath(MStatus* status = nullptr) const;
  MStatus setObject(MObject& object) override;
  MStatus setObject(const MObject& object) override;
  virtual MStatus setObject(const MDagPath& path);

  /// Returns the local transform of a transform node.
  MMatrix transformationMatrix(MStatus* status = nullptr) const;
  MBoundingBox boundingBox(MStatus* status = nullptr) const;
  bool isIntermediateObject(MStatus* status = nullptr) const;
  MStatus setIntermediateObject(bool isIntermediate);
  bool usingObjectColor(MStatus* status = nullptr) const;
  MStatus setUseObjectColor(bool useObjectColor);
  int objectColor(MStatus* status = nullptr) const;
  MStatus setObjectColor(int color);

 protected:
  friend struct host::api::Access;
  using MFnBase::attach;
  void attach(const MDagPath& path, MStatus* status);

  MDagPath path_;
};
