#include "uv/addUVNodeMessageCmd.h"

#include <maya/MFnMesh.h>
#include <maya/MGlobal.h>
#include <maya/MString.h>
#include <maya/MStringArray.h>

#include <cstring>

#include "uv/uvLinks.h"
#include "uv/uvMessages.h"
#include "uv/uvPlacement.h"

namespace {

/// The last UV tweak node in a mesh's history; null when there is none.
MObject tweakNodeOf(const MDagPath& mesh) {
  MStringArray names;
  MGlobal::executeCommand("listHistory -pdo 1 " + mesh.fullPathName(), names, false, false);
  for (unsigned int i = 0; i < names.length(); ++i) {
    MSelectionList list;
    MObject node;
    if (!list.add(names[i]) || !list.getDependNode(0, node)) continue;
    if (std::strcmp(node.apiTypeStr(), "kPolyTweakUV") == 0) return node;
  }
  return MObject();
}

}  // namespace

void* addUVNodeMessageCmd::creator() {
  return new addUVNodeMessageCmd;
}

MSyntax addUVNodeMessageCmd::newSyntax() {
  return MSyntax();
}

MStatus addUVNodeMessageCmd::doIt(const MArgList&) {
  MGlobal::getActiveSelectionList(selectionBefore);
  std::vector<MDagPath> selected;
  const MStatus status = meshesToLayOut(selected);
  if (!status) return status;
  for (const MDagPath& mesh : selected)
    if (!hasInHistory(mesh, "uvEditNode") && !uvLinks::isLinked(mesh.node()))
      meshes.push_back(mesh);
  return redoIt();
}

/// There and back again changes no UV, but leaves a node behind that holds offsets of them all. A
/// mesh without history is edited in place instead, where going there may have rounded.
void addUVNodeMessageCmd::addTweakNode(link& made) {
  MFnMesh mesh(made.mesh);
  const int count = mesh.numUVs();
  if (count <= 0) return;
  uvArrays before, now;
  before.read(mesh);
  const MString range = made.mesh.fullPathName() + ".map[0:" + (count - 1) + "]";
  tweaks.commandToExecute("polyEditUV -r 1 -u 1 " + range);
  tweaks.commandToExecute("polyEditUV -r -1 -u -1 " + range);
  tweaks.doIt();
  made.tweakNode = tweakNodeOf(made.mesh);
  uvArrays::step failed;
  if (made.tweakNode.isNull() && now.read(mesh) && !(now == before)) before.write(mesh, failed);
}

void addUVNodeMessageCmd::connect(link& made) const {
  made.number = uvLinks::add(
      {made.object.shape(), made.mesh, made.object.copyShape(), made.tweakNode, made.uvSet});
}

MStatus addUVNodeMessageCmd::build(const MDagPath& mesh, const uvPlacement& placement) {
  link made;
  made.mesh = mesh;
  made.uvSet = MFnMesh(mesh).currentUVSetName();
  if (!made.object.buildFlat(mesh, placement)) return failWith("error creating uv polygon object");
  if (!made.object.buildCopy(mesh)) {
    made.object.discard();
    return failWith("error creating uv intermediate polygon object");
  }
  made.object.group();
  addTweakNode(made);
  connect(made);
  links.push_back(made);
  return MS::kSuccess;
}

MStatus addUVNodeMessageCmd::bringBack() {
  MStatus status = removal->undoIt();
  removal.reset();
  if (status) status = tweaks.doIt();
  for (link& each : links)
    if (status) connect(each);
  return status;
}

MStatus addUVNodeMessageCmd::redoIt() {
  MStatus status = MS::kSuccess;
  if (removal) {
    status = bringBack();
  } else {
    const uvPlacement placement;
    for (std::size_t i = 0; i < meshes.size() && status; ++i) status = build(meshes[i], placement);
  }
  if (status) MGlobal::executeCommand("select -d", false, false);
  return status;
}

MStatus addUVNodeMessageCmd::undoIt() {
  for (link& each : links) {
    uvLinks::drop(each.number);
    each.number = 0;
  }
  const MStatus status = tweaks.undoIt();
  removal = std::make_shared<MDGModifier>();
  for (const link& each : links) {
    removal->deleteNode(each.object.transform);
    removal->deleteNode(each.object.copyTransform);
  }
  const MStatus deleted = removal->doIt();
  MGlobal::setActiveSelectionList(selectionBefore);
  return status ? deleted : status;
}
