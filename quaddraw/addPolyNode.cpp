#include "quaddraw/addPolyNode.h"

#include <maya/MDataBlock.h>
#include <maya/MDataHandle.h>
#include <maya/MFnData.h>
#include <maya/MFnGenericAttribute.h>
#include <maya/MFnMatrixAttribute.h>
#include <maya/MFnMesh.h>
#include <maya/MFnMeshData.h>
#include <maya/MFnPointArrayData.h>
#include <maya/MFnTypedAttribute.h>
#include <maya/MPlug.h>

namespace {

constexpr short kHasNoEffect = 1;
constexpr double kPointTolerance = 0.001;
/// Mirrored points are only as near to the other half as the model is symmetric.
constexpr double kMirrorTolerance = 0.1;

/// The points that a handle holds; none when it was never set.
MPointArray pointsOf(const MDataHandle& handle) {
  MDataHandle reader = handle;
  const MObject data = reader.data();
  return data.hasFn(MFn::kPointArrayData) ? MFnPointArrayData(data).array() : MPointArray();
}

MStatus addPolygon(MObject& meshData, const MPointArray& worldPoints, const MMatrix& toObject,
                   double tolerance) {
  if (worldPoints.length() < 3) return MS::kSuccess;
  MPointArray points = worldPoints;
  for (unsigned int i = 0; i < points.length(); ++i) points[i] *= toObject;
  MStatus status;
  MFnMesh mesh(meshData, &status);
  if (status) mesh.addPolygon(points, true, tolerance, MObject::kNullObj, &status);
  return status;
}

}  // namespace

const MTypeId addPolyNode::id(0x112F90);
MObject addPolyNode::pointArray;
MObject addPolyNode::mirrorPointArray;
MObject addPolyNode::inWorldMatrix;
MObject addPolyNode::inMesh;
MObject addPolyNode::outMesh;

addPolyNode::~addPolyNode() = default;

void* addPolyNode::creator() {
  return new addPolyNode;
}

MStatus addPolyNode::initialize() {
  MFnGenericAttribute generic;
  pointArray = generic.create("pointArray", "pts");
  generic.addDataAccept(MFnData::kPointArray);
  generic.setStorable(true);
  mirrorPointArray = generic.create("mirrorPointArray", "mpts");
  generic.addDataAccept(MFnData::kPointArray);
  generic.setStorable(true);
  MFnMatrixAttribute matrix;
  inWorldMatrix = matrix.create("inWorldMatrix", "iwmtx", MFnMatrixAttribute::kDouble);
  MFnTypedAttribute typed;
  inMesh = typed.create("inMesh", "im", MFnData::kMesh);
  outMesh = typed.create("outMesh", "om", MFnData::kMesh);
  typed.setStorable(false);

  for (const MObject& attribute : {pointArray, mirrorPointArray, inWorldMatrix, inMesh, outMesh}) {
    const MStatus status = addAttribute(attribute);
    if (!status) {
      status.perror("addAttribute");
      return status;
    }
  }
  for (const MObject& attribute : {pointArray, mirrorPointArray, inWorldMatrix, inMesh}) {
    const MStatus status = attributeAffects(attribute, outMesh);
    if (!status) {
      status.perror("attributeAffects");
      return status;
    }
  }
  return MS::kSuccess;
}

MStatus addPolyNode::compute(const MPlug& plug, MDataBlock& block) {
  if (plug != outMesh) return MS::kUnknownParameter;
  const short nodeState = block.inputValue(state).asShort();
  const MDataHandle arriving = block.inputValue(inMesh);
  worldMatrix = block.inputValue(inWorldMatrix).asMatrix();
  MDataHandle result = block.outputValue(outMesh);

  MStatus status = MS::kSuccess;
  MObject changed = arriving.asMesh();
  if (nodeState != kHasNoEffect && !changed.isNull()) {
    points = pointsOf(block.inputValue(pointArray));
    mirrorPoints = pointsOf(block.inputValue(mirrorPointArray));
    MObject copy = MFnMeshData().create(&status);
    if (status) MFnMesh().copy(arriving.asMesh(), copy, &status);
    if (status) status = addPolygons(copy);
    if (status) changed = copy;
  }
  result.set(changed);
  block.setClean(plug);
  return status;
}

MStatus addPolyNode::addPolygons(MObject& meshData) const {
  if (worldMatrix.isSingular()) return MS::kFailure;
  const MMatrix toObject = worldMatrix.inverse();
  const MStatus status = addPolygon(meshData, points, toObject, kPointTolerance);
  return status ? addPolygon(meshData, mirrorPoints, toObject, kMirrorTolerance) : status;
}
