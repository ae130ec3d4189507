#pragma once

#include <maya/MMatrix.h>
#include <maya/MObject.h>
#include <maya/MPointArray.h>
#include <maya/MPxNode.h>
#include <maya/MTypeId.h>

/// `qxAddPolyNode`: adds a polygon, and its mirrored twin, to the mesh that flows through it.
///
/// Points are in world space; `inWorldMatrix` takes the mesh there. Points near vertices use these:
/// within 0.001 for the polygon, within 0.1 for the twin, object space. Fewer than three points add
/// nothing. With `nodeState` 1 the mesh passes unchanged, and so it does, with a failed status,
/// when a polygon can't be added.
class addPolyNode : public MPxNode {
 public:
  ~addPolyNode() override;
  MStatus compute(const MPlug& plug, MDataBlock& block) override;

  static void* creator();
  static MStatus initialize();

  static const MTypeId id;
  static MObject pointArray, mirrorPointArray, inWorldMatrix, inMesh, outMesh;

 private:
  MStatus addPolygons(MObject& meshData) const;

  MPointArray points, mirrorPoints;  ///< as last read by compute
  MMatrix worldMatrix;
};
