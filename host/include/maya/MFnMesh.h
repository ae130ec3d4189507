#pragma once

#include <maya/MBoundingBox.h>
#include <maya/MColor.h>
#include <maya/MColorArray.h>
#include <maya/MDagPath.h>
#include <maya/MDoubleArray.h>
#include <maya/MFloatArray.h>
#include <maya/MFloatPoint.h>
#include <maya/MFloatPointArray.h>
#include <maya/MFloatVector.h>
#include <maya/MFloatVectorArray.h>
#include <maya/MFnDagNode.h>
#include <maya/MIntArray.h>
#include <maya/MMeshIsectAccelParams.h>
#include <maya/MMeshSmoothOptions.h>
#include <maya/MObject.h>
#include <maya/MObjectArray.h>
#include <maya/MPoint.h>
#include <maya/MPointArray.h>
#include <maya/MSelectionList.h>
#include <maya/MSpace.h>
#include <maya/MString.h>
#include <maya/MStringArray.h>
#include <maya/MTypes.h>
#include <maya/MUintArray.h>
#include <maya/MVector.h>
#include <maya/MVectorArray.h>

class MDGModifier;

#define MFnMesh_kPointTol 1e-3

/// Works on polygon meshes: on a mesh node, an instance of one (through a path), or mesh data.
///
/// Components are numbered from 0. Calls that change a node with construction history change its
/// tweaks. Spaces other than object space need a path.
class MFnMesh : public MFnDagNode {
 public:
  enum BoolOperation { kUnion = 1, kDifference, kIntersection };
  enum SplitPlacement { kOnEdge, kInternalPoint, kInvalid };
  enum MColorRepresentation { kAlpha = 1, kRGB = 3, kRGBA = 4 };
  enum BorderInfo { kInteriorCompList, kGeomBorder, kUVBorder };

  MFnMesh() = default;
  MFnMesh(const MObject& object, MStatus* status = nullptr) { attach(object, status); }
  MFnMesh(const MDagPath& path, MStatus* status = nullptr) { attach(path, status); }
  MFn::Type type() const override { return MFn::kMesh; }

