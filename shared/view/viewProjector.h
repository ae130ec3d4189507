#pragma once

#include <maya/MMatrix.h>
#include <maya/MPoint.h>
#include <maya/MStatus.h>
#include <maya/MVector.h>

class M3dView;

/// A point as a view shows it.
struct viewPlace {
  double x = 0.0, y = 0.0;  ///< pixels from the lower left corner, fractions kept
  double depth = 0.0;       ///< cm in front of the camera
  bool isClipped = true;  ///< nearer than the near or farther than the far clipping plane; x and y
                          ///< mean nothing then
};

/// The way from the world to a view's pixels, read from the view once: for many points, where
/// asking the view each time would cost more than the projection. It stays as the camera stood when
/// it was made.
class viewProjector {
 public:
  explicit viewProjector(M3dView view, MStatus* status = nullptr);

  viewPlace project(const MPoint& world) const;
  /// The same for points of a space with the given way to the world.
  viewProjector from(const MMatrix& toWorld) const;
  /// World length that a pixel shows at a depth.
  double worldPerPixel(double depth) const;
  bool isOrthographic() const;
  /// The line of sight through a place in pixels, fractions too: from the near clipping plane away
  /// from the viewer.
  /// @param direction unit
  void ray(double x, double y, MPoint& origin, MVector& direction) const;
  /// The view's axes in the world, unit: across to the right, up, and towards the viewer.
  MVector right() const;
  MVector up() const;
  MVector backward() const;

 private:
  MVector axis(unsigned int column) const;

  MMatrix toCamera, toClip, whole;  ///< the last is both in one
  double width = 0.0, height = 0.0;
};
