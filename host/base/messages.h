#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace host {

enum class MessageKind { Info, Warning, Error, Result, Print };

/// Where messages go. Print (MEL `print`) is standard output, verbatim; the others are standard
/// error in the forms "// text //", "// Warning: text //", "// Error: text //", "// Result: text
/// //".
using MessageSink = std::function<void(MessageKind, std::string_view)>;

/// Sends a message to the current sink.
void postMessage(MessageKind kind, std::string_view text);

/// Replaces the sink and returns the previous one; an empty sink restores the standard streams.
MessageSink setMessageSink(MessageSink sink);

/// Collects messages while it lives; for tests and for callers that show them elsewhere.
class MessageCapture {
 public:
  MessageCapture();
  ~MessageCapture();
  MessageCapture(const MessageCapture&) = delete;
  MessageCapture& operator=(const MessageCapture&) = delete;
  /// Everything of one kind, a line each.
  [[nodiscard]] std::string text(MessageKind kind) const;

 private:
  struct State;
  State* state_;
  MessageSink previous_;
};

}  // namespace host
