#pragma once

#include <maya/M3dView.h>
#include <maya/MDrawData.h>
#include <maya/MDrawInfo.h>
#include <maya/MMaterial.h>
#include <maya/MObject.h>

namespace host::api {
struct UiDoor;
}

/// One thing that a shape's class wants to draw: which, how, and in which colour.
class MDrawRequest {
 public:
  MDrawRequest() = default;
  explicit MDrawRequest(const MDrawInfo& info);

  M3dView view() const { return view_; }
  MMatrix projectionMatrix() const { return projection_; }
  MMatrix matrix() const { return path_.inclusiveMatrix(); }
  const MDagPath multiPath() const { return path_; }
  void setMultiPath(const MDagPath& path) { path_ = path; }
  MObject component() const { return component_; }
  void setComponent(MObject& component) { component_ = component; }
  M3dView::DisplayStyle displayStyle() const { return style_; }
  void setDisplayStyle(M3dView::DisplayStyle style) { style_ = style; }
  M3dView::DisplayStatus displayStatus() const { return status_; }
  void setDisplayStatus(M3dView::DisplayStatus status) { status_ = status; }
  /// After all others, as what is see-through should be.
  bool drawLast() const { return isLast_; }
  void setDrawLast(bool on) { isLast_ = on; }
  bool isTransparent() const { return isTransparent_; }
  void setIsTransparent(bool on) { isTransparent_ = on; }
  bool displayCulling() const { return isCulled_; }
  void setDisplayCulling(bool on) { isCulled_ = on; }
  bool displayCullOpposite() const { return isOpposite_; }
  void setDisplayCullOpposite(bool on) { isOpposite_ = on; }
  /// What the class tells its requests apart by.
  int token() const { return token_; }
  void setToken(int token) { token_ = token; }
  MDrawData drawData() const { return data_; }
  void setDrawData(MDrawData& data) { data_ = data; }
  MMaterial material() const { return material_; }
  void setMaterial(MMaterial& material) { material_ = material; }
  /// The colour set, or -1; the colour that is drawn with is it, else that of the display status.
  int color(M3dView::ColorTable table = M3dView::kActiveColors) const;
  void setColor(int color, M3dView::ColorTable table = M3dView::kActiveColors);

 private:
  friend struct host::api::UiDoor;
  MDagPath path_;
  M3dView view_;
  MMatrix projection_;
  M3dView::DisplayStyle style_ = M3dView::kGouraudShaded;
  M3dView::DisplayStatus status_ = M3dView::kDormant;
  MObject component_;
  MDrawData data_;
  MMaterial material_;
  bool isLast_ = false, isTransparent_ = false, isCulled_ = false, isOpposite_ = false;
  int token_ = 0, color_ = -1;
  M3dView::ColorTable table_ = M3dView::kActiveColors;
};
