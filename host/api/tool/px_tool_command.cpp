#include <maya/MPxToolCommand.h>

#include "host/api/command/command_adapter.h"
#include "host/cmd/loop.h"
#include "host/cmd/session.h"

using namespace host;

MPxToolCommand::MPxToolCommand() = default;
MPxToolCommand::~MPxToolCommand() = default;
MStatus MPxToolCommand::doIt(const MArgList&) {
  return MStatus::kFailure;
}
MStatus MPxToolCommand::cancel() {
  return MStatus::kSuccess;
}
MStatus MPxToolCommand::resizeToolCommand(unsigned int) {
  return MStatus::kSuccess;
}

MStatus MPxToolCommand::finalize() {
  MArgList command;
  command.addArg(commandString());
  return doFinalize(command);
}

MStatus MPxToolCommand::doFinalize(MArgList& command) {
  const auto* rep = api::Access::rep<api::CommandRep>(static_cast<const MPxCommand&>(*this));
  const std::string name = rep && !rep->name.empty() ? rep->name : api::toStd(command.asString(0));
  cmd::Session& session = cmd::currentSession();
  auto adapter =
      std::make_unique<api::CommandAdapter>(std::unique_ptr<MPxCommand>(this), name,
                                            rep ? rep->syntax : MSyntax(), rep && rep->hasSyntax);
  if (isUndoable() && session.undo().isRecording()) {
    session.dispatcher().addFinished(name, std::move(adapter));
    return MStatus::kSuccess;
  }
  // Nobody will undo it, but its own function is still running: it goes when the program is idle.
  session.loop().deferTask(
      [kept = std::shared_ptr<api::CommandAdapter>(std::move(adapter))] { (void)kept; });
  return MStatus::kSuccess;
}
