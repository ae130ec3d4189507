#pragma once

#include <maya/MDagPath.h>
#include <maya/MObject.h>
#include <maya/MPlug.h>
#include <maya/MStatus.h>
#include <maya/MString.h>
#include <maya/MStringArray.h>
#include <maya/MTypes.h>
#include <maya/detail/Handle.h>

/// An ordered list of nodes, plugs, DAG paths and components.
///
/// Items of one path are kept together: several component types on one path are one item.
class MSelectionList {
 public:
  enum MergeStrategy { kMergeNormal = 0, kXORWithList, kRemoveFromList };

  MSelectionList() = default;

  unsigned int length(MStatus* status = nullptr) const;
  bool isEmpty(MStatus* status = nullptr) const;
  MStatus clear();

  MStatus getDependNode(unsigned int index, MObject& node) const;
  /// Returns the path of an item and, of a component item, its components; those are null for a
  /// whole object.
  MStatus getDagPath(unsigned int index, MDagPath& path,
                     MObject& component = MObject::kNullObj) const;
  MStatus getPlug(unsigned int index, MPlug& plug) const;
  MStatus getSelectionStrings(MStringArray& names) const;
  MStatus getSelectionStrings(unsigned int index, MStringArray& names) const;

  MStatus add(const MObject& object, bool mergeWithExisting = false);
  MStatus add(const MPlug& plug, bool mergeWithExisting = false);
  MStatus add(const MDagPath& path, const MObject& component = MObject::kNullObj,
              bool mergeWithExisting = false);
  /// Adds everything that the name matches: nodes, paths, plugs, component ranges, wildcards.
  MStatus add(const MString& matchString, bool searchChildNamespacesToo = false);
  MStatus add(const char* matchString) { return add(MString(matchString)); }
  MStatus remove(unsigned int index);
  MStatus replace(unsigned int index, const MObject& item);
  MStatus replace(unsigned int index, const MPlug& plug);
  MStatus replace(unsigned int index, const MDagPath& path,
                  const MObject& component = MObject::kNullObj);

  bool hasItem(const MObject& object, MStatus* status = nullptr) const;
  bool hasItem(const MPlug& plug, MStatus* status = nullptr) const;
  bool hasItem(const MDagPath& path, const MObject& component = MObject::kNullObj,
               MStatus* status = nullptr) const;
  bool hasItemPartly(const MDagPath& path, const MObject& component,
                     MStatus* status = nullptr) const;
  MStatus toggle(const MDagPath& path, const MObject& component = MObject::kNullObj);

  MStatus merge(const MSelectionList& other, MergeStrategy strategy = kMergeNormal);
  MStatus merge(const MDagPath& path, const MObject& component = MObject::kNullObj,
                MergeStrategy strategy = kMergeNormal);
  MStatus intersect(const MSelectionList& other, bool expandToLeaves = false);

 private:
  friend struct host::api::Access;
  explicit MSelectionList(host::api::Handle handle) : handle_(std::move(handle)) {}
  host::api::Handle handle_;
};

std::ostream& operator<<(std::ostream& os, const MSelectionList& list);