  // Making meshes. Without a parent a transform is made and returned; a data parent (from
  // MFnMeshData) receives the mesh.
  using MFnDagNode::create;
  MObject create(int numVertices, int numPolygons, const MPointArray& vertexArray,
                 const MIntArray& polygonCounts, const MIntArray& polygonConnects,
                 MObject parentOrOwner = MObject::kNullObj, MStatus* status = nullptr);
  MObject create(int numVertices, int numPolygons, const MFloatPointArray& vertexArray,
                 const MIntArray& polygonCounts, const MIntArray& polygonConnects,
                 MObject parentOrOwner = MObject::kNullObj, MStatus* status = nullptr);
  MObject create(int numVertices, int numPolygons, const MPointArray& vertexArray,
                 const MIntArray& polygonCounts, const MIntArray& polygonConnects,
                 const MFloatArray& uArray, const MFloatArray& vArray,
                 MObject parentOrOwner = MObject::kNullObj, MStatus* status = nullptr);
  MObject create(int numVertices, int numPolygons, const MFloatPointArray& vertexArray,
                 const MIntArray& polygonCounts, const MIntArray& polygonConnects,
                 const MFloatArray& uArray, const MFloatArray& vArray,
                 MObject parentOrOwner = MObject::kNullObj, MStatus* status = nullptr);
  MStatus createInPlace(int numVertices, int numPolygons, const MPointArray& vertexArray,
                        const MIntArray& polygonCounts, const MIntArray& polygonConnects);
  MStatus createInPlace(int numVertices, int numPolygons, const MFloatPointArray& vertexArray,
                        const MIntArray& polygonCounts, const MIntArray& polygonConnects);
  MObject copy(const MObject& source, MObject parentOrOwner = MObject::kNullObj,
               MStatus* status = nullptr);
  MStatus copyInPlace(const MObject& source);
  /// Adds a face; `mergeVertices` reuses vertices that lie within `pointTolerance`.
  MObject addPolygon(const MPointArray& vertexArray, bool mergeVertices = true,
                     double pointTolerance = MFnMesh_kPointTol,
                     MObject parentOrOwner = MObject::kNullObj, MStatus* status = nullptr);
  MObject addPolygon(const MPointArray& vertexArray, int& faceIndex, bool mergeVertices = true,
                     double pointTolerance = MFnMesh_kPointTol,
                     MObject parentOrOwner = MObject::kNullObj, MStatus* status = nullptr);
  /// Fails: faces have one loop here.
  MStatus addHoles(int faceIndex, const MPointArray& vertexArray, const MIntArray& loopCounts,
                   bool mergeVertices = true, double pointTolerance = MFnMesh_kPointTol);
  MStatus deleteFace(int index, MDGModifier* modifier = nullptr);
  MStatus deleteEdge(int index, MDGModifier* modifier = nullptr);
  MStatus deleteVertex(int index, MDGModifier* modifier = nullptr);
  /// Cuts faces along a path of places, each a `SplitPlacement`: on the next edge of `edgeList` at
  /// its factor from the edge's first vertex, or at the next inside point (object space). The path
  /// begins and ends on edges.
  MStatus split(const MIntArray& placements, const MIntArray& edgeList,
                const MFloatArray& edgeFactors, const MFloatPointArray& internalPoints);
  MStatus subdivideFaces(const MIntArray& faceList, int divisions = 1);
  MStatus subdivideEdges(const MIntArray& edgeList, int divisions = 1);
  MStatus extrudeFaces(const MIntArray& faceList, int extrusionCount = 1,
                       const MFloatVector* translation = nullptr, bool extrudeTogether = true,
                       float thickness = 0.0F, float offset = 0.0F);
  MStatus extrudeEdges(const MIntArray& edgeList, int extrusionCount = 1,
                       const MFloatVector* translation = nullptr, bool extrudeTogether = true,
                       float thickness = 0.0F, float offset = 0.0F);
  MStatus duplicateFaces(const MIntArray& faceList, const MFloatVector* translation = nullptr);
  MStatus extractFaces(const MIntArray& faceList, const MFloatVector* translation = nullptr);
  MStatus collapseFaces(const MIntArray& faceList);
  MStatus collapseEdges(const MIntArray& edgeList);
  /// Fails: there are no Boolean operations here.
  MStatus booleanOp(BoolOperation op, MFnMesh& mesh1, MFnMesh& mesh2);
  MObject generateSmoothMesh(MObject parentOrOwner = MObject::kNullObj,
                             MMeshSmoothOptions* options = nullptr, MStatus* status = nullptr);
  MStatus getSmoothMeshDisplayOptions(MMeshSmoothOptions& options) const;
  MStatus setSmoothMeshDisplayOptions(const MMeshSmoothOptions& options);

  // Counts.
  int numVertices(MStatus* status = nullptr) const;
  int numEdges(MStatus* status = nullptr) const;
  int numPolygons(MStatus* status = nullptr) const;
  int numFaceVertices(MStatus* status = nullptr) const;
  int polygonVertexCount(int polygonId, MStatus* status = nullptr) const;
  bool isPolygonConvex(int faceIndex, MStatus* status = nullptr) const;
  bool isEdgeSmooth(int edgeId, MStatus* status = nullptr) const;

  // Connectivity.
  MStatus getVertices(MIntArray& vertexCount, MIntArray& vertexList) const;
  MStatus getPolygonVertices(int polygonId, MIntArray& vertexList) const;
  MStatus getEdgeVertices(int edgeId, int2& vertexList) const;
  MStatus setEdgeSmoothing(int edgeId, bool smooth = true);
  MStatus setEdgeSmoothings(const MIntArray& edgeIds, const MIntArray& smooths);
  MStatus cleanupEdgeSmoothing();
  MStatus getTriangles(MIntArray& triangleCounts, MIntArray& triangleVertices) const;
  MStatus getTriangleOffsets(MIntArray& triangleCounts, MIntArray& triangleIndices) const;
  MStatus getPolygonTriangleVertices(int polygonId, int triangleId, int vertexList[3]) const;
  MStatus getHoles(MIntArray& holeInfo, MIntArray& holeVertices) const;
  MUintArray getInvisibleFaces(MStatus* status = nullptr) const;
  MStatus setInvisibleFaces(const MUintArray& faceIds, bool makeVisible = false);
  bool hasAlphaChannels(MStatus* status = nullptr) const;
  bool onBoundary(int polygonId, MStatus* status = nullptr) const;
  MStatus getAssociatedUVSetTextures(const MString& uvSetName, MObjectArray& textures) const;

