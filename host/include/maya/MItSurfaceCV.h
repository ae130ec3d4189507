#pragma once

#include <maya/MDagPath.h>
#include <maya/MObject.h>
#include <maya/MPoint.h>
#include <maya/MSpace.h>
#include <maya/MStatus.h>
#include <maya/MTypes.h>
#include <maya/MVector.h>
#include <maya/detail/Handle.h>

/// Visits the control points of a surface row by row: along V within a row, the rows along U.
///
/// With `next` alone all are visited. After the last of a row `isRowDone` is true until `nextRow`.
/// With `useSeam` the points that a periodic direction repeats are not visited and go with those
/// that they repeat. What is moved is written at the end of a walk, by `reset`, `updateSurface` and
/// with the iterator.
class MItSurfaceCV {
 public:
  MItSurfaceCV(MObject& surface, bool useSeam = true, MStatus* status = nullptr);
  /// Components of control points are none yet: all points are visited.
  MItSurfaceCV(const MDagPath& surface, const MObject& component = MObject::kNullObj,
               bool useSeam = true, MStatus* status = nullptr);

  bool isDone(MStatus* status = nullptr) const;
  MStatus next();
  MStatus nextRow();
  bool isRowDone(MStatus* status = nullptr) const;
  MStatus reset();
  MStatus reset(MObject& surface, bool useSeam = true);
  MStatus reset(const MDagPath& surface, const MObject& component, bool useSeam = true);
  MPoint position(MSpace::Space space = MSpace::kObject, MStatus* status = nullptr) const;
  MStatus setPosition(const MPoint& point, MSpace::Space space = MSpace::kObject);
  MStatus translateBy(const MVector& vector, MSpace::Space space = MSpace::kObject);
  /// The number of the point in the surface: u * points along V + v.
  int index(MStatus* status = nullptr) const;
  MStatus getIndex(int& indexU, int& indexV) const;
  MStatus updateSurface();
  bool hasHistoryOnCreate(MStatus* status = nullptr) const;

 private:
  host::api::Handle handle_;
};
