#pragma once

#include <maya/MPoint.h>
#include <maya/MVector.h>

#include <vector>

class MMatrix;

/// How a layout lies on a surface around a point: to first order.
struct uvFrame {
  double place[2] = {0.0, 0.0};  ///< of the point
  MVector gradient[2];           ///< how fast each number grows, per cm, along the surface, world

  /// The change of place that goes with a step along the surface.
  double change(int axis, const MVector& step) const { return gradient[axis] * step; }
  /// Whether going round to the left in the layout is going round to the left for a viewer.
  bool isSeenFromFront(const MVector& towardsViewer) const {
    return (gradient[0] ^ gradient[1]) * towardsViewer >= 0.0;
  }
};

/// The frame at a point of a polygon: the affine map that fits its corners best.
/// @param corners in the world; @param places two numbers a corner; @param normal unit
/// @return false for a polygon without an area
bool frameOfPolygon(const std::vector<MPoint>& corners, const std::vector<double>& places,
                    const MVector& normal, const MPoint& at, uvFrame& frame);

/// The frame of a flat mesh whose x and z in object space are the places.
uvFrame frameOfFlatMesh(const MMatrix& toObject, const MPoint& at);
