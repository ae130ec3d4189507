#include "commands/turboSmoothCmd.h"

#include <maya/MArgDatabase.h>
#include <maya/MDGModifier.h>
#include <maya/MDoubleArray.h>
#include <maya/MFn.h>
#include <maya/MFnDependencyNode.h>
#include <maya/MFnMesh.h>
#include <maya/MGlobal.h>
#include <maya/MItMeshEdge.h>
#include <maya/MItSelectionList.h>
#include <maya/MObject.h>
#include <maya/MPlug.h>
#include <maya/MString.h>
#include <maya/MUintArray.h>

#include <utility>

#include "shared/mesh/shownMesh.h"
#include "shared/settings/flagReader.h"

namespace {

constexpr const char* kDivisionsFlag = "-nd";
constexpr double kFullCrease = 10.0;
constexpr const char* kSmoothFlags =
    " -c 1 -kb 1 -ksb 1 -khe 0 -kt 1 -kmb 1 -suv 1 -peh 0 -sl 1 -dpe 1 -ps 0.1 -ro 1";

void selectOnly(const MDagPath& path) {
  MSelectionList one;
  one.add(path);
  MGlobal::setActiveSelectionList(one);
}

bool shownMesh(const MDagPath& transform, MDagPath& mesh) {
  mesh = transform;
  return extendToShownMesh(mesh) == MS::kSuccess;
}

MPlug plugOf(const MDagPath& path, const char* attribute) {
  MStatus status;
  const MPlug plug = MFnDependencyNode(path.node()).findPlug(attribute, false, &status);
  return status ? plug : MPlug();
}

MStatus smoothSelected(int divisions) {
  MString line("polySmooth -mth 0 -dv ");
  line += divisions;
  line += kSmoothFlags;
  return MGlobal::executeCommand(line);
}

MUintArray hardEdges(const MDagPath& mesh) {
  MUintArray edges;
  for (MItMeshEdge edge(mesh); !edge.isDone(); edge.next())
    if (!edge.isSmooth()) edges.append(static_cast<unsigned int>(edge.index()));
  return edges;
}

MStatus setCreases(const MDagPath& mesh, const MUintArray& edges, double value) {
  if (edges.length() == 0) return MS::kSuccess;
  return MFnMesh(mesh).setCreaseEdges(edges, MDoubleArray(edges.length(), value));
}

void deletePath(const MDagPath& path) {
  MObject node = path.node();
  MGlobal::deleteNode(node);
}

/// Ties a copy to its source, as far as the host lets it, and hides the source behind it.
MStatus link(const MDagPath& source, const MDagPath& copy) {
  const MPlug visibility = plugOf(source, "visibility");
  const MPlug message = plugOf(copy, "message");
  if (visibility.isNull() || message.isNull()) {
    MGlobal::displayWarning("cant find the message attribute!");
    return MS::kFailure;
  }
  // A message is no value, so hosts refuse this; scripts that look for the error find it.
  MDGModifier modifier;
  const bool isQueued = modifier.connect(message, visibility) == MS::kSuccess;
  MPlug intermediate = plugOf(source, "intermediateObject");
  if (intermediate.isNull()) {
    if (!isQueued) MGlobal::displayError("cannot connect the message to the message");
    MGlobal::displayError("cannot find intermediateObject plug");
    return MS::kFailure;
  }
  if (modifier.doIt() != MS::kSuccess || !isQueued)
    MGlobal::displayError("cannot connect the message to the message");
  const MStatus hidden = intermediate.setValue(true);
  if (!hidden)
    MGlobal::displayError(MString("qxESmoothCmd: ") + source.partialPathName() +
                          " can't be hidden behind its copy: its intermediateObject is locked or "
                          "driven");
  return hidden;
}

void show(const MDagPath& source) {
  MPlug intermediate = plugOf(source, "intermediateObject");
  if (intermediate.isNull()) {
    MGlobal::displayError("cannot find intermediateObject plug");
    return;
  }
  intermediate.setValue(false);
  MPlug visibility = plugOf(source, "visibility");
  if (visibility.isNull()) {
    MGlobal::displayError("cant find the visibility attribute!");
    return;
  }
  visibility.setValue(true);
  int hasSet = 0;
  MGlobal::executeCommand("objExists qxTSmoothObjectsSet", hasSet);
  if (hasSet != 0)
    MGlobal::executeCommand(MString("sets -rm \"qxTSmoothObjectsSet\" ") + source.fullPathName());
}

}  // namespace

void* turboSmoothCmd::creator() {
  return new turboSmoothCmd;
}

MSyntax turboSmoothCmd::newSyntax() {
  MSyntax syntax;
  syntax.addFlag(kDivisionsFlag, "-numDiv", MSyntax::kLong);
  return syntax;
}

/// A command that failed on one of its objects, while another takes over those that it was done
/// with.
turboSmoothCmd* turboSmoothCmd::handingOver = nullptr;

