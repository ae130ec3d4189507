#pragma once

#include <maya/M3dView.h>
#include <maya/MDrawData.h>
#include <maya/MDrawInfo.h>
#include <maya/MDrawRequest.h>
#include <maya/MDrawRequestQueue.h>
#include <maya/MMaterial.h>
#include <maya/MPxSurfaceShape.h>
#include <maya/MSelectInfo.h>

namespace host::api {
struct UiDoor;
}

class MPointArray;

/// Base of the classes that draw a plug-in's shapes with OpenGL and say what of them is picked.
///
/// A shape is drawn by it where no override is registered for its classification, and in views
/// whose renderer has no overrides. It is asked what is picked in any view, if it says so at all;
/// else what is drawn is picked.
class MPxSurfaceShapeUI {
 public:
  MPxSurfaceShapeUI();
  virtual ~MPxSurfaceShapeUI();
  MPxSurfaceShapeUI(const MPxSurfaceShapeUI&) = delete;
  MPxSurfaceShapeUI& operator=(const MPxSurfaceShapeUI&) = delete;

  /// Puts what is to be drawn into the queue.
  virtual void getDrawRequests(const MDrawInfo& info, bool objectAndActiveOnly,
                               MDrawRequestQueue& requests);
  /// Draws one request, in the shape's space.
  virtual void draw(const MDrawRequest& request, M3dView& view) const;
  /// Adds what of the shape is hit. @return whether something is
  virtual bool select(MSelectInfo& selectInfo, MSelectionList& selectionList,
                      MPointArray& worldSpaceSelectPts) const;
  virtual bool snap(MSelectInfo& snapInfo) const;

  /// The shape that this one draws.
  MPxSurfaceShape* surfaceShape() const { return shape_; }
  MMaterial material(MDagPath& path) const;
  void getDrawData(const void* geometry, MDrawData& data) {
    data = MDrawData(const_cast<void*>(geometry));
  }

 private:
  friend struct host::api::UiDoor;
  MPxSurfaceShape* shape_ = nullptr;
};
