#include "uv/loadUvObjectCmd.h"

#include <maya/MArgDatabase.h>
#include <maya/MArgList.h>
#include <maya/MFnDagNode.h>
#include <maya/MGlobal.h>
#include <maya/MString.h>

#include "shared/settings/flagReader.h"
#include "uv/markAttributes.h"
#include "uv/meshSelection.h"
#include "uv/selectLocatorLink.h"
#include "uv/uvMessages.h"

namespace {

constexpr const char* kLoadFlag = "-loadType";

}  // namespace

void* loadUvObjectCmd::creator() {
  return new loadUvObjectCmd;
}

MSyntax loadUvObjectCmd::newSyntax() {
  MSyntax syntax;
  syntax.addFlag(kLoadFlag, kLoadFlag, MSyntax::kString);
  return syntax;
}

MStatus loadUvObjectCmd::parseArguments(const MArgList& arguments) {
  MStatus parsed;
  const MArgDatabase database(syntax(), arguments, &parsed);
  MString word;
  const MStatus status = readFlag(database, kLoadFlag, word, "could not parse load type");
  if (!status) return status;
  if (!parsed) return parsed;
  isLoad = word == "load";
  if (isLoad || word == "unLoad") return MS::kSuccess;
  return failWith("qxLoadUvObjectForMarking: say -loadType \"load\" or -loadType \"unLoad\"" +
                  (word.length() > 0 ? ", not \"" + word + "\"" : MString()));
}

MStatus loadUvObjectCmd::load(const MDagPath& mesh) {
  const MObject shape = mesh.node();
  if (!selectLocatorLink::locatorOf(shape).isNull()) return MS::kSuccess;
  // A locator that lost its marks still holds the mesh's visibility.
  MStatus status = selectLocatorLink::remove(shape, change);
  if (status) status = markAttributes::addTo(shape, change);
  return status ? selectLocatorLink::make(mesh, change) : status;
}

/// The locator goes first, with the marks still there: what it is connected to says which it is.
MStatus loadUvObjectCmd::unload(const MDagPath& mesh) {
  const MStatus status = selectLocatorLink::remove(mesh.node(), change);
  return status ? markAttributes::removeFrom(mesh.node(), change) : status;
}

void loadUvObjectCmd::selectLoaded() const {
  if (!isLoad) return;
  for (MDagPath mesh : meshes) {
    mesh.pop();
    MGlobal::executeCommand("select " + mesh.fullPathName());
  }
}

MStatus loadUvObjectCmd::doIt(const MArgList& arguments) {
  MStatus status = parseArguments(arguments);
  if (!status) return status;
  MGlobal::getActiveSelectionList(selectionBefore);
  selectedMeshes(selectionBefore, meshes);
  if (meshes.empty()) return failWith("qxLoadUvObjectForMarking: select a polygon mesh");
  for (const MDagPath& mesh : meshes) {
    status = isLoad ? load(mesh) : unload(mesh);
    if (status) continue;
    change.undoIt();
    MGlobal::setActiveSelectionList(selectionBefore);
    return status;
  }
  selectLoaded();
  return MS::kSuccess;
}

MStatus loadUvObjectCmd::redoIt() {
  const MStatus status = change.doIt();
  if (status) selectLoaded();
  return status;
}

MStatus loadUvObjectCmd::undoIt() {
  const MStatus status = change.undoIt();
  MGlobal::setActiveSelectionList(selectionBefore);
  return status;
}
