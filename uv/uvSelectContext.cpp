#include "uv/uvSelectContext.h"

#include <maya/M3dView.h>
#include <maya/MCursor.h>
#include <maya/MEventMessage.h>
#include <maya/MFnDagNode.h>
#include <maya/MFnMesh.h>
#include <maya/MModelMessage.h>
#include <maya/MNodeMessage.h>
#include <maya/MPlug.h>
#include <maya/MTimerMessage.h>

#include <chrono>

#include "shared/mesh/mathHelper.h"
#include "shared/settings/toolSettings.h"
#include "uv/markAttributes.h"
#include "uv/markedComponents.h"
#include "uv/meshSelection.h"
#include "uv/selectLocatorLink.h"

// What comes and goes with the tool: the highlight, its callbacks, the selection arrays, hover. The
// gestures are in uvSelectGestures.cpp.

namespace {

constexpr const char* kTitle = "Uv Select Tool";
constexpr float kHoverPeriod = 0.01F, kTickPeriod = 0.05F;
/// What ways may take of the time between two looks at the cursor while nothing else is to do.
constexpr auto kIdleTime = std::chrono::microseconds(2000);
constexpr unsigned int kIdleSlice = 500;  ///< vertices or edges between two looks at the clock
constexpr const char* kUsage =
    "Left: pick, drag to paint, Shift adds the way from the last pick, Ctrl removes, both follow "
    "creases. Middle: mark, Ctrl unmarks, Shift marks the way.";

/// The tool that is in hand.
uvSelectContext*& current() {
  static uvSelectContext* tool = nullptr;
  return tool;
}

bool isLoaded(const MDagPath& mesh) {
  return !selectLocatorLink::locatorOf(mesh.node()).isNull();
}

/// Those that are loaded, and seen.
MDagPathArray loadedOf(const MDagPathArray& meshes) {
  MDagPathArray found;
  for (unsigned int i = 0; i < meshes.length(); ++i)
    if (isLoaded(meshes[i]) && meshes[i].isVisible()) found.append(meshes[i]);
  return found;
}

/// Whether a change of a mesh's plug leaves its ways as they are.
bool isOfMarksOnly(const MPlug& plug) {
  const MString name = plug.partialName(false, false, false, false, false, true);
  for (const markAttributes::name& each :
       {markAttributes::kLocatorMessage, markAttributes::kMarkedEdges, markAttributes::kAncorPoints,
        markAttributes::kEdgeSelection, markAttributes::kVertSelection})
    if (name == each.longName) return true;
  return name == "visibility";
}

}  // namespace

uvSelectContext::uvSelectContext() {
  setTitleString(kTitle);
}

uvSelectContext::~uvSelectContext() {
  if (current() == this) current() = nullptr;
}

void uvSelectContext::setLastPick(const pickedComponent& pick) {
  if (current()) current()->lastPick = pick;
}

void uvSelectContext::enter(MEvent&) {
  setTitleString(kTitle);
  setImage("uvSelectContext.bmp", kImage1);
  setCursor(MCursor::editCursor);
  setHelpString(kUsage);
  current() = this;
  highlight.create();
  lastPick = clicked = pickedComponent();
  stroke = kNoStroke;
  refreshLoaded();
  enterComponentMode();
  run.callbacks.add(
      MModelMessage::addCallback(MModelMessage::kActiveListModified, onSelectionChanged, this));
  for (const char* event : {"Undo", "Redo"})
    run.callbacks.add(MEventMessage::addEventCallback(event, onUndo, this));
  run.callbacks.add(MTimerMessage::addTimerCallback(kTickPeriod, onTick, this));
  run.setHover(true);
  run.startHover(kHoverPeriod);
  onSelectionChanged(this);
  if (loaded.empty())
    MGlobal::displayInfo("No mesh is loaded for marking yet: select one and load it.");
}

void uvSelectContext::leave() {
  if (current() == this) current() = nullptr;
  meshCallbacks.removeAll();
  forgetWays();
  highlight.remove();
  storeSelection(MSelectionList());
  lastPick = clicked = pickedComponent();
}

/// Brings the components of the loaded meshes in hand up: of the hilited ones, or of those that are
/// selected.
void uvSelectContext::enterComponentMode() {
  if (loadedOf(hilitedMeshes()).length() > 0) return;
  MSelectionList selection, hilited;
  MGlobal::getActiveSelectionList(selection);
  std::vector<MDagPath> meshes;
  selectedMeshes(selection, meshes);
  for (const MDagPath& mesh : meshes) {
    if (!isLoaded(mesh)) continue;
    if (hilited.length() == 0)
      MGlobal::executeCommand(
          "doMenuComponentSelection(\"" + mesh.partialPathName() + "\", \"edge\")", false, false);
    MDagPath transform = mesh;
    transform.pop();
    hilited.add(transform);
  }
  if (hilited.length() > 1) MGlobal::setHiliteList(hilited);
}

