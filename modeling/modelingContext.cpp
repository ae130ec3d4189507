#include "modeling/modelingContext.h"

#include <maya/M3dView.h>
#include <maya/MCursor.h>
#include <maya/MEventMessage.h>
#include <maya/MFnCamera.h>
#include <maya/MFnMesh.h>
#include <maya/MGlobal.h>
#include <maya/MItSelectionList.h>
#include <maya/MNodeMessage.h>
#include <maya/MSelectionList.h>

#include "shared/mesh/mathHelper.h"
#include "shared/settings/toolSettings.h"

// What comes and goes with the tool: its locator, its callbacks, hover, the camera's pivot. The
// gestures are in modelingGestures.cpp.

namespace {

constexpr float kHoverPeriod = 0.01F;
constexpr const char* kUsage =
    "Left: pick, drag to paint, Shift adds, Ctrl removes, both follow loops and rings. Middle: "
    "delete, Ctrl connects, Shift merges, both bevel or extrude.";

int ask(const char* command) {
  int answer = 0;
  MGlobal::executeCommand(command, answer, false, false);
  return answer;
}

/// The selection mode's component type as the tool counts them.
int kindOfMode() {
  switch (mathHelper().currentComponentType()) {
    case mathHelper::kEdgeType:
      return kEdgeKind;
    case mathHelper::kFaceType:
      return kFaceKind;
    case mathHelper::kVertexType:
      return kVertexKind;
    default:
      return kNoComponent;
  }
}

/// The object to work on at the start: the one hilited last, else the first mesh that is selected.
MDagPath firstMesh() {
  const MDagPathArray hilited = hilitedMeshes();
  if (hilited.length() > 0) return hilited[hilited.length() - 1];
  MSelectionList selection;
  MGlobal::getActiveSelectionList(selection);
  for (MItSelectionList item(selection, MFn::kMesh); !item.isDone(); item.next()) {
    MDagPath path;
    if (item.getDagPath(path) == MS::kSuccess && path.extendToShape() == MS::kSuccess) return path;
  }
  return MDagPath();
}

}  // namespace

modelingContext::modelingContext() {
  setTitleString("Advanced Modeling Tool");
}

modelingContext::~modelingContext() = default;

void modelingContext::enter(MEvent&) {
  setTitleString("Advanced Modeling Tool");
  setImage("advancedModelingToolContext.bmp", kImage1);
  setCursor(MCursor::editCursor);
  setHelpString(kUsage);
  locator.create();
  enterComponentMode();
  gesture = gestureState();
  hovered = pickedComponent();
  hoverType = kNoComponent;
  run.startHover(kHoverPeriod);
  watchCamera(M3dView::active3dView());
  run.callbacks.add(
      MEventMessage::addEventCallback("SelectTypeChanged", onSelectTypeChanged, this));
  for (const char* event : {"Undo", "Redo"})
    run.callbacks.add(MEventMessage::addEventCallback(event, onUndo, this));
  run.setHover(true);
  switchLocalTumble(true);
}

void modelingContext::leave() {
  cameraCallback.removeAll();
  watchedCamera = MDagPath();
  for (const MDagPath& mesh : {hoveredMesh, editedMesh}) freeAccelerator(mesh);
  MFnMesh::clearGlobalIntersectionAcceleratorInfo();
  hoveredMesh = editedMesh = MDagPath();
  hovered = pickedComponent();
  created.close();
  locator.remove();
  switchLocalTumble(false);
}

/// Brings the components of the object in hand up, of the type that the selection mode names.
void modelingContext::enterComponentMode() {
  componentType = kindOfMode();
  const MDagPath mesh = firstMesh();
  if (!mesh.isValid()) return;
  MSelectionList hilited, selected;
  MGlobal::getHiliteList(hilited);
  MGlobal::getActiveSelectionList(selected);
  const bool holdsComponents = selectedKind(kNoComponent) != kNoComponent;
  const char* type = componentType == kEdgeKind   ? "edge"
                     : componentType == kFaceKind ? "facet"
                                                  : "vertex";
  MGlobal::executeCommand(
      MString("doMenuComponentSelection(\"") + mesh.partialPathName() + "\", \"" + type + "\")",
      false, false);
  // The menu hilites the one object and drops what was selected; whoever worked on components of
  // several goes on with all of them.
  if (hilited.length() > 1) MGlobal::setHiliteList(hilited);
  if (holdsComponents) MGlobal::setActiveSelectionList(selected, MGlobal::kReplaceList);
  componentType = kindOfMode();
}

