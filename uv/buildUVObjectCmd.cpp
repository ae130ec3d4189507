#include "uv/buildUVObjectCmd.h"

#include <maya/MFnDependencyNode.h>
#include <maya/MFnMesh.h>
#include <maya/MFnStringData.h>
#include <maya/MGlobal.h>
#include <maya/MPlug.h>
#include <maya/MString.h>

#include "uv/uvEditNode.h"
#include "uv/uvMessages.h"
#include "uv/uvPlacement.h"

namespace {

/// A plug and what is said when it is not there.
struct namedPlug {
  MObject node;
  const char* attribute;
  const char* text;
};

MStatus find(const namedPlug& wanted, MPlug& plug) {
  MStatus status;
  plug = MFnDependencyNode(wanted.node).findPlug(wanted.attribute, false, &status);
  return status ? status : failWith(wanted.text);
}

MStatus connect(const namedPlug& from, const namedPlug& to, const char* text) {
  MPlug source, destination;
  MStatus status = find(from, source);
  if (status) status = find(to, destination);
  if (!status) return status;
  MDGModifier modifier;
  return modifier.connect(source, destination) && modifier.doIt() ? status : failWith(text);
}

MStatus setUvSet(const MObject& node, const MString& name) {
  MPlug plug;
  MStatus status = find({node, "currentUVSet", "cannot find the currentUVSet attribute"}, plug);
  if (!status) return status;
  const MObject data = MFnStringData().create(name, &status);
  return status ? plug.setValue(data) : failWith("error creating a new MObject from a PointArray");
}

MStatus connectLayout(const uvObject& object, const MObject& node, const MString& uvSet) {
  MStatus status =
      connect({object.shape().node(), "outMesh", "cannot find the uv outMesh attribute"},
              {node, "inUVPolyMesh", "cannot find the inUVPolyMesh attribute"},
              "cannot connect the uvOutMesh to the uvInMesh");
  if (status)
    status = connect({object.transform, "xformMatrix", "cannot find the xform attribute"},
                     {node, "inWorldMatrix", "cannot find the inWorldMatrix attribute"},
                     "cannot connect the xformMeshPlug to the inWorldMeshPlug");
  return status ? setUvSet(node, uvSet) : status;
}

/// Ties the hidden copy to the layout, so that who finds the one finds the other.
MStatus connectCopy(const uvObject& object) {
  return connect({object.transform, "message", "cannot find the uv message attribute"},
                 {object.copyShape().node(), "visibility", "cannot find the visibility attribute"},
                 "cannot connect the uv message plug to the visibility plug");
}

}  // namespace

void* buildUVObjectCmd::creator() {
  return new buildUVObjectCmd;
}

MStatus buildUVObjectCmd::doIt(const MArgList&) {
  MGlobal::getActiveSelectionList(selectionBefore);
  std::vector<MDagPath> selected;
  const MStatus status = meshesToLayOut(selected);
  if (!status) return status;
  for (const MDagPath& mesh : selected)
    if (!hasInHistory(mesh, "uvEditNode")) meshes.push_back(mesh);
  return redoIt();
}

MStatus buildUVObjectCmd::build(const MDagPath& mesh, const uvPlacement& placement) {
  link made;
  MStatus status = made.step.make(mesh, uvEditNode::id, "error creating uv edit node");
  if (!status) return status;
  // One failure names the step, the other what went wrong in it.
  if (!made.object.buildFlat(mesh, placement))
    status = failWith("error creating uv polygon object");
  if (status) status = made.step.insert();
  if (status) status = connectLayout(made.object, made.step.node, MFnMesh(mesh).currentUVSetName());
  if (status && !made.object.buildCopy(mesh))
    status = failWith("error creating uv intermediate polygon object");
  if (status) status = connectCopy(made.object);
  if (status) {
    made.object.group();
    links.push_back(made);
    return status;
  }
  if (made.step.isIn())
    made.step.remove();
  else
    made.step.discard();
  made.object.discard();
  return status;
}

MStatus buildUVObjectCmd::buildAll() {
  const uvPlacement placement;
  for (const MDagPath& mesh : meshes)
    if (const MStatus status = build(mesh, placement); !status) return status;
  return MS::kSuccess;
}

MStatus buildUVObjectCmd::bringBack() {
  MStatus status = removal->undoIt();
  removal.reset();
  for (link& each : links)
    if (status) status = each.step.insert();
  return status;
}

MStatus buildUVObjectCmd::redoIt() {
  const MStatus status = removal ? bringBack() : buildAll();
  if (status) MGlobal::executeCommand("select -d", false, false);
  return status;
}

MStatus buildUVObjectCmd::undoIt() {
  MStatus status = MS::kSuccess;
  for (auto each = links.rbegin(); each != links.rend(); ++each)
    if (const MStatus removed = each->step.remove(); !removed) status = removed;
  removal = std::make_shared<MDGModifier>();
  for (const link& each : links) {
    removal->deleteNode(each.object.transform);
    removal->deleteNode(each.object.copyTransform);
  }
  const MStatus deleted = removal->doIt();
  MGlobal::setActiveSelectionList(selectionBefore);
  return status ? deleted : status;
}
