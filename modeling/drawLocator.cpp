#include "modeling/drawLocator.h"

#include <maya/MBoundingBox.h>
#include <maya/MDataBlock.h>
#include <maya/MFnData.h>
#include <maya/MFnDoubleArrayData.h>
#include <maya/MFnNumericAttribute.h>
#include <maya/MFnPointArrayData.h>
#include <maya/MFnTypedAttribute.h>
#include <maya/MPlug.h>

namespace {

/// The locator's own status is told with what was being done.
MStatus report(MStatus status, const char* text) {
  if (status != MS::kSuccess) status.perror(text);
  return status;
}

MPointArray pointsAt(const MObject& node, const MObject& attribute) {
  const MObject data = MPlug(node, attribute).asMObject();
  return data.hasFn(MFn::kPointArrayData) ? MFnPointArrayData(data).array() : MPointArray();
}

MDoubleArray numbersAt(const MObject& node, const MObject& attribute) {
  const MObject data = MPlug(node, attribute).asMObject();
  return data.hasFn(MFn::kDoubleArrayData) ? MFnDoubleArrayData(data).array() : MDoubleArray();
}

}  // namespace

const MTypeId drawLocator::id(0x112F8D);
MObject drawLocator::pointArray;
MObject drawLocator::ssRadiusValueArray;
MObject drawLocator::radiusPointArray;
MObject drawLocator::componentPointArray;
MObject drawLocator::outPosition;

drawLocator::drawLocator() {
  facePattern::acquire();
}

drawLocator::~drawLocator() {
  facePattern::release();
}

void* drawLocator::creator() {
  return new drawLocator;
}

MStatus drawLocator::initialize() {
  MFnTypedAttribute typed;
  MFnNumericAttribute numeric;
  MStatus created;
  pointArray = typed.create("pointArray", "parr", MFnData::kPointArray);
  ssRadiusValueArray = typed.create("ssRadiusValArray", "ssrparr", MFnData::kDoubleArray);
  radiusPointArray = typed.create("radiusPointArray", "rparr", MFnData::kPointArray);
  componentPointArray = typed.create("componentPointArray", "cparr", MFnData::kPointArray);
  outPosition = numeric.create("outPosition", "opos", MFnNumericData::kFloat, 0.0, &created);
  if (report(created, "error creating outPosition attribute!") != MS::kSuccess) return created;
  numeric.setWritable(false);
  numeric.setStorable(false);

  const struct {
    const MObject& attribute;
    const char* adding;
    const char* depending;
  } inputs[] = {
      {pointArray, "error adding PointArray attribute!",
       "error setting point attribute dependency!"},
      {ssRadiusValueArray, "error adding RadiusValueArray attribute!",
       "error setting geo point attribute dependency!"},
      {radiusPointArray, "error adding Radius PointArray attribute!",
       "error setting radius point attribute dependency!"},
      {componentPointArray, "error adding Component PointArray attribute!",
       "error setting component point attribute dependency!"},
  };
  MStatus status;
  for (const auto& input : inputs)
    if ((status = report(addAttribute(input.attribute), input.adding)) != MS::kSuccess)
      return status;
  status = report(addAttribute(outPosition), "error adding outPosition attribute!");
  if (status != MS::kSuccess) return status;
  for (const auto& input : inputs)
    if ((status = report(attributeAffects(input.attribute, outPosition), input.depending)) !=
        MS::kSuccess)
      return status;
  return MS::kSuccess;
}

MStatus drawLocator::compute(const MPlug& plug, MDataBlock& block) {
  if (plug != outPosition) return MS::kUnknownParameter;
  block.setClean(plug);  // it only tells that something to draw has changed
  return MS::kSuccess;
}

MBoundingBox drawLocator::fixedBox() {
  return MBoundingBox(MPoint(-0.17, 0.0, -0.7), MPoint(0.17, 0.0, 0.3));
}

locatorSets drawLocator::setsOf(const MObject& node) {
  locatorSets sets;
  if (node.isNull()) return sets;
  sets.points = pointsAt(node, pointArray);
  sets.weights = numbersAt(node, ssRadiusValueArray);
  sets.outline = pointsAt(node, radiusPointArray);
  sets.component = pointsAt(node, componentPointArray);
  return sets;
}

void drawLocator::draw(M3dView& view, const MDagPath&, M3dView::DisplayStyle,
                       M3dView::DisplayStatus) {
  const locatorSets sets = setsOf(thisMObject());
  if (sets.isEmpty()) return;
  if (view.beginGL() != MS::kSuccess) return;
  drawWithGl(sets, facePattern::bytes());
  view.endGL();
}
