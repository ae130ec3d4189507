#pragma once

#include <maya/MIOStream.h>
#include <maya/MPoint.h>
#include <maya/MStatus.h>
#include <maya/MTypes.h>

class MMatrix;
class MVector;

/// An axis-aligned box; a new one is empty until it is expanded.
class MBoundingBox {
 public:
  MBoundingBox();
  MBoundingBox(const MPoint& corner1, const MPoint& corner2);

  void clear();
  /// Replaces the box by that of its eight corners transformed.
  void transformUsing(const MMatrix& matrix);
  void expand(const MPoint& point);
  void expand(const MBoundingBox& box);
  bool contains(const MPoint& point) const;
  bool intersects(const MBoundingBox& box, double tolerance = 0.0) const;
  double width() const;
  double height() const;
  double depth() const;
  MPoint center() const;
  MPoint min() const;
  MPoint max() const;

 private:
  bool isEmpty() const;
  MPoint min_;
  MPoint max_;
};

std::ostream& operator<<(std::ostream& os, const MBoundingBox& box);
