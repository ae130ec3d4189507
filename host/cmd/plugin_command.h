#pragma once

#include <functional>
#include <memory>
#include <span>
#include <string>

#include "host/base/result.h"
#include "host/mel/value.h"

namespace host::cmd {

/// One run of a command that a plug-in brought: made for each call, kept by the undo queue while it
/// can be undone. Exceptions are caught by the caller.
class PluginCommand {
 public:
  virtual ~PluginCommand() = default;
  /// Runs it. `arguments` are the words after the name as the script gave them.
  virtual Result<void> doIt(std::span<const mel::Value> arguments) = 0;
  virtual Result<void> undoIt() = 0;
  virtual Result<void> redoIt() = 0;
  /// Asked after doIt: whether the object is kept for undo.
  [[nodiscard]] virtual bool isUndoable() const = 0;
  [[nodiscard]] virtual mel::Value result() const = 0;
};

struct PluginCommandSpec {
  std::string name;
  std::string pluginName;
  std::function<std::unique_ptr<PluginCommand>()> create;
  /// The text that `help name` prints; empty: only that it is a plug-in command.
  std::function<std::string()> synopsis;
};

}  // namespace host::cmd
