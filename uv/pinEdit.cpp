#include "uv/pinEdit.h"

#include <maya/MDagModifier.h>
#include <maya/MDagPath.h>
#include <maya/MFn.h>
#include <maya/MFnDagNode.h>
#include <maya/MFnData.h>
#include <maya/MFnIntArrayData.h>
#include <maya/MFnTypedAttribute.h>
#include <maya/MGlobal.h>
#include <maya/MIntArray.h>
#include <maya/MPlug.h>
#include <maya/MPlugArray.h>
#include <maya/MString.h>

#include <string>

#include "shared/mesh/vertexPins.h"
#include "uv/freeName.h"
#include "uv/uvMessages.h"
#include "uv/uvObjectEnds.h"

namespace pinEdit {
namespace {

constexpr const char* kLocatorType = "pinLocator";
constexpr const char* kLocatorName = "qxModelingToolsDrawPinLocator";

MPlug pinsPlug(const MObject& shape) {
  const MFnDependencyNode node(shape);
  return node.hasAttribute(vertexPins::kAttribute) ? node.findPlug(vertexPins::kAttribute, false)
                                                   : MPlug();
}

/// The locator that a mesh's pins are connected to; null when there is none.
MObject locatorOf(const MPlug& pins) {
  MPlugArray fed;
  if (pins.isNull()) return MObject();
  pins.connectedTo(fed, false, true);
  for (unsigned int i = 0; i < fed.length(); ++i)
    if (MFnDependencyNode(fed[i].node()).typeName() == kLocatorType) return fed[i].node();
  return MObject();
}

MStatus addAttribute(const MObject& shape, MDagModifier& modifier) {
  MFnTypedAttribute typed;
  const MObject made =
      typed.create(vertexPins::kAttribute, vertexPins::kShortName, MFnData::kIntArray);
  typed.setStorable(true);
  typed.setKeyable(false);
  modifier.addAttribute(shape, made);
  return modifier.doIt();
}

MStatus makeLocator(const MDagPath& mesh, MDagModifier& modifier) {
  MStatus status;
  const MObject transform = modifier.createNode(kLocatorType, MObject::kNullObj, &status);
  if (!status) return status;
  const MObject locator = MFnDagNode(transform).child(0, &status);
  if (!status) return status;
  const MString name = freeName(kLocatorName);
  modifier.renameNode(locator, name);
  modifier.renameNode(transform, name + "Transform");
  const MFnDependencyNode shape(mesh.node()), fn(locator);
  const MPlug matrices = shape.findPlug("worldMatrix", false);
  modifier.connect(pinsPlug(mesh.node()), fn.findPlug("pointArray", false));
  modifier.connect(shape.findPlug("outMesh", false), fn.findPlug("mInMesh", false));
  modifier.connect(matrices.elementByLogicalIndex(mesh.instanceNumber()),
                   fn.findPlug("mInWorldMatrix", false));
  modifier.connect(MFnDependencyNode(mesh.transform()).findPlug("visibility", false),
                   fn.findPlug("mInTransVisibile", false));
  modifier.newPlugValueBool(fn.findPlug("template", false), true);
  return modifier.doIt();
}

MStatus removeAll(const MObject& shape, const MObject& locator, MDagModifier& modifier) {
  if (!locator.isNull()) {
    const MFnDagNode below(locator);
    const MObject above = below.parentCount() > 0 ? below.parent(0) : MObject();
    modifier.deleteNode(above.hasFn(MFn::kTransform) ? above : locator);
  }
  modifier.removeAttribute(shape, pinsPlug(shape).attribute());
  return modifier.doIt();
}

/// " mesh.map[3:5] mesh.map[9]" for ascending indices.
MString namesOf(const MDagPath& mesh, const MIntArray& uvs) {
  const std::string stem = std::string(" ") + mesh.fullPathName().asChar() + ".map[";
  std::string names;
  for (unsigned int first = 0; first < uvs.length();) {
    unsigned int last = first;
    while (last + 1 < uvs.length() && uvs[last + 1] == uvs[last] + 1) ++last;
    names += stem + std::to_string(uvs[first]);
    if (last > first) names += ":" + std::to_string(uvs[last]);
    names += "]";
    first = last + 1;
  }
  return names.c_str();
}

}  // namespace

MStatus setPins(const MDagPath& mesh, const MIntArray& pins, MDagModifier& modifier) {
  const MObject shape = mesh.node();
  const MObject locator = locatorOf(pinsPlug(shape));
  MStatus status = MS::kSuccess;
  if (pins.length() == 0) {
    if (!pinsPlug(shape).isNull()) status = removeAll(shape, locator, modifier);
    return status ? status : failWith("error removing the pins of " + mesh.partialPathName());
  }
  if (pinsPlug(shape).isNull()) status = addAttribute(shape, modifier);
  if (!status) return failWith("error adding the pinned vertex attribute to the object!");
  const MObject data = MFnIntArrayData().create(pins, &status);
  if (!status) return failWith("error creating a new MObject from a intArray");
  modifier.newPlugValue(pinsPlug(shape), data);
  status = modifier.doIt();
  if (!status) return failWith("error setting the pinned vertices of " + mesh.partialPathName());
  if (locator.isNull()) status = makeLocator(mesh, modifier);
  return status ? status : failWith("error creating pin locator");
}

MStatus setHostPins(const MDagPath& uvObject, const MIntArray& uvs, bool isPinned,
                    MDagModifier& modifier) {
  const MDagPath mesh = meshOfUvObject(uvObject);
  int isKnown = 0;
  MGlobal::executeCommand("exists polyPinUV", isKnown, false, false);
  if (isKnown == 0 || uvs.length() == 0 || !mesh.isValid()) return MS::kSuccess;
  modifier.commandToExecute((isPinned ? "polyPinUV -op 0" : "polyPinUV -op 1") +
                            namesOf(mesh, uvs));
  return modifier.doIt();
}

}  // namespace pinEdit
