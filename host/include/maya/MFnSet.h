#pragma once

#include <maya/MFnDependencyNode.h>
#include <maya/MSelectionList.h>
#include <maya/MTypes.h>

class MDGModifier;
class MObjectArray;

/// Works on sets.
class MFnSet : public MFnDependencyNode {
 public:
  enum Restriction {
    kNone,
    kVerticesOnly,
    kEdgesOnly,
    kFacetsOnly,
    kEditPointsOnly,
    kRenderableOnly
  };

  MFnSet() = default;
  MFnSet(const MObject& object, MStatus* status = nullptr) { attach(object, status); }
  MFn::Type type() const override { return MFn::kSet; }

  using MFnDependencyNode::create;
  MObject create(const MSelectionList& members, Restriction restriction = kNone,
                 MStatus* status = nullptr);
  MObject create(const MSelectionList& members, MDGModifier* modifier,
                 Restriction restriction = kNone, MStatus* status = nullptr);
  Restriction restriction(MStatus* status = nullptr) const;
  bool hasRestrictions(MStatus* status = nullptr) const;
  MStatus addMember(const MObject& object);
  MStatus addMember(const MDagPath& path, const MObject& component = MObject::kNullObj);
  MStatus addMember(const MPlug& plug);
  MStatus addMembers(const MSelectionList& list);
  MStatus removeMember(const MObject& object);
  MStatus removeMember(const MDagPath& path, const MObject& component = MObject::kNullObj);
  MStatus removeMember(const MPlug& plug);
  MStatus removeMembers(const MSelectionList& list);
  MStatus clear();
  bool isMember(const MObject& object, MStatus* status = nullptr) const;
  bool isMember(const MDagPath& path, const MObject& component, MStatus* status = nullptr) const;
  bool isMember(const MPlug& plug, MStatus* status = nullptr) const;
  MStatus getMembers(MSelectionList& members, bool flatten) const;
  MStatus getMemberPaths(MDagPathArray& members, bool shading) const;
  MStatus getUnion(const MObject& otherSet, MSelectionList& result);
  MStatus getIntersection(const MObject& otherSet, MSelectionList& result);
  MStatus include(const MObject& otherSet);
  MStatus remove(const MObject& otherSet);
  MStatus intersectsWith(const MObject& otherSet, bool& result);
};
