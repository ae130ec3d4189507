#include <maya/MCommandMessage.h>

#include "host/api/message/callbacks.h"
#include "host/base/message_streams.h"

using namespace host;
using api::CallbackKind;
using api::Callbacks;
using api::Happening;
using api::setStatus;

namespace host::api {

bool Callbacks::tellMessage(int kind, std::string_view text) {
  if (isTelling_ || !waits(CallbackKind::CommandOutput)) return true;
  isTelling_ = true;
  Happening happening{.message = kind, .text = std::string(text)};
  fire(CallbackKind::CommandOutput, happening);
  isTelling_ = false;
  return !happening.isRefused;
}

void Callbacks::watchMessages() {
  if (watchesMessages_) return;
  watchesMessages_ = true;
  auto before = std::make_shared<MessageSink>();
  // The sink may outlive the session.
  *before = setMessageSink(
      [before, self = std::weak_ptr(self_)](MessageKind kind, std::string_view text) {
        MCommandMessage::MessageType type = MCommandMessage::kDisplay;
        switch (kind) {
          case MessageKind::Info:
            type = MCommandMessage::kInfo;
            break;
          case MessageKind::Warning:
            type = MCommandMessage::kWarning;
            break;
          case MessageKind::Error:
            type = MCommandMessage::kError;
            break;
          case MessageKind::Result:
            type = MCommandMessage::kResult;
            break;
          case MessageKind::Print:
            break;
        }
        const auto callbacks = self.lock();
        if (callbacks && !(*callbacks)->tellMessage(type, text)) return;
        *before ? (*before)(kind, text) : writeMessageToStreams(kind, text);
      });
}

}  // namespace host::api

namespace {

template <class Function>
MCallbackId add(CallbackKind kind, std::function<void(Happening&)> call, Function function,
                MStatus* status) {
  setStatus(status, function ? MStatus::kSuccess : MStatus::kInvalidParameter);
  if (!function) return 0;
  Callbacks::Callback callback;
  callback.kind = kind;
  callback.call = std::move(call);
  return api::callbacks().add(std::move(callback), reinterpret_cast<const void*>(function));
}

}  // namespace

MCallbackId MCommandMessage::addCommandCallback(MStringFunction func, void* clientData,
                                                MStatus* status) {
  const auto call = [func, clientData](Happening& what) {
    func(api::toMString(what.text), clientData);
  };
  return add(CallbackKind::CommandLine, call, func, status);
}

MCallbackId MCommandMessage::addCommandOutputCallback(MMessageFunction func, void* clientData,
                                                      MStatus* status) {
  const auto call = [func, clientData](Happening& what) {
    func(api::toMString(what.text), static_cast<MessageType>(what.message), clientData);
  };
  api::callbacks().watchMessages();
  return add(CallbackKind::CommandOutput, call, func, status);
}

MCallbackId MCommandMessage::addCommandOutputFilterCallback(MMessageFilterFunction func,
                                                            void* clientData, MStatus* status) {
  const auto call = [func, clientData](Happening& what) {
    bool isHidden = what.isRefused;
    func(api::toMString(what.text), static_cast<MessageType>(what.message), isHidden, clientData);
    what.isRefused = isHidden;
  };
  api::callbacks().watchMessages();
  return add(CallbackKind::CommandOutput, call, func, status);
}
