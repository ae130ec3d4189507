// A node for a mesh's history as a plug-in writes it: inMesh in, outMesh out, every point lifted by
// `height`.
#include <maya/MDataBlock.h>
#include <maya/MDataHandle.h>
#include <maya/MFnMesh.h>
#include <maya/MFnMeshData.h>
#include <maya/MFnNumericAttribute.h>
#include <maya/MFnPlugin.h>
#include <maya/MFnTypedAttribute.h>
#include <maya/MPointArray.h>
#include <maya/MPxNode.h>

namespace {

class LiftNode : public MPxNode {
 public:
  static void* creator() { return new LiftNode; }
  static MStatus initialize();
  static MTypeId id;
  static MObject inMesh, outMesh, height;

  MStatus compute(const MPlug& plug, MDataBlock& block) override {
    if (plug != outMesh) return MS::kUnknownParameter;
    MFnMeshData dataFn;
    MObject data = dataFn.create();
    MFnMesh().copy(block.inputValue(inMesh).asMesh(), data);
    const double up = block.inputValue(height).asDouble();
    if (up != 0.0) {
      MFnMesh mesh(data);
      MPointArray points;
      mesh.getPoints(points);
      for (unsigned int i = 0; i < points.length(); ++i) points[i].y += up;
      mesh.setPoints(points);
    }
    block.outputValue(outMesh).set(data);
    block.setClean(plug);
    return MS::kSuccess;
  }
};

MTypeId LiftNode::id(0x0007f010);
MObject LiftNode::inMesh, LiftNode::outMesh, LiftNode::height;

MStatus LiftNode::initialize() {
  MFnTypedAttribute typed;
  inMesh = typed.create("inMesh", "im", MFnData::kMesh);
  outMesh = typed.create("outMesh", "om", MFnData::kMesh);
  typed.setWritable(false);
  typed.setStorable(false);
  MFnNumericAttribute numeric;
  height = numeric.create("height", "h", MFnNumericData::kDouble, 0.0);
  for (const MObject& attribute : {inMesh, outMesh, height}) addAttribute(attribute);
  attributeAffects(inMesh, outMesh);
  attributeAffects(height, outMesh);
  return MS::kSuccess;
}

}  // namespace

MStatus initializePlugin(MObject object) {
  return MFnPlugin(object, "tests", "1.0", "Any")
      .registerNode("liftNode", LiftNode::id, LiftNode::creator, LiftNode::initialize);
}

MStatus uninitializePlugin(MObject object) {
  return MFnPlugin(object).deregisterNode(LiftNode::id);
}
