#include "commands/selectCmd.h"

#include <maya/MArgDatabase.h>
#include <maya/MDagPath.h>
#include <maya/MFn.h>
#include <maya/MFnSingleIndexedComponent.h>
#include <maya/MGlobal.h>
#include <maya/MIntArray.h>
#include <maya/MItMeshEdge.h>
#include <maya/MItMeshPolygon.h>
#include <maya/MItSelectionList.h>
#include <maya/MObject.h>

#include "shared/mesh/polyHelper.h"
#include "shared/mesh/shownMesh.h"
#include "shared/settings/flagReader.h"

namespace {

constexpr const char* kBorderFlag = "-be";
constexpr const char* kHardFlag = "-he";

MStatus refuse(const char* text) {
  MGlobal::displayError(text);
  return MS::kFailure;
}

void enterSelectTool() {
  MGlobal::executeCommand("setToolTo selectSuperContext", false, false);
}

}  // namespace

SelectCmd::SelectCmd() : borderEdge(false), hardEdge(false) {}

void* SelectCmd::creator() {
  return new SelectCmd;
}

MSyntax SelectCmd::newSyntax() {
  MSyntax syntax;
  syntax.addFlag(kBorderFlag, "-borderEdge", MSyntax::kBoolean);
  syntax.addFlag(kHardFlag, "-hardEdge", MSyntax::kBoolean);
  return syntax;
}

MStatus SelectCmd::parseArguments(const MArgList& arguments) {
  MStatus parsed;
  const MArgDatabase database(syntax(), arguments, &parsed);
  MStatus status =
      readFlag(database, kBorderFlag, borderEdge, "could not parse border edge message set");
  if (status == MS::kSuccess)
    status = readFlag(database, kHardFlag, hardEdge, "could not parse hard edge message set");
  return status == MS::kSuccess ? parsed : status;
}

void SelectCmd::addEdges(const MDagPath& mesh, const MObject& edges) {
  if (!edges.isNull() && MFnSingleIndexedComponent(edges).elementCount() > 0)
    edgeSelection.add(mesh, edges, true);
  lastPathName = mesh.fullPathName();
}

MStatus SelectCmd::addBorderEdges() {
  const polyHelper helper;
  for (MItSelectionList item(priorSelection, MFn::kMeshPolygonComponent); !item.isDone();
       item.next()) {
    MDagPath mesh;
    MObject component;
    if (item.getDagPath(mesh, component) != MS::kSuccess || component.isNull()) continue;
    MIntArray faces;
    for (MItMeshPolygon face(mesh, component); !face.isDone(); face.next())
      faces.append(static_cast<int>(face.index()));
    if (faces.length() > 0) addEdges(mesh, helper.borderEdges(mesh, faces));
  }
  return edgeSelection.isEmpty() ? refuse("qxSelectCmd: select faces that have a border")
                                 : MS::kSuccess;
}

MStatus SelectCmd::addHardEdges() {
  for (MItSelectionList item(priorSelection); !item.isDone(); item.next()) {
    MDagPath mesh;
    if (item.getDagPath(mesh) != MS::kSuccess) continue;
    if (extendToShownMesh(mesh) != MS::kSuccess) continue;
    MIntArray hard;
    for (MItMeshEdge edge(mesh); !edge.isDone(); edge.next())
      if (!edge.isSmooth()) hard.append(edge.index());
    MFnSingleIndexedComponent edges;
    const MObject component = edges.create(MFn::kMeshEdgeComponent);
    edges.addElements(hard);
    addEdges(mesh, component);
  }
  return edgeSelection.isEmpty() ? refuse("qxSelectCmd: the selected objects have no hard edges")
                                 : MS::kSuccess;
}

MStatus SelectCmd::doIt(const MArgList& arguments) {
  MStatus status = parseArguments(arguments);
  if (status != MS::kSuccess) return status;
  MGlobal::getActiveSelectionList(priorSelection);
  if (priorSelection.isEmpty()) return MS::kFailure;
  if (!borderEdge && !hardEdge)
    return refuse("qxSelectCmd: ask for border edges (-be) or hard edges (-he)");
  // With both asked for, the last one decides: faces without a border don't stand in the way of
  // hard edges.
  if (borderEdge) status = addBorderEdges();
  if (hardEdge) status = addHardEdges();
  return status == MS::kSuccess ? redoIt() : status;
}

MStatus SelectCmd::redoIt() {
  enterSelectTool();
  MGlobal::setHiliteList(edgeSelection);
  const MStatus status = MGlobal::setActiveSelectionList(edgeSelection);
  if (status != MS::kSuccess) return status;
  MGlobal::executeCommand("doMenuComponentSelection(\"" + lastPathName + "\", \"edge\")", false,
                          false);
  // The menu's procedure hilites the one object that it is given.
  return MGlobal::setHiliteList(edgeSelection);
}

MStatus SelectCmd::undoIt() {
  enterSelectTool();
  MGlobal::setHiliteList(edgeSelection);
  return MGlobal::setActiveSelectionList(priorSelection);
}
