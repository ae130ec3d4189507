#include <maya/M3dView.h>
#include <maya/MFnMesh.h>

#include "shared/mesh/polyHelper.h"
#include "uv/markedComponents.h"
#include "uv/uvSelectContext.h"

// What the buttons of the UV select tool do.

namespace {

constexpr int kDragThreshold = 2;
constexpr double kDoubleClickTime = 0.4;  ///< seconds

MSelectionList activeSelection() {
  MSelectionList list;
  MGlobal::getActiveSelectionList(list);
  return list;
}

void select(const MSelectionList& list) {
  MGlobal::setActiveSelectionList(list, MGlobal::kReplaceList);
}

}  // namespace

MStatus uvSelectContext::press(MEvent&) {
  const M3dView view = M3dView::active3dView();
  run.setHover(false);
  refreshLoaded();
  mirror = pickMirror::now();
  atPress = stateNow();
  stroke = kPaints;
  marks = unmarks = false;
  hit = lastHit = pickAt(view, run.stroke.x, run.stroke.y, wantedKind());
  if (hit.isHit()) watchMesh(hit.mesh);
  if (run.stroke.button == MEvent::kLeftMouse)
    pressLeft();
  else
    pressMiddle();
  refresh(view);
  return MS::kSuccess;
}

uvSelectContextToolCmd::state uvSelectContext::stateNow() const {
  return {activeSelection(), lastPick};
}

/// A second click on the component of the first, soon after it.
bool uvSelectContext::isDoubleClick() const {
  return hit.kind == kEdgeKind && clicked.isHit() && hit.isSame(clicked) &&
         sinceClick < kDoubleClickTime;
}

void uvSelectContext::pressLeft() {
  const bool isShift = run.stroke.isShift, isControl = run.stroke.isControl;
  adjustment = isShift     ? MGlobal::kAddToList
               : isControl ? MGlobal::kRemoveFromList
                           : MGlobal::kReplaceList;
  if (!hit.isHit()) {
    lastPick = pickedComponent();
    if (!isShift && !isControl && atPress.selection.length() > 0) select(MSelectionList());
    return;
  }
  if (isDoubleClick()) {
    selectLoop();
    return;
  }
  wayMeasure = isControl ? edgeWays::kCreases : edgeWays::kShortest;
  if (!isShift) {
    adjustSelection(hit, adjustment, mirror);
    lastPick = isControl ? lastPick : hit;
    return;
  }
  showWay(hit);
  if (isControl) stroke = kDrawsWay;
}

void uvSelectContext::selectLoop() {
  MIntArray loop;
  polyHelper().edgeLoop(hit.mesh, hit.index, loop);
  adjustSelection(hit.mesh, kEdgeKind, loop, adjustment, mirror);
}

/// Adds the way from where the last pick was at the press to a component, or the component alone
/// where there is none.
void uvSelectContext::showWay(const pickedComponent& to) {
  select(atPress.selection);
  const pickedComponent& from = atPress.lastPick;
  MIntArray edges;
  edgeWays& way = ways[wayMeasure];
  if (from.isHit() && from.mesh == to.mesh && way.begin(from, wayMeasure, graph))
    edges = way.wayTo(to);
  lastPick = to;
  if (edges.length() == 0) {
    adjustSelection(to, MGlobal::kAddToList, mirror);
    return;
  }
  adjustSelection(to.mesh, kEdgeKind, edges, MGlobal::kAddToList, mirror);
  // What remains of a way is edges: the vertices that it was pulled between would become anchors.
  for (const pickedComponent& end : {from, to})
    if (end.kind == kVertexKind) adjustSelection(end, MGlobal::kRemoveFromList, mirror);
}

void uvSelectContext::pressMiddle() {
  const bool isShift = run.stroke.isShift, isControl = run.stroke.isControl;
  marks = isShift || !isControl;
  unmarks = !marks;
  adjustment = MGlobal::kAddToList;
  wayMeasure = isControl ? edgeWays::kCreases : edgeWays::kShortest;
  if (isShift) {
    stroke = kDrawsWay;
    select(MSelectionList());
    atPress.lastPick = lastPick;
    if (hit.isHit()) showWay(hit);
    return;
  }
  // What is selected is marked as it is; a stroke paints only where nothing is.
  if (!selectedComponents(atPress.selection).empty()) {
    stroke = kNoStroke;
    return;
  }
  select(MSelectionList());
  if (!hit.isHit()) return;
  adjustSelection(hit, MGlobal::kAddToList, mirror);
  lastPick = hit;
}

