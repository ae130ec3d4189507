// Points on a mesh as an instancer takes them: arrays by name from one node to another, as an
// emitter's author writes it.
#include <maya/MDoubleArray.h>
#include <maya/MFnArrayAttrsData.h>
#include <maya/MFnGenericAttribute.h>
#include <maya/MFnMesh.h>
#include <maya/MFnNumericAttribute.h>
#include <maya/MFnPlugin.h>
#include <maya/MFnTypedAttribute.h>
#include <maya/MItMeshPolygon.h>
#include <maya/MMeshIntersector.h>
#include <maya/MPointArray.h>
#include <maya/MPointOnMesh.h>
#include <maya/MPxNode.h>
#include <maya/MVectorArray.h>

#include <cstdlib>

// scatter: points on a mesh -> outputPoints (dynArrayAttrs), as an instancer takes them
class Scatter : public MPxNode {
 public:
  static void* creator() { return new Scatter; }
  static MStatus initialize();
  MStatus compute(const MPlug&, MDataBlock&) override;
  static MTypeId id;
  static MObject inMesh, count, seed, outPoints;
};
// instance reader: reads them back, gives count and centroid
class ScatterReader : public MPxNode {
 public:
  static void* creator() { return new ScatterReader; }
  static MStatus initialize();
  MStatus compute(const MPlug&, MDataBlock&) override;
  static MTypeId id;
  static MObject inPoints, number, centre, names;
};
MTypeId Scatter::id(0x0011AA12), ScatterReader::id(0x0011AA13);
MObject Scatter::inMesh, Scatter::count, Scatter::seed, Scatter::outPoints;
MObject ScatterReader::inPoints, ScatterReader::number, ScatterReader::centre, ScatterReader::names;

MStatus Scatter::initialize() {
  MFnTypedAttribute t;
  MFnNumericAttribute n;
  inMesh = t.create("inMesh", "im", MFnData::kMesh);
  count = n.create("count", "ct", MFnNumericData::kInt, 10);
  n.setKeyable(true);
  seed = n.create("seed", "sd", MFnNumericData::kInt, 1);
  outPoints = t.create("outputPoints", "op", MFnArrayAttrsData::kDynArrayAttrs);
  t.setWritable(false);
  t.setStorable(false);
  addAttribute(inMesh);
  addAttribute(count);
  addAttribute(seed);
  addAttribute(outPoints);
  attributeAffects(inMesh, outPoints);
  attributeAffects(count, outPoints);
  attributeAffects(seed, outPoints);
  return MS::kSuccess;
}
MStatus Scatter::compute(const MPlug& plug, MDataBlock& block) {
  if (plug != outPoints) return MS::kUnknownParameter;
  MStatus stat;
  MObject meshObj = block.inputValue(inMesh).asMesh();
  const int total = block.inputValue(count).asInt();
  MFnArrayAttrsData fnAttrs;
  MObject data = fnAttrs.create(&stat);
  MVectorArray pos = fnAttrs.vectorArray("position", &stat);
  MVectorArray normals = fnAttrs.vectorArray("normal");
  MDoubleArray ids = fnAttrs.doubleArray("id", &stat);
  MIntArray faces = fnAttrs.intArray("faceId");
  MStringArray types = fnAttrs.stringArray("type");
  if (!meshObj.isNull()) {
    MFnMesh fn(meshObj);
    MMeshIntersector inter;
    inter.create(meshObj);
    MItMeshPolygon poly(meshObj);
    unsigned s = block.inputValue(seed).asInt();
    for (int i = 0; i < total; ++i) {
      s = s * 1103515245u + 12345u;
      int prev;
      poly.setIndex((s >> 8) % fn.numPolygons(), prev);
      MPoint c = poly.center(MSpace::kObject);
      MPointOnMesh pm;
      stat = inter.getClosestPoint(c, pm);
      if (!stat) continue;
      MFloatPoint fp = pm.getPoint();
      MFloatVector nn = pm.getNormal();
      pos.append(MVector(fp.x, fp.y, fp.z));
      normals.append(nn);
      ids.append(i);
      faces.append(pm.faceIndex());
      types.append(i % 2 ? "odd" : "even");
    }
  }
  MDataHandle out = block.outputValue(outPoints, &stat);
  out.set(data);
  block.setClean(plug);
  return MS::kSuccess;
}
MStatus ScatterReader::initialize() {
  MFnTypedAttribute t;
  MFnNumericAttribute n;
  inPoints = t.create("inputPoints", "ip", MFnData::kDynArrayAttrs);
  number = n.create("number", "nm", MFnNumericData::kInt);
  n.setWritable(false);
  centre = n.createPoint("centre", "ce");
  n.setWritable(false);
  names = t.create("arrayNames", "an", MFnData::kString);
  t.setWritable(false);
  addAttribute(inPoints);
  addAttribute(number);
  addAttribute(centre);
  addAttribute(names);
  attributeAffects(inPoints, number);
  attributeAffects(inPoints, centre);
  attributeAffects(inPoints, names);
  return MS::kSuccess;
}
MStatus ScatterReader::compute(const MPlug& plug, MDataBlock& block) {
  MStatus stat;
  MObject data = block.inputValue(inPoints, &stat).data();
  MFnArrayAttrsData fn(data, &stat);
  int n = 0;
  MVector sum;
  MString all;
  if (stat) {
    MFnArrayAttrsData::Type type;
    if (fn.checkArrayExist("position", type) && type == MFnArrayAttrsData::kVectorArray) {
      MVectorArray p = fn.vectorArray("position");
      n = p.length();
      for (int i = 0; i < n; ++i) sum += p[i];
      if (n) sum /= n;
    }
    MStringArray l = fn.list();
    for (unsigned i = 0; i < l.length(); ++i) all += (i ? " " : "") + l[i];
  }
  block.outputValue(number).set(n);
  block.outputValue(centre).set((float)sum.x, (float)sum.y, (float)sum.z);
  block.outputValue(names).set(all);
  block.setClean(plug);
  return MS::kSuccess;
}
MStatus initializePlugin(MObject o) {
  MFnPlugin p(o, "sc", "1", "Any");
  MStatus s = p.registerNode("acmeScatter", Scatter::id, Scatter::creator, Scatter::initialize);
  if (s)
    s = p.registerNode("acmeScatterReader", ScatterReader::id, ScatterReader::creator,
                       ScatterReader::initialize);
  return s;
}
MStatus uninitializePlugin(MObject o) {
  MFnPlugin p(o);
  p.deregisterNode(ScatterReader::id);
  return p.deregisterNode(Scatter::id);
}
