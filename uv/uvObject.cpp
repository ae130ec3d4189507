#include "uv/uvObject.h"

#include <maya/MColor.h>
#include <maya/MColorArray.h>
#include <maya/MFloatArray.h>
#include <maya/MFnDagNode.h>
#include <maya/MFnDependencyNode.h>
#include <maya/MFnMesh.h>
#include <maya/MFnTransform.h>
#include <maya/MGlobal.h>
#include <maya/MIntArray.h>
#include <maya/MPlug.h>
#include <maya/MPlugArray.h>
#include <maya/MPointArray.h>
#include <maya/MSelectionList.h>
#include <maya/MVector.h>

#include <algorithm>

#include "uv/meshSelection.h"
#include "uv/uvMessages.h"
#include "uv/uvPlacement.h"

namespace {

constexpr const char* kGroup = "uvGroup_QXMT";
/// One quiet colour for all faces: the layout's edges are what is looked at.
const MColor kFaceColor(0.45F, 0.55F, 0.65F, 1.0F);

MDagPath shapeBelow(const MObject& transform) {
  MDagPath path;
  if (transform.isNull() || !MDagPath::getAPathTo(transform, path)) return MDagPath();
  path.extendToShape();
  return path;
}

void run(const MString& command) {
  MGlobal::executeCommand(command, false, false);
}

void discardNode(MObject& transform) {
  if (!transform.isNull()) MGlobal::deleteNode(transform);
  transform = MObject::kNullObj;
}

/// All corners share the one colour.
void colorFaces(MFnMesh& mesh) {
  MString set("colorSet1");
  if (!mesh.createColorSet(set) || !mesh.setCurrentColorSetName(set)) return;
  mesh.setColors(MColorArray(1, kFaceColor), &set);
  mesh.assignColors(MIntArray(static_cast<unsigned int>(mesh.numFaceVertices()), 0), &set);
}

/// Whether there are polygons, and all have UVs.
bool areAllMapped(const MIntArray& counts) {
  for (unsigned int i = 0; i < counts.length(); ++i)
    if (counts[i] == 0) return false;
  return counts.length() > 0;
}

MStatus requireUvs(const MDagPath& path) {
  const MFnMesh mesh(path);
  MIntArray counts, ids;
  const MString set = mesh.currentUVSetName();
  if (set.length() > 0 && mesh.getAssignedUVs(counts, ids, &set) && areAllMapped(counts))
    return MS::kSuccess;
  return failWith("at least one face on object " + path.fullPathName() + " does not have uvs!");
}

/// What a node of a mesh's history takes its mesh from; a null plug when it makes one itself.
MPlug meshInput(const MObject& node) {
  const MFnDependencyNode nodeFn(node);
  for (const char* name : {"inMesh", "inputPolymesh"})
    if (nodeFn.hasAttribute(name)) return nodeFn.findPlug(name, false);
  return MPlug();
}

}  // namespace

MDagPath uvObject::shape() const {
  return shapeBelow(transform);
}

MDagPath uvObject::copyShape() const {
  return shapeBelow(copyTransform);
}

MStatus uvObject::buildFlat(const MDagPath& mesh, const uvPlacement& placement) {
  const MFnMesh source(mesh);
  const MString set = source.currentUVSetName();
  MFloatArray u, v;
  MIntArray counts, ids;
  if (!source.getUVs(u, v, &set)) return failWith("could not get uvs");
  if (!source.getAssignedUVs(counts, ids, &set))
    return failWith("could not get uv index information");
  if (static_cast<int>(counts.length()) != source.numPolygons() || !areAllMapped(counts))
    return failWith(
        "Some polygons do not have uv information on the current uv set. This tool needs all "
        "polygons to have Uvs in order to work");

  MPointArray points(u.length());
  for (unsigned int i = 0; i < u.length(); ++i) points[i] = placement.toPoint(u[i], v[i]);
  MFnMesh flat;
  MStatus status;
  transform = flat.create(static_cast<int>(points.length()), static_cast<int>(counts.length()),
                          points, counts, ids, MObject::kNullObj, &status);
  if (!status) {
    transform = MObject::kNullObj;
    return failWith("could not create mesh!\n");
  }
  flat.updateSurface();
  MFnTransform(transform).setTranslation(MVector(0.0, placement.height(), 0.0), MSpace::kTransform);
  const MString name = shape().partialPathName();
  run("sets -e -fe initialShadingGroup " + name);
  run("polyOptions -colorShadedDisplay true " + name);
  run("polyOptions -colorMaterialChannel \"none\" " + name);
  colorFaces(flat);
  return MS::kSuccess;
}

MStatus uvObject::buildCopy(const MDagPath& mesh) {
  MFnMesh copy;
  MStatus status;
  copyTransform = copy.copy(mesh.node(), MObject::kNullObj, &status);
  MString failure;
  if (!status)
    failure = "cannot get the dagePath to the new node";
  else if (!copy.setCurrentUVSetName(MFnMesh(mesh).currentUVSetName()))
    failure = "cannot set the current uv to the set name";
  else if (!copyShape().isValid())
    failure = "cannot get the dagePath to the new node";
  else {
    MPlug plug =
        MFnDependencyNode(copyShape().node()).findPlug("intermediateObject", false, &status);
    if (status) status = plug.setValue(true);
    if (!status) failure = "cannot find intermediateObject plug";
  }
  if (failure.length() == 0) return MS::kSuccess;
  discardNode(copyTransform);
  return failWith(failure);
}

void uvObject::group() const {
  int isThere = 0;
  MGlobal::executeCommand(MString("objExists ") + kGroup, isThere, false, false);
  if (isThere != 1) return;
  for (const MObject& each : {transform, copyTransform}) {
    MDagPath path;
    if (!each.isNull() && MDagPath::getAPathTo(each, path))
      run("parent " + path.fullPathName() + " " + kGroup);
  }
}

void uvObject::discard() {
  discardNode(transform);
  discardNode(copyTransform);
}

MStatus meshesToLayOut(std::vector<MDagPath>& meshes) {
  MSelectionList selection;
  MGlobal::getActiveSelectionList(selection);
  if (!selectedMeshes(selection, meshes) || meshes.empty())
    return failWith("build uv object cmd only works on polygon meshes");
  for (const MDagPath& mesh : meshes)
    if (const MStatus status = requireUvs(mesh); !status) return status;
  return MS::kSuccess;
}

bool hasInHistory(const MDagPath& mesh, const char* nodeType) {
  MObject node = mesh.node();
  for (;;) {
    MPlugArray drivers;
    const MPlug input = meshInput(node);
    if (input.isNull() || !input.connectedTo(drivers, true, false) || drivers.length() == 0)
      return false;
    node = drivers[0].node();
    if (MFnDependencyNode(node).typeName() == nodeType) return true;
  }
}
