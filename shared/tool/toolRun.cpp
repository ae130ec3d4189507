#include "shared/tool/toolRun.h"

#include <maya/MGlobal.h>
#include <maya/MNodeMessage.h>
#include <maya/MSceneMessage.h>
#include <maya/MTimerMessage.h>

#include "shared/mesh/mathHelper.h"

namespace {

unsigned int& activeCount() {
  static unsigned int count = 0;
  return count;
}

toolRun& runOf(void* data) {
  return *static_cast<toolRun*>(data);
}

}  // namespace

void toolListener::hover(const M3dView&, int, int) {}
void toolListener::cancelStroke() {}
void toolListener::meshGone() {}
void toolListener::sceneEnds() {}
void toolListener::sceneBegins() {}

toolRun::~toolRun() {
  if (active) --activeCount();
}

void toolRun::begin() {
  if (active) end();
  active = true;
  ++activeCount();
  isHoverOn = true;
  stroke = toolStroke();
  listenToScene();
}

void toolRun::end() {
  if (!active) return;
  cancel();
  active = false;
  --activeCount();
  callbacks.removeAll();
  watch(MDagPath());
}

void toolRun::listenToScene() {
  for (const MSceneMessage::Message message :
       {MSceneMessage::kBeforeNew, MSceneMessage::kBeforeOpen})
    callbacks.add(MSceneMessage::addCallback(message, onSceneEnds, this));
  for (const MSceneMessage::Message message : {MSceneMessage::kAfterNew, MSceneMessage::kAfterOpen})
    callbacks.add(MSceneMessage::addCallback(message, onSceneBegins, this));
}

void toolRun::press(MEvent& event) {
  cancel();
  stroke.press(event);
}

bool toolRun::move(MEvent& event) {
  if (!active || !stroke.isDown) return false;
  stroke.move(event);
  return true;
}

void toolRun::release() {
  stroke.isDown = false;
  chunk.close();
}

void toolRun::cancel() {
  if (stroke.isDown) {
    stroke.isDown = false;
    listener.cancelStroke();
  }
  chunk.close();
}

MStatus toolRun::startHover(float period) {
  MStatus status;
  callbacks.add(MTimerMessage::addTimerCallback(period, onTimer, this, &status));
  return status;
}

void toolRun::mindHover() {
  if (!active || !isHoverOn || stroke.isDown) return;
  MStatus status;
  const M3dView view = M3dView::active3dView(&status);
  int x = 0, y = 0;
  if (status == MS::kSuccess && mathHelper().cursorPosition(view, x, y) == MS::kSuccess)
    listener.hover(view, x, y);
}

void toolRun::watch(const MDagPath& mesh) {
  if (mesh.isValid() && watchedMesh.isValid() && mesh == watchedMesh) return;
  meshCallbacks.removeAll();
  watchedMesh = MDagPath();
  if (!active || !mesh.isValid()) return;
  watchedMesh = mesh;
  MObject node = mesh.node();
  meshCallbacks.add(MNodeMessage::addNodePreRemovalCallback(node, onMeshGoes, this));
}

void toolRun::onTimer(float, float, void* data) {
  runOf(data).mindHover();
}

void toolRun::onMeshGoes(MObject&, void* data) {
  toolRun& run = runOf(data);
  run.cancel();
  run.watch(MDagPath());
  run.listener.meshGone();
}

void toolRun::onSceneEnds(void* data) {
  toolRun& run = runOf(data);
  run.cancel();
  run.watch(MDagPath());
  run.listener.sceneEnds();
}

void toolRun::onSceneBegins(void* data) {
  runOf(data).listener.sceneBegins();
}

unsigned int activeToolCount() {
  return activeCount();
}

void leaveActiveTools() {
  if (activeToolCount() > 0) MGlobal::executeCommand("setToolTo selectSuperContext", false, false);
}
