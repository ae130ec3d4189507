#pragma once

#include <maya/MColor.h>
#include <maya/MColorArray.h>
#include <maya/MDagPath.h>
#include <maya/MFloatArray.h>
#include <maya/MIntArray.h>
#include <maya/MObject.h>
#include <maya/MPoint.h>
#include <maya/MPointArray.h>
#include <maya/MSpace.h>
#include <maya/MStatus.h>
#include <maya/MString.h>
#include <maya/MTypes.h>
#include <maya/MVector.h>
#include <maya/MVectorArray.h>
#include <maya/detail/Handle.h>

/// Visits the vertices of a mesh, or those of a component.
class MItMeshVertex {
 public:
  MItMeshVertex(const MObject& polyObject, MStatus* status = nullptr);
  /// The components of a mesh that is named by its node or data.
  MItMeshVertex(const MObject& polyObject, const MObject& component, MStatus* status = nullptr);
  MItMeshVertex(const MDagPath& polyObject, const MObject& component = MObject::kNullObj,
                MStatus* status = nullptr);
  MItMeshVertex(const MItMeshVertex&) = delete;
  MItMeshVertex& operator=(const MItMeshVertex&) = delete;

  MStatus reset();
  MStatus reset(const MObject& polyObject);
  MStatus reset(const MDagPath& polyObject, const MObject& component = MObject::kNullObj);
  MStatus next();
  bool isDone(MStatus* status = nullptr) const;
  int count(MStatus* status = nullptr) const;
  int index(MStatus* status = nullptr) const;
  /// Jumps to a vertex; `prevIndex` gets the one that was current.
  MStatus setIndex(int index, int& prevIndex);
  MObject vertex(MStatus* status = nullptr) const;
  MObject currentItem(MStatus* status = nullptr) const;

  MPoint position(MSpace::Space space = MSpace::kObject, MStatus* status = nullptr) const;
  MStatus setPosition(const MPoint& point, MSpace::Space space = MSpace::kObject);
  MStatus translateBy(const MVector& vector, MSpace::Space space = MSpace::kObject);
  MStatus getNormal(MVector& vector, MSpace::Space space = MSpace::kObject) const;
  MStatus getNormal(MVector& vector, int polygonId, MSpace::Space space = MSpace::kObject) const;
  MStatus getNormals(MVectorArray& vectorArray, MSpace::Space space = MSpace::kObject) const;
  MStatus getNormalIndices(MIntArray& normals) const;

  MStatus getConnectedFaces(MIntArray& faces) const;
  MStatus getConnectedEdges(MIntArray& edges) const;
  MStatus getConnectedVertices(MIntArray& vertices) const;
  MStatus getOppositeVertex(int& vertexId, int edgeId) const;
  MStatus numConnectedFaces(int& faceCount) const;
  MStatus numConnectedEdges(int& edgeCount) const;
  bool connectedToFace(int faceId, MStatus* status = nullptr) const;
  bool connectedToEdge(int edgeId, MStatus* status = nullptr) const;
  bool onBoundary(MStatus* status = nullptr) const;

  MStatus getUV(float2& uvPoint, const MString* uvSet = nullptr) const;
  MStatus setUV(float2& uvPoint, const MString* uvSet = nullptr);
  MStatus getUVs(MFloatArray& uArray, MFloatArray& vArray, MIntArray& faceIds,
                 const MString* uvSet = nullptr) const;
  MStatus setUVs(MFloatArray& uArray, MFloatArray& vArray, MIntArray& faceIds,
                 const MString* uvSet = nullptr);
  MStatus getUVIndices(MIntArray& uvIndices, const MString* uvSet = nullptr) const;
  MStatus numUVs(int& uvCount, const MString* uvSet = nullptr) const;

  bool hasColor(MStatus* status = nullptr) const;
  bool hasColor(int faceIndex, MStatus* status = nullptr) const;
  MStatus getColor(MColor& color, const MString* colorSet = nullptr) const;
  MStatus getColor(MColor& color, int faceIndex, const MString* colorSet = nullptr) const;
  MStatus getColors(MColorArray& colors, const MString* colorSet = nullptr) const;
  MStatus getColorIndices(MIntArray& colorIndices, const MString* colorSet = nullptr) const;

  MStatus updateSurface();
  MStatus geomChanged();

 private:
  friend struct host::api::Access;
  host::api::Handle handle_;
};