  // Points.
  MStatus getPoints(MPointArray& vertexArray, MSpace::Space space = MSpace::kObject) const;
  MStatus getPoints(MFloatPointArray& vertexArray, MSpace::Space space = MSpace::kObject) const;
  MStatus setPoints(const MPointArray& vertexArray, MSpace::Space space = MSpace::kObject);
  MStatus setPoints(const MFloatPointArray& vertexArray, MSpace::Space space = MSpace::kObject);
  MStatus getPoint(int vertexId, MPoint& pos, MSpace::Space space = MSpace::kObject) const;
  MStatus setPoint(int vertexId, const MPoint& pos, MSpace::Space space = MSpace::kObject);
  /// Returns three floats a vertex, object space; valid until the mesh changes.
  const float* getRawPoints(MStatus* status) const;
  const float* getRawDoublePoints(MStatus* status) const;
  MStatus syncObject();
  /// Tells the host that the mesh changed, so that what depends on it is brought up to date.
  MStatus updateSurface();

  // Normals.
  unsigned int numNormals(MStatus* status = nullptr) const;
  MStatus getNormals(MFloatVectorArray& normals, MSpace::Space space = MSpace::kObject) const;
  MStatus setNormals(const MFloatVectorArray& normals, MSpace::Space space = MSpace::kObject);
  const float* getRawNormals(MStatus* status) const;
  MStatus getNormalIds(MIntArray& normalIdCounts, MIntArray& normals) const;
  MStatus getFaceNormalIds(int faceIndex, MIntArray& normals) const;
  MStatus getPolygonNormal(int polygonId, MVector& normal,
                           MSpace::Space space = MSpace::kObject) const;
  MStatus getVertexNormal(int vertexId, bool angleWeighted, MVector& normal,
                          MSpace::Space space = MSpace::kObject) const;
  MStatus getVertexNormal(int vertexId, MVector& normal,
                          MSpace::Space space = MSpace::kObject) const;
  MStatus getVertexNormals(bool angleWeighted, MFloatVectorArray& normals,
                           MSpace::Space space = MSpace::kObject) const;
  MStatus getFaceVertexNormal(int faceIndex, int vertexIndex, MVector& normal,
                              MSpace::Space space = MSpace::kObject) const;
  MStatus getFaceVertexNormals(int faceIndex, MFloatVectorArray& normals,
                               MSpace::Space space = MSpace::kObject) const;
  MStatus setVertexNormal(const MVector& normal, int vertexId,
                          MSpace::Space space = MSpace::kObject, MDGModifier* modifier = nullptr);
  MStatus setVertexNormals(MVectorArray& normals, MIntArray& vertexList,
                           MSpace::Space space = MSpace::kObject, MDGModifier* modifier = nullptr);
  MStatus setFaceVertexNormal(const MVector& normal, int faceId, int vertexId,
                              MSpace::Space space = MSpace::kObject,
                              MDGModifier* modifier = nullptr);
  MStatus setFaceVertexNormals(MVectorArray& normals, MIntArray& faceList, MIntArray& vertexList,
                               MSpace::Space space = MSpace::kObject);
  bool isNormalLocked(int normalId, MStatus* status = nullptr) const;
  MStatus lockVertexNormals(MIntArray& vertexList);
  MStatus lockFaceVertexNormals(MIntArray& faceList, MIntArray& vertexList);
  MStatus unlockVertexNormals(MIntArray& vertexList);
  MStatus unlockFaceVertexNormals(MIntArray& faceList, MIntArray& vertexList);
  MStatus getTangents(MFloatVectorArray& tangents, MSpace::Space space = MSpace::kObject,
                      const MString* uvSet = nullptr) const;
  MStatus getBinormals(MFloatVectorArray& binormals, MSpace::Space space = MSpace::kObject,
                       const MString* uvSet = nullptr) const;
  MStatus getFaceVertexTangent(int faceIndex, int vertexIndex, MVector& tangent,
                               MSpace::Space space = MSpace::kObject,
                               const MString* uvSet = nullptr) const;
  MStatus getFaceVertexBinormal(int faceIndex, int vertexIndex, MVector& binormal,
                                MSpace::Space space = MSpace::kObject,
                                const MString* uvSet = nullptr) const;
  int getTangentId(int faceIndex, int vertexIndex, MStatus* status = nullptr) const;
  bool isRightHandedTangent(int tangentId, const MString* uvSetName = nullptr,
                            MStatus* status = nullptr) const;

