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

/// Visits the faces of a mesh, or those of a component.
class MItMeshPolygon {
 public:
  MItMeshPolygon(const MObject& polyObject, MStatus* status = nullptr);
  /// The components of a mesh that is named by its node or data.
  MItMeshPolygon(const MObject& polyObject, const MObject& component, MStatus* status = nullptr);
  MItMeshPolygon(const MDagPath& polyObject, const MObject& component = MObject::kNullObj,
                 MStatus* status = nullptr);
  MItMeshPolygon(const MItMeshPolygon&) = delete;
  MItMeshPolygon& operator=(const MItMeshPolygon&) = delete;

  MStatus reset();
  MStatus reset(const MObject& polyObject);
  MStatus reset(const MDagPath& polyObject, const MObject& component = MObject::kNullObj);
  MStatus next();
  bool isDone(MStatus* status = nullptr) const;
  int count(MStatus* status = nullptr) const;
  unsigned int index(MStatus* status = nullptr) const;
  MStatus setIndex(int index, int& prevIndex);
  MObject polygon(MStatus* status = nullptr) const;
  MObject currentItem(MStatus* status = nullptr) const;

  MPoint center(MSpace::Space space = MSpace::kObject, MStatus* status = nullptr) const;
  unsigned int polygonVertexCount(MStatus* status = nullptr) const;
  /// Returns the id of the face's corner vertex number `index`.
  int vertexIndex(int index, MStatus* status = nullptr) const;
  MStatus getVertices(MIntArray& vertices) const;
  MStatus getEdges(MIntArray& edges) const;
  MPoint point(int index, MSpace::Space space = MSpace::kObject, MStatus* status = nullptr) const;
  void getPoints(MPointArray& pointArray, MSpace::Space space = MSpace::kObject,
                 MStatus* status = nullptr) const;
  MStatus setPoint(const MPoint& point, unsigned int index, MSpace::Space space = MSpace::kObject);
  MStatus setPoints(const MPointArray& pointArray, MSpace::Space space = MSpace::kObject);
  MStatus getNormal(MVector& normal, MSpace::Space space = MSpace::kObject) const;
  MStatus getNormal(unsigned int localVertexIndex, MVector& normal,
                    MSpace::Space space = MSpace::kObject) const;
  MStatus getNormals(MVectorArray& vectorArray, MSpace::Space space = MSpace::kObject) const;
  unsigned int normalIndex(int localVertexIndex, MStatus* status = nullptr) const;
  unsigned int tangentIndex(int localVertexIndex, MStatus* status = nullptr) const;

  MStatus getConnectedFaces(MIntArray& faces) const;
  MStatus getConnectedEdges(MIntArray& edges) const;
  MStatus getConnectedVertices(MIntArray& vertices) const;
  MStatus numConnectedFaces(int& faceCount) const;
  MStatus numConnectedEdges(int& edgeCount) const;
  bool isConnectedToFace(int faceId, MStatus* status = nullptr) const;
  bool isConnectedToEdge(int edgeId, MStatus* status = nullptr) const;
  bool isConnectedToVertex(int vertexId, MStatus* status = nullptr) const;
  bool onBoundary(MStatus* status = nullptr) const;
  bool isConvex(MStatus* status = nullptr) const;
  bool isStarlike(MStatus* status = nullptr) const;
  bool isPlanar(MStatus* status = nullptr) const;
  bool isLamina(MStatus* status = nullptr) const;
  bool isHoled(MStatus* status = nullptr) const;
  MStatus getArea(double& area, MSpace::Space space = MSpace::kObject) const;
  bool zeroArea(MStatus* status = nullptr) const;

  bool hasValidTriangulation(MStatus* status = nullptr) const;
  MStatus numTriangles(int& count) const;
  MStatus getTriangle(int localTriIndex, MPointArray& points, MIntArray& vertexList,
                      MSpace::Space space = MSpace::kObject) const;
  MStatus getTriangles(MPointArray& points, MIntArray& vertexList,
                       MSpace::Space space = MSpace::kObject) const;

  bool hasUVs(MStatus* status = nullptr) const;
  bool hasUVs(const MString& uvSet, MStatus* status = nullptr) const;
  MStatus getUV(int vertexId, float2& uvPoint, const MString* uvSet = nullptr) const;
  MStatus setUV(int vertexId, float2& uvPoint, const MString* uvSet = nullptr);
  MStatus getUVs(MFloatArray& uArray, MFloatArray& vArray, const MString* uvSet = nullptr) const;
  MStatus setUVs(MFloatArray& uArray, MFloatArray& vArray, const MString* uvSet = nullptr);
  MStatus getUVIndex(int vertexId, int& uvIndex, const MString* uvSet = nullptr) const;
  MStatus getUVIndex(int vertexId, int& uvIndex, float& u, float& v,
                     const MString* uvSet = nullptr) const;
  MStatus getPointAtUV(MPoint& point, float2& uvPoint, MSpace::Space space = MSpace::kObject,
                       const MString* uvSet = nullptr, float tolerance = 0.0F) const;
  MStatus getUVAtPoint(MPoint& point, float2& uvPoint, MSpace::Space space = MSpace::kObject,
                       const MString* uvSet = nullptr) const;
  MStatus getAxisAtUV(MVector& normal, MVector& uDir, MVector& vDir, float2& uvPoint,
                      MSpace::Space space = MSpace::kObject, const MString* uvSet = nullptr,
                      float tolerance = 0.0F) const;
  MStatus getUVArea(double& area, const MString* uvSet = nullptr) const;
  bool zeroUVArea(MStatus* status = nullptr) const;
  bool zeroUVArea(const MString& uvSet, MStatus* status = nullptr) const;
  bool isUVReversed(MStatus* status = nullptr) const;
  bool isUVReversed(const MString& uvSet, MStatus* status = nullptr) const;
  MStatus getUVSetNames(class MStringArray& setNames) const;

  bool hasColor(MStatus* status = nullptr) const;
  bool hasColor(int localVertexIndex, MStatus* status = nullptr) const;
  MStatus getColor(MColor& color, const MString* colorSet = nullptr) const;
  MStatus getColor(MColor& color, int vertexIndex) const;
  MStatus getColors(MColorArray& colors, const MString* colorSet = nullptr) const;
  MStatus numColors(int& count, const MString* colorSet = nullptr) const;
  MStatus getColorIndex(int vertexIndex, int& colorIndex, const MString* colorSet = nullptr) const;
  MStatus getColorIndices(MIntArray& colorIndices, const MString* colorSet = nullptr) const;

  MStatus updateSurface();
  MStatus geomChanged();

 private:
  friend struct host::api::Access;
  host::api::Handle handle_;
};
