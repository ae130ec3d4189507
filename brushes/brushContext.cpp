#include "brushes/brushContext.h"

#include <maya/MCursor.h>
#include <maya/MEventMessage.h>
#include <maya/MFnMesh.h>
#include <maya/MGlobal.h>

#include <algorithm>
#include <cmath>

#include "brushes/baseBrushContextToolCmd.h"

// The life of a brush and of its strokes; what it looks at and shows is in brushSight.cpp.

namespace {

constexpr float kHoverPeriod = 0.02F;
constexpr double kLeastStep = 1.0;  ///< pixels between dabs
constexpr unsigned int kMostDabsAnEvent = 4000;

MString answerOf(const char* command) {
  MString answer;
  MGlobal::executeCommand(command, answer, false, false);
  return answer;
}

}  // namespace

brushContext::brushContext(const char* command, const char* titleIn, const char* helpIn)
    : title(titleIn), help(helpIn), keys(command) {
  setTitleString(title);
}

brushContext::~brushContext() = default;

bool brushContext::canBrush(const MDagPath&) const {
  return true;
}

void brushContext::enter(MEvent&) {
  setTitleString(title);
  setHelpString(help);
  setCursor(MCursor::editCursor);
  penUse.begin();
  keys.bind();
  adjusting = kBrush;
  run.startHover(kHoverPeriod);
  for (const char* event : {"Undo", "Redo"})
    run.callbacks.add(MEventMessage::addEventCallback(event, onUndo, this));
  settingsChanged();
}

void brushContext::leave() {
  keys.unbind();
  penUse.end();
  cursor.remove();
  surfaces.clear();
  startHit = lastHit = pressHit = brushHit();
  shownOn.reset();
  projector.reset();
}

// What is undone in mid-stroke is the stroke so far: it ends there.
void brushContext::onUndo(void* self) {
  auto& tool = *static_cast<brushContext*>(self);
  if (tool.run.isActive()) tool.run.cancel();
}

void brushContext::meshGone() {
  surfaces.clear();
  startHit = lastHit = pressHit = brushHit();
  shownOn.reset();
  cursor.clear();
}

void brushContext::sceneEnds() {
  meshGone();
  cursor.remove();
}

penSample brushContext::sampleNow() const {
  penSample sample;
  sample.x = run.stroke.x;
  sample.y = run.stroke.y;
  sample.pen = tabletInput::instance().pen();
  return sample;
}

MStatus brushContext::press(MEvent&) {
  lookThrough(M3dView::active3dView());
  if (!projector) return MS::kFailure;
  run.setHover(false);
  isOver = false;
  dabCount = 0;
  recordBytes = 0;
  lastHit = brushHit();
  lastDab = brushDab();
  adjustedNow = adjusting;
  pressHit = hitAt(run.stroke.x, run.stroke.y);
  if (adjustedNow != kBrush) {
    adjustedFrom = adjustedNow == kAdjustStrength                         ? settings.strength
                   : settings.radiusSpace == brushSettings::kScreenRadius ? settings.screenRadius
                                                                          : settings.radius;
    return MS::kSuccess;
  }
  sampler.begin(sampleNow(), settings.smoothing);
  if (followsPointer()) isOver = !pressHit.isHit();
  takeDabs(false);
  return MS::kSuccess;
}

MStatus brushContext::drag(MEvent&) {
  if (!projector) return MS::kFailure;
  if (adjustedNow != kBrush) {
    adjust();
    return MS::kSuccess;
  }
  if (isOver) return MS::kSuccess;
  sampler.moveTo(sampleNow());
  takeDabs(false);
  return MS::kSuccess;
}

MStatus brushContext::release(MEvent&) {
  if (projector && adjustedNow == kBrush && !isOver) {
    sampler.moveTo(sampleNow());
    sampler.finish();
    takeDabs(true);
    // One that comes back to where it began is no step.
    if (const auto record = isInStroke() ? strokeRecord() : nullptr;
        record && !record->isUndone && record->changesNothing())
      takeBack(*record);
  }
  finishStroke();
  if (adjustedNow != kBrush) tellWindow();
  adjustedNow = kBrush;
  run.setHover(true);
  return MS::kSuccess;
}

/// The window of the brush's options, if there is one, shows what a drag has set.
void brushContext::tellWindow() {
  MGlobal::executeCommand(
      "if (`exists brushSettingsChanged_QXMT_Proc`) brushSettingsChanged_QXMT_Proc;", false, false);
}

/// The step has nothing to undo any more. It is the queue's last unless a script has done something
/// since.
void brushContext::takeBack(brushRecord& record) {
  record.show(false);
  record.isEmptied = true;
  if (wasQueued && answerOf("undoInfo -q -undoName") == queuedName)
    MGlobal::executeCommand("undo", false, false);
}

void brushContext::cancelStroke() {
  const std::shared_ptr<brushRecord> record = isInStroke() ? strokeRecord() : nullptr;
  if (record && isGivenUp && !record->isUndone) takeBack(*record);
  finishStroke();
  adjustedNow = kBrush;
  run.setHover(true);
  if (cursor.clear()) redraw();
}

void brushContext::finishStroke() {
  if (isInStroke()) {
    const std::shared_ptr<brushRecord> record = strokeRecord();
    endStroke();
    if (record) recordBytes = record->bytes();
  }
  startHit = lastHit = brushHit();
  handedOver.reset();
  isOver = true;
}

double brushContext::pressedRadius(const penSample& place, double radius) const {
  return settings.usesPressureOnRadius() ? radius * place.pen.pressure : radius;
}

