#include "uv/uvRatioCmd.h"

#include <maya/MArgDatabase.h>
#include <maya/MArgList.h>
#include <maya/MGlobal.h>

#include "uv/uvMessages.h"
#include "uv/uvRatioShells.h"
#include "uv/uvSelection.h"

void* uvRatioCmd::creator() {
  return new uvRatioCmd;
}

MSyntax uvRatioCmd::newSyntax() {
  MSyntax syntax;
  uvRatioShells::addFlags(syntax);
  return syntax;
}

MStatus uvRatioCmd::doIt(const MArgList& arguments) {
  MStatus parsed;
  const MArgDatabase database(syntax(), arguments, &parsed);
  uvRatioOptions options;
  MStatus status = uvRatioShells::readFlags(database, options);
  if (!status) return status;
  if (!parsed) return parsed;
  MGlobal::getActiveSelectionList(selectionBefore);
  const std::vector<selectedUvs> selected = uvsIn(selectionBefore);
  if (selected.empty()) return failWith("uvRatio: select polygon meshes or UVs");
  for (const selectedUvs& each : selected) {
    meshUvEdit edit;
    status = edit.read(each.mesh);
    if (!status) return status;
    edit.after = edit.before;
    status =
        uvRatioShells::scale(each.mesh, options, each.isWhole ? nullptr : &each.uvs, edit.after);
    if (!status) return status;
    edits.push_back(edit);
  }
  return redoIt();
}

MStatus uvRatioCmd::redoIt() {
  for (std::size_t i = 0; i < edits.size(); ++i) {
    const MStatus status = edits[i].apply();
    if (status) continue;
    while (i > 0) edits[--i].takeBack();
    MGlobal::setActiveSelectionList(selectionBefore);
    return status;
  }
  MGlobal::setActiveSelectionList(selectionBefore);
  return MS::kSuccess;
}

MStatus uvRatioCmd::undoIt() {
  MStatus status = MS::kSuccess;
  for (auto edit = edits.rbegin(); edit != edits.rend(); ++edit)
    if (const MStatus taken = edit->takeBack(); !taken) status = taken;
  MGlobal::setActiveSelectionList(selectionBefore);
  return status;
}
