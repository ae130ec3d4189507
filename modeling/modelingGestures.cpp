#include <maya/M3dView.h>
#include <maya/MFnCamera.h>
#include <maya/MFnMesh.h>
#include <maya/MGlobal.h>
#include <maya/MSelectionList.h>
#include <maya/MStringArray.h>

#include <cmath>

#include "modeling/modelingContext.h"
#include "modeling/modelingContextToolCmd.h"
#include "shared/mesh/mathHelper.h"
#include "shared/settings/slideObject.h"
#include "shared/view/viewProjector.h"

// What the buttons of the modelling tool do.

namespace {

constexpr int kDragThreshold = 2;

int ask(const char* command) {
  int answer = 0;
  MGlobal::executeCommand(command, answer, false, false);
  return answer;
}

bool isEmpty(const MSelectionList& list) {
  return list.length() == 0;
}

MSelectionList activeSelection() {
  MSelectionList list;
  MGlobal::getActiveSelectionList(list);
  return list;
}

void selectNothing() {
  MGlobal::setActiveSelectionList(MSelectionList(), MGlobal::kReplaceList);
}

bool isSame(const MSelectionList& a, const MSelectionList& b) {
  MStringArray names, others;
  a.getSelectionStrings(names);
  b.getSelectionStrings(others);
  if (names.length() != others.length()) return false;
  for (unsigned int i = 0; i < names.length(); ++i)
    if (names[i] != others[i]) return false;
  return true;
}

/// A circle in the plane that faces the viewer.
MPointArray circleAround(const M3dView& view, const MPoint& centre, double radius) {
  MPointArray points;
  MDagPath camera;
  if (!(radius > 0.0) || M3dView(view).getCamera(camera) != MS::kSuccess) return points;
  const MFnCamera lens(camera);
  const MVector right = lens.rightDirection(MSpace::kWorld), up = lens.upDirection(MSpace::kWorld);
  constexpr int kCorners = 64;
  constexpr double kTurn = 6.283185307179586;
  for (int i = 0; i < kCorners; ++i) {
    const double angle = kTurn * i / kCorners;
    points.append(centre + right * (radius * std::cos(angle)) + up * (radius * std::sin(angle)));
  }
  return points;
}

}  // namespace

MStatus modelingContext::press(MEvent&) {
  const M3dView view = M3dView::active3dView();
  created.close();
  beginGesture(view);
  if (gesture.button == gestureState::kLeft)
    pressLeft(view);
  else
    pressMiddle(view);
  if (gesture.hovered.isHit()) run.watch(gesture.hovered.mesh);
  refresh(view);
  return MS::kSuccess;
}

void modelingContext::beginGesture(const M3dView& view) {
  run.setHover(false);
  gesture = gestureState();
  shownRun = edgeRunPart();
  moving = kNoPoints;
  gesture.button =
      run.stroke.button == MEvent::kLeftMouse ? gestureState::kLeft : gestureState::kMiddle;
  gesture.shift = run.stroke.isShift;
  gesture.control = run.stroke.isControl;
  gesture.press = gesture.current = {run.stroke.pressX, run.stroke.pressY};
  gesture.settings = gestureSettings::now();
  gesture.selectionAtPress = activeSelection();
  gesture.selectionWasEmpty = isEmpty(gesture.selectionAtPress);
  gesture.componentModeActive =
      ask("selectType -ocm -q -alc") == 1 || ask("selectMode -q -component") == 1;
  gesture.hovered = pickAt(view, wantedKind());
  hovered = gesture.hovered;
  hoverType = hovered.kind;
  if (hovered.isHit()) hoveredMesh = hovered.mesh;
}

/// What the cursor is over; nothing in object mode.
pickedComponent modelingContext::pickAt(const M3dView& view, int kind) const {
  if (!gesture.componentModeActive) return pickedComponent();
  MStatus failure;
  const pickedComponent hit =
      componentUnder(view, gesture.current.x, gesture.current.y, kind, &failure);
  if (failure == MS::kInvalidParameter)
    MGlobal::displayError("intersection test resulted in a param");
  else if (failure != MS::kSuccess)
    MGlobal::displayError("intersection test resulted in a failure");
  return hit;
}

void modelingContext::pressLeft(const M3dView& view) {
  if (gesture.shift)
    gesture.pickMode = kPickAdd;
  else
    gesture.pickMode = gesture.control ? kPickRemove : kPickReplace;
  const pickedComponent& hit = gesture.hovered;
  if (!hit.isHit()) {
    const bool isPlain = !gesture.shift && !gesture.control;
    if (!isPlain || gesture.selectionWasEmpty) return;
    selectNothing();
    notePicks();
    return;
  }
  const bool picksOnNothing = gesture.selectionWasEmpty && gesture.shift != gesture.control;
  if (picksOnNothing) gesture.pickedInThisGesture = true;
  applyPick(hit, picksOnNothing ? kPickAdd : gesture.pickMode, gesture.settings);
  notePicks();
  gesture.hitAtPress = true;
  gesture.lastHit = hit;
  gesture.actionType = hit.kind;
  moveCentreOfInterest(view);
}

