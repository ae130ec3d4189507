#pragma once

#include <maya/MEvent.h>
#include <maya/MPxContext.h>
#include <maya/MPxSelectionContext.h>
#include <maya/MStatus.h>

#include "shared/tool/toolRun.h"

/// Base of the toolkit's interactive tools, on either of the host's context classes. It turns the
/// host's slots into a life that always ends cleanly:
///
/// - `enter` at setup, `leave` at cleanup, each once for a run, in this order, whatever happens;
/// - `press`, `drag`, `release`, `hold` for the left and the middle button, with `run.stroke` up to
///   date; a drag or a release whose press went elsewhere does not come. Other buttons are the
///   host's;
/// - `hover`, `cancelStroke`, `meshGone`, `sceneEnds`, `sceneBegins` (toolListener) in between.
///
/// `run.chunk.open()` makes all that a stroke does one undo step; it closes after `release` at the
/// latest. A tool overrides the hooks below and keeps its hands off the slots.
template <class Base>
class toolContext : public Base, protected toolListener {
 public:
  toolContext() : run(*this) {}

  void toolOnSetup(MEvent& event) final {
    if (run.isActive()) finish();
    Base::toolOnSetup(event);
    run.begin();
    enter(event);
  }
  void toolOffCleanup() final {
    finish();
    Base::toolOffCleanup();
  }

  /// Escape ends a stroke as if it had not been begun; the tool stays in hand, with what it holds.
  void abortAction() final {
    if (!run.stroke.isDown) return Base::abortAction();
    isGivenUp = true;
    run.cancel();
    isGivenUp = false;
  }

  using Base::doDrag;
  using Base::doHold;
  using Base::doPress;
  using Base::doRelease;
  MStatus doPress(MEvent& event) final {
    if (!isOurs(event)) return Base::doPress(event);
    run.press(event);
    return press(event);
  }
  MStatus doDrag(MEvent& event) final {
    if (!run.stroke.isDown && !isOurs(event)) return Base::doDrag(event);
    return run.move(event) ? drag(event) : MStatus(MS::kSuccess);
  }
  MStatus doRelease(MEvent& event) final {
    if (!run.stroke.isDown && !isOurs(event)) return Base::doRelease(event);
    if (!run.move(event)) return MS::kSuccess;
    const MStatus status = release(event);
    run.release();
    return status;
  }
  MStatus doHold(MEvent& event) final {
    if (!run.stroke.isDown && !isOurs(event)) return Base::doHold(event);
    return hold(event);
  }

 protected:
  /// The tool becomes the current one: titles, locators, callbacks (`run.callbacks`), hover.
  virtual void enter(MEvent& event) = 0;
  /// It is one no more. Callbacks, stroke and undo step are cleared after it.
  virtual void leave() = 0;
  virtual MStatus press(MEvent& event) = 0;
  virtual MStatus drag(MEvent&) { return MS::kSuccess; }
  virtual MStatus release(MEvent&) { return MS::kSuccess; }
  virtual MStatus hold(MEvent&) { return MS::kSuccess; }

  toolRun run;
  bool isGivenUp = false;  ///< during `cancelStroke`: whether the user has given up the stroke

 private:
  static bool isOurs(const MEvent& event) {
    const MEvent::MouseButtonType button = event.mouseButton();
    return button == MEvent::kLeftMouse || button == MEvent::kMiddleMouse;
  }
  void finish() {
    if (!run.isActive()) return;
    run.cancel();
    leave();
    run.end();
  }
};

/// For tools that draw and pick by themselves.
using plainToolContext = toolContext<MPxContext>;
/// For tools that build on the host's selection context.
using selectionToolContext = toolContext<MPxSelectionContext>;
