#include <maya/MGlobal.h>
#include <maya/MPxSelectionContext.h>

#include "host/api/tool/context_rep.h"
#include "host/base/messages.h"
#include "host/cmd/session.h"
#include "host/tools/select_tool.h"
#include "host/workspace/workspace.h"

using namespace host;
using api::contextRep;

// While nothing is selected the gesture selects, as the select tool does; afterwards it is the
// tool's own.

MPxSelectionContext::MPxSelectionContext() = default;
MPxSelectionContext::~MPxSelectionContext() = default;

MStatus MPxSelectionContext::doPress(MEvent& event) {
  api::ContextRep& rep = contextRep(*this);
  rep.isSelecting = api::document().selection().isEmpty();
  (void)event.getPosition(rep.startX, rep.startY);
  rep.lastX = rep.startX;
  rep.lastY = rep.startY;
  rep.isMarqueeActive = false;
  return MStatus::kSuccess;
}

MStatus MPxSelectionContext::doDrag(MEvent& event) {
  api::ContextRep& rep = contextRep(*this);
  (void)event.getPosition(rep.lastX, rep.lastY);
  rep.isMarqueeActive = rep.isSelecting;
  return MStatus::kSuccess;
}

MStatus MPxSelectionContext::doRelease(MEvent& event) {
  api::ContextRep& rep = contextRep(*this);
  (void)event.getPosition(rep.lastX, rep.lastY);
  rep.isMarqueeActive = false;
  if (!rep.isSelecting) return MStatus::kSuccess;
  tools::SelectTool select(workspace::workspaceOf(cmd::currentSession()).toolbox, "selectManip");
  tools::InputEvent from;
  from.kind = tools::InputKind::Press;
  from.button = tools::MouseButton::Left;
  from.shift = event.isModifierShift();
  from.control = event.isModifierControl();
  from.panel = rep.panel;
  from.position = {static_cast<double>(rep.startX), static_cast<double>(rep.startY)};
  select.press(from);
  from.position = {static_cast<double>(rep.lastX), static_cast<double>(rep.lastY)};
  select.release(from);
  return MStatus::kSuccess;
}

MStatus MPxSelectionContext::doHold(MEvent& event) {
  return MPxContext::doHold(event);
}
MStatus MPxSelectionContext::doEnterRegion(MEvent& event) {
  return MPxContext::doEnterRegion(event);
}
MStatus MPxSelectionContext::helpStateHasChanged(MEvent& event) {
  return MPxContext::helpStateHasChanged(event);
}
void MPxSelectionContext::deleteAction() {}
void MPxSelectionContext::completeAction() {}
void MPxSelectionContext::abortAction() {
  api::ContextRep& rep = contextRep(*this);
  rep.isMarqueeActive = rep.isSelecting = false;
  rep.hasHostsAbort = true;
}
void MPxSelectionContext::toolOnSetup(MEvent&) {
  contextRep(*this).isSelecting = api::document().selection().isEmpty();
}
void MPxSelectionContext::toolOffCleanup() {
  MPxSelectionContext::abortAction();
}

MPxToolCommand* MPxSelectionContext::newToolCommand() {
  return MPxContext::newToolCommand();
}
bool MPxSelectionContext::isSelecting() {
  return contextRep(*this).isSelecting;
}
MStatus MPxSelectionContext::startPoint(short& x_pos, short& y_pos) {
  x_pos = contextRep(*this).startX;
  y_pos = contextRep(*this).startY;
  return MStatus::kSuccess;
}
MStatus MPxSelectionContext::lastDragPoint(short& x_pos, short& y_pos) {
  x_pos = contextRep(*this).lastX;
  y_pos = contextRep(*this).lastY;
  return MStatus::kSuccess;
}
bool MPxSelectionContext::isMarqueeBoxActive() const {
  return contextRep(*this).isMarqueeActive;
}
// How the base class selects is fixed: what these would turn on is what it does, or a matter of the
// window.
void MPxSelectionContext::setAllowPreSelectHilight() {}
void MPxSelectionContext::setAllowDoubleClickAction() {}
void MPxSelectionContext::setAllowPaintSelect() {}
void MPxSelectionContext::setAllowAreaSelect() {}
void MPxSelectionContext::setAllowSoftSelect() {}
void MPxSelectionContext::setAllowSymmetry() {}