void uvSelectContext::refreshLoaded() {
  loaded.clear();
  for (const MObject& mesh : loadedMeshes()) loaded.emplace_back(mesh);
}

/// What gestures reach: the hilited loaded meshes; with none, all that are loaded.
MDagPathArray uvSelectContext::pickable() const {
  const MDagPathArray hilited = loadedOf(hilitedMeshes());
  if (hilited.length() > 0) return hilited;
  MDagPathArray all;
  for (const MObjectHandle& mesh : loaded) {
    MDagPath path;
    if (mesh.isValid() && mesh.isAlive() && MDagPath::getAPathTo(mesh.object(), path))
      all.append(path);
  }
  return loadedOf(all);
}

/// Vertices and edges, or the type of the selection mode alone.
int uvSelectContext::wantedKind() const {
  if (toolSettings::current().multiComponent) return kNoComponent;
  switch (mathHelper().currentComponentType()) {
    case mathHelper::kVertexType:
      return kVertexKind;
    case mathHelper::kEdgeType:
      return kEdgeKind;
    default:
      return kNoComponent;
  }
}

pickedComponent uvSelectContext::pickAt(const M3dView& view, int x, int y, int kind) const {
  const pickedComponent found =
      componentUnder(view, static_cast<short>(x), static_cast<short>(y), kind, pickable());
  return found.kind == kFaceKind ? pickedComponent() : found;
}

void uvSelectContext::hover(const M3dView& view, int x, int y) {
  const pickedComponent found = pickAt(view, x, y, wantedKind());
  if (highlight.show(cornersOf(found))) refresh(view);
  growWays(lastPick.isHit() ? lastPick.mesh : found.mesh);
}

/// The next way is found while the hand is on its way there.
void uvSelectContext::growWays(const MDagPath& mesh) {
  if (!mesh.isValid()) return;
  const auto end = std::chrono::steady_clock::now() + kIdleTime;
  const auto hasTime = [end] { return std::chrono::steady_clock::now() < end; };
  watchMesh(mesh);
  graph.begin(mesh);
  while (graph.build(kIdleSlice))
    if (!hasTime()) return;
  for (const edgeWays::measure how : {edgeWays::kShortest, edgeWays::kCreases})
    if (ways[how].begin(lastPick, how, graph))
      while (ways[how].grow(kIdleSlice))
        if (!hasTime()) return;
}

void uvSelectContext::forgetWays() {
  for (edgeWays& each : ways) each.clear();
  graph.clear();
}

void uvSelectContext::onTick(float elapsed, float, void* self) {
  static_cast<uvSelectContext*>(self)->sinceClick += static_cast<double>(elapsed);
}

void uvSelectContext::onSelectionChanged(void* self) {
  const auto& tool = *static_cast<uvSelectContext*>(self);
  if (!tool.run.isActive()) return;
  MSelectionList selection;
  MGlobal::getActiveSelectionList(selection);
  storeSelection(selection);
}

// What is undone in the midst of a stroke is older than it: the stroke ends first.
void uvSelectContext::onUndo(void* self) {
  auto& tool = *static_cast<uvSelectContext*>(self);
  if (tool.run.isActive()) tool.run.cancel();
  tool.clicked = pickedComponent();
}

/// Hears of changes of one mesh; what was found on one that nobody watched may be wrong by now.
void uvSelectContext::watchMesh(const MDagPath& mesh) {
  if (run.watched() == mesh && !meshCallbacks.isEmpty()) return;
  forgetWays();
  run.watch(mesh);
  meshCallbacks.removeAll();
  MObject node = mesh.node();
  meshCallbacks.add(MNodeMessage::addNodeDirtyPlugCallback(node, onMeshChanges, this));
}

void uvSelectContext::onMeshChanges(MObject&, MPlug& plug, void* self) {
  if (isOfMarksOnly(plug)) return;
  static_cast<uvSelectContext*>(self)->forgetWays();
}

void uvSelectContext::cancelStroke() {
  if (stroke != kNoStroke) {
    MGlobal::setActiveSelectionList(atPress.selection, MGlobal::kReplaceList);
    lastPick = atPress.lastPick;
  }
  stroke = kNoStroke;
  run.setHover(true);
}

void uvSelectContext::meshGone() {
  forgetWays();
  meshCallbacks.removeAll();
  lastPick = clicked = hit = lastHit = pickedComponent();
  highlight.show(MPointArray());
}

void uvSelectContext::sceneEnds() {
  forgetWays();
  meshCallbacks.removeAll();
  loaded.clear();
  lastPick = clicked = hit = lastHit = pickedComponent();
  highlight.forget();
}

void uvSelectContext::refresh(const M3dView& view) const {
  M3dView(view).refresh(false, true);
}
