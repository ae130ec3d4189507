#include <maya/MAnimControl.h>
#include <maya/MProgressWindow.h>

#include <algorithm>

#include "host/api/core/access.h"
#include "host/api/session/api_state.h"
#include "host/cmd/session.h"
#include "host/workspace/playback.h"
#include "host/workspace/workspace.h"

namespace host::api {
namespace {

workspace::Playback& playback() {
  return workspace::workspaceOf(cmd::currentSession()).kept<workspace::Playback>();
}
MTime timeOf(double seconds) {
  return MTime(MTime(seconds, MTime::kSeconds).as(MTime::uiUnit()), MTime::uiUnit());
}
double secondsOf(const MTime& time) {
  return time.as(MTime::kSeconds);
}

dg::Plug timePlug() {
  const auto plug = document().plug("time1.outTime");
  return plug ? *plug : dg::Plug();
}

using Progress = ApiState::Progress;
Progress& progressState() {
  return apiState().progress;
}

/// Only the job that has the display may change it.
template <class Change>
MStatus changeProgress(const Change& change) {
  Progress& progress = progressState();
  if (!progress.isReserved) return MStatus::kFailure;
  change(progress);
  progress.value =
      std::clamp(progress.value, progress.minimum, std::max(progress.minimum, progress.maximum));
  return MStatus::kSuccess;
}

Progress& progressFor(MStatus* status) {
  setStatus(status, MStatus::kSuccess);
  return progressState();
}

}  // namespace
}  // namespace host::api

using namespace host;
using api::changeProgress;
using api::playback;
using api::progressState;
using api::secondsOf;
using api::setStatus;
using api::timeOf;

MTime MAnimControl::currentTime() {
  const dg::Plug plug = api::timePlug();
  return plug ? api::wrap(plug).asMTime() : MTime();
}
MStatus MAnimControl::setCurrentTime(const MTime& time) {
  const dg::Plug plug = api::timePlug();
  if (!plug) return MStatus::kFailure;
  const MStatus status = api::wrap(plug).setMTime(time);
  if (status) cmd::currentSession().scriptJobs().triggerEvent("timeChanged");
  return status;
}
MTime MAnimControl::minTime() {
  return timeOf(playback().minimum);
}
MTime MAnimControl::maxTime() {
  return timeOf(playback().maximum);
}
MStatus MAnimControl::setMinTime(const MTime& time) {
  return setMinMaxTime(time, std::max(time, maxTime()));
}
MStatus MAnimControl::setMaxTime(const MTime& time) {
  return setMinMaxTime(std::min(time, minTime()), time);
}
MStatus MAnimControl::setMinMaxTime(const MTime& minTime, const MTime& maxTime) {
  if (maxTime < minTime) return MStatus::kInvalidParameter;
  playback().minimum = secondsOf(minTime);
  playback().maximum = secondsOf(maxTime);
  return MStatus::kSuccess;
}
MTime MAnimControl::animationStartTime() {
  return timeOf(playback().start);
}
MTime MAnimControl::animationEndTime() {
  return timeOf(playback().end);
}
MStatus MAnimControl::setAnimationStartTime(const MTime& time) {
  playback().start = secondsOf(time);
  return MStatus::kSuccess;
}
MStatus MAnimControl::setAnimationEndTime(const MTime& time) {
  playback().end = secondsOf(time);
  return MStatus::kSuccess;
}
bool MAnimControl::isPlaying() {
  return false;
}

bool MProgressWindow::reserve() {
  if (progressState().isReserved) return false;
  progressState() = {};
  progressState().isReserved = true;
  return true;
}
MStatus MProgressWindow::startProgress() {
  return changeProgress([](auto& progress) { progress.isRunning = true; });
}
MStatus MProgressWindow::endProgress() {
  if (!progressState().isReserved) return MStatus::kFailure;
  progressState() = {};
  return MStatus::kSuccess;
}
MStatus MProgressWindow::setTitle(const MString& title) {
  return changeProgress([&](auto& progress) { progress.title = title.asChar(); });
}
MString MProgressWindow::title(MStatus* status) {
  return api::toMString(api::progressFor(status).title);
}
MStatus MProgressWindow::setProgressStatus(const MString& text) {
  return changeProgress([&](auto& progress) { progress.status = text.asChar(); });
}
MString MProgressWindow::progressStatus(MStatus* status) {
  return api::toMString(api::progressFor(status).status);
}
MStatus MProgressWindow::setProgressRange(int min, int max) {
  if (max < min) return MStatus::kInvalidParameter;
  return changeProgress([&](auto& progress) {
    progress.minimum = min;
    progress.maximum = max;
  });
}
MStatus MProgressWindow::setProgressMin(int min) {
  return setProgressRange(min, std::max(min, progressMax()));
}
MStatus MProgressWindow::setProgressMax(int max) {
  return setProgressRange(std::min(progressMin(), max), max);
}
int MProgressWindow::progressMin(MStatus* status) {
  return api::progressFor(status).minimum;
}
int MProgressWindow::progressMax(MStatus* status) {
  return api::progressFor(status).maximum;
}
MStatus MProgressWindow::setProgress(int value) {
  return changeProgress([&](auto& progress) { progress.value = value; });
}
MStatus MProgressWindow::advanceProgress(int amount) {
  return setProgress(progress() + amount);
}
int MProgressWindow::progress(MStatus* status) {
  return api::progressFor(status).value;
}
MStatus MProgressWindow::setInterruptable(bool interruptable) {
  return changeProgress([&](auto& progress) { progress.isInterruptable = interruptable; });
}
bool MProgressWindow::isInterruptable(MStatus* status) {
  return api::progressFor(status).isInterruptable;
}
bool MProgressWindow::isCancelled() {
  return false;
}
