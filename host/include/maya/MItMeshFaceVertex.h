#pragma once

#include <maya/MColor.h>
#include <maya/MDagPath.h>
#include <maya/MObject.h>
#include <maya/MPoint.h>
#include <maya/MSpace.h>
#include <maya/MStatus.h>
#include <maya/MString.h>
#include <maya/MTypes.h>
#include <maya/MVector.h>
#include <maya/detail/Handle.h>

/// Visits the face corners of a mesh, or those of a component.
class MItMeshFaceVertex {
 public:
  MItMeshFaceVertex(const MObject& polyObject, MStatus* status = nullptr);
  /// The components of a mesh that is named by its node or data.
  MItMeshFaceVertex(const MObject& polyObject, const MObject& component, MStatus* status = nullptr);
  MItMeshFaceVertex(const MDagPath& polyObject, const MObject& component = MObject::kNullObj,
                    MStatus* status = nullptr);
  MItMeshFaceVertex(const MItMeshFaceVertex&) = delete;
  MItMeshFaceVertex& operator=(const MItMeshFaceVertex&) = delete;

  MStatus reset();
  MStatus reset(const MObject& polyObject);
  MStatus reset(const MDagPath& polyObject, const MObject& component = MObject::kNullObj);
  MStatus next();
  bool isDone(MStatus* status = nullptr) const;
  MStatus setIndex(int faceId, int vertexId, int& prevFaceId, int& prevVertexId);
  MObject currentItem(MStatus* status = nullptr) const;
  MObject faceVertex(MStatus* status = nullptr) const { return currentItem(status); }
  int faceId(MStatus* status = nullptr) const;
  int vertId(MStatus* status = nullptr) const;
  /// Returns the corner's position within its face.
  int faceVertId(MStatus* status = nullptr) const;

  MPoint position(MSpace::Space space = MSpace::kObject, MStatus* status = nullptr) const;
  MStatus getNormal(MVector& normal, MSpace::Space space = MSpace::kObject) const;
  int normalId(MStatus* status = nullptr) const;
  MVector getTangent(MSpace::Space space = MSpace::kObject, const MString* uvSet = nullptr,
                     MStatus* status = nullptr) const;
  MVector getBinormal(MSpace::Space space = MSpace::kObject, const MString* uvSet = nullptr,
                      MStatus* status = nullptr) const;
  int tangentId(MStatus* status = nullptr) const;

  bool hasUVs(MStatus* status = nullptr) const;
  bool hasUVs(const MString& uvSet, MStatus* status = nullptr) const;
  MStatus getUV(float2& uvPoint, const MString* uvSet = nullptr) const;
  MStatus getUVIndex(int& uvIndex, const MString* uvSet = nullptr) const;
  MStatus getUVIndex(int& uvIndex, float& u, float& v, const MString* uvSet = nullptr) const;
  bool hasColor(MStatus* status = nullptr) const;
  bool hasColor(const MString& colorSet, MStatus* status = nullptr) const;
  MStatus getColor(MColor& color, const MString* colorSet = nullptr) const;
  MStatus getColorIndex(int& colorIndex, const MString* colorSet = nullptr) const;
  MStatus geomChanged();

 private:
  friend struct host::api::Access;
  host::api::Handle handle_;
};
