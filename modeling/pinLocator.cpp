#include "modeling/pinLocator.h"

#include <maya/MBoundingBox.h>
#include <maya/MDataBlock.h>
#include <maya/MDataHandle.h>
#include <maya/MFnData.h>
#include <maya/MFnDependencyNode.h>
#include <maya/MFnIntArrayData.h>
#include <maya/MFnMatrixAttribute.h>
#include <maya/MFnMesh.h>
#include <maya/MFnNumericAttribute.h>
#include <maya/MFnTypedAttribute.h>
#include <maya/MIntArray.h>
#include <maya/MMatrix.h>
#include <maya/MPlug.h>

#include "modeling/drawLocator.h"
#include "modeling/locatorPicture.h"

namespace {

MStatus report(MStatus status, const char* text) {
  if (status != MS::kSuccess) status.perror(text);
  return status;
}

MIntArray numbersOf(const MDataHandle& handle) {
  MDataHandle reader = handle;
  const MObject data = reader.data();
  return data.hasFn(MFn::kIntArrayData) ? MFnIntArrayData(data).array() : MIntArray();
}

/// The mesh's points at some indices, in world space; indices that it does not have are left out.
MPointArray placesOf(const MObject& mesh, const MIntArray& indices, const MMatrix& toWorld) {
  MPointArray places;
  if (mesh.isNull()) return places;
  const MFnMesh meshFn(mesh);
  const int count = meshFn.numVertices();
  for (unsigned int i = 0; i < indices.length(); ++i) {
    MPoint point;
    if (indices[i] < 0 || indices[i] >= count) continue;
    if (meshFn.getPoint(indices[i], point) == MS::kSuccess) places.append(point * toWorld);
  }
  return places;
}

}  // namespace

const MTypeId pinLocator::id(0x112F8E);
const char* const pinLocator::kName = "qxModelingToolsDrawPinLocator";
MObject pinLocator::pointArray;
MObject pinLocator::inMesh;
MObject pinLocator::inWorldMatrix;
MObject pinLocator::inTransVisibile;
MObject pinLocator::outPosition;

pinLocator::~pinLocator() = default;

void* pinLocator::creator() {
  return new pinLocator;
}

MStatus pinLocator::initialize() {
  MFnTypedAttribute typed;
  MFnMatrixAttribute matrix;
  MFnNumericAttribute numeric;
  MStatus created;
  pointArray = typed.create("pointArray", "parr", MFnData::kIntArray);
  inMesh = typed.create("mInMesh", "mImsh", MFnData::kMesh);
  typed.setStorable(false);
  inWorldMatrix = matrix.create("mInWorldMatrix", "mIwmtx", MFnMatrixAttribute::kDouble);
  inTransVisibile =
      numeric.create("mInTransVisibile", "mInTVis", MFnNumericData::kInt, 1.0, &created);
  if (report(created, "error creating transparent attribute!") != MS::kSuccess) return created;
  outPosition = numeric.create("mOutPosition", "mOpos", MFnNumericData::kFloat, 0.0, &created);
  if (report(created, "error creating outPosition attribute!") != MS::kSuccess) return created;
  numeric.setWritable(false);
  numeric.setStorable(false);

  MStatus status;
  for (const MObject& attribute : {pointArray, inMesh, inWorldMatrix, inTransVisibile, outPosition})
    if ((status = report(addAttribute(attribute), "error adding pin locator attribute!")) !=
        MS::kSuccess)
      return status;
  for (const MObject& input : {pointArray, inMesh, inWorldMatrix, inTransVisibile})
    if ((status = report(attributeAffects(input, outPosition),
                         "error setting pin locator attribute dependency!")) != MS::kSuccess)
      return status;
  return MS::kSuccess;
}

MStatus pinLocator::compute(const MPlug& plug, MDataBlock& block) {
  if (plug != outPosition) return MS::kUnknownParameter;
  const MObject mesh = block.inputValue(inMesh).asMesh();
  const MMatrix toWorld = block.inputValue(inWorldMatrix).asMatrix();
  const MIntArray indices = numbersOf(block.inputValue(pointArray));
  shown.isVisible = block.inputValue(inTransVisibile).asInt() != 0;
  shown.worldPoints = placesOf(mesh, indices, toWorld);
  block.setClean(plug);
  return MS::kSuccess;
}

MBoundingBox pinLocator::boundingBox() const {
  return drawLocator::fixedBox();
}

pinLocator::pins pinLocator::pinsOf(const MObject& node) {
  MStatus status;
  const MFnDependencyNode nodeFn(node, &status);
  if (status != MS::kSuccess || nodeFn.typeId() != id) return {};
  (void)MPlug(node, outPosition).asFloat();  // computes what it holds
  const auto* locator = static_cast<const pinLocator*>(nodeFn.userNode());
  return locator ? locator->shown : pins();
}

void pinLocator::draw(M3dView& view, const MDagPath&, M3dView::DisplayStyle,
                      M3dView::DisplayStatus) {
  const pins now = pinsOf(thisMObject());
  MMatrix toView;
  if (!now.isShown() || view.modelViewMatrix(toView) != MS::kSuccess) return;
  if (view.beginGL() != MS::kSuccess) return;
  drawPinsWithGl(now.worldPoints, toView);
  view.endGL();
}
