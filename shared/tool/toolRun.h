#pragma once

#include <maya/M3dView.h>
#include <maya/MDagPath.h>
#include <maya/MObject.h>
#include <maya/MStatus.h>
#include <maya/MString.h>

#include "shared/tool/ownedCallbacks.h"
#include "shared/tool/toolStroke.h"
#include "shared/tool/undoChunk.h"

/// What an interactive tool hears besides its mouse events. Every one comes only while the tool is
/// active.
class toolListener {
 public:
  /// The cursor is over the active view and no button is down.
  virtual void hover(const M3dView& view, int x, int y);
  /// A stroke ends without its release: forget it, and what it showed.
  virtual void cancelStroke();
  /// The mesh that the tool watches is about to go. It is still there, and watched no more.
  virtual void meshGone();
  /// The scene is about to be emptied or replaced. Nodes of the tool's own go with it.
  virtual void sceneEnds();
  /// Another scene is there.
  virtual void sceneBegins();

 protected:
  toolListener() = default;
  ~toolListener() = default;
};

/// The life of an interactive tool from its setup to its cleanup: its callbacks, its stroke, its
/// undo step, the mesh it works on. Whatever ends it (another tool, the mesh's deletion, another
/// scene, the module's unload, its destruction), callbacks go, an open stroke is cancelled and an
/// open undo step closes.
class toolRun {
 public:
  explicit toolRun(toolListener& listenerIn) : listener(listenerIn) {}
  toolRun(const toolRun&) = delete;
  toolRun& operator=(const toolRun&) = delete;
  /// Ends the run without a word to the listener, which is being destroyed.
  ~toolRun();

  void begin();
  /// Cancels an open stroke, closes the undo step, removes the callbacks. The listener hears of the
  /// stroke only.
  void end();
  bool isActive() const { return active; }

  // The stroke.
  void press(MEvent& event);
  /// @return whether a stroke is on: a button that went down elsewhere is none of this tool's
  bool move(MEvent& event);
  void release();
  /// Ends the stroke as if it had not been begun, as far as the listener can.
  void cancel();
  toolStroke stroke;

  // Hover.
  /// Asks every `period` seconds where the cursor is, from now to the run's end.
  MStatus startHover(float period);
  /// Lets `hover` through or holds it back; it is let through from `begin` on.
  void setHover(bool on) { isHoverOn = on; }
  bool isHoverEnabled() const { return isHoverOn; }

  // What the tool works on.
  /// Watches a mesh, instead of the one watched until now; a path that is not valid watches none.
  void watch(const MDagPath& mesh);
  const MDagPath& watched() const { return watchedMesh; }

  /// One undo step for what a stroke does.
  undoChunk chunk;
  /// Further callbacks that end with the run.
  ownedCallbacks callbacks;

 private:
  static void onTimer(float, float, void* data);
  static void onMeshGoes(MObject&, void* data);
  static void onSceneEnds(void* data);
  static void onSceneBegins(void* data);
  void listenToScene();
  void mindHover();

  toolListener& listener;
  bool active = false, isHoverOn = true;
  ownedCallbacks meshCallbacks;
  MDagPath watchedMesh;
};

/// How many tools of the module are active now.
unsigned int activeToolCount();
/// Gives the selection tool to the user when one of the module's tools is active, which ends that
/// one; before an unload.
void leaveActiveTools();