/// A perspective camera turns about what was picked last. It does not look there: a view that
/// swings at every click would pull the components from under the cursor. So the centre of interest
/// moves to the depth of the hit point, and the tumble pivot to the point.
void modelingContext::moveCentreOfInterest(const M3dView& view) const {
  MDagPath path;
  if (view.getCamera(path) != MS::kSuccess) return;
  MFnCamera camera(path);
  if (camera.isOrtho()) return;
  const MPoint& hit = gesture.hovered.point;
  const double depth =
      (hit - camera.eyePoint(MSpace::kWorld)) * camera.viewDirection(MSpace::kWorld);
  if (!(depth > 0.0)) return;
  camera.setCenterOfInterest(depth);
  camera.setTumblePivot(hit);
}

void modelingContext::pressMiddle(const M3dView& view) {
  gesture.pickMode = kPickAdd;
  if (!gesture.shift && !gesture.control && gesture.selectionWasEmpty) {
    gesture.hovered = pickAt(view, kNoComponent);
    gesture.pickedInThisGesture = gesture.releaseNoPoints = true;
    gesture.hitAtPress = gesture.hovered.isHit();
    gesture.actionType = gesture.hovered.kind;
    gesture.lastHit = gesture.hovered;
    applyPick(gesture.hovered, kPickAdd, gesture.settings);
    notePicks();
    return;
  }
  gesture.actionType = selectedKind(gesture.hovered.kind);
  const bool makesNode = gesture.shift && gesture.control && !gesture.selectionWasEmpty &&
                         (gesture.actionType == kFaceKind || gesture.actionType == kEdgeKind);
  if (makesNode) created.begin(gesture.actionType);
}

MStatus modelingContext::drag(MEvent& event) {
  if (!gesture.isActive()) return MS::kSuccess;
  gesture.current = {run.stroke.x, run.stroke.y};
  if (!run.stroke.isBeyond(kDragThreshold)) return MS::kSuccess;
  gesture.isDragged = run.stroke.isDragged = true;
  const M3dView view = M3dView::active3dView();
  if (gesture.button == gestureState::kMiddle) {
    dragMiddle(view);
  } else {
    const bool shift = event.isModifierShift(), control = event.isModifierControl();
    gesture.pickMode = shift && control ? kPickRun : control ? kPickRemove : kPickAdd;
    dragLeft(view);
  }
  refresh(view);
  return MS::kSuccess;
}

void modelingContext::dragLeft(const M3dView& view) {
  if (gesture.pickedInThisGesture && gesture.hitAtPress)
    dragPoints(view);
  else if (gesture.pickMode == kPickRun)
    dragRun(view);
  else
    dragPaint(view);
}

void modelingContext::dragPoints(const M3dView& view) {
  if (gesture.cannotMove) return;
  if (moving == kNoPoints) {
    const bool isBegun = gesture.shift ? push.begin(view, gesture.hovered, gesture.settings, edit)
                                       : slide.begin(view, gesture.hovered, gesture.settings,
                                                     slideObject::current(), edit);
    if (!isBegun) {
      gesture.cannotMove = true;
      return;
    }
    moving = gesture.shift ? kPushing : kSliding;
    editedMesh = gesture.hovered.mesh;
  }
  if (moving == kPushing)
    push.drag(view, gesture.press, gesture.current, edit);
  else
    slide.drag(view, gesture.press, gesture.current, edit);
  gesture.changedPoints = edit.hasChanged();
  showMoved();
}

/// Shows what moves with its weights, and how far the region reaches.
void modelingContext::showMoved() {
  const movingVertices& vertices = moving == kPushing ? push.moving() : slide.moving();
  if (!edit.mesh().isValid()) return;
  const MFnMesh mesh(edit.mesh());
  MPointArray points;
  MDoubleArray weights;
  for (std::size_t i = 0; i < vertices.region.vertices.size(); ++i) {
    MPoint point;
    if (mesh.getPoint(vertices.region.vertices[i], point, MSpace::kWorld) != MS::kSuccess) continue;
    points.append(point);
    weights.append(vertices.region.weights[i]);
  }
  const MPoint centre = moving == kPushing ? push.anchorPoint() : slide.anchorPoint();
  locator.showComponent(cornersOf(gesture.hovered));
  locator.showMoved(points, weights,
                    circleAround(M3dView::active3dView(), centre, vertices.region.radius));
}

void modelingContext::dragRun(const M3dView& view) {
  if (!gesture.hitAtPress || gesture.hovered.kind != kEdgeKind) return;
  const edgeRunPart part = runTowards(view, gesture.hovered, gesture.current.x, gesture.current.y);
  if (part.last < 0 || (part.last == shownRun.last && part.isLoop == shownRun.isLoop)) return;
  shownRun = part;
  MGlobal::setActiveSelectionList(gesture.selectionAtPress, MGlobal::kReplaceList);
  addRunPart(gesture.hovered, part, gesture.settings);
  notePicks();
}

