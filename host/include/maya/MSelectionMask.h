#pragma once

#include <maya/MStatus.h>
#include <maya/MString.h>
#include <maya/MTypes.h>

#include <bitset>

/// Says which kinds of objects or components can be picked.
class MSelectionMask {
 public:
  enum SelectionType {
    kSelectHandles,
    kSelectIkHandles,
    kSelectIkEndEffectors,
    kSelectJoints,
    kSelectLights,
    kSelectCameras,
    kSelectLattices,
    kSelectClusters,
    kSelectSculpts,
    kSelectNonlinears,
    kSelectDeformers,
    kSelectCurves,
    kSelectNurbsCurves,
    kSelectNurbsSurfaces,
    kSelectCurvesOnSurfaces,
    kSelectMeshes,
    kSelectSubdiv,
    kSelectSketchPlanes,
    kSelectParticleShapes,
    kSelectEmitters,
    kSelectFields,
    kSelectSprings,
    kSelectRigidBodies,
    kSelectRigidConstraints,
    kSelectCollisionModels,
    kSelectXYZ,
    kSelectOrientationLocators,
    kSelectUVLocators,
    kSelectDimensions,
    kSelectLocators,
    kSelectTextures,
    kSelectTextureMaps,
    kSelectCVs,
    kSelectHulls,
    kSelectEditPoints,
    kSelectMeshVerts,
    kSelectMeshEdges,
    kSelectMeshFreeEdges,
    kSelectMeshFaces,
    kSelectMeshLines,
    kSelectVertices = kSelectMeshVerts,
    kSelectEdges = kSelectMeshEdges,
    kSelectFacets = kSelectMeshFaces,
    kSelectMeshUVs,
    kSelectSubdivMeshPoints,
    kSelectSubdivMeshEdges,
    kSelectSubdivMeshFaces,
    kSelectSubdivMeshMaps,
    kSelectCurveParmPoints,
    kSelectCurveKnots,
    kSelectSurfaceParmPoints,
    kSelectSurfaceKnots,
    kSelectSurfaceRange,
    kSelectSurfaceEdge,
    kSelectSurfaceFaces,
    kSelectIsoparms,
    kSelectRotatePivots,
    kSelectScalePivots,
    kSelectSelectHandles,
    kSelectJointPivots,
    kSelectLatticePoints,
    kSelectParticles,
    kSelectSpringComponents,
    kSelectPointsForGravity,
    kSelectAnimCurves,
    kSelectAnimKeyframes,
    kSelectAnimInTangents,
    kSelectAnimOutTangents,
    kSelectAnimMask,
    kSelectAnimAny,
    kSelectVertexFaces,
    kSelectTemplates,
    kSelectPlugins,
    kSelectObjectsMask,
    kSelectComponentsMask,
    kSelectTypeLast
  };

  MSelectionMask() = default;
  MSelectionMask(SelectionType type) { addMask(type); }
  MSelectionMask(const MString& selTypeName);

  bool intersects(const MSelectionMask& mask, MStatus* status = nullptr) const;
  bool intersects(SelectionType type, MStatus* status = nullptr) const;
  MStatus setMask(SelectionType type);
  MStatus addMask(SelectionType type);
  MSelectionMask operator|(const MSelectionMask& other) const;
  MSelectionMask& operator|=(const MSelectionMask& other);
  MSelectionMask& operator|=(SelectionType type);
  static int getSelectionTypePriority(const MString& selTypeName);

 private:
  friend struct host::api::Access;
  std::bitset<kSelectTypeLast> bits_;
};
