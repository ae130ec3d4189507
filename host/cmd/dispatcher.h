#pragma once

#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/cmd/registry.h"
#include "host/cmd/undo_queue.h"
#include "host/mel/command_host.h"

namespace host::cmd {

/// Runs commands for the language: parses their words, records their edits as steps of undo, fences
/// exceptions.
///
/// The outermost command that runs collects a step; commands that run inside it (a script that a
/// plug-in command executes, say) record into the same step. While a plug-in command's own code
/// runs nothing is recorded: its undoIt takes back what it does.
class Dispatcher final : public mel::CommandHost {
 public:
  Dispatcher(Session& session, CommandRegistry& registry, UndoQueue& undo);

  const mel::CommandHandle* findCommand(std::string_view name) override;
  Result<void> invoke(const mel::CommandHandle& command, std::span<const mel::Value> arguments,
                      mel::Value& result) override;
  void defer(std::string script, bool lowestPriority) override;
  [[nodiscard]] std::string describe(const mel::CommandHandle& command) override;
  void completeCommand(std::string_view prefix, std::vector<std::string>& names) override;

  /// Adds a plug-in command that has already run (a tool's) to the undo queue, as an item of its
  /// own or of the group that is open.
  void addFinished(std::string name, std::unique_ptr<PluginCommand> command);

  /// Runs document edits as a command of that name would: one step, reverted when it fails.
  Result<void> recordStep(std::string_view name, const std::function<Result<void>()>& edits);

  /// Runs what doesn't belong to the commands that run now: commands inside are outermost ones,
  /// unless edits are being collected, which then go the same way.
  void runOutside(const std::function<void()>& run);

  /// Collects the edits of all commands that run inside `run`, instead of giving them to the queue:
  /// its caller takes them back itself.
  Result<void> collectInto(scene::ChangeSet& target, const std::function<Result<void>()>& run);

  /// Takes back or does again the latest item of the queue. Refused while a command that runs has
  /// changed something: what it did would be newer than what is taken back.
  Result<void> undo();
  Result<void> redo();

  /// Whether a command is running now.
  [[nodiscard]] bool isRunning() const { return depth_ > 0; }
  /// Whether a command that this plug-in brought is running now.
  [[nodiscard]] bool isRunningOf(std::string_view plugin) const;

 private:
  /// Takes back what a command did before it failed.
  void revert(scene::ChangeSet& edits);
  Result<void> invokeBuiltin(const CommandSpec& spec, std::span<const mel::Value> arguments,
                             mel::Value& result);
  Result<void> invokePlugin(const PluginCommandSpec& spec, std::span<const mel::Value> arguments,
                            mel::Value& result);
  class StepScope;

  Session& session_;
  CommandRegistry& registry_;
  UndoQueue& undo_;
  scene::ChangeSet* step_ = nullptr;  ///< of the outermost command; null while none records
  int depth_ = 0;
  std::vector<std::string> runningPlugins_;  ///< of the commands that run, innermost last
  int collectors_ = 0;  ///< runs of collectInto: they record whatever the queue does
};

}  // namespace host::cmd
