#include "uv/pinVertsCmd.h"

#include <maya/MArgDatabase.h>
#include <maya/MArgList.h>
#include <maya/MDagPath.h>
#include <maya/MFn.h>
#include <maya/MFnSingleIndexedComponent.h>
#include <maya/MGlobal.h>
#include <maya/MString.h>
#include <maya/MStringArray.h>

#include <vector>

#include "shared/mesh/mathHelper.h"
#include "shared/mesh/vertexPins.h"
#include "shared/settings/flagReader.h"
#include "uv/meshSelection.h"
#include "uv/pinEdit.h"
#include "uv/uvMessages.h"
#include "uv/uvSelection.h"

namespace {

constexpr const char* kPinFlag = "-pv";
constexpr const char* kUnpinFlag = "-upv";
constexpr const char* kClearFlag = "-cp";

MIntArray together(const MIntArray& a, const MIntArray& b) {
  MIntArray both = a;
  for (unsigned int i = 0; i < b.length(); ++i) both.append(b[i]);
  return mathHelper().uniqueSorted(both);
}

}  // namespace

void* pinVertsCmd::creator() {
  return new pinVertsCmd;
}

MSyntax pinVertsCmd::newSyntax() {
  MSyntax syntax;
  syntax.addFlag(kPinFlag, "-pinVert", MSyntax::kBoolean);
  syntax.addFlag(kUnpinFlag, "-unPinVert", MSyntax::kBoolean);
  syntax.addFlag(kClearFlag, "-clearPins", MSyntax::kBoolean);
  syntax.enableQuery(true);
  return syntax;
}

MStatus pinVertsCmd::readOperation(const MArgDatabase& database) {
  struct row {
    const char* flag;
    operation meaning;
  };
  for (const row& each : {row{kPinFlag, operation::pin}, row{kUnpinFlag, operation::unpin},
                          row{kClearFlag, operation::clear}}) {
    bool isOn = false;
    const MStatus status = readFlag(database, each.flag, isOn, "could not parse message set");
    if (!status) return status;
    if (isOn && wanted == operation::none) wanted = each.meaning;
  }
  return wanted == operation::none
             ? failWith("qxPinVertsCmd: say -pinVert, -unPinVert or -clearPins true")
             : MStatus(MS::kSuccess);
}

void pinVertsCmd::listPins() const {
  std::vector<MDagPath> meshes;
  selectedMeshes(selectionBefore, meshes);
  MStringArray names;
  for (const MDagPath& mesh : meshes) {
    MIntArray pins = vertexPins::pinsOf(mesh);
    MFnSingleIndexedComponent component;
    MObject vertices = component.create(MFn::kMeshVertComponent);
    component.addElements(pins);
    MSelectionList list;
    MStringArray own;
    if (pins.length() > 0 && list.add(mesh, vertices)) list.getSelectionStrings(0, own);
    for (unsigned int i = 0; i < own.length(); ++i) names.append(own[i]);
  }
  setResult(names);
}

MStatus pinVertsCmd::doIt(const MArgList& arguments) {
  MStatus parsed;
  const MArgDatabase database(syntax(), arguments, &parsed);
  isQuery = parsed && database.isQuery();
  MGlobal::getActiveSelectionList(selectionBefore);
  if (isQuery) {
    listPins();
    return MS::kSuccess;
  }
  MStatus status = readOperation(database);
  if (!status) return status;
  if (!parsed) return parsed;
  std::vector<MDagPath> meshes;
  selectedMeshes(selectionBefore, meshes);
  bool isAnySelected = false;
  for (const MDagPath& mesh : meshes) {
    const MIntArray vertices = verticesIn(selectionBefore, mesh);
    if (wanted != operation::clear && vertices.length() == 0) continue;
    isAnySelected = true;
    status = change(mesh, vertices);
    if (!status) break;
  }
  if (status && !isAnySelected) status = failWith("qxPinVertsCmd: select vertices of a UV object");
  if (!status) modifier.undoIt();
  MGlobal::setActiveSelectionList(selectionBefore);
  return status;
}

MStatus pinVertsCmd::change(const MDagPath& mesh, const MIntArray& vertices) {
  const mathHelper helper;
  const MIntArray before = vertexPins::pinsOf(mesh);
  MIntArray after;
  if (wanted == operation::pin) after = together(before, vertices);
  if (wanted == operation::unpin) after = helper.difference(before, vertices);
  const MIntArray added = helper.difference(after, before);
  const MIntArray freed = helper.difference(before, after);
  if (added.length() == 0 && freed.length() == 0) return MS::kSuccess;
  MStatus status = pinEdit::setPins(mesh, after, modifier);
  if (status) status = pinEdit::setHostPins(mesh, added, true, modifier);
  return status ? pinEdit::setHostPins(mesh, freed, false, modifier) : status;
}

MStatus pinVertsCmd::redoIt() {
  const MStatus status = modifier.doIt();
  MGlobal::setActiveSelectionList(selectionBefore);
  return status;
}

MStatus pinVertsCmd::undoIt() {
  const MStatus status = modifier.undoIt();
  MGlobal::setActiveSelectionList(selectionBefore);
  return status;
}
