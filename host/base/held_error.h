#pragma once

#include <optional>
#include <string>

#include "host/base/messages.h"

namespace host {

/// Holds back the latest error message while it lives, so that who called something that failed can
/// make it the reason of the failure, told once. An error that another message follows, and one
/// that nobody takes, goes where it was going.
class HeldError {
 public:
  HeldError();
  ~HeldError();
  HeldError(const HeldError&) = delete;
  HeldError& operator=(const HeldError&) = delete;

  /// The error that was the last message so far; it will not be sent on.
  [[nodiscard]] std::optional<std::string> take();

 private:
  void receive(MessageKind kind, std::string_view text);
  void release();

  MessageSink previous_;
  std::optional<std::string> held_;
};

}  // namespace host
