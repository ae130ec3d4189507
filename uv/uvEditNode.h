#pragma once

#include <maya/MObject.h>
#include <maya/MPxNode.h>
#include <maya/MString.h>
#include <maya/MTypeId.h>

class MFnMesh;

/// `uvEditNode`: writes the vertices of a UV object into a UV set of the mesh that flows through
/// it.
///
/// `inWorldMatrix` turns and scales the UV object's points; where the object was moved to makes no
/// difference. With as many points as the set has UVs only their places change; with another number
/// the UV object's polygons say which corner has which UV. Without a UV object, with `nodeState` 1
/// and after a failure, which is shown, the mesh passes unchanged.
class uvEditNode : public MPxNode {
 public:
  uvEditNode() = default;
  ~uvEditNode() override;
  MStatus compute(const MPlug& plug, MDataBlock& block) override;

  static void* creator();
  static MStatus initialize();

  static const MTypeId id;
  static MObject inMesh, inUVPolyMesh, inWorldMatrix, outMesh, currentUVSet;

 private:
  MStatus writeUvs(MFnMesh& mesh, const MFnMesh& layout, const class MMatrix& toWorld) const;

  MString uvSet;  ///< as last read by compute
};
