#include <maya/MFn.h>
#include <maya/MGlobal.h>
#include <maya/MVector.h>

#include <cstdio>
#include <ctime>

#include "host/api/command/command_adapter.h"
#include "host/api/core/access.h"
#include "host/base/messages.h"
#include "host/cmd/session.h"

namespace host::api {
namespace {

/// A log of what the plug-ins' messages said, when one of them asked for it.
struct ErrorLog {
  std::string path = "qxmt_errors.log";
  std::FILE* file = nullptr;
};
ErrorLog& errorLog() {
  static ErrorLog log;
  return log;
}

void logLine(const MString& text) {
  if (errorLog().file) std::fprintf(errorLog().file, "%s\n", text.asChar());
}

bool& tracksOrder() {
  static bool isOn = false;
  return isOn;
}

}  // namespace
}  // namespace host::api

using namespace host;
using api::setStatus;

void MGlobal::displayInfo(const MString& text) {
  postMessage(MessageKind::Info, text.asChar());
}
void MGlobal::displayWarning(const MString& warning) {
  api::logLine("Warning: " + warning);
  postMessage(MessageKind::Warning, warning.asChar());
}
void MGlobal::displayError(const MString& error) {
  api::logLine("Error: " + error);
  postMessage(MessageKind::Error, error.asChar());
}

MStatus MGlobal::startErrorLogging() {
  auto& log = api::errorLog();
  if (!log.file) log.file = std::fopen(log.path.c_str(), "a");
  return log.file ? MStatus::kSuccess : MStatus::kFailure;
}
MStatus MGlobal::startErrorLogging(const MString& logFileName) {
  closeErrorLog();
  api::errorLog().path = logFileName.asChar();
  return startErrorLogging();
}
MStatus MGlobal::stopErrorLogging() {
  return closeErrorLog();
}
MStatus MGlobal::closeErrorLog() {
  auto& log = api::errorLog();
  if (log.file) std::fclose(log.file);
  log.file = nullptr;
  return MStatus::kSuccess;
}
MStatus MGlobal::doErrorLogEntry(const MString& errorLogMessage) {
  if (!api::errorLog().file) return MStatus::kFailure;
  api::logLine(errorLogMessage);
  return MStatus::kSuccess;
}
MString MGlobal::errorLogPathName(MStatus* status) {
  setStatus(status, MStatus::kSuccess);
  return api::toMString(api::errorLog().path);
}
MStatus MGlobal::setErrorLogPathName(const MString& logFileName) {
  if (api::errorLog().file) return MStatus::kFailure;
  api::errorLog().path = logFileName.asChar();
  return MStatus::kSuccess;
}
MStatus MGlobal::resetToDefaultErrorLogPathName() {
  return setErrorLogPathName(defaultErrorLogPathName());
}
MString MGlobal::defaultErrorLogPathName(MStatus* status) {
  setStatus(status, MStatus::kSuccess);
  return "qxmt_errors.log";
}
bool MGlobal::errorLoggingIsOn(MStatus* status) {
  setStatus(status, MStatus::kSuccess);
  return api::errorLog().file != nullptr;
}

MStatus MGlobal::deleteNode(MObject& object) {
  dg::Node* node = api::nodeOf(object);
  if (!node || !node->isAlive()) return MStatus::kInvalidParameter;
  return api::toStatus(api::document().deleteNodes({node}));
}

MStatus MGlobal::setYAxisUp(bool) {
  return MStatus::kSuccess;
}
MStatus MGlobal::setZAxisUp(bool) {
  return MStatus::kFailure;
}
bool MGlobal::isYAxisUp(MStatus* status) {
  setStatus(status, MStatus::kSuccess);
  return true;
}
bool MGlobal::isZAxisUp(MStatus* status) {
  setStatus(status, MStatus::kSuccess);
  return false;
}
MVector MGlobal::upAxis(MStatus* status) {
  setStatus(status, MStatus::kSuccess);
  return MVector(0, 1, 0);
}