  // UVs. A null or missing set name is the current set.
  int numUVSets(MStatus* status = nullptr) const;
  MStatus getUVSetNames(MStringArray& setNames) const;
  MStatus getUVSetFamilyNames(MStringArray& familyNames) const;
  MString currentUVSetName(MStatus* status = nullptr, int instance = -1) const;
  MStatus getCurrentUVSetName(MString& setName, int instance = -1) const;
  MStatus setCurrentUVSetName(const MString& setName, MDGModifier* modifier = nullptr,
                              MSelectionList* currentSelection = nullptr);
  MString createUVSetWithName(const MString& uvSetName, MDGModifier* modifier = nullptr,
                              MStatus* status = nullptr, const MUintArray* instances = nullptr);
  MStatus createUVSet(MString& uvSetName, MDGModifier* modifier = nullptr,
                      const MUintArray* instances = nullptr);
  MStatus createUVSetDataMesh(MString& uvSetName);
  MString copyUVSetWithName(const MString& fromName, const MString& toName,
                            MDGModifier* modifier = nullptr, MStatus* status = nullptr);
  MStatus copyUVSet(const MString& fromName, MString& toName, MDGModifier* modifier = nullptr);
  MStatus renameUVSet(const MString& origName, MString& newName, MDGModifier* modifier = nullptr);
  MStatus deleteUVSet(const MString& setName, MDGModifier* modifier = nullptr,
                      MSelectionList* currentSelection = nullptr);
  int numUVs(MStatus* status = nullptr) const;
  int numUVs(const MString& uvSet, MStatus* status = nullptr) const;
  MStatus getUVs(MFloatArray& uArray, MFloatArray& vArray, const MString* uvSet = nullptr) const;
  MStatus setUVs(const MFloatArray& uArray, const MFloatArray& vArray,
                 const MString* uvSet = nullptr);
  MStatus getUV(int uvId, float& u, float& v, const MString* uvSet = nullptr) const;
  MStatus setUV(int uvId, float u, float v, const MString* uvSet = nullptr);
  MStatus getPolygonUV(int polygonId, int vertexIndex, float& u, float& v,
                       const MString* uvSet = nullptr) const;
  MStatus getPolygonUVid(int polygonId, int vertexIndex, int& uvId,
                         const MString* uvSet = nullptr) const;
  MStatus assignUV(int polygonId, int vertexIndex, int uvId, const MString* uvSet = nullptr);
  /// Assigns UV ids to face corners: a count a face (0 leaves the face without UVs) and the ids one
  /// after the other.
  MStatus assignUVs(const MIntArray& uvCounts, const MIntArray& uvIds,
                    const MString* uvSet = nullptr);
  MStatus getAssignedUVs(MIntArray& uvCounts, MIntArray& uvIds,
                         const MString* uvSet = nullptr) const;
  MStatus clearUVs(const MString* uvSet = nullptr);
  MStatus getUvShellsIds(MIntArray& uvShellIds, unsigned int& nbUvShells,
                         const MString* uvSet = nullptr) const;
  MStatus getPointAtUV(int polygonId, MPoint& toThisPoint, const float2& uvPoint,
                       MSpace::Space space = MSpace::kObject, const MString* uvSet = nullptr,
                       float tolerance = 0.0F) const;
  MStatus getPointsAtUV(MIntArray& polygonIds, MPointArray& points, const float2& uvPoint,
                        MSpace::Space space = MSpace::kObject, const MString* uvSet = nullptr,
                        float tolerance = 1e-5F) const;
  /// Finds the face that covers a place in the map, the lowest one where faces lie on each other.
  /// Fails, with -1, where there is none. The order of the arguments is this host's.
  MStatus intersectFaceAtUV(const float2& uvPoint, int& faceId, const MString* uvSet = nullptr,
                            float tolerance = 1e-5F) const;
  MStatus getUVAtPoint(const MPoint& toThisPoint, float2& uvPoint,
                       MSpace::Space space = MSpace::kObject, const MString* uvSet = nullptr,
                       int* closestPolygon = nullptr) const;
  MStatus getAxisAtPoint(MPoint& point, MVector& normal, MVector& uDir, MVector& vDir,
                         MSpace::Space space = MSpace::kObject, const MString* uvSet = nullptr,
                         int* closestPolygon = nullptr) const;
  MStatus getUVBorderEdges(unsigned int setId, MIntArray& edgeList) const;

