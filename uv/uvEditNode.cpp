#include "uv/uvEditNode.h"

#include <maya/MDataBlock.h>
#include <maya/MDataHandle.h>
#include <maya/MFloatArray.h>
#include <maya/MFnData.h>
#include <maya/MFnMatrixAttribute.h>
#include <maya/MFnMesh.h>
#include <maya/MFnMeshData.h>
#include <maya/MFnTypedAttribute.h>
#include <maya/MIntArray.h>
#include <maya/MMatrix.h>
#include <maya/MPlug.h>

#include "uv/uvMessages.h"
#include "uv/uvPlacement.h"

namespace {

constexpr short kHasNoEffect = 1;

/// The UVs that a layout's points stand for.
MStatus readLayout(const MFnMesh& layout, const MMatrix& toWorld, MFloatArray& u, MFloatArray& v) {
  MStatus status;
  const int count = layout.numVertices(&status);
  const float* points = status ? layout.getRawPoints(&status) : nullptr;
  if (!status) return status;
  const uvPlacement placement;
  u.setLength(static_cast<unsigned int>(count));
  v.setLength(static_cast<unsigned int>(count));
  for (int i = 0; i < count; ++i, points += 3) {
    // Turned and scaled as the object is; its place, far below the scene or wherever it was moved
    // to, is left out.
    const double x = points[0], y = points[1], z = points[2];
    const double worldX = x * toWorld[0][0] + y * toWorld[1][0] + z * toWorld[2][0];
    const double worldZ = x * toWorld[0][2] + y * toWorld[1][2] + z * toWorld[2][2];
    u[static_cast<unsigned int>(i)] = placement.toUv(worldX);
    v[static_cast<unsigned int>(i)] = placement.toUv(worldZ);
  }
  return MS::kSuccess;
}

}  // namespace

const MTypeId uvEditNode::id(0x112F8F);
MObject uvEditNode::inMesh;
MObject uvEditNode::inUVPolyMesh;
MObject uvEditNode::inWorldMatrix;
MObject uvEditNode::outMesh;
MObject uvEditNode::currentUVSet;

uvEditNode::~uvEditNode() = default;

void* uvEditNode::creator() {
  return new uvEditNode;
}

MStatus uvEditNode::initialize() {
  MFnTypedAttribute typed;
  MFnMatrixAttribute matrix;
  inMesh = typed.create("inMesh", "im", MFnData::kMesh);
  inUVPolyMesh = typed.create("inUVPolyMesh", "iuvm", MFnData::kMesh);
  inWorldMatrix = matrix.create("inWorldMatrix", "iwmtx", MFnMatrixAttribute::kDouble);
  outMesh = typed.create("outMesh", "om", MFnData::kMesh);
  typed.setStorable(false);
  currentUVSet = typed.create("currentUVSet", "cuvs", MFnData::kString);
  typed.setStorable(true);
  for (const MObject& attribute : {inMesh, inUVPolyMesh, inWorldMatrix, outMesh, currentUVSet})
    if (const MStatus status = addAttribute(attribute); !status) {
      status.perror("addAttribute");
      return status;
    }
  for (const MObject& attribute : {inMesh, inUVPolyMesh, inWorldMatrix, currentUVSet})
    if (const MStatus status = attributeAffects(attribute, outMesh); !status) {
      status.perror("attributeAffects");
      return status;
    }
  return MS::kSuccess;
}

MStatus uvEditNode::compute(const MPlug& plug, MDataBlock& block) {
  const auto pass = [&](const MObject& mesh) {
    block.outputValue(outMesh).set(mesh);
    block.setClean(plug);
  };
  if (block.inputValue(state).asShort() == kHasNoEffect) {
    pass(block.inputValue(inMesh).asMesh());
    return MS::kSuccess;
  }
  if (plug != outMesh) return MS::kUnknownParameter;
  const MObject arriving = block.inputValue(inMesh).asMesh();
  const MObject layout = block.inputValue(inUVPolyMesh).asMesh();
  if (arriving.isNull() || layout.isNull()) {
    pass(arriving);
    return MS::kSuccess;
  }
  uvSet = block.inputValue(currentUVSet).asString();
  const MMatrix toWorld = block.inputValue(inWorldMatrix).asMatrix();
  MStatus status;
  MObject copy = MFnMeshData().create(&status);
  MFnMesh mesh;
  if (status) mesh.copy(arriving, copy, &status);
  if (status) status = mesh.setObject(copy);
  if (status) status = writeUvs(mesh, MFnMesh(layout), toWorld);
  pass(status ? copy : arriving);
  return status;
}

MStatus uvEditNode::writeUvs(MFnMesh& mesh, const MFnMesh& layout, const MMatrix& toWorld) const {
  const int before = mesh.numUVs(uvSet);
  MFloatArray u, v;
  MStatus status = readLayout(layout, toWorld, u, v);
  // A set never shrinks while its corners are assigned; they are assigned again below.
  const bool isOther = before != static_cast<int>(u.length());
  if (status && before > static_cast<int>(u.length())) status = mesh.clearUVs(&uvSet);
  if (status) status = mesh.setUVs(u, v, &uvSet);
  if (!status) return failWith("cannot set uvs on Mesh " + status.errorString());
  if (!isOther) return status;
  MIntArray counts, ids;
  status = layout.getVertices(counts, ids);
  if (status) status = mesh.assignUVs(counts, ids, &uvSet);
  return status ? status : failWith("cannot assign uvs on Mesh");
}
