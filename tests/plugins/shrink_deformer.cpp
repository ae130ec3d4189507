// A deformer that draws points onto another mesh, wherever both stand.
#include <maya/MFnMatrixAttribute.h>
#include <maya/MFnMesh.h>
#include <maya/MFnMeshData.h>
#include <maya/MFnNumericAttribute.h>
#include <maya/MFnPlugin.h>
#include <maya/MFnTypedAttribute.h>
#include <maya/MItGeometry.h>
#include <maya/MMeshIntersector.h>
#include <maya/MPointArray.h>
#include <maya/MPxDeformerNode.h>
#include <maya/MThreadUtils.h>

class Shrink : public MPxDeformerNode {
 public:
  static void* creator() { return new Shrink; }
  static MStatus initialize() {
    MFnTypedAttribute t;
    MFnMatrixAttribute m;
    MFnNumericAttribute n;
    aTarget = t.create("target", "tgt", MFnData::kMesh);
    t.setDisconnectBehavior(MFnAttribute::kReset);
    aTargetMatrix = m.create("targetMatrix", "tgm");
    aOffset = n.create("offset", "off", MFnNumericData::kDouble, 0.0);
    n.setKeyable(true);
    n.setChannelBox(true);
    addAttribute(aTarget);
    addAttribute(aTargetMatrix);
    addAttribute(aOffset);
    attributeAffects(aTarget, outputGeom);
    attributeAffects(aTargetMatrix, outputGeom);
    attributeAffects(aOffset, outputGeom);
    return MStatus::kSuccess;
  }
  virtual MStatus deform(MDataBlock& block, MItGeometry& it, const MMatrix& localToWorld,
                         unsigned int index) {
    MStatus st;
    MDataHandle hT = block.inputValue(aTarget, &st);
    CHECK_MSTATUS_AND_RETURN_IT(st);
    MObject target = hT.asMesh();
    if (target.isNull()) return MS::kSuccess;
    const float env = block.inputValue(envelope).asFloat();
    const MMatrix tm = block.inputValue(aTargetMatrix).asMatrix();
    const double off = block.inputValue(aOffset).asDouble();
    // original geometry, as many deformers fetch it
    MArrayDataHandle hInput = block.outputArrayValue(input, &st);
    st = hInput.jumpToElement(index);
    MObject orig = hInput.outputValue().child(inputGeom).asMesh();
    if (orig.isNull() || MFnMesh(orig).numVertices() == 0) return MS::kFailure;
    MMeshIntersector inter;
    st = inter.create(target, tm);
    CHECK_MSTATUS_AND_RETURN_IT(st);
    MPointArray pts;
    it.allPositions(pts);
    const MMatrix inv = localToWorld.inverse();
    for (unsigned i = 0; i < pts.length(); ++i, it.next()) {
      const float w = weightValue(block, index, it.index()) * env;
      if (w == 0) continue;
      MPointOnMesh info;
      MPoint world = pts[i] * localToWorld;
      if (!inter.getClosestPoint(world, info)) continue;
      MPoint hit = MPoint(info.getPoint()) * tm;  // the intersector answers in object space
      MVector nrm = MVector(info.getNormal()).transformAsNormal(tm);
      MPoint goal = (hit + nrm.normal() * off) * inv;
      pts[i] += (goal - pts[i]) * w;
    }
    return it.setAllPositions(pts);
  }
  static MTypeId id;
  static MObject aTarget, aTargetMatrix, aOffset;
};
MTypeId Shrink::id(0x0011AA18);
MObject Shrink::aTarget, Shrink::aTargetMatrix, Shrink::aOffset;
MStatus initializePlugin(MObject o) {
  MFnPlugin p(o, "s", "1.0", "Any");
  return p.registerNode("acmeShrink", Shrink::id, Shrink::creator, Shrink::initialize,
                        MPxNode::kDeformerNode);
}
MStatus uninitializePlugin(MObject o) {
  MFnPlugin p(o);
  return p.deregisterNode(Shrink::id);
}
