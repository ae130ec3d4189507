#pragma once

#include <maya/MIntArray.h>
#include <maya/MPoint.h>
#include <maya/MPointArray.h>
#include <maya/MVector.h>

/// Where a face is and where it looks.
struct faceFrame {
  MPoint centre;   ///< mean of its vertices
  MVector normal;  ///< unit length, by Newell's method; zero for a face without area
};

/// The frame of the face whose vertices are `count` entries of `connects` from `first`; linear in
/// them.
inline faceFrame faceFrameOf(const MPointArray& points, const MIntArray& connects,
                             unsigned int first, unsigned int count) {
  const auto vertex = [&](unsigned int corner) -> const MPoint& {
    return points[static_cast<unsigned int>(connects[first + corner])];
  };
  // Measured from the first vertex, so that faces far from the origin keep their digits.
  const MPoint& origin = vertex(0);
  MVector sum, area, before;
  for (unsigned int i = 1; i < count; ++i) {
    const MVector offset = vertex(i) - origin;
    area += before ^ offset;
    sum += offset;
    before = offset;
  }
  faceFrame frame;
  frame.centre = origin + sum / static_cast<double>(count);
  const double length = area.length();
  if (length > 0.0) frame.normal = area / length;
  return frame;
}
