#include <maya/MConditionMessage.h>
#include <maya/MEventMessage.h>
#include <maya/MSceneMessage.h>
#include <maya/MTimerMessage.h>
#include <maya/MUserEventMessage.h>

#include <algorithm>

#include "host/api/message/callbacks.h"

using namespace host;
using api::CallbackKind;
using api::Callbacks;
using api::Happening;
using api::setStatus;

namespace {

template <class Function>
MCallbackId add(CallbackKind kind, const MString& subject, int message,
                std::function<void(Happening&)> call, Function function, MStatus* status) {
  setStatus(status, function ? MStatus::kSuccess : MStatus::kInvalidParameter);
  if (!function) return 0;
  Callbacks::Callback callback;
  callback.kind = kind;
  callback.subject = subject.asChar();
  callback.message = message;
  callback.call = std::move(call);
  return api::callbacks().add(std::move(callback), reinterpret_cast<const void*>(function));
}

bool contains(const std::vector<std::string>& names, const MString& name) {
  return std::find(names.begin(), names.end(), name.asChar()) != names.end();
}

MCallbackId refuse(MStatus* status) {
  setStatus(status, MStatus::kInvalidParameter);
  return 0;
}

bool isScene(MSceneMessage::Message message) {
  return message >= 0 && message < MSceneMessage::kLast;
}

}  // namespace

MCallbackId MEventMessage::addEventCallback(const MString& event, MBasicFunction func,
                                            void* clientData, MStatus* status) {
  if (event != "idle" && !contains(cmd::currentSession().scriptJobs().eventNames(), event))
    return refuse(status);
  return add(
      CallbackKind::Event, event, 0, [func, clientData](Happening&) { func(clientData); }, func,
      status);
}
MStatus MEventMessage::getEventNames(MStringArray& names) {
  names = api::toMStringArray(cmd::currentSession().scriptJobs().eventNames());
  return MStatus::kSuccess;
}

MCallbackId MTimerMessage::addTimerCallback(float period, MElapsedTimeFunction func,
                                            void* clientData, MStatus* status) {
  if (!(period >= 0) || !func) return refuse(status);
  setStatus(status, MStatus::kSuccess);
  Callbacks::Callback callback;
  callback.kind = CallbackKind::Timer;
  callback.period = static_cast<double>(period);
  callback.call = [func, clientData](Happening& what) {
    func(static_cast<float>(what.elapsed), static_cast<float>(what.since), clientData);
  };
  return api::callbacks().add(std::move(callback), reinterpret_cast<const void*>(func));
}

MStatus MUserEventMessage::registerUserEvent(const MString& eventName) {
  auto& events = api::callbacks().userEvents;
  if (eventName.length() == 0 || contains(events, eventName)) return MStatus::kFailure;
  events.emplace_back(eventName.asChar());
  return MStatus::kSuccess;
}
bool MUserEventMessage::isUserEvent(const MString& eventName) {
  return contains(api::callbacks().userEvents, eventName);
}
MStatus MUserEventMessage::deregisterUserEvent(const MString& eventName) {
  if (std::erase(api::callbacks().userEvents, eventName.asChar()) == 0) return MStatus::kFailure;
  // An event of the same name that is registered later is another one.
  api::callbacks().removeAll(CallbackKind::UserEvent, eventName.asChar());
  return MStatus::kSuccess;
}
MCallbackId MUserEventMessage::addUserEventCallback(const MString& eventName, MBasicFunction func,
                                                    void* clientData, MStatus* status) {
  if (!isUserEvent(eventName)) return refuse(status);
  const auto call = [func, clientData](Happening& what) {
    func(clientData ? clientData : what.data);
  };
  return add(CallbackKind::UserEvent, eventName, 0, call, func, status);
}
MStatus MUserEventMessage::postUserEvent(const MString& eventName, void* clientData) {
  if (!isUserEvent(eventName)) return MStatus::kFailure;
  api::callbacks().fire(CallbackKind::UserEvent, {.text = eventName.asChar(), .data = clientData});
  return MStatus::kSuccess;
}

MCallbackId MSceneMessage::addCallback(Message message, MBasicFunction func, void* clientData,
                                       MStatus* status) {
  if (!isScene(message)) return refuse(status);
  return add(
      CallbackKind::Scene, "", message, [func, clientData](Happening&) { func(clientData); }, func,
      status);
}
MCallbackId MSceneMessage::addCheckCallback(Message message, MCheckFunction func, void* clientData,
                                            MStatus* status) {
  if (!isScene(message)) return refuse(status);
  const auto call = [func, clientData](Happening& what) {
    bool mayGoOn = true;
    func(&mayGoOn, clientData);
    what.isRefused = what.isRefused || !mayGoOn;
  };
  return add(CallbackKind::SceneCheck, "", message, call, func, status);
}
MCallbackId MSceneMessage::addStringArrayCallback(Message message, MStringArrayFunction func,
                                                  void* clientData, MStatus* status) {
  if (!isScene(message)) return refuse(status);
  const auto call = [func, clientData](Happening& what) {
    MStringArray texts;
    texts.append(api::toMString(what.text));
    func(texts, clientData);
  };
  return add(CallbackKind::SceneText, "", message, call, func, status);
}

MCallbackId MConditionMessage::addConditionCallback(const MString& conditionName,
                                                    MStateFunction func, void* clientData,
                                                    MStatus* status) {
  if (!contains(cmd::currentSession().scriptJobs().conditionNames(), conditionName))
    return refuse(status);
  const auto call = [func, clientData](Happening& what) { func(what.flag, clientData); };
  return add(CallbackKind::Condition, conditionName, 0, call, func, status);
}
bool MConditionMessage::getConditionState(const MString& name, MStatus* status) {
  const bool isKnown = contains(cmd::currentSession().scriptJobs().conditionNames(), name);
  setStatus(status, isKnown ? MStatus::kSuccess : MStatus::kInvalidParameter);
  return isKnown && cmd::currentSession().scriptJobs().condition(name.asChar());
}
MStatus MConditionMessage::getConditionNames(MStringArray& names) {
  names = api::toMStringArray(cmd::currentSession().scriptJobs().conditionNames());
  return MStatus::kSuccess;
}