  // Colours. A null or missing set name is the current set.
  int numColorSets(MStatus* status = nullptr) const;
  MStatus getColorSetNames(MStringArray& setNames) const;
  MString currentColorSetName(int instance = -1, MStatus* status = nullptr) const;
  MStatus getCurrentColorSetName(MString& setName, int instance = -1) const;
  MStatus setCurrentColorSetName(const MString& setName, MDGModifier* modifier = nullptr,
                                 MSelectionList* currentSelection = nullptr);
  MString createColorSetWithName(const MString& colorSetName, MDGModifier* modifier = nullptr,
                                 MStatus* status = nullptr);
  MString createColorSetWithName(const MString& colorSetName, MDGModifier* modifier,
                                 const MUintArray* instances, MStatus* status = nullptr);
  MStatus createColorSet(MString& colorSetName, MDGModifier* modifier = nullptr,
                         const MUintArray* instances = nullptr);
  MStatus createColorSet(MString& colorSetName, MDGModifier* modifier, bool clamped,
                         MColorRepresentation rep = kRGBA, const MUintArray* instances = nullptr);
  MStatus deleteColorSet(const MString& setName, MDGModifier* modifier = nullptr,
                         MSelectionList* currentSelection = nullptr);
  MColorRepresentation getColorRepresentation(const MString& colorSet,
                                              MStatus* status = nullptr) const;
  bool isColorClamped(const MString& colorSet, MStatus* status = nullptr) const;
  int numColors(MStatus* status = nullptr) const;
  int numColors(const MString& colorSet, MStatus* status = nullptr) const;
  MStatus getColors(MColorArray& colors, const MString* colorSet = nullptr,
                    const MColor* defaultUnsetColor = nullptr) const;
  MStatus setColors(const MColorArray& colors, const MString* colorSet = nullptr);
  MStatus getColor(int colorId, MColor& color, const MString* colorSet = nullptr,
                   const MColor* defaultUnsetColor = nullptr) const;
  MStatus setColor(int colorId, const MColor& color, const MString* colorSet = nullptr);
  MStatus assignColor(int polygonId, int vertexIndex, int colorId,
                      const MString* colorSet = nullptr);
  MStatus assignColors(const MIntArray& colorIds, const MString* colorSet = nullptr);
  MStatus clearColors(const MString* colorSet = nullptr);
  MStatus getColorIndex(int faceIndex, int localVertexIndex, int& colorIndex,
                        const MString* colorSet = nullptr) const;
  MStatus getFaceVertexColorIndex(int faceIndex, int localVertexIndex, int& colorIndex,
                                  const MString* colorSet = nullptr) const;
  MStatus getVertexColors(MColorArray& colors, const MString* colorSet = nullptr,
                          const MColor* defaultUnsetColor = nullptr) const;
  MStatus getFaceVertexColors(MColorArray& colors, const MString* colorSet = nullptr,
                              const MColor* defaultUnsetColor = nullptr) const;
  MStatus setVertexColor(const MColor& color, int vertexId, MDGModifier* modifier = nullptr);
  MStatus setVertexColors(const MColorArray& colors, const MIntArray& vertexList,
                          MDGModifier* modifier = nullptr);
  MStatus setVertexColors(const MColorArray& colors, const MIntArray& vertexList,
                          MDGModifier* modifier, MColorRepresentation rep);
  MStatus setFaceColor(const MColor& color, int faceId);
  MStatus setFaceColors(const MColorArray& colors, const MIntArray& faceList);
  MStatus setFaceVertexColor(const MColor& color, int faceId, int vertexId,
                             MDGModifier* modifier = nullptr);
  MStatus setFaceVertexColors(const MColorArray& colors, const MIntArray& faceList,
                              const MIntArray& vertexList, MDGModifier* modifier = nullptr);
  MStatus setFaceVertexColors(const MColorArray& colors, const MIntArray& faceList,
                              const MIntArray& vertexList, MDGModifier* modifier,
                              MColorRepresentation rep);
  MStatus removeVertexColors(const MIntArray& vertexList, MDGModifier* modifier = nullptr);
  MStatus removeFaceColors(const MIntArray& faceList);
  MStatus removeFaceVertexColors(const MIntArray& faceList, const MIntArray& vertexList,
                                 MDGModifier* modifier = nullptr);
  bool displayColors(MStatus* status = nullptr) const;
  MStatus setDisplayColors(bool enable);