/// Pixels to the next dab: a share of the radius that the dab before had.
double brushContext::stepPixels() const {
  const brushHit& known = lastHit.isHit() ? lastHit : startHit;
  if (!known.isHit() || !(known.pixelSize > 0.0))
    return std::max(kLeastStep, settings.spacing * settings.screenRadius);
  const double radius = lastHit.isHit() ? lastDab.radius : known.radius;
  return std::max(kLeastStep, settings.spacing * radius / known.pixelSize);
}

void brushContext::takeDabs(bool isLast) {
  if (!keepUpWithMesh()) return;
  if (followsPointer()) {
    makeDab(sampler.tip());
  } else {
    constexpr int kDirectionWay = 3;
    if (needsDirection() && dabCount == 0 && !isLast && !run.stroke.isBeyond(kDirectionWay)) return;
    penSample place;
    for (unsigned int i = 0; i < kMostDabsAnEvent && !isOver && sampler.next(stepPixels(), place);
         ++i)
      makeDab(place);
  }
  if (isInStroke()) {
    showDabs();
    handOver();
  }
  const brushHit here = hitAt(run.stroke.x, run.stroke.y);
  if (here.isHit())
    showCursor(here, lastDab.radius > 0.0 ? lastDab.radius : here.radius);
  else
    cursor.clear();
  redraw();
}

bool brushContext::beginAt(const brushHit& hit) {
  startHit = hit;
  run.watch(hit.surface->mesh());
  if (beginStroke(startHit)) return true;
  startHit = brushHit();
  isOver = true;
  return false;
}

void brushContext::makeDab(const penSample& place) {
  brushDab next;
  next.hit = hitAt(place.x, place.y);
  if (!isInStroke()) {
    if (!next.hit.isHit() || isOver || !beginAt(next.hit)) return;
  } else if (!next.hit.isHit() && !followsPointer()) {
    lastHit = brushHit();
    return;
  }
  const brushHit& known = next.hit.isHit() ? next.hit : startHit;
  next.place = place;
  next.count = dabCount++;
  next.radius = pressedRadius(place, known.radius);
  next.strength =
      settings.strength * (settings.usesPressureOnStrength() ? place.pen.pressure : 1.0);
  next.invert = settings.invert != run.stroke.isControl;
  next.smooth = run.stroke.isShift;
  next.held = heldAt(place.x, place.y);
  next.turn = lastDab.turn;
  if (next.count > 0) {
    next.moved = next.held - lastDab.held;
    // Turned half the way to the new direction: a hand that trembles does not turn the stamp.
    const double dx = place.x - lastDab.place.x, dy = place.y - lastDab.place.y;
    const double way = std::hypot(dx, dy);
    if (way > 0.0 && next.count == 1)
      next.turn = std::atan2(dy, dx);
    else if (way > 0.0)
      next.turn = std::atan2(std::sin(next.turn) + dy / way, std::cos(next.turn) + dx / way);
  } else if (run.stroke.x != run.stroke.pressX || run.stroke.y != run.stroke.pressY) {
    next.turn = std::atan2(run.stroke.y - run.stroke.pressY, run.stroke.x - run.stroke.pressX);
  }
  const double pixels = known.pixelSize > 0.0 ? next.radius / known.pixelSize : 0.0;
  next.stepShare = pixels > 0.0 ? std::max(settings.spacing, kLeastStep / pixels) : 0.0;
  dab(next);
  lastHit = next.hit;
  lastDab = next;
}

/// Takes over what others have done to the mesh. @return false when the stroke can't go on
bool brushContext::keepUpWithMesh() {
  if (!isInStroke()) return true;
  const std::shared_ptr<brushSurface> surface = startHit.surface;
  bool canGoOn = surface->placeInWorld();
  if (canGoOn && surfaces.isStale(*surface)) {
    canGoOn = surfaces.catchUp(*surface);
    if (canGoOn) {
      meshChanged();
      handedOver.reset();
    }
  }
  if (canGoOn) return true;
  MGlobal::displayWarning("The mesh was changed while it was brushed: the stroke ends there.");
  finishStroke();
  return false;
}

void brushContext::handOver() {
  const std::shared_ptr<brushRecord> record = strokeRecord();
  if (!record || record == handedOver) return;
  auto* command = dynamic_cast<baseBrushContextToolCmd*>(newToolCommand());
  if (!command) return;
  handedOver = record;
  command->setRecord(record);
  int isRecording = 0;
  MGlobal::executeCommand("undoInfo -q -state", isRecording, false, false);
  wasQueued = isRecording != 0;
  command->finalize();
  queuedName = answerOf("undoInfo -q -undoName");
}

void brushContext::adjust() {
  const double way = run.stroke.x - run.stroke.pressX;
  if (adjustedNow == kAdjustStrength) {
    constexpr double kPixelsForAll = 200.0;
    settings.strength = std::clamp(adjustedFrom + way / kPixelsForAll, 0.0, 1.0);
    tell(MString("strength ") + std::round(settings.strength * 100.0) / 100.0);
  } else if (settings.radiusSpace == brushSettings::kScreenRadius) {
    settings.screenRadius = std::max(1.0, adjustedFrom + way);
    tell(MString("radius ") + settings.screenRadius + " pixels");
  } else {
    const double pixel = pressHit.isHit() ? pressHit.pixelSize : adjustedFrom / 100.0;
    settings.radius = std::max(pixel, adjustedFrom + way * pixel);
    tell(MString("radius ") + settings.radius * unitsPerCentimetre());
  }
  if (pressHit.isHit()) {
    pressHit.radius = settings.radiusSpace == brushSettings::kScreenRadius
                          ? settings.screenRadius * pressHit.pixelSize
                          : settings.radius;
    showCursor(pressHit, pressHit.radius);
  }
  settingsChanged();
  redraw();
}

void brushContext::tell(const MString& sentence) {
  setHelpString(sentence);
}