MStatus turboSmoothCmd::doIt(const MArgList& arguments) {
  if (handingOver) {
    std::swap(sourcePaths, handingOver->sourcePaths);
    std::swap(smoothPaths, handingOver->smoothPaths);
    selection = handingOver->selection;
    left = handingOver->left;
    return MS::kSuccess;
  }
  MStatus parsed;
  const MArgDatabase database(syntax(), arguments, &parsed);
  const MStatus status =
      readFlag(database, kDivisionsFlag, numDiv, "could not parse message numDiv");
  if (status != MS::kSuccess) return status;
  if (parsed != MS::kSuccess) return parsed;
  MSelectionList active, hilited;
  MGlobal::getActiveSelectionList(active);
  MGlobal::getHiliteList(hilited);
  selection = active;
  selection.merge(hilited);
  if (selection.isEmpty()) return MS::kFailure;
  const MStatus smoothed = smoothAll();
  if (smoothed != MS::kSuccess) {
    MGlobal::setActiveSelectionList(active);
    MGlobal::setHiliteList(hilited);
  }
  MGlobal::getActiveSelectionList(left);
  if (smoothed != MS::kSuccess && smoothPaths.length() > 0) {
    // What a failed command has done no undo takes back: a command of its own keeps it.
    handingOver = this;
    MGlobal::executeCommand("qxESmoothCmd", false, true);
    handingOver = nullptr;
  }
  return smoothed;
}

MStatus turboSmoothCmd::smoothAll() {
  MGlobal::executeCommand("setToolTo selectSuperContext");
  for (MItSelectionList item(selection); !item.isDone(); item.next()) {
    MDagPath source, mesh;
    if (item.getDagPath(source) != MS::kSuccess || source.apiType() != MFn::kTransform) continue;
    // Groups, cameras and the like have nothing to smooth.
    if (!shownMesh(source, mesh)) continue;
    const MStatus status = smoothObject(source);
    if (status != MS::kSuccess) return status;
  }
  return MS::kSuccess;
}

MStatus turboSmoothCmd::smoothObject(const MDagPath& source) {
  selectOnly(source);
  MStatus status = MGlobal::executeCommand("duplicate");
  if (status != MS::kSuccess) return status;
  MSelectionList copies;
  MGlobal::getActiveSelectionList(copies);
  MDagPath copy;
  status = copies.getDagPath(0, copy);
  if (status != MS::kSuccess) return status;
  const bool wasHidden = plugOf(source, "intermediateObject").asBool();
  status = link(source, copy);
  if (status == MS::kSuccess) status = smoothCopy(copy);
  if (status == MS::kSuccess) {
    sourcePaths.append(source);
    smoothPaths.append(copy);
  } else {
    // An object must not vanish behind a copy that could not be smoothed.
    deletePath(copy);
    MPlug intermediate = plugOf(source, "intermediateObject");
    if (intermediate.asBool() != wasHidden) intermediate.setValue(wasHidden);
  }
  MGlobal::setActiveSelectionList(MSelectionList());
  return status;
}

MStatus turboSmoothCmd::smoothCopy(const MDagPath& copy) const {
  MDagPath mesh;
  if (!shownMesh(copy, mesh)) return MS::kFailure;
  const MUintArray sharp = hardEdges(mesh);
  selectOnly(copy);
  MStatus status = setCreases(mesh, sharp, kFullCrease);
  if (status == MS::kSuccess) status = smoothSelected(numDiv + 1);
  if (status != MS::kSuccess) return status;
  // The history that smoothing makes may have put another shape in front.
  MUintArray creased;
  MDoubleArray values;
  if (!shownMesh(copy, mesh)) return MS::kFailure;
  if (MFnMesh(mesh).getCreaseEdges(creased, values) == MS::kSuccess)
    status = setCreases(mesh, creased, 0.0);
  if (status != MS::kSuccess) return status;
  selectOnly(copy);
  status = smoothSelected(1);
  return status == MS::kSuccess ? MGlobal::executeCommand("delete -ch ") : status;
}

MStatus turboSmoothCmd::undoIt() {
  MGlobal::executeCommand("setToolTo selectSuperContext");
  removal = std::make_unique<MDagModifier>();
  for (unsigned int i = 0; i < smoothPaths.length(); ++i)
    if (smoothPaths[i].isValid()) removal->deleteNode(smoothPaths[i].node());
  const MStatus status = removal->doIt();
  for (unsigned int i = 0; i < sourcePaths.length(); ++i)
    if (sourcePaths[i].isValid()) show(sourcePaths[i]);
  MGlobal::setActiveSelectionList(selection);
  return status;
}

MStatus turboSmoothCmd::redoIt() {
  if (!removal) return MS::kFailure;
  MGlobal::executeCommand("setToolTo selectSuperContext");
  const MStatus status = removal->undoIt();
  removal.reset();
  for (unsigned int i = 0; i < sourcePaths.length(); ++i)
    if (sourcePaths[i].isValid()) plugOf(sourcePaths[i], "intermediateObject").setValue(true);
  MGlobal::setActiveSelectionList(left);
  return status;
}