MGlobal::MMayaState MGlobal::mayaState(MStatus* status) {
  setStatus(status, MStatus::kSuccess);
  return cmd::currentSession().isBatch ? kBatch : kInteractive;
}
MString MGlobal::mayaVersion() {
  return "2014";
}
int MGlobal::apiVersion() {
  return MAYA_API_VERSION;
}
int MGlobal::customVersion() {
  return 0;
}
bool MGlobal::isUndoing() {
  return api::isUndoingNow();
}
bool MGlobal::isRedoing() {
  return api::isRedoingNow();
}
MString MGlobal::currentToolContext() {
  return executeCommandStringResult("currentCtx");
}

bool MGlobal::trackSelectionOrderEnabled(MStatus* status) {
  setStatus(status, MStatus::kSuccess);
  return api::tracksOrder();
}
MStatus MGlobal::setTrackSelectionOrderEnabled(bool enabled) {
  api::tracksOrder() = enabled;
  return MStatus::kSuccess;
}

namespace {

cmd::OptionVars& optionVars() {
  return cmd::currentSession().optionVars();
}

/// A variable as the language's value; None when there is none.
mel::Value findOption(const MString& name) {
  const cmd::OptionVars::Value* value = optionVars().find(name.asChar());
  return value ? std::visit([](const auto& stored) { return mel::Value(stored); }, *value)
               : mel::Value();
}

void setExists(bool* exists, const mel::Value& value) {
  if (exists) *exists = !value.isNone();
}

}  // namespace

bool MGlobal::optionVarExists(const MString& name) {
  return optionVars().find(name.asChar()) != nullptr;
}
int MGlobal::optionVarIntValue(const MString& name, bool* exists) {
  const mel::Value value = findOption(name);
  setExists(exists, value);
  return value.toInt().value_or(0);
}
double MGlobal::optionVarDoubleValue(const MString& name, bool* exists) {
  const mel::Value value = findOption(name);
  setExists(exists, value);
  return value.toFloat().value_or(0);
}
MString MGlobal::optionVarStringValue(const MString& name, bool* exists) {
  const mel::Value value = findOption(name);
  setExists(exists, value);
  return api::toMString(value.toText().value_or(""));
}
bool MGlobal::getOptionVarValue(const MString& name, int& value) {
  bool exists = false;
  const int found = optionVarIntValue(name, &exists);
  if (exists) value = found;
  return exists;
}
bool MGlobal::getOptionVarValue(const MString& name, double& value) {
  bool exists = false;
  const double found = optionVarDoubleValue(name, &exists);
  if (exists) value = found;
  return exists;
}
bool MGlobal::getOptionVarValue(const MString& name, MString& value) {
  bool exists = false;
  const MString found = optionVarStringValue(name, &exists);
  if (exists) value = found;
  return exists;
}
bool MGlobal::setOptionVarValue(const MString& name, int value) {
  optionVars().set(name.asChar(), value);
  return true;
}
bool MGlobal::setOptionVarValue(const MString& name, double value) {
  optionVars().set(name.asChar(), value);
  return true;
}
bool MGlobal::setOptionVarValue(const MString& name, const MString& value) {
  optionVars().set(name.asChar(), std::string(value.asChar()));
  return true;
}
bool MGlobal::initOptionVar(const MString& name, int value, const MString&) {
  return !optionVarExists(name) && setOptionVarValue(name, value);
}
bool MGlobal::initOptionVar(const MString& name, double value, const MString&) {
  return !optionVarExists(name) && setOptionVarValue(name, value);
}
bool MGlobal::initOptionVar(const MString& name, const MString& value, const MString&) {
  return !optionVarExists(name) && setOptionVarValue(name, value);
}
bool MGlobal::removeOptionVar(const MString& name) {
  return optionVars().remove(name.asChar());
}
