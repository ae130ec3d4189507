#pragma once

#include <maya/MDagPath.h>
#include <maya/MFn.h>
#include <maya/MObject.h>
#include <maya/MPlug.h>
#include <maya/MSelectionList.h>
#include <maya/MStatus.h>
#include <maya/MStringArray.h>
#include <maya/MTypes.h>
#include <maya/detail/Handle.h>

/// Visits the items of a selection list that a filter accepts.
///
/// With a component filter every item's components of that type are visited, one stop a path and
/// type.
class MItSelectionList {
 public:
  enum selItemType {
    kUnknownItem = -1,
    kDagSelectionItem = 0,
    kAnimSelectionItem,
    kDNselectionItem,
    kPlugSelectionItem
  };

  MItSelectionList(const MSelectionList& list, MFn::Type filter = MFn::kInvalid,
                   MStatus* status = nullptr);
  MItSelectionList(const MItSelectionList&) = delete;
  MItSelectionList& operator=(const MItSelectionList&) = delete;

  bool isDone(MStatus* status = nullptr) const;
  MStatus next();
  MStatus reset();
  MStatus setFilter(MFn::Type filter);
  selItemType itemType(MStatus* status = nullptr) const;
  MStatus getDagPath(MDagPath& path) const;
  MStatus getDagPath(MDagPath& path, MObject& component) const;
  MStatus getDependNode(MObject& node) const;
  MStatus getPlug(MPlug& plug) const;
  MStatus getStrings(MStringArray& names) const;
  bool hasComponents(MStatus* status = nullptr) const;

 private:
  friend struct host::api::Access;
  host::api::Handle handle_;
};
