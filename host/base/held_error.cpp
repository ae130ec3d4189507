#include "host/base/held_error.h"

#include <utility>

namespace host {

/// Writes to the standard streams, as messages without a sink do.
void writeMessageToStreams(MessageKind kind, std::string_view text);

HeldError::HeldError() {
  previous_ =
      setMessageSink([this](MessageKind kind, std::string_view text) { receive(kind, text); });
}

HeldError::~HeldError() {
  release();
  setMessageSink(std::move(previous_));
}

std::optional<std::string> HeldError::take() {
  return std::exchange(held_, std::nullopt);
}

void HeldError::receive(MessageKind kind, std::string_view text) {
  release();
  if (kind == MessageKind::Error)
    held_ = text;
  else if (previous_)
    previous_(kind, text);
  else
    writeMessageToStreams(kind, text);
}

void HeldError::release() {
  const auto text = take();
  if (!text) return;
  if (previous_)
    previous_(MessageKind::Error, *text);
  else
    writeMessageToStreams(MessageKind::Error, *text);
}

}  // namespace host
