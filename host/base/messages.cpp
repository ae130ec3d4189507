#include "host/base/messages.h"

#include <array>
#include <cstdio>
#include <utility>

#include "host/base/message_filter.h"
#include "host/base/message_streams.h"

namespace host {
namespace {

MessageSink& currentSink() {
  static MessageSink sink;
  return sink;
}

std::array<bool, 5>& hiddenKinds() {
  static std::array<bool, 5> kinds{};
  return kinds;
}

}  // namespace

void showMessages(MessageKind kind, bool areShown) {
  hiddenKinds()[static_cast<std::size_t>(kind)] = !areShown;
}
bool areMessagesShown(MessageKind kind) {
  return kind == MessageKind::Print || !hiddenKinds()[static_cast<std::size_t>(kind)];
}

void writeMessageToStreams(MessageKind kind, std::string_view text) {
  const auto length = static_cast<int>(text.size());
  switch (kind) {
    case MessageKind::Print:
      std::fwrite(text.data(), 1, text.size(), stdout);
      return;
    case MessageKind::Info:
      std::fprintf(stderr, "// %.*s //\n", length, text.data());
      break;
    case MessageKind::Warning:
      std::fprintf(stderr, "// Warning: %.*s //\n", length, text.data());
      break;
    case MessageKind::Error:
      std::fprintf(stderr, "// Error: %.*s //\n", length, text.data());
      break;
    case MessageKind::Result:
      std::fprintf(stderr, "// Result: %.*s //\n", length, text.data());
      break;
  }
  std::fflush(stderr);
}

void postMessage(MessageKind kind, std::string_view text) {
  if (!areMessagesShown(kind)) return;
  if (kind != MessageKind::Print) std::fflush(stdout);
  if (currentSink())
    currentSink()(kind, text);
  else
    writeMessageToStreams(kind, text);
}

MessageSink setMessageSink(MessageSink sink) {
  return std::exchange(currentSink(), std::move(sink));
}

struct MessageCapture::State {
  std::array<std::string, 5> texts;
};

MessageCapture::MessageCapture() : state_(new State) {
  previous_ = setMessageSink([state = state_](MessageKind kind, std::string_view text) {
    std::string& target = state->texts[static_cast<std::size_t>(kind)];
    target.append(text);
    if (kind != MessageKind::Print) target.push_back('\n');
  });
}

MessageCapture::~MessageCapture() {
  setMessageSink(std::move(previous_));
  delete state_;
}

std::string MessageCapture::text(MessageKind kind) const {
  return state_->texts[static_cast<std::size_t>(kind)];
}

}  // namespace host
