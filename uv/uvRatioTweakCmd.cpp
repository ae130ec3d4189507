#include "uv/uvRatioTweakCmd.h"

#include <maya/MDagPath.h>
#include <maya/MGlobal.h>
#include <maya/MSelectionList.h>

#include "shared/mesh/shownMesh.h"
#include "uv/meshUvEdit.h"
#include "uv/uvRatioShells.h"

namespace {

/// The instance of a mesh that is selected; else the first.
MDagPath pathOf(const MObject& mesh) {
  MSelectionList selection;
  MGlobal::getActiveSelectionList(selection);
  for (unsigned int i = 0; i < selection.length(); ++i) {
    MDagPath path;
    if (selection.getDagPath(i, path) && extendToShownMesh(path) && path.node() == mesh)
      return path;
  }
  MDagPath path;
  MDagPath::getAPathTo(mesh, path);
  return path;
}

/// Equal as places: what no number can be said of is the same as itself.
bool isSame(float a, float b) {
  return a == b || (a != a && b != b);
}

}  // namespace

void* uvRatioTweakCmd::creator() {
  return new uvRatioTweakCmd;
}

MSyntax uvRatioTweakCmd::newSyntax() {
  MSyntax syntax = MPxPolyTweakUVCommand::newSyntax();
  uvRatioShells::addFlags(syntax);
  return syntax;
}

MStatus uvRatioTweakCmd::parseSyntax(MArgDatabase& arguments) {
  return uvRatioShells::readFlags(arguments, options);
}

MStatus uvRatioTweakCmd::getTweakedUVs(const MObject& mesh, MIntArray& uvList, MFloatArray& uPos,
                                       MFloatArray& vPos) {
  const MDagPath path = pathOf(mesh);
  meshUvEdit edit;
  MStatus status = edit.read(path);
  if (!status) return status;
  edit.after = edit.before;
  status = uvRatioShells::scale(path, options, &uvList, edit.after);
  if (!status) return status;
  uvList.clear();
  uPos.clear();
  vPos.clear();
  for (unsigned int i = 0; i < edit.after.u.length(); ++i) {
    if (isSame(edit.after.u[i], edit.before.u[i]) && isSame(edit.after.v[i], edit.before.v[i]))
      continue;
    uvList.append(static_cast<int>(i));
    uPos.append(edit.after.u[i]);
    vPos.append(edit.after.v[i]);
  }
  return MS::kSuccess;
}
