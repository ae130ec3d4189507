#pragma once

#include <maya/MDagPath.h>
#include <maya/MIntArray.h>
#include <maya/MObject.h>
#include <maya/MPoint.h>
#include <maya/MSpace.h>
#include <maya/MStatus.h>
#include <maya/MTypes.h>
#include <maya/detail/Handle.h>

/// Visits the edges of a mesh, or those of a component.
class MItMeshEdge {
 public:
  MItMeshEdge(const MObject& polyObject, MStatus* status = nullptr);
  /// The components of a mesh that is named by its node or data.
  MItMeshEdge(const MObject& polyObject, const MObject& component, MStatus* status = nullptr);
  MItMeshEdge(const MDagPath& polyObject, const MObject& component = MObject::kNullObj,
              MStatus* status = nullptr);
  MItMeshEdge(const MItMeshEdge&) = delete;
  MItMeshEdge& operator=(const MItMeshEdge&) = delete;

  MStatus reset();
  MStatus reset(const MObject& polyObject);
  MStatus reset(const MDagPath& polyObject, const MObject& component = MObject::kNullObj);
  MStatus next();
  bool isDone(MStatus* status = nullptr) const;
  int count(MStatus* status = nullptr) const;
  int index(MStatus* status = nullptr) const;
  /// Returns the vertex at end 0 or 1 of the edge.
  int index(int vertexNum, MStatus* status = nullptr) const;
  MStatus setIndex(int index, int& prevIndex);
  MObject edge(MStatus* status = nullptr) const;
  MObject currentItem(MStatus* status = nullptr) const;

  MPoint point(int index, MSpace::Space space = MSpace::kObject, MStatus* status = nullptr) const;
  MStatus setPoint(const MPoint& point, unsigned int index, MSpace::Space space = MSpace::kObject);
  MPoint center(MSpace::Space space = MSpace::kObject, MStatus* status = nullptr) const;
  MStatus getLength(double& length, MSpace::Space space = MSpace::kObject) const;
  bool isSmooth(MStatus* status = nullptr) const;
  MStatus setSmoothing(bool smooth = true);
  MStatus cleanupSmoothing();

  MStatus numConnectedFaces(int& faceCount) const;
  MStatus numConnectedEdges(int& edgeCount) const;
  int getConnectedFaces(MIntArray& faceList, MStatus* status = nullptr) const;
  int getConnectedEdges(MIntArray& edgeList, MStatus* status = nullptr) const;
  bool connectedToFace(int faceId, MStatus* status = nullptr) const;
  bool connectedToEdge(int edgeId, MStatus* status = nullptr) const;
  bool onBoundary(MStatus* status = nullptr) const;
  MStatus updateSurface();

 private:
  friend struct host::api::Access;
  host::api::Handle handle_;
};