MStatus uvSelectContext::drag(MEvent&) {
  if (stroke == kNoStroke || !run.stroke.isBeyond(kDragThreshold)) return MS::kSuccess;
  const M3dView view = M3dView::active3dView();
  const bool wasDragged = run.stroke.isDragged;
  run.stroke.isDragged = true;
  // A drag with Shift paints on from what was pressed; the way to there was not meant.
  if (!wasDragged && stroke == kPaints && !marks && !unmarks && run.stroke.isShift && hit.isHit()) {
    select(atPress.selection);
    adjustSelection(hit, adjustment, mirror);
  }
  dragTo(view);
  refresh(view);
  return MS::kSuccess;
}

void uvSelectContext::dragTo(const M3dView& view) {
  // A stroke keeps to the type that it began with.
  const int kind = lastHit.isHit() ? lastHit.kind : wantedKind();
  const pickedComponent under = pickAt(view, run.stroke.x, run.stroke.y, kind);
  highlight.show(cornersOf(under));
  if (!under.isHit() || under.isSame(lastHit)) return;
  lastHit = under;
  if (!hit.isHit()) hit = under;
  if (stroke == kDrawsWay) {
    showWay(under);
    return;
  }
  const bool removes = adjustment == MGlobal::kRemoveFromList;
  adjustSelection(under, removes ? adjustment : MGlobal::kAddToList, mirror);
  if (!removes) lastPick = under;
}

MStatus uvSelectContext::release(MEvent&) {
  if (marks || unmarks) {
    mark(unmarks);
  } else if (stroke != kNoStroke) {
    if (hasChanged()) record(atPress);
    const bool isClick = !run.stroke.isDragged && hit.isHit();
    // A third click is a new one.
    clicked = isClick && !isDoubleClick() ? hit : pickedComponent();
    sinceClick = 0.0;
  }
  finishStroke();
  return MS::kSuccess;
}

/// A click beside the mesh changes nothing where nothing was selected, nor with a key held.
bool uvSelectContext::hasChanged() const {
  const bool isPlain = !run.stroke.isShift && !run.stroke.isControl;
  return hit.isHit() || (isPlain && atPress.selection.length() > 0);
}

/// Makes what is selected marks, or takes it out of them, and lets it go: one step of undo.
void uvSelectContext::mark(bool removes) {
  bool hasEdges = false, hasVertices = false;
  for (const meshComponents& each : selectedComponents(activeSelection())) {
    hasEdges = hasEdges || each.edges.length() > 0;
    hasVertices = hasVertices || each.vertices.length() > 0;
  }
  if (!hasEdges && !hasVertices) {
    select(atPress.selection);
    return;
  }
  run.chunk.open();
  if (stroke != kNoStroke) record(atPress);
  if (hasEdges)
    MGlobal::executeCommand(removes ? "qxMarkUVInformation -ume 1" : "qxMarkUVInformation -me 1",
                            false, true);
  if (hasVertices)
    MGlobal::executeCommand(removes ? "qxMarkUVInformation -umv 1" : "qxMarkUVInformation -mv 1",
                            false, true);
  const uvSelectContextToolCmd::state marked = stateNow();
  select(MSelectionList());
  record(marked);
}

void uvSelectContext::record(const uvSelectContextToolCmd::state& before) {
  auto* command = static_cast<uvSelectContextToolCmd*>(newToolCommand());
  if (!command) return;
  command->setStates(before, stateNow());
  command->finalize();
}

void uvSelectContext::finishStroke() {
  stroke = kNoStroke;
  marks = unmarks = false;
  atPress = uvSelectContextToolCmd::state();
  refresh(M3dView::active3dView());
  run.setHover(true);
}
