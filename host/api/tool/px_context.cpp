#include <maya/MPxContext.h>
#include <maya/MPxToolCommand.h>

#include "host/api/command/command_adapter.h"
#include "host/api/tool/context_rep.h"
#include "host/api/view/view_access.h"

using namespace host;
using api::contextRep;
using api::setStatus;

MPxContext::MPxContext() = default;
MPxContext::~MPxContext() = default;

MStatus MPxContext::doPress(MEvent&) {
  return MStatus::kSuccess;
}
MStatus MPxContext::doRelease(MEvent&) {
  return MStatus::kSuccess;
}
MStatus MPxContext::doDrag(MEvent&) {
  return MStatus::kSuccess;
}
MStatus MPxContext::doHold(MEvent&) {
  return MStatus::kSuccess;
}
MStatus MPxContext::doEnterRegion(MEvent&) {
  return MStatus::kSuccess;
}

MStatus MPxContext::doPress(MEvent& event, MHWRender::MUIDrawManager&,
                            const MHWRender::MFrameContext&) {
  return doPress(event);
}
MStatus MPxContext::doRelease(MEvent& event, MHWRender::MUIDrawManager&,
                              const MHWRender::MFrameContext&) {
  return doRelease(event);
}
MStatus MPxContext::doDrag(MEvent& event, MHWRender::MUIDrawManager&,
                           const MHWRender::MFrameContext&) {
  return doDrag(event);
}
MStatus MPxContext::doHold(MEvent& event, MHWRender::MUIDrawManager&,
                           const MHWRender::MFrameContext&) {
  return doHold(event);
}
MStatus MPxContext::doPtrMoved(MEvent&, MHWRender::MUIDrawManager&,
                               const MHWRender::MFrameContext&) {
  return MStatus::kSuccess;
}
MStatus MPxContext::drawFeedback(MHWRender::MUIDrawManager&, const MHWRender::MFrameContext&) {
  return MStatus::kSuccess;
}

void MPxContext::toolOnSetup(MEvent&) {}
void MPxContext::toolOffCleanup() {}
MStatus MPxContext::helpStateHasChanged(MEvent&) {
  return MStatus::kSuccess;
}
void MPxContext::deleteAction() {}
void MPxContext::completeAction() {}
void MPxContext::abortAction() {
  api::contextRep(*this).hasHostsAbort = true;
}
MStatus MPxContext::addManipulator(const MObject&) {
  return MStatus::kFailure;
}
MStatus MPxContext::deleteManipulators() {
  return MStatus::kSuccess;
}
bool MPxContext::processNumericalInput(const MDoubleArray&, const MIntArray&, bool) {
  return false;
}
bool MPxContext::feedbackNumericalInput() const {
  return false;
}
MSyntax::MArgType MPxContext::argTypeNumericalInput(unsigned int) const {
  return MSyntax::kInvalidArgType;
}
bool MPxContext::ignoreEntry(const MIntArray& flags, unsigned int index) {
  return index < flags.length() && flags[index] != 0;
}
void MPxContext::stringClassName(MString& name) const {
  getClassName(name);
}
void MPxContext::getClassName(MString& name) const {
  const auto& contextClass = contextRep(*this).contextClass;
  name = contextClass ? api::toMString(contextClass->commandName) : MString();
}

MStatus MPxContext::setTitleString(const MString& text) {
  api::ContextRep& rep = contextRep(*this);
  rep.title = api::toStd(text);
  if (rep.tool) rep.tool->title = rep.title;
  return MStatus::kSuccess;
}
MStatus MPxContext::setHelpString(const MString& text) {
  api::ContextRep& rep = contextRep(*this);
  rep.help = api::toStd(text);
  if (rep.tool) rep.tool->help = rep.help;
  return MStatus::kSuccess;
}
MString MPxContext::titleString() const {
  return api::toMString(contextRep(*this).title);
}

MStatus MPxContext::setCursor(const MCursor& cursor) {
  const MCursor* const known[] = {&MCursor::defaultCursor,         &MCursor::crossHairCursor,
                                  &MCursor::doubleCrossHairCursor, &MCursor::editCursor,
                                  &MCursor::pencilCursor,          &MCursor::handCursor};
  int id = 0;  // a bitmap of the plug-in's own shows as the default pointer
  for (int i = 0; i < 6; ++i)
    if (*known[i] == cursor) id = i;
  api::ContextRep& rep = contextRep(*this);
  rep.cursor = id;
  if (rep.tool) rep.tool->cursor = id;
  return MStatus::kSuccess;
}
MStatus MPxContext::setImage(const MString& image, ImageIndex index) {
  const auto at = static_cast<std::size_t>(index);
  if (at > 2) return MStatus::kInvalidParameter;
  api::ContextRep& rep = contextRep(*this);
  rep.images[at] = api::toStd(image);
  if (rep.tool) rep.tool->images[at] = rep.images[at];
  return MStatus::kSuccess;
}
MString MPxContext::image(ImageIndex index, MStatus* status) const {
  const auto at = static_cast<std::size_t>(index);
  setStatus(status, at > 2 ? MStatus::kInvalidParameter : MStatus::kSuccess);
  if (at > 2) return {};
  const api::ContextRep& rep = contextRep(*this);
  return api::toMString(rep.tool ? rep.tool->images[at] : rep.images[at]);
}

MStatus MPxContext::beginMarquee(MEvent& event) {
  api::ContextRep& rep = contextRep(*this);
  rep.isMarqueeActive = true;
  const MStatus status = event.getPosition(rep.startX, rep.startY);
  rep.lastX = rep.startX;
  rep.lastY = rep.startY;
  return status;
}
MStatus MPxContext::dragMarquee(MEvent& event) {
  api::ContextRep& rep = contextRep(*this);
  if (!rep.isMarqueeActive) return MStatus::kFailure;
  return event.getPosition(rep.lastX, rep.lastY);
}
MStatus MPxContext::releaseMarquee(MEvent& event, short& top, short& left, short& bottom,
                                   short& right) {
  api::ContextRep& rep = contextRep(*this);
  if (!rep.isMarqueeActive) return MStatus::kFailure;
  rep.isMarqueeActive = false;
  (void)event.getPosition(rep.lastX, rep.lastY);
  left = std::min(rep.startX, rep.lastX);
  right = std::max(rep.startX, rep.lastX);
  bottom = std::min(rep.startY, rep.lastY);
  top = std::max(rep.startY, rep.lastY);
  return MStatus::kSuccess;
}

MPxToolCommand* MPxContext::newToolCommand() {
  const auto& contextClass = contextRep(*this).contextClass;
  if (!contextClass || !contextClass->toolCreator) return nullptr;
  auto* command =
      static_cast<MPxToolCommand*>(static_cast<MPxCommand*>(contextClass->toolCreator()));
  if (!command) return nullptr;
  auto& rep = api::Access::writable<api::CommandRep>(static_cast<MPxCommand&>(*command));
  rep.name = contextClass->toolCommandName;
  rep.syntax = contextClass->toolSyntax;
  rep.hasSyntax = contextClass->hasToolSyntax;
  return command;
}
