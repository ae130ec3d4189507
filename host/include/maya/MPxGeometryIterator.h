#pragma once

#include <maya/MObject.h>
#include <maya/MObjectArray.h>
#include <maya/MPoint.h>

#include <vector>

/// Base of the classes that walk over the points of a plug-in's shape: the host reads and sets
/// points through one that `MPxSurfaceShape::geometryIteratorSetup` makes.
///
/// The place is a number from 0 up to `maxPoints`; with components only theirs are visited, by
/// their own numbers. A class says where a point is (`point`), how many there are (`setMaxPoints`
/// from `reset`) and, where they can be moved, takes places (`setPoint`).
class MPxGeometryIterator {
 public:
  MPxGeometryIterator(void* userGeometry, MObjectArray& components);
  MPxGeometryIterator(void* userGeometry, MObject& components);
  virtual ~MPxGeometryIterator();
  MPxGeometryIterator(const MPxGeometryIterator&) = delete;
  MPxGeometryIterator& operator=(const MPxGeometryIterator&) = delete;

  virtual bool isDone() const;
  virtual void next();
  /// Back to the first point. What overrides it calls it.
  virtual void reset();
  /// The point that is visited, as a component of one vertex.
  virtual void component(MObject& component);
  virtual bool hasPoints() const;
  virtual int iteratorCount() const;
  virtual MPoint point() const;
  virtual void setPoint(const MPoint& point) const;
  /// Sets the point and goes on to the next, whose number it returns.
  virtual int setPointGetNext(MPoint& point);
  /// The number of the visited point in the whole geometry.
  virtual int index() const;
  virtual bool hasNormals() const;
  virtual int indexUnsimplified() const;

 protected:
  int currentPoint() const { return current_; }
  void setCurrentPoint(int point) { current_ = point; }
  int maxPoints() const { return max_; }
  void setMaxPoints(int count) { max_ = count; }
  void* geometry() const { return geometry_; }

 private:
  void take(const MObject& component);
  void* geometry_;
  int current_ = 0, max_ = 0;
  bool isSome_ = false;
  std::vector<int> some_;  ///< of components: the numbers to visit, ascending
};
