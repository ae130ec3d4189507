#include <maya/MBoundingBox.h>
#include <maya/MMatrix.h>

#include "host/api/value/convert.h"
#include "host/math/box.h"

using host::api::mathOf;
using host::api::pointOf;
using host::math::Box;

// An empty box keeps its corners the wrong way round, as the engine's does, and reads as a point at
// the origin.

MBoundingBox::MBoundingBox() {
  clear();
}
MBoundingBox::MBoundingBox(const MPoint& corner1, const MPoint& corner2) : MBoundingBox() {
  expand(corner1);
  expand(corner2);
}
void MBoundingBox::clear() {
  min_ = pointOf(Box().min);
  max_ = pointOf(Box().max);
}
bool MBoundingBox::isEmpty() const {
  return Box(mathOf(min_), mathOf(max_)).isEmpty();
}
void MBoundingBox::transformUsing(const MMatrix& matrix) {
  const Box box = Box(mathOf(min_), mathOf(max_)).transformed(mathOf(matrix));
  min_ = pointOf(box.min);
  max_ = pointOf(box.max);
}
void MBoundingBox::expand(const MPoint& point) {
  Box box(mathOf(min_), mathOf(max_));
  box.add(mathOf(point));
  min_ = pointOf(box.min);
  max_ = pointOf(box.max);
}
void MBoundingBox::expand(const MBoundingBox& other) {
  if (other.isEmpty()) return;
  expand(other.min_);
  expand(other.max_);
}
bool MBoundingBox::contains(const MPoint& point) const {
  return Box(mathOf(min_), mathOf(max_)).contains(mathOf(point));
}
bool MBoundingBox::intersects(const MBoundingBox& box, double tolerance) const {
  Box grown(mathOf(min_), mathOf(max_));
  grown.inflate(tolerance);
  return grown.intersects(Box(mathOf(box.min_), mathOf(box.max_)));
}
double MBoundingBox::width() const {
  return isEmpty() ? 0.0 : max_.x - min_.x;
}
double MBoundingBox::height() const {
  return isEmpty() ? 0.0 : max_.y - min_.y;
}
double MBoundingBox::depth() const {
  return isEmpty() ? 0.0 : max_.z - min_.z;
}
MPoint MBoundingBox::center() const {
  return pointOf(Box(mathOf(min_), mathOf(max_)).center());
}
MPoint MBoundingBox::min() const {
  return isEmpty() ? MPoint::origin : min_;
}
MPoint MBoundingBox::max() const {
  return isEmpty() ? MPoint::origin : max_;
}

std::ostream& operator<<(std::ostream& os, const MBoundingBox& box) {
  return os << '[' << box.min() << ", " << box.max() << ']';
}