  // Creases.
  MStatus getCreaseEdges(MUintArray& edgeIds, MDoubleArray& creaseData) const;
  MStatus setCreaseEdges(const MUintArray& edgeIds, const MDoubleArray& creaseData);
  MStatus getCreaseVertices(MUintArray& vertexIds, MDoubleArray& creaseData) const;
  MStatus setCreaseVertices(const MUintArray& vertexIds, const MDoubleArray& creaseData);

  // Queries. A face list narrows the search to those faces; with a triangle list beside it, to one
  // triangle of each.
  /// Lists the points at which a ray enters or leaves the mesh.
  bool intersect(const MPoint& raySource, const MVector& rayDirection, MPointArray& points,
                 double tolerance = MFnMesh_kPointTol, MSpace::Space space = MSpace::kObject,
                 MIntArray* polygonIds = nullptr, MStatus* status = nullptr) const;
  bool closestIntersection(const MFloatPoint& raySource, const MFloatVector& rayDirection,
                           const MIntArray* faceIds, const MIntArray* triIds, bool idsSorted,
                           MSpace::Space space, float maxParam, bool testBothDirections,
                           MMeshIsectAccelParams* accelParams, MFloatPoint& hitPoint,
                           float* hitRayParam, int* hitFace, int* hitTriangle, float* hitBary1,
                           float* hitBary2, float tolerance = 1e-6F,
                           MStatus* status = nullptr) const;
  bool anyIntersection(const MFloatPoint& raySource, const MFloatVector& rayDirection,
                       const MIntArray* faceIds, const MIntArray* triIds, bool idsSorted,
                       MSpace::Space space, float maxParam, bool testBothDirections,
                       MMeshIsectAccelParams* accelParams, MFloatPoint& hitPoint,
                       float* hitRayParam, int* hitFace, int* hitTriangle, float* hitBary1,
                       float* hitBary2, float tolerance = 1e-6F, MStatus* status = nullptr) const;
  bool allIntersections(const MFloatPoint& raySource, const MFloatVector& rayDirection,
                        const MIntArray* faceIds, const MIntArray* triIds, bool idsSorted,
                        MSpace::Space space, float maxParam, bool testBothDirections,
                        MMeshIsectAccelParams* accelParams, bool sortHits,
                        MFloatPointArray& hitPoints, MFloatArray* hitRayParams, MIntArray* hitFaces,
                        MIntArray* hitTriangles, MFloatArray* hitBary1s, MFloatArray* hitBary2s,
                        float tolerance = 1e-6F, MStatus* status = nullptr) const;
  MStatus getClosestPoint(const MPoint& toThisPoint, MPoint& theClosestPoint,
                          MSpace::Space space = MSpace::kObject, int* closestPolygon = nullptr,
                          MMeshIsectAccelParams* accelParams = nullptr) const;
  MStatus getClosestNormal(const MPoint& toThisPoint, MVector& theNormal,
                           MSpace::Space space = MSpace::kObject, int* closestPolygon = nullptr,
                           MMeshIsectAccelParams* accelParams = nullptr) const;
  MStatus getClosestPointAndNormal(const MPoint& toThisPoint, MPoint& theClosestPoint,
                                   MVector& theNormal, MSpace::Space space = MSpace::kObject,
                                   int* closestPolygon = nullptr,
                                   MMeshIsectAccelParams* accelParams = nullptr) const;
  static MMeshIsectAccelParams uniformGridParams(int xDivisions, int yDivisions, int zDivisions);
  static MMeshIsectAccelParams autoUniformGridParams();
  MStatus freeCachedIntersectionAccelerator();
  static MStatus clearGlobalIntersectionAcceleratorInfo();
  static MString globalIntersectionAcceleratorsInfo();
  MString cachedIntersectionAcceleratorInfo(MStatus* status = nullptr) const;

  // Shading.
  MStatus getConnectedSetsAndMembers(unsigned int instanceNumber, MObjectArray& sets,
                                     MObjectArray& comps, bool renderableSetsOnly) const;
  MStatus getConnectedShaders(unsigned int instanceNumber, MObjectArray& shaders,
                              MIntArray& indices) const;

  // Blind data.
  bool isBlindDataTypeUsed(int blindDataId, MStatus* status = nullptr) const;

  MBoundingBox boundingBox(MStatus* status = nullptr) const;
};
