#include "uv/markUVInformationCmd.h"

#include <maya/MArgDatabase.h>
#include <maya/MArgList.h>
#include <maya/MGlobal.h>
#include <maya/MString.h>

#include "shared/mesh/mathHelper.h"
#include "shared/settings/flagReader.h"
#include "uv/markedComponents.h"
#include "uv/uvMessages.h"

namespace {

/// In this order: the first one that is true is done.
const struct {
  const char *shortName, *longName;
} kFlags[] = {
    {"-me", "-markEdge"}, {"-ume", "-unMarkEdge"}, {"-mv", "-markVert"}, {"-umv", "-unMarkVert"}};

MIntArray joined(const MIntArray& a, const MIntArray& b) {
  MIntArray all = a;
  for (unsigned int i = 0; i < b.length(); ++i) all.append(b[i]);
  return all;
}

bool uvSelectToolIsCurrent() {
  MString context, title;
  MGlobal::executeCommand("currentCtx", context, false, false);
  if (context.length() == 0) return false;
  MGlobal::executeCommand("contextInfo -t " + context, title, false, false);
  return title == "Uv Select Tool";
}

}  // namespace

void* markUVInformationCmd::creator() {
  return new markUVInformationCmd;
}

MSyntax markUVInformationCmd::newSyntax() {
  MSyntax syntax;
  for (const auto& flag : kFlags) syntax.addFlag(flag.shortName, flag.longName, MSyntax::kBoolean);
  return syntax;
}

MStatus markUVInformationCmd::parse(const MArgList& arguments) {
  MStatus parsed;
  const MArgDatabase database(syntax(), arguments, &parsed);
  int place = kNone;
  for (const auto& flag : kFlags) {
    ++place;
    bool isOn = false;
    const MStatus status = readFlag(database, flag.shortName, isOn, "could not parse message set");
    if (!status) return status;
    if (isOn && wanted == kNone) wanted = static_cast<operation>(place);
  }
  if (!parsed) {
    parsed.perror("could not parse message set");
    return parsed;
  }
  if (wanted != kNone) return MS::kSuccess;
  return failWith("qxMarkUVInformation: say what to mark: -me, -ume, -mv or -umv");
}

const markAttributes::name& markUVInformationCmd::list() const {
  return isOfEdges() ? markAttributes::kMarkedEdges : markAttributes::kAncorPoints;
}

const char* markUVInformationCmd::missingText() const {
  return isOfEdges() ? "Object does not have a marked edge array. Try loading the object again!"
                     : "Object does not have a marked vert array. Try loading the object again!";
}

/// What becomes of the list of each mesh of which edges, or vertices, are selected.
void markUVInformationCmd::plan() {
  const mathHelper math;
  const bool isMark = wanted == kMarkEdge || wanted == kMarkVert;
  bool isAnySelected = false;
  for (const meshComponents& each : selectedComponents(selectionBefore)) {
    const MIntArray& selected = isOfEdges() ? each.edges : each.vertices;
    if (selected.length() == 0) continue;
    isAnySelected = true;
    const MObject shape = each.mesh.node();
    if (!markAttributes::has(shape, list())) {
      MGlobal::displayError(missingText());
      continue;
    }
    listChange change;
    change.shape = MObjectHandle(shape);
    change.before = markAttributes::indicesIn(shape, list());
    const MIntArray marks = isOfEdges() ? seamsOf(each.mesh) : anchorsOf(each.mesh);
    change.after =
        math.uniqueSorted(isMark ? joined(marks, selected) : math.difference(marks, selected));
    changes.push_back(change);
  }
  if (!isAnySelected)
    MGlobal::displayWarning(isOfEdges() ? "qxMarkUVInformation: no edges are selected"
                                        : "qxMarkUVInformation: no vertices are selected");
}

/// All lists or, when one can't be written, none.
MStatus markUVInformationCmd::write(bool isUndo) const {
  for (std::size_t i = 0; i < changes.size(); ++i) {
    const listChange& change = changes[i];
    if (!change.shape.isAlive() || !change.shape.isValid()) continue;
    const MObject shape = change.shape.object();
    if (!markAttributes::has(shape, list())) {
      MGlobal::displayError(missingText());
      continue;
    }
    const MStatus status =
        markAttributes::writeIndices(shape, list(), isUndo ? change.before : change.after);
    if (status) continue;
    for (std::size_t back = 0; back < i; ++back)
      if (changes[back].shape.isAlive())
        markAttributes::writeIndices(changes[back].shape.object(), list(),
                                     isUndo ? changes[back].after : changes[back].before);
    return failWith("qxMarkUVInformation: the marks can't be written; are they locked?");
  }
  return MS::kSuccess;
}

MStatus markUVInformationCmd::doIt(const MArgList& arguments) {
  const MStatus status = parse(arguments);
  if (!status) return status;
  MGlobal::getActiveSelectionList(selectionBefore);
  plan();
  return redoIt();
}

MStatus markUVInformationCmd::redoIt() {
  return write(false);
}

MStatus markUVInformationCmd::undoIt() {
  const MStatus status = write(true);
  restoreSelection();
  return status;
}

void markUVInformationCmd::restoreSelection() const {
  MGlobal::setActiveSelectionList(selectionBefore, MGlobal::kReplaceList);
  const std::vector<meshComponents> selected = selectedComponents(selectionBefore);
  for (const listChange& change : changes)
    if (change.shape.isAlive()) storeSelectionOf(change.shape.object(), selected);
  if (uvSelectToolIsCurrent()) storeSelection(selectionBefore);
}
