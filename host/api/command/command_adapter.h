#pragma once

#include <maya/MPxCommand.h>

#include <memory>
#include <string>

#include "host/api/command/args.h"
#include "host/cmd/plugin_command.h"

namespace host::api {

/// What the host keeps with a plug-in's command object.
struct CommandRep final : SharedRep {
  MSyntax syntax;
  std::string name;
  bool hasSyntax = false;
  bool isHistoryOn = true;
};

/// Runs a plug-in's command object for the dispatcher and holds it for undo.
class CommandAdapter final : public cmd::PluginCommand {
 public:
  /// Takes the object over. `syntax` is the command's, empty when it registered none.
  CommandAdapter(std::unique_ptr<MPxCommand> object, std::string name, MSyntax syntax,
                 bool hasSyntax);
  Result<void> doIt(std::span<const mel::Value> arguments) override;
  Result<void> undoIt() override;
  Result<void> redoIt() override;
  [[nodiscard]] bool isUndoable() const override { return object_->isUndoable(); }
  [[nodiscard]] mel::Value result() const override { return result_; }

 private:
  /// Runs one of the object's operations; of its failure one thing is told: what it last said.
  template <class Operation>
  Result<void> run(const char* what, const Operation& operation);
  std::unique_ptr<MPxCommand> object_;
  std::string name_;
  mel::Value result_;
};

/// Whether the host is undoing or redoing now, for MGlobal.
[[nodiscard]] bool isUndoingNow();
[[nodiscard]] bool isRedoingNow();

}  // namespace host::api
