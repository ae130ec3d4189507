#pragma once

#include <maya/MMatrix.h>
#include <maya/MPoint.h>
#include <maya/MVector.h>

class MPointArray;

/// The space in which a mesh is dropped: heights are measured along one of its axes, and rays go
/// down it.
struct dropSpace {
  unsigned int axis = 1;  ///< 0 x, 1 y, 2 z
  bool isWorld = true;    ///< else the two matrices lead there and back
  MMatrix fromWorld, toWorld;

  MPoint enter(const MPoint& worldPoint) const {
    return isWorld ? worldPoint : worldPoint * fromWorld;
  }
  MPoint leave(const MPoint& point) const { return isWorld ? point : point * toWorld; }

  /// One unit down the axis, in world space; as long as the space is stretched.
  MVector down() const;
  /// The smallest height of points in world space; 0 for none.
  double lowest(const MPointArray& worldPoints) const;
  /// Where a vertex goes, in world space: `offset` above the place that it fell on (world space),
  /// which is null when it fell on nothing and goes above the plane through the origin.
  MPoint land(const MPoint& worldPoint, const MPoint* fellOn, double base) const;
};
