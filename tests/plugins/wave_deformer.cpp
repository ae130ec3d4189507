// A deformer as its author would write it: lifts points by a ramp over their distance from the
// origin, times weight and envelope, in the world's up direction; and a node that measures curves,
// with the work spread over threads.
#include <maya/MArrayDataHandle.h>
#include <maya/MDataBlock.h>
#include <maya/MDataHandle.h>
#include <maya/MFnNumericAttribute.h>
#include <maya/MFnNurbsCurve.h>
#include <maya/MFnPlugin.h>
#include <maya/MFnTypedAttribute.h>
#include <maya/MFnUnitAttribute.h>
#include <maya/MGlobal.h>
#include <maya/MItGeometry.h>
#include <maya/MPxDeformerNode.h>
#include <maya/MRampAttribute.h>
#include <maya/MThreadPool.h>

#include <cmath>
#include <tuple>

namespace {

class WaveDeformer : public MPxDeformerNode {
 public:
  static void* creator() { return new WaveDeformer; }
  static MStatus initialize();
  static MTypeId id;
  static MObject height, profile, center;

  MStatus deform(MDataBlock& block, MItGeometry& iter, const MMatrix& matrix,
                 unsigned int multiIndex) override {
    MStatus status;
    const float env = block.inputValue(envelope, &status).asFloat();
    CHECK_MSTATUS_AND_RETURN_IT(status);
    const double up = block.inputValue(height).asDistance().asCentimeters();
    MRampAttribute ramp(thisMObject(), profile, &status);
    CHECK_MSTATUS_AND_RETURN_IT(status);
    const MMatrix back = matrix.inverse();
    for (; !iter.isDone(); iter.next()) {
      MPoint point = iter.position() * matrix;
      float value = 0;
      ramp.getValueAtPosition(static_cast<float>(std::sqrt(point.x * point.x + point.z * point.z)),
                              value);
      const float weight = weightValue(block, multiIndex, static_cast<unsigned int>(iter.index()));
      point.y += up * value * weight * env;
      iter.setPosition(point * back);
    }
    return MS::kSuccess;
  }
  MObject& accessoryAttribute() const override { return center; }
  MStatus accessoryNodeSetup(MDagModifier& cmd) override {
    MStatus status;
    const MObject locator = cmd.createNode("locator", MObject::kNullObj, &status);
    if (status) cmd.renameNode(locator, "waveCenter");
    return status;
  }
};

MTypeId WaveDeformer::id(0x0007f020);
MObject WaveDeformer::height, WaveDeformer::profile, WaveDeformer::center;

MStatus WaveDeformer::initialize() {
  MFnUnitAttribute unit;
  height = unit.create("height", "hgt", MFnUnitAttribute::kDistance, 1.0);
  unit.setKeyable(true);
  profile = MRampAttribute::createCurveRamp("profile", "prf");
  MFnNumericAttribute numeric;
  center = numeric.createPoint("waveOrigin", "wor");
  for (const MObject& attribute : {height, profile, center}) {
    addAttribute(attribute);
    attributeAffects(attribute, outputGeom);
  }
  return MS::kSuccess;
}

struct Piece {
  const MFnNurbsCurve* curve;
  double from, to, length;
};

MThreadRetVal measurePiece(void* data) {
  Piece& piece = *static_cast<Piece*>(data);
  constexpr int kSteps = 400;
  MPoint before, here;
  piece.curve->getPointAtParam(piece.from, before);
  for (int i = 1; i <= kSteps; ++i) {
    piece.curve->getPointAtParam(piece.from + (piece.to - piece.from) * i / kSteps, here);
    piece.length += before.distanceTo(here);
    before = here;
  }
  return 0;
}

void measureAll(void* data, MThreadRootTask* root) {
  Piece* pieces = static_cast<Piece*>(data);
  for (int i = 0; i < 4; ++i) MThreadPool::createTask(measurePiece, &pieces[i], root);
  MThreadPool::executeAndJoin(root);
}

class CurveMeter : public MPxNode {
 public:
  static void* creator() { return new CurveMeter; }
  static MStatus initialize();
  static MTypeId id;
  static MObject input, lengthOut, sampledOut, middleOut;

  MStatus compute(const MPlug& plug, MDataBlock& block) override {
    if (plug != lengthOut && plug != sampledOut && plug != middleOut) return MS::kUnknownParameter;
    const MObject data = block.inputValue(input).asNurbsCurve();
    if (data.isNull()) return MS::kFailure;
    const MFnNurbsCurve curve(data);
    double first = 0, last = 0;
    curve.getKnotDomain(first, last);
    Piece pieces[4];
    for (int i = 0; i < 4; ++i)
      pieces[i] = {&curve, first + (last - first) * i / 4, first + (last - first) * (i + 1) / 4, 0};
    MThreadPool::init();
    MThreadPool::newParallelRegion(measureAll, pieces);
    MThreadPool::release();
    double sampled = 0;
    for (const Piece& piece : pieces) sampled += piece.length;
    block.outputValue(lengthOut).setDouble(curve.length());
    block.outputValue(sampledOut).setDouble(sampled);
    block.outputValue(middleOut).setDouble(curve.findParamFromLength(curve.length() / 2));
    for (const MObject& attribute : {lengthOut, sampledOut, middleOut}) block.setClean(attribute);
    return MS::kSuccess;
  }
};

MTypeId CurveMeter::id(0x0007f021);
MObject CurveMeter::input, CurveMeter::lengthOut, CurveMeter::sampledOut, CurveMeter::middleOut;

MStatus CurveMeter::initialize() {
  MFnTypedAttribute typed;
  input = typed.create("inputCurve", "ic", MFnData::kNurbsCurve);
  addAttribute(input);
  MFnNumericAttribute numeric;
  for (const auto& [attribute, longName, shortName] :
       {std::tuple<MObject*, const char*, const char*>{&lengthOut, "curveLength", "cl"},
        {&sampledOut, "sampledLength", "sl"},
        {&middleOut, "middleParameter", "mp"}}) {
    *attribute = numeric.create(longName, shortName, MFnNumericData::kDouble, 0.0);
    numeric.setWritable(false);
    numeric.setStorable(false);
    addAttribute(*attribute);
    attributeAffects(input, *attribute);
  }
  return MS::kSuccess;
}

}  // namespace

MStatus initializePlugin(MObject object) {
  MFnPlugin plugin(object, "tests", "1.0", "Any");
  const MStatus status =
      plugin.registerNode("waveDeformer", WaveDeformer::id, WaveDeformer::creator,
                          WaveDeformer::initialize, MPxNode::kDeformerNode);
  if (!status) return status;
  MGlobal::executeCommand(
      "makePaintable -attrType multiFloat -shapeMode deformer waveDeformer weights");
  return plugin.registerNode("curveMeter", CurveMeter::id, CurveMeter::creator,
                             CurveMeter::initialize);
}

MStatus uninitializePlugin(MObject object) {
  MFnPlugin plugin(object);
  plugin.deregisterNode(CurveMeter::id);
  return plugin.deregisterNode(WaveDeformer::id);
}