void modelingContext::dragPaint(const M3dView& view) {
  // A stroke keeps to the type that it began with.
  const int kind = gesture.actionType != kNoComponent ? gesture.actionType : wantedKind();
  const pickedComponent hit = pickAt(view, kind);
  locator.showComponent(cornersOf(hit));
  if (!hit.isHit() || hit.isSame(gesture.lastHit)) return;
  gesture.lastHit = hit;
  gesture.hitAtPress = true;
  gesture.actionType = hit.kind;
  applyPick(hit, gesture.pickMode, gesture.settings);
  notePicks();
}

void modelingContext::dragMiddle(const M3dView& view) {
  if (created.isOpen())
    created.drag(view, gesture.press, gesture.current);
  else if (gesture.pickedInThisGesture && gesture.hitAtPress)
    showDistance(view);
}

/// Shows how far the cursor has gone from where a component was picked, in the plane of the view
/// through it.
void modelingContext::showDistance(const M3dView& view) {
  const mathHelper math;
  const MPoint& centre = gesture.hovered.point;
  MPoint from, to;
  if (math.viewToWorldAtDepth(view, gesture.press.x, gesture.press.y, centre, from) !=
          MS::kSuccess ||
      math.viewToWorldAtDepth(view, gesture.current.x, gesture.current.y, centre, to) !=
          MS::kSuccess)
    return;
  MPointArray points;
  MDoubleArray weights;
  constexpr int kSteps = 8;
  for (int i = 0; i <= kSteps; ++i) {
    const double share = static_cast<double>(i) / kSteps;
    points.append(from + (to - from) * share);
    weights.append(1.0 - share);
  }
  locator.showComponent(cornersOf(gesture.hovered));
  locator.showMoved(points, weights, circleAround(view, from, from.distanceTo(to)));
}

MStatus modelingContext::release(MEvent& event) {
  if (!gesture.isActive()) return MS::kSuccess;
  gesture.shift = event.isModifierShift();
  gesture.control = event.isModifierControl();
  if (gesture.button == gestureState::kLeft)
    releaseLeft();
  else
    releaseMiddle();
  endGesture();
  return MS::kSuccess;
}

void modelingContext::releaseLeft() {
  const bool isClickOnEdge = !gesture.pickedInThisGesture && !gesture.isDragged &&
                             gesture.hitAtPress && gesture.hovered.kind == kEdgeKind;
  if (!isClickOnEdge) return;
  const bool removes = gesture.control && !gesture.shift;
  applyEdgeRun(gesture.hovered, gesture.shift && gesture.control, removes ? kPickRemove : kPickAdd,
               gesture.settings);
}

void modelingContext::releaseMiddle() {
  using namespace meshOperations;
  if (gesture.pickedInThisGesture) return;
  const action wanted = actionFor(gesture.shift, gesture.control);
  // Whoever lets a key go before the button has still dragged a bevel, and wants nothing else done
  // to it. Its step of undo closes with the next look at the cursor.
  if (created.isOpen()) {
    if (wanted == kFinishNode) tell(created.finish());
    return;
  }
  if (wanted == kConnect)
    tell(connect(gesture));
  else if (wanted == kCollapse)
    tell(collapse(gesture));
  else if (wanted == kDelete)
    tell(remove(gesture));
}

void modelingContext::endGesture() {
  const bool isMiddleClick = gesture.button == gestureState::kMiddle && !gesture.isDragged;
  if (!gesture.pickedInThisGesture) {
    const MSelectionList after = activeSelection();
    if (gesture.hitAtPress || !gesture.selectionWasEmpty || !isEmpty(after)) recordSelection(after);
  } else if (isMiddleClick) {
    // A click with nothing selected leaves what it picked in hand.
    if (gesture.hitAtPress) recordSelection(activeSelection());
  } else if (gesture.hitAtPress || gesture.changedPoints) {
    selectNothing();
    if (!gesture.releaseNoPoints) recordPoints();
  }
  if (gesture.changedPoints) freeAccelerator(editedMesh);
  edit.close();
  moving = kNoPoints;
  gesture = gestureState();
  shownRun = edgeRunPart();
  locator.clear();
  needsRedraw = false;
  refresh(M3dView::active3dView());
  run.setHover(true);
}

void modelingContext::notePicks() {
  gesture.selectionPicked = activeSelection();
  gesture.hasPicked = true;
}

/// Selects again what was selected at the press, unless somebody has selected something since.
void modelingContext::takeBackPicks() {
  if (gesture.hasPicked && isSame(activeSelection(), gesture.selectionPicked))
    MGlobal::setActiveSelectionList(gesture.selectionAtPress, MGlobal::kReplaceList);
}

void modelingContext::recordSelection(const MSelectionList& after) {
  auto* command = static_cast<modelingContextToolCmd*>(newToolCommand());
  if (!command) return;
  command->setSelectionBefore(gesture.selectionAtPress);
  command->setSelectionAfter(after);
  command->setSelectionOnly(true);
  command->finalize();
}

void modelingContext::recordPoints() {
  if (!gesture.changedPoints) return;
  auto* command = static_cast<modelingContextToolCmd*>(newToolCommand());
  if (!command) return;
  if (!edit.record(*command)) {
    delete command;
    return;
  }
  command->finalize();
  tell(moving == kPushing ? push.sentence() : slide.sentence());
}
