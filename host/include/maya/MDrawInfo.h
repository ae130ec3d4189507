#pragma once

#include <maya/M3dView.h>
#include <maya/MDagPath.h>
#include <maya/MMatrix.h>
#include <maya/MSelectionMask.h>

namespace host::api {
struct UiDoor;
}

class MDrawRequest;
class MPxSurfaceShapeUI;

/// How and where a shape is to be drawn.
class MDrawInfo {
 public:
  M3dView view() const { return view_; }
  MMatrix projectionMatrix() const { return projection_; }
  MMatrix inclusiveMatrix() const { return path_.inclusiveMatrix(); }
  const MDagPath multiPath(MStatus* status = nullptr) const {
    if (status) *status = path_.isValid() ? MStatus::kSuccess : MStatus::kFailure;
    return path_;
  }
  void setMultiPath(const MDagPath& path) { path_ = path; }
  M3dView::DisplayStyle displayStyle() const { return style_; }
  M3dView::DisplayStatus displayStatus() const { return status_; }
  bool inUserInteraction() const { return false; }
  bool userChangingViewContext() const { return false; }
  bool objectDisplayStatus(M3dView::DisplayObjects objects) const;
  bool pluginObjectDisplayStatus(const MString&) const { return true; }
  bool completelyInside() const { return false; }
  bool inSelect() const { return isSelecting_; }
  /// Whether components show: of a shape that is hilited or has selected ones.
  bool canDrawComponent(bool isDisplayOn, const MSelectionMask& mask) const;
  /// A request that starts with what this says.
  MDrawRequest getPrototype(const MPxSurfaceShapeUI& ui) const;

 protected:
  friend struct host::api::UiDoor;
  friend class MDrawRequest;
  MDagPath path_;
  M3dView view_;
  MMatrix projection_;
  M3dView::DisplayStyle style_ = M3dView::kGouraudShaded;
  M3dView::DisplayStatus status_ = M3dView::kDormant;
  bool isSelecting_ = false;
};
