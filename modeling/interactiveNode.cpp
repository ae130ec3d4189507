#include "modeling/interactiveNode.h"

#include <maya/M3dView.h>
#include <maya/MFnDependencyNode.h>
#include <maya/MGlobal.h>
#include <maya/MSelectionList.h>
#include <maya/MStringArray.h>

#include <algorithm>

#include "shared/mesh/mathHelper.h"
#include "shared/mesh/polyHelper.h"

namespace {

constexpr const char* kExtrude =
    "polyExtrudeFacet -constructionHistory 1 -keepFacesTogether 1 -divisions 1 -ltz .1 -twist 0 "
    "-taper 1 -off 0 -smoothingAngle 30";
constexpr const char* kBevel =
    "polyBevel -offset 0.0 -offsetAsFraction 0 -autoFit 1 -segments 1 -worldSpace 1 -uvAssignment "
    "0 "
    "-fillNgons 1 -mergeVertices 1 -mergeVertexTolerance 0.0001 -smoothingAngle 30 -miteringAngle "
    "180 -angleTolerance 180 -ch 1";
constexpr int kPixelsPerSegment = 50;
constexpr double kBevelShare = 10.0;

}  // namespace

void interactiveNode::begin(int kindIn) {
  close();
  kind = kindIn;
  if (kind != kFaceKind && kind != kEdgeKind) return;
  polyHelper().selectionCentre(centre);
  MGlobal::executeCommand("undoInfo -ock", false, false);
  chunkIsOpen = true;
  createdNodeName.clear();
  MStringArray made;
  const MStatus status =
      MGlobal::executeCommand(kind == kFaceKind ? kExtrude : kBevel, made, false, true);
  if (status != MS::kSuccess || made.length() == 0) return;
  MSelectionList list;
  MObject object;
  if (list.add(made[0]) != MS::kSuccess || list.getDependNode(0, object) != MS::kSuccess) return;
  createdNodeName = made[0];
  node = MObjectHandle(object);
  const MFnDependencyNode nodeFn(object);
  if (kind == kFaceKind) {
    distance = nodeFn.findPlug("localTranslateZ", true);
  } else {
    offset = nodeFn.findPlug("offset", true);
    segments = nodeFn.findPlug("segments", true);
  }
}

bool interactiveNode::hasNode() const {
  return createdNodeName.length() > 0 && node.isValid() && node.isAlive();
}

void interactiveNode::drag(const M3dView& view, const portPlace& press, const portPlace& current) {
  if (!hasNode()) return;
  const mathHelper math;
  MPoint from, to;
  // Up and down is for the segments of a bevel.
  const short row = kind == kFaceKind ? current.y : press.y;
  if (math.viewToWorldAtDepth(view, press.x, press.y, centre, from) != MS::kSuccess ||
      math.viewToWorldAtDepth(view, current.x, row, centre, to) != MS::kSuccess)
    return;
  double length = from.distanceTo(to);
  if (current.x < press.x) length *= -1.0;
  if (kind == kFaceKind) {
    distance.setValue(static_cast<float>(length));
    return;
  }
  offset.setValue(length / kBevelShare);
  segments.setValue(std::max(1, (current.y - press.y) / kPixelsPerSegment));
}

MString interactiveNode::finish() {
  MString done;
  if (hasNode()) {
    const double perCentimetre = static_cast<double>(mathHelper().unitsPerCentimetre());
    // The node may have been renamed since.
    const MString name = MFnDependencyNode(node.object()).name();
    MString command("setAttr ");
    if (kind == kFaceKind) {
      const double value = distance.asDouble() * perCentimetre;
      command += name + ".localTranslateZ ";
      command += value;
      done = MString("extrude ") + shortNumber(value);
    } else {
      const double value = offset.asDouble() * perCentimetre;
      const auto count = static_cast<double>(segments.asInt());
      command += name + ".offset ";
      command += value;
      command += "; setAttr ";
      command += name + ".segments ";
      command += count;
      done = MString("bevel ") + shortNumber(value) + ", ";
      done += count;
      done += count == 1.0 ? " segment" : " segments";
    }
    MGlobal::executeCommand(command, false, true);
  }
  close();
  return done;
}

void interactiveNode::cancel() {
  const bool hasMade = chunkIsOpen && hasNode();
  close();
  if (hasMade) MGlobal::executeCommand("undo", false, false);
}

void interactiveNode::close() {
  if (chunkIsOpen) MGlobal::executeCommand("undoInfo -cck", false, false);
  chunkIsOpen = false;
  createdNodeName.clear();
  node = MObjectHandle();
  offset = segments = distance = MPlug();
  kind = kNoComponent;
}
