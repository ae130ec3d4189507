#pragma once

#include <maya/MDrawInfo.h>
#include <maya/MMatrix.h>
#include <maya/MPoint.h>
#include <maya/MPointArray.h>
#include <maya/MSelectionList.h>
#include <maya/MSelectionMask.h>
#include <maya/MVector.h>

namespace host::api {
struct UiDoor;
}

/// A click or a rectangle that asks a shape's class what of the shape it hits.
class MSelectInfo : public MDrawInfo {
 public:
  /// The rectangle in pixels, from its lower left corner.
  void selectRect(unsigned int& x, unsigned int& y, unsigned int& width,
                  unsigned int& height) const {
    x = x_;
    y = y_;
    width = width_;
    height = height_;
  }
  /// A click, which takes at most one thing.
  bool singleSelection() const { return isSingle_; }
  bool selectClosest() const { return isSingle_; }
  bool isRay() const { return isSingle_; }
  /// Whether what has this mask may be picked now.
  bool selectable(MSelectionMask& mask) const;
  bool selectableComponent(bool displayed, MSelectionMask& mask) const;
  bool selectOnHilitedOnly() const { return isHilitedOnly_; }
  bool selectForHilite(const MSelectionMask&) const { return isHilitedOnly_; }
  const MDagPath selectPath() const { return path_; }
  /// The line of sight through the click in the shape's space. False for a rectangle.
  bool getLocalRay(MPoint& position, MVector& direction) const;
  /// Takes the shape's space to one whose z points at the viewer: of several hits that with the
  /// largest z is the nearest.
  MMatrix getAlignmentMatrix() const;
  /// Adds a hit: the item, and where it is in world space. Of a click's hits the nearest is kept.
  MStatus addSelection(const MSelectionList& item, const MPoint& point,
                       MSelectionList& selectionList, MPointArray& worldSpaceSelectedPts,
                       const MSelectionMask& mask, bool isMeshComponent) const;

 private:
  friend struct host::api::UiDoor;
  unsigned int x_ = 0, y_ = 0, width_ = 1, height_ = 1;
  bool isSingle_ = true, isHilitedOnly_ = false;
  bool picksVertices_ = false, picksEdges_ = false, picksFaces_ = false, picksObjects_ = true;
  MMatrix alignment_;
};