void modelingContext::switchLocalTumble(bool on) {
  if (on) {
    restoreLocalTumble = ask("tumbleCtx -q -localTumble tumbleContext") == 0;
    if (restoreLocalTumble)
      MGlobal::executeCommand("tumbleCtx -e -localTumble 1 tumbleContext", false, false);
  } else if (restoreLocalTumble) {
    MGlobal::executeCommand("tumbleCtx -e -localTumble 0 tumbleContext", false, false);
    restoreLocalTumble = false;
  }
}

/// Hears of the moves of the view's camera, instead of those of the one before.
void modelingContext::watchCamera(const M3dView& view) {
  MDagPath camera;
  if (view.getCamera(camera) != MS::kSuccess || !camera.isValid()) return;
  if (watchedCamera.isValid() && watchedCamera == camera) return;
  cameraCallback.removeAll();
  watchedCamera = camera;
  MObject transform = camera.transform();
  cameraCallback.add(MNodeMessage::addNodeDirtyPlugCallback(transform, onCameraMoves, this));
}

void modelingContext::onCameraMoves(MObject&, MPlug&, void* self) {
  auto& tool = *static_cast<modelingContext*>(self);
  if (!tool.run.isActive() || !tool.needsRedraw) return;
  tool.needsRedraw = false;
  tool.hovered = pickedComponent();
  tool.hoverType = kNoComponent;
  if (!tool.gesture.isActive() && tool.locator.clear()) tool.refresh(M3dView::active3dView());
}

void modelingContext::onSelectTypeChanged(void* self) {
  auto& tool = *static_cast<modelingContext*>(self);
  if (tool.run.isActive()) tool.componentType = kindOfMode();
}

// What is undone in the midst of a gesture is older than it: the gesture ends first, and what it
// has moved is back where it was.
void modelingContext::onUndo(void* self) {
  auto& tool = *static_cast<modelingContext*>(self);
  if (tool.run.isActive()) tool.run.cancel();
}

void modelingContext::hover(const M3dView& view, int x, int y) {
  // A bevel whose release had other modifiers is done now.
  if (!gesture.isActive()) created.close();
  watchCamera(view);
  const bool isComponentMode =
      ask("selectType -ocm -q -alc") == 1 || ask("selectMode -q -component") == 1;
  pickedComponent found;
  if (isComponentMode)
    found = componentUnder(view, static_cast<short>(x), static_cast<short>(y), wantedKind());
  hovered = found;
  hoverType = found.kind;
  if (found.isHit()) hoveredMesh = found.mesh;
  if (!locator.showComponent(cornersOf(found))) return;
  needsRedraw = true;
  refresh(view);
}

/// The type of the running gesture, or of the selection mode; every type with that option on.
int modelingContext::wantedKind() const {
  if (toolSettings::current().multiComponent) return kNoComponent;
  return gesture.actionType != kNoComponent ? gesture.actionType : componentType;
}

void modelingContext::cancelStroke() {
  // A bevel or an extrusion that has been begun stays, as a step of undo of its own, unless it is
  // the user who gives it up. Points and picks go back, as nothing of theirs has been recorded.
  if (isGivenUp)
    created.cancel();
  else if (created.isOpen())
    created.finish();
  edit.cancel();
  takeBackPicks();
  moving = kNoPoints;
  gesture = gestureState();
  shownRun = edgeRunPart();
  locator.clear();
  run.setHover(true);
}

void modelingContext::meshGone() {
  hoveredMesh = editedMesh = MDagPath();
  hovered = pickedComponent();
}

void modelingContext::sceneEnds() {
  locator.remove();
  cameraCallback.removeAll();
  watchedCamera = hoveredMesh = editedMesh = MDagPath();
  hovered = pickedComponent();
}

void modelingContext::tell(const MString& sentence) {
  if (sentence.length() == 0) return;
  setHelpString(sentence);
  MGlobal::executeCommand("inViewMessage -amg \"" + sentence + "\" -pos \"botCenter\" -fade", false,
                          false);
}

void modelingContext::refresh(const M3dView& view) const {
  M3dView(view).refresh(false, true);
}

void modelingContext::freeAccelerator(const MDagPath& mesh) const {
  if (!mesh.isValid() || mesh.fullPathName().length() == 0) return;
  MStatus status;
  MFnMesh meshFn(mesh, &status);
  if (status == MS::kSuccess) meshFn.freeCachedIntersectionAccelerator();
}
