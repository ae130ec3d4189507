#include "uv/autoUnwrapCmd.h"

#include <maya/MArgDatabase.h>
#include <maya/MArgList.h>
#include <maya/MFnDagNode.h>
#include <maya/MFnMesh.h>
#include <maya/MGlobal.h>

#include "shared/settings/flagReader.h"
#include "shared/tool/shownComputation.h"
#include "uv/markedComponents.h"
#include "uv/meshSelection.h"
#include "uv/uvMessages.h"

namespace {

constexpr const char* kTypeFlag = "-unwrapType";

}  // namespace

void* autoUnwrapCmd::creator() {
  return new autoUnwrapCmd;
}

MSyntax autoUnwrapCmd::newSyntax() {
  MSyntax syntax;
  syntax.addFlag(kTypeFlag, kTypeFlag, MSyntax::kString);
  return syntax;
}

MStatus autoUnwrapCmd::parse(const MArgList& arguments, bool& isKnown) {
  MStatus parsed;
  const MArgDatabase database(syntax(), arguments, &parsed);
  MString type;
  const MStatus status = readFlag(database, kTypeFlag, type, "could not parse unwrap type");
  if (!status) return status;
  if (!parsed) return parsed;
  isKnown = type == "normal" || type == "straight";
  way = type == "straight" ? unwrapSequence::kStraight : unwrapSequence::kNormal;
  if (!isKnown)
    MGlobal::displayWarning("qxAutoUnwrap: -unwrapType is \"normal\" or \"straight\", not \"" +
                            type + "\"; nothing was changed");
  return MS::kSuccess;
}

MStatus autoUnwrapCmd::doIt(const MArgList& arguments) {
  bool isKnown = false;
  MStatus status = parse(arguments, isKnown);
  if (!status || !isKnown) return status;
  MGlobal::getActiveSelectionList(selectionBefore);
  MGlobal::getHiliteList(hiliteBefore);
  status = unwrapAll();
  restoreSelection();
  MGlobal::setHiliteList(hiliteBefore);
  return status;
}

/// All meshes or none.
MStatus autoUnwrapCmd::unwrapAll() {
  std::vector<MDagPath> meshes;
  selectedMeshes(selectionBefore.length() > 0 ? selectionBefore : hiliteBefore, meshes);
  if (meshes.empty()) return failWith("qxAutoUnwrap: select a polygon mesh");
  shownComputation progress("Unwrapping");
  MStatus status = MS::kSuccess;
  for (std::size_t i = 0; i < meshes.size() && status; ++i) status = unwrapOne(meshes[i], progress);
  if (status) return status;
  for (const unwrapped& one : done) write(one, one.before);
  done.clear();
  return status;
}

MStatus autoUnwrapCmd::unwrapOne(const MDagPath& mesh, MComputation& progress) {
  unwrapped result;
  result.mesh = mesh;
  MFnMesh copied;
  MStatus status;
  MObject copy = copied.copy(mesh.node(), MObject::kNullObj, &status);
  MDagPath copyPath;
  if (status) status = MDagPath::getAPathTo(copy, copyPath);
  if (status) status = copyPath.extendToShape();
  if (!status) {
    if (!copy.isNull()) MGlobal::deleteNode(copy);
    return failWith("cannot get the dagePath to the new node");
  }
  status = unwrapCopy(copyPath, result, progress);
  MGlobal::deleteNode(copy);
  if (!status) return status;
  status = write(result, result.after);
  // What can't be written in full is put back.
  if (status)
    done.push_back(result);
  else
    write(result, result.before);
  return status;
}

/// The UVs of a mesh before, and after the sequence has run on its copy.
MStatus autoUnwrapCmd::unwrapCopy(const MDagPath& copyPath, unwrapped& result,
                                  MComputation& progress) {
  const MFnMesh original(result.mesh);
  MFnMesh copy(copyPath);
  result.uvSet = original.currentUVSetName();
  copy.setCurrentUVSetName(result.uvSet);
  unwrapSequence sequence(copyPath, seamsOf(result.mesh), anchorsOf(result.mesh), progress);
  if (!sequence.run(way)) return failWith("qxAutoUnwrap: stopped; nothing was changed");
  if (!result.before.read(original, &result.uvSet))
    return failWith("could not get assigned uvs!\n");
  if (!result.after.read(MFnMesh(copyPath), &result.uvSet))
    return failWith("could not get assigned uvs!\n");
  return MS::kSuccess;
}

MStatus autoUnwrapCmd::write(const unwrapped& one, const uvArrays& uvs) const {
  const MString path = one.mesh.fullPathName();
  uvArrays::step failed = uvArrays::step::clear;
  MStatus status = MS::kFailure;
  if (one.mesh.isValid()) {
    MFnMesh mesh(one.mesh, &status);
    if (status) status = uvs.write(mesh, failed, &one.uvSet);
    if (status) status = mesh.updateSurface();
  }
  if (status) return status;
  if (failed == uvArrays::step::clear) return failWith("cannot clear uvs on Mesh " + path);
  if (failed == uvArrays::step::set) return failWith("cannot set uvs on Mesh " + path);
  return failWith("cannot assign uvs on Mesh");
}

MStatus autoUnwrapCmd::redoIt() {
  MStatus status = MS::kSuccess;
  for (const unwrapped& one : done)
    if (const MStatus written = write(one, one.after); !written) status = written;
  restoreSelection();
  return status;
}

MStatus autoUnwrapCmd::undoIt() {
  MStatus status = MS::kSuccess;
  for (const unwrapped& one : done)
    if (const MStatus written = write(one, one.before); !written) status = written;
  restoreSelection();
  return status;
}

void autoUnwrapCmd::restoreSelection() const {
  MGlobal::setActiveSelectionList(selectionBefore, MGlobal::kReplaceList);
}
