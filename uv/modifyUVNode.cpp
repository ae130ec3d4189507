#include "uv/modifyUVNode.h"

#include <maya/MDataBlock.h>
#include <maya/MDataHandle.h>
#include <maya/MDoubleArray.h>
#include <maya/MFn.h>
#include <maya/MFnData.h>
#include <maya/MFnDoubleArrayData.h>
#include <maya/MFnIntArrayData.h>
#include <maya/MFnMesh.h>
#include <maya/MFnMeshData.h>
#include <maya/MFnTypedAttribute.h>
#include <maya/MPlug.h>
#include <maya/MString.h>

#include "uv/uvArrays.h"
#include "uv/uvMessages.h"

namespace {

constexpr short kHasNoEffect = 1;

MDoubleArray doublesIn(MDataBlock& block, const MObject& attribute) {
  MDataHandle handle = block.inputValue(attribute);
  const MObject data = handle.data();
  return data.hasFn(MFn::kDoubleArrayData) ? MFnDoubleArrayData(data).array() : MDoubleArray();
}

MIntArray integersIn(MDataBlock& block, const MObject& attribute) {
  MDataHandle handle = block.inputValue(attribute);
  const MObject data = handle.data();
  return data.hasFn(MFn::kIntArrayData) ? MFnIntArrayData(data).array() : MIntArray();
}

/// How long both lists are is how long the list of u is; the two are always written together.
uvArrays dataOf(MDataBlock& block) {
  const MDoubleArray us = doublesIn(block, modifyUVNode::uArray);
  const MDoubleArray vs = doublesIn(block, modifyUVNode::vArray);
  uvArrays uvs;
  const unsigned int count = us.length();
  uvs.u.setLength(count);
  uvs.v.setLength(count);
  for (unsigned int i = 0; i < count; ++i) {
    uvs.u[i] = static_cast<float>(us[i]);
    uvs.v[i] = i < vs.length() ? static_cast<float>(vs[i]) : 0.0F;  // never past what is there
  }
  uvs.counts = integersIn(block, modifyUVNode::aUVCounts);
  uvs.ids = integersIn(block, modifyUVNode::aUVids);
  return uvs;
}

MStatus putOn(MFnMesh& mesh, const uvArrays& uvs) {
  MStatus status = mesh.setUVs(uvs.u, uvs.v);
  if (!status) return failWith("cannot set uvs on object " + status.errorString());
  status = mesh.assignUVs(uvs.counts, uvs.ids);
  return status ? status : failWith("cannot assign uvs on object " + status.errorString());
}

MObject makeArray(const char* longName, const char* shortName, MFnData::Type type) {
  MFnTypedAttribute typed;
  const MObject attribute = typed.create(longName, shortName, type);
  typed.setStorable(true);
  typed.setKeyable(false);
  return attribute;
}

MDoubleArray toDoubles(const MFloatArray& values) {
  MDoubleArray doubles(values.length());
  for (unsigned int i = 0; i < values.length(); ++i) doubles[i] = static_cast<double>(values[i]);
  return doubles;
}

MStatus setData(const MObject& node, const MObject& attribute, const MObject& data,
                const MStatus& made) {
  if (!made) return failWith("error creating a new MObject from a double data");
  MPlug plug(node, attribute);
  return plug.setValue(data);
}

}  // namespace

const MTypeId modifyUVNode::id(0x112F9E);
MObject modifyUVNode::uArray;
MObject modifyUVNode::vArray;
MObject modifyUVNode::aUVCounts;
MObject modifyUVNode::aUVids;
MObject modifyUVNode::inMesh;
MObject modifyUVNode::outMesh;

modifyUVNode::~modifyUVNode() = default;

void* modifyUVNode::creator() {
  return new modifyUVNode;
}

MStatus modifyUVNode::initialize() {
  uArray = makeArray("uArray", "ua", MFnData::kDoubleArray);
  vArray = makeArray("vArray", "va", MFnData::kDoubleArray);
  aUVCounts = makeArray("aUVCounts", "auvc", MFnData::kIntArray);
  aUVids = makeArray("aUVids", "auvi", MFnData::kIntArray);
  MFnTypedAttribute typed;
  inMesh = typed.create("inMesh", "im", MFnData::kMesh);
  outMesh = typed.create("outMesh", "om", MFnData::kMesh);
  typed.setStorable(false);
  for (const MObject& attribute : {uArray, vArray, aUVCounts, aUVids, inMesh, outMesh})
    if (const MStatus status = addAttribute(attribute); !status) {
      status.perror("addAttribute");
      return status;
    }
  const MStatus status = attributeAffects(inMesh, outMesh);
  if (!status) status.perror("attributeAffects");
  return status;
}

MStatus modifyUVNode::compute(const MPlug& plug, MDataBlock& block) {
  const bool isOff = block.inputValue(state).asShort() == kHasNoEffect;
  if (!isOff && plug != outMesh) return MS::kUnknownParameter;
  const MObject arriving = block.inputValue(inMesh).asMesh();
  MObject result = arriving;
  if (!isOff && !arriving.isNull()) {
    MStatus status;
    MObject copy = MFnMeshData().create(&status);
    MFnMesh mesh;
    if (status) mesh.copy(arriving, copy, &status);
    if (status) status = mesh.setObject(copy);
    if (status) status = putOn(mesh, dataOf(block));
    if (status) result = copy;
  }
  block.outputValue(outMesh).set(result);
  block.setClean(plug);
  return MS::kSuccess;
}

MStatus modifyUVNode::fill(const MObject& node, const uvArrays& uvs) {
  MStatus made;
  const MObject us = MFnDoubleArrayData().create(toDoubles(uvs.u), &made);
  MStatus status = setData(node, uArray, us, made);
  if (!status) return status;
  const MObject vs = MFnDoubleArrayData().create(toDoubles(uvs.v), &made);
  status = setData(node, vArray, vs, made);
  if (!status) return status;
  const MObject counts = MFnIntArrayData().create(uvs.counts, &made);
  status = setData(node, aUVCounts, counts, made);
  if (!status) return status;
  const MObject ids = MFnIntArrayData().create(uvs.ids, &made);
  return setData(node, aUVids, ids, made);
}
