#pragma once

#include <maya/MDagPath.h>
#include <maya/MDataHandle.h>
#include <maya/MObject.h>
#include <maya/MPoint.h>
#include <maya/MPointArray.h>
#include <maya/MSpace.h>
#include <maya/MStatus.h>
#include <maya/MVector.h>
#include <maya/detail/Handle.h>

/// Visits the points of a mesh, of a curve or of a plug-in's shape, or those of a component.
class MItGeometry {
 public:
  MItGeometry(const MDagPath& dagPath, MStatus* status = nullptr);
  MItGeometry(const MDagPath& dagPath, const MObject& component, MStatus* status = nullptr);
  MItGeometry(const MObject& geometry, MStatus* status = nullptr);
  /// The points of geometry that a computation reads or, unless `readOnly`, changes.
  MItGeometry(MDataHandle& dataHandle, unsigned int groupId, bool readOnly = true,
              MStatus* status = nullptr);
  MItGeometry(MDataHandle& dataHandle, bool readOnly = true, MStatus* status = nullptr);
  MItGeometry(const MItGeometry& other);
  ~MItGeometry();
  MItGeometry& operator=(const MItGeometry&) = delete;

  bool isDone(MStatus* status = nullptr) const;
  MStatus next();
  MStatus reset();
  MPoint position(MSpace::Space space = MSpace::kObject, MStatus* status = nullptr) const;
  MStatus setPosition(const MPoint& point, MSpace::Space space = MSpace::kObject);
  MVector normal(MStatus* status = nullptr) const;
  /// The number of the point in the whole geometry.
  int index(MStatus* status = nullptr) const;
  /// The number of the point among those that are visited.
  int positionIndex(MStatus* status = nullptr) const;
  int count(MStatus* status = nullptr) const;
  int exactCount(MStatus* status = nullptr) const;
  MObject component(MStatus* status = nullptr) const;
  MObject currentItem(MStatus* status = nullptr) const;
  MStatus allPositions(MPointArray& points, MSpace::Space space = MSpace::kObject) const;
  MStatus setAllPositions(const MPointArray& points, MSpace::Space space = MSpace::kObject);

 private:
  friend struct host::api::Access;
  host::api::Handle handle_;
};
