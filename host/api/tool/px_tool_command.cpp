#include <maya/MPxToolCommand.h>

#include <vector>

#include "host/api/tool/retired_commands.h"
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
  api::retire(std::move(adapter));
  session.loop().deferTask(api::dropRetired);
  return MStatus::kSuccess;
}

namespace host::api {
namespace {

std::vector<std::unique_ptr<CommandAdapter>>& retired() {
  static std::vector<std::unique_ptr<CommandAdapter>> commands;
  return commands;
}

}  // namespace

void retire(std::unique_ptr<CommandAdapter> command) {
  retired().push_back(std::move(command));
}

void dropRetired() {
  retired().clear();
}

}  // namespace host::api
