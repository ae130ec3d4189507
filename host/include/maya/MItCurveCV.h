#pragma once

#include <maya/MDagPath.h>
#include <maya/MObject.h>
#include <maya/MPoint.h>
#include <maya/MSpace.h>
#include <maya/MStatus.h>
#include <maya/MTypes.h>
#include <maya/MVector.h>
#include <maya/detail/Handle.h>

/// Visits the control points of a curve. What is moved is written at the end of a walk, by `reset`,
/// `updateCurve` and with the iterator.
class MItCurveCV {
 public:
  MItCurveCV(MObject& curve, MStatus* status = nullptr);
  MItCurveCV(const MDagPath& curve, const MObject& component = MObject::kNullObj,
             MStatus* status = nullptr);

  bool isDone(MStatus* status = nullptr) const;
  MStatus next();
  MStatus reset();
  MStatus reset(MObject& curve);
  MStatus reset(const MDagPath& curve, const MObject& component = MObject::kNullObj);
  int index(MStatus* status = nullptr) const;
  MPoint position(MSpace::Space space = MSpace::kObject, MStatus* status = nullptr) const;
  MStatus setPosition(const MPoint& point, MSpace::Space space = MSpace::kObject);
  MStatus translateBy(const MVector& vector, MSpace::Space space = MSpace::kObject);
  MStatus updateCurve();
  bool hasHistoryOnCreate(MStatus* status = nullptr) const;

 private:
  host::api::Handle handle_;
};
