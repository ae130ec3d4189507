#pragma once

#include <maya/MObject.h>
#include <maya/MPxNode.h>
#include <maya/MStatus.h>
#include <maya/MTypeId.h>

struct uvArrays;

/// `qxModifyUvsNode`: puts a complete set of UVs onto the mesh that flows through it, on the UV set
/// that is current there.
///
/// The places and the corners' UV ids are the node's own data, saved with it. Data that does not
/// fit the mesh is shown as an error and the mesh passes unchanged; so it does with `nodeState` 1.
/// The data alone does not ask for another result: it shows when the mesh comes anew.
class modifyUVNode : public MPxNode {
 public:
  modifyUVNode() = default;
  ~modifyUVNode() override;
  MStatus compute(const MPlug& plug, MDataBlock& block) override;

  static void* creator();
  static MStatus initialize();

  /// Gives a node its data. A failure is shown.
  static MStatus fill(const MObject& node, const uvArrays& uvs);

  static const MTypeId id;
  static MObject uArray, vArray, aUVCounts, aUVids, inMesh, outMesh;
};
