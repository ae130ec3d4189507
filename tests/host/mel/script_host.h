#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "host/mel/interpreter.h"

namespace host::mel::test {

/// A world of a few commands that show what reached them, and a record of what was said.
class ScriptHost final : public CommandHost {
 public:
  struct Event {
    MessageKind kind;
    std::string text;
  };

  const CommandHandle* findCommand(std::string_view name) override;
  Result<void> invoke(const CommandHandle& command, std::span<const Value> arguments,
                      Value& result) override;
  void defer(std::string script, bool lowestPriority) override {
    deferred.push_back((lowestPriority ? "low:" : "") + script);
  }
  void message(MessageKind kind, std::string_view text) override {
    events.push_back({kind, std::string(text)});
  }
  void completeCommand(std::string_view prefix, std::vector<std::string>& names) override;

  /// All that was printed, joined.
  [[nodiscard]] std::string printed() const;

  Interpreter interpreter{*this};
  std::vector<Event> events;
  std::vector<std::string> deferred;
  bool hasLateCommand = false;  ///< whether the command `late` exists
};

}  // namespace host::mel::test
