#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/base/messages.h"
#include "host/base/result.h"
#include "host/mel/value.h"

namespace host::mel {

/// A command as its owner knows it; the language only passes the address back.
class CommandHandle {
 protected:
  CommandHandle() = default;
  ~CommandHandle() = default;
};

/// All that the language knows of the world.
class CommandHost {
 public:
  virtual ~CommandHost() = default;

  /// The command of that name, or null. Call sites keep the answer (null as well) until
  /// `commandsChanged`.
  [[nodiscard]] virtual const CommandHandle* findCommand(std::string_view name) = 0;

  /// Runs a command. `arguments` are the words after its name in order; a flag is the string
  /// `-name`, its values follow as values of their own type. The bare words on/yes/true and
  /// off/no/false arrive as 1 and 0. Arrays are the script's own: keep a `clone()`, not a copy.
  /// `result` is None on entry. An error becomes a script error at the calling line, where `catch`
  /// sees it. May call back into the interpreter.
  virtual Result<void> invoke(const CommandHandle& command, std::span<const Value> arguments,
                              Value& result) = 0;

  /// Queues a script for the program's idle loop (`evalDeferred`); after the others with
  /// lowestPriority.
  virtual void defer(std::string script, bool lowestPriority) = 0;

  /// Where print, warnings and caught errors go.
  virtual void message(MessageKind kind, std::string_view text) { postMessage(kind, text); }

  /// What `whatIs` says of a command: "Command", "Plug-in Command", "Run Time Command".
  [[nodiscard]] virtual std::string describe(const CommandHandle&) { return "Command"; }

  /// Appends the names of commands that begin with `prefix`.
  virtual void completeCommand(std::string_view prefix, std::vector<std::string>& names) = 0;

  /// The owner calls this after it adds or removes a command; a removed handle is never invoked
  /// afterwards.
  void commandsChanged() noexcept { ++generation_; }
  [[nodiscard]] std::uint32_t generation() const noexcept { return generation_; }

 private:
  std::uint32_t generation_ = 1;
};

}  // namespace host::mel
