#include "uv/selectLocatorLink.h"

#include <maya/MDagModifier.h>
#include <maya/MDagPath.h>
#include <maya/MFn.h>
#include <maya/MFnDagNode.h>
#include <maya/MFnDependencyNode.h>
#include <maya/MPlug.h>
#include <maya/MPlugArray.h>
#include <maya/MString.h>

#include "uv/freeName.h"
#include "uv/markAttributes.h"
#include "uv/uvMessages.h"

namespace selectLocatorLink {
namespace {

/// The locator at the other end of a plug's incoming connection.
MObject locatorThatDrives(const MPlug& plug) {
  MPlugArray drivers;
  if (plug.isNull() || !plug.connectedTo(drivers, true, false) || drivers.length() == 0)
    return MObject();
  const MObject driver = drivers[0].node();
  return MFnDependencyNode(driver).typeName() == kNodeType ? driver : MObject();
}

MStatus find(const MObject& node, const char* attribute, MPlug& plug) {
  MStatus status;
  plug = MFnDependencyNode(node).findPlug(attribute, false, &status);
  return status ? status : failWith(MString("cannot find the ") + attribute + " attribute");
}

struct endPoint {
  MObject node;
  const char* attribute;
};

MStatus connect(const endPoint& from, const endPoint& to, const char* text,
                MDagModifier& modifier) {
  MPlug source, destination;
  MStatus status = find(from.node, from.attribute, source);
  if (status) status = find(to.node, to.attribute, destination);
  if (!status) return status;
  return modifier.connect(source, destination) && modifier.doIt() ? status : failWith(text);
}

/// The matrix of one instance of the mesh.
MStatus connectMatrix(const MDagPath& mesh, const MObject& locator, MDagModifier& modifier) {
  MPlug matrices, destination;
  MStatus status = find(mesh.node(), "parentMatrix", matrices);
  if (status) status = find(locator, "mInWorldMatrix", destination);
  if (!status) return status;
  const MPlug source = matrices.elementByLogicalIndex(mesh.instanceNumber());
  return modifier.connect(source, destination) && modifier.doIt()
             ? status
             : failWith("cannot connect the xformMeshPlug to the inWorldMatrixPlug");
}

/// Makes the node, named and out of the way of picking.
MStatus makeNode(MDagModifier& modifier, MObject& locator) {
  MStatus status;
  const MObject transform = modifier.createNode(kNodeType, MObject::kNullObj, &status);
  if (!status) return failWith("cannot create uvSelectLocator");
  const MFnDagNode above(transform, &status);
  if (status) locator = above.child(0, &status);
  const MFnDagNode below(locator, &status);
  if (!status) return failWith("cannot attach the object to the MFnDagNode");
  const MString name = freeName(kLocatorName);
  modifier.renameNode(locator, name);
  modifier.renameNode(transform, name + "Transform");
  if (!modifier.doIt()) return failWith("cannot create uvSelectLocator");
  MPlug isTemplate;
  status = find(locator, "template", isTemplate);
  if (!status) return status;
  modifier.newPlugValueBool(isTemplate, true);
  return modifier.doIt();
}

}  // namespace

MObject locatorOf(const MObject& meshShape) {
  return locatorThatDrives(markAttributes::plugOf(meshShape, markAttributes::kLocatorMessage));
}

MStatus make(const MDagPath& mesh, MDagModifier& modifier) {
  MObject locator;
  MStatus status = makeNode(modifier, locator);
  if (!status) return status;
  const MObject shape = mesh.node(), transform = mesh.transform();
  const auto array = [&](const markAttributes::name& attribute, const char* input,
                         const char* text) {
    return connect({shape, attribute.longName}, {locator, input}, text, modifier);
  };
  // In this order: files and scripts that list the connections rely on it.
  status = connect({transform, "visibility"}, {locator, "mInTransVisibile"},
                   "cannot connect the transVisibilityMeshPlug to the inTransVisibilityArrayPlug",
                   modifier);
  if (status)
    status = connect({shape, "outMesh"}, {locator, "mInMesh"},
                     "cannot connect the outMeshPlug to the inMeshPlug", modifier);
  if (status) status = connectMatrix(mesh, locator, modifier);
  if (status)
    status = array(markAttributes::kMarkedEdges, "edgeArray",
                   "cannot connect the selObjectMarkedEdgePlug to the inEdgeArrayPlug");
  if (status)
    status = array(markAttributes::kAncorPoints, "ancorArray",
                   "cannot connect the selObjectAncorPointPlug to the inAncorArrayPlug");
  if (status)
    status = array(markAttributes::kEdgeSelection, "edgeSelectionArray",
                   "cannot connect the selObjectEdgeSelectionPlug to the inEdgeSelectionArrayPlug");
  if (status)
    status = array(markAttributes::kVertSelection, "vertSelectionArray",
                   "cannot connect the selObjectVertSelectionPlug to the inVertSelectionArrayPlug");
  if (status)
    status =
        connect({locator, "message"}, {shape, markAttributes::kLocatorMessage.longName},
                "cannot connect the selObjectMessagePlug to the selLocatorMessagePlug", modifier);
  if (status)
    status = connect({locator, "mOutPosition"}, {shape, "visibility"},
                     "cannot connect the mOutPositionPlug to the visibilityMeshPlug", modifier);
  return status;
}

MStatus remove(const MObject& meshShape, MDagModifier& modifier) {
  const MObject tied = locatorOf(meshShape);
  const MObject driving =
      locatorThatDrives(MFnDependencyNode(meshShape).findPlug("visibility", false));
  for (const MObject& locator : {tied, driving == tied ? MObject() : driving}) {
    if (locator.isNull()) continue;
    const MFnDagNode below(locator);
    const MObject above = below.parentCount() > 0 ? below.parent(0) : MObject();
    if (!modifier.deleteNode(above.hasFn(MFn::kTransform) ? above : locator) || !modifier.doIt())
      return MS::kFailure;
  }
  return MS::kSuccess;
}

}  // namespace selectLocatorLink
