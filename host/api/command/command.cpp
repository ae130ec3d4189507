#include <fmt/format.h>
#include <maya/MGlobal.h>
#include <maya/MPxCommand.h>

#include "host/api/command/command_adapter.h"
#include "host/base/cancel.h"
#include "host/base/held_error.h"
#include "host/cmd/session.h"

namespace host::api {
namespace {

/// Results under construction: one for each command object whose doIt is running, innermost last.
std::vector<mel::Value>& resultStack() {
  static std::vector<mel::Value> stack;
  return stack;
}

int& undoDepth() {
  static int depth = 0;
  return depth;
}
int& redoDepth() {
  static int depth = 0;
  return depth;
}

struct DepthScope {
  explicit DepthScope(int& depthIn) : depth(depthIn) { ++depth; }
  ~DepthScope() { --depth; }
  int& depth;
};

struct ResultScope {
  ResultScope() { resultStack().emplace_back(); }
  ~ResultScope() { resultStack().pop_back(); }
};

CommandRep& repOf(MPxCommand& command) {
  return Access::writable<CommandRep>(command);
}

}  // namespace

bool isUndoingNow() {
  return undoDepth() > 0;
}
bool isRedoingNow() {
  return redoDepth() > 0;
}

CommandAdapter::CommandAdapter(std::unique_ptr<MPxCommand> object, std::string name, MSyntax syntax,
                               bool hasSyntax)
    : object_(std::move(object)), name_(std::move(name)) {
  CommandRep& rep = repOf(*object_);
  rep.syntax = std::move(syntax);
  rep.hasSyntax = hasSyntax;
  rep.name = name_;
}

/// What may have stood in the way of a command that failed without a word.
std::string likelyReason(const MStatus& status) {
  if (status.statusCode() != MStatus::kFailure) return status.errorString().asChar();
  std::vector<std::string> names = document().selection().names();
  if (names.empty()) return "nothing is selected for it to work on";
  constexpr std::size_t kMost = 3;
  const bool isLong = names.size() > kMost;
  if (isLong) names.resize(kMost);
  return fmt::format("it may not work on what is selected ({}{})", fmt::join(names, " "),
                     isLong ? " ..." : "");
}

template <class Operation>
Result<void> CommandAdapter::run(const char* what, const Operation& operation) {
  (void)takeRememberedError();
  HeldError said;
  const MStatus status = operation();
  if (status == MStatus::kSuccess) return {};
  if (auto text = said.take()) return failWith(Error{*std::move(text)});
  const std::string reason = takeRememberedError();
  if (isCancelled()) return cancelled();
  return fail("{} {}: {}", name_, what, reason.empty() ? likelyReason(status) : reason);
}

Result<void> CommandAdapter::doIt(std::span<const mel::Value> arguments) {
  ResultScope scope;
  const MArgList list = wrap(std::vector<mel::Value>(arguments.begin(), arguments.end()));
  auto done = run("failed", [&] { return object_->doIt(list); });
  result_ = resultStack().back();
  return done;
}

Result<void> CommandAdapter::undoIt() {
  DepthScope depth(undoDepth());
  return run("could not be undone", [&] { return object_->undoIt(); });
}

Result<void> CommandAdapter::redoIt() {
  DepthScope depth(redoDepth());
  return run("could not be redone", [&] { return object_->redoIt(); });
}

namespace {

/// Replaces the running command's result; outside any command there is nobody to give it to.
void assignResult(mel::Value value) {
  if (!resultStack().empty()) resultStack().back() = std::move(value);
}

mel::Value currentResult() {
  return resultStack().empty() ? mel::Value() : resultStack().back();
}

/// Turns the result into an array of the element's type and adds to it; a result of another type
/// starts anew.
template <class Array, class Element>
void appendResult(const Element& element) {
  const mel::Value before = currentResult();
  Array array;
  if (before.type() == mel::Value(Array()).type()) {
    array = [&] {
      if constexpr (std::is_same_v<Array, mel::IntArray>)
        return before.intArray();
      else if constexpr (std::is_same_v<Array, mel::FloatArray>)
        return before.floatArray();
      else
        return before.stringArray();
    }();
  }
  array.push_back(element);
  assignResult(mel::Value(std::move(array)));
}

mel::StringArray textsOf(const MStringArray& array) {
  mel::StringArray texts;
  for (unsigned int i = 0; i < array.length(); ++i) texts.emplace_back(array[i].asChar());
  return texts;
}

}  // namespace
}  // namespace host::api

using namespace host;
using api::assignResult;
using api::currentResult;
using api::setStatus;

MPxCommand::MPxCommand() = default;
MPxCommand::~MPxCommand() = default;
MStatus MPxCommand::doIt(const MArgList&) {
  return MStatus::kFailure;
}
MStatus MPxCommand::undoIt() {
  return MStatus::kFailure;
}
MStatus MPxCommand::redoIt() {
  return MStatus::kFailure;
}
bool MPxCommand::isUndoable() const {
  return false;
}
bool MPxCommand::hasSyntax() const {
  const auto* rep = api::Access::rep<api::CommandRep>(*this);
  return rep && rep->hasSyntax;
}
MSyntax MPxCommand::syntax() const {
  const auto* rep = api::Access::rep<api::CommandRep>(*this);
  return rep ? rep->syntax : MSyntax();
}
bool MPxCommand::isHistoryOn() const {
  const auto* rep = api::Access::rep<api::CommandRep>(*this);
  return !rep || rep->isHistoryOn;
}
MStatus MPxCommand::setHistoryOn(bool state) {
  api::repOf(*this).isHistoryOn = state;
  return MStatus::kSuccess;
}
MString MPxCommand::commandString() const {
  const auto* rep = api::Access::rep<api::CommandRep>(*this);
  return rep ? api::toMString(rep->name) : MString();
}
MStatus MPxCommand::setCommandString(const MString& name) {
  api::repOf(*this).name = name.asChar();
  return MStatus::kSuccess;
}
MStatus MPxCommand::doUndo() {
  return undoIt();
}

void MPxCommand::displayInfo(const MString& info, bool) {
  MGlobal::displayInfo(info);
}
void MPxCommand::displayWarning(const MString& warning, bool) {
  MGlobal::displayWarning(warning);
}
void MPxCommand::displayError(const MString& error, bool) {
  MGlobal::displayError(error);
}

void MPxCommand::clearResult() {
  assignResult(mel::Value());
}
void MPxCommand::setResult(bool result) {
  assignResult(mel::Value(result));
}
void MPxCommand::setResult(unsigned int result) {
  assignResult(mel::Value(static_cast<std::int32_t>(result)));
}
void MPxCommand::setResult(int result) {
  assignResult(mel::Value(result));
}
void MPxCommand::setResult(double result) {
  assignResult(mel::Value(result));
}
void MPxCommand::setResult(const MString& result) {
  assignResult(mel::Value(result.asChar()));
}
void MPxCommand::setResult(const MIntArray& result) {
  assignResult(mel::Value(mel::IntArray(result.begin(), result.end())));
}
void MPxCommand::setResult(const MDoubleArray& result) {
  assignResult(mel::Value(mel::FloatArray(result.begin(), result.end())));
}
void MPxCommand::setResult(const MStringArray& result) {
  assignResult(mel::Value(api::textsOf(result)));
}

void MPxCommand::appendToResult(unsigned int value) {
  api::appendResult<mel::IntArray>(static_cast<std::int32_t>(value));
}
void MPxCommand::appendToResult(int value) {
  api::appendResult<mel::IntArray>(value);
}
void MPxCommand::appendToResult(double value) {
  api::appendResult<mel::FloatArray>(value);
}
void MPxCommand::appendToResult(const MString& value) {
  api::appendResult<mel::StringArray>(std::string(value.asChar()));
}
void MPxCommand::appendToResult(const MStringArray& value) {
  for (const std::string& text : api::textsOf(value)) api::appendResult<mel::StringArray>(text);
}

MPxCommand::MResultType MPxCommand::currentResultType() {
  switch (mel::elementType(currentResult().type())) {
    case mel::Type::Int:
      return kLong;
    case mel::Type::Float:
      return kDouble;
    case mel::Type::String:
      return kString;
    default:
      return kNoArg;
  }
}
bool MPxCommand::isCurrentResultArray() {
  return mel::isArray(currentResult().type());
}

MStatus MPxCommand::getCurrentResult(int& result) {
  const auto value = currentResult().toInt();
  if (value) result = *value;
  return api::toStatus(value);
}
MStatus MPxCommand::getCurrentResult(double& result) {
  const auto value = currentResult().toFloat();
  if (value) result = *value;
  return api::toStatus(value);
}
MStatus MPxCommand::getCurrentResult(MString& result) {
  const auto value = currentResult().toText();
  if (value) result = api::toMString(*value);
  return api::toStatus(value);
}
MStatus MPxCommand::getCurrentResult(MIntArray& result) {
  const mel::Value value = currentResult();
  if (value.type() != mel::Type::IntArray) return MStatus::kFailure;
  result.clear();
  for (const int number : value.intArray()) result.append(number);
  return MStatus::kSuccess;
}
MStatus MPxCommand::getCurrentResult(MDoubleArray& result) {
  const mel::Value value = currentResult();
  if (value.type() != mel::Type::FloatArray) return MStatus::kFailure;
  result.clear();
  for (const double number : value.floatArray()) result.append(number);
  return MStatus::kSuccess;
}
MStatus MPxCommand::getCurrentResult(MStringArray& result) {
  const mel::Value value = currentResult();
  if (value.type() != mel::Type::StringArray) return MStatus::kFailure;
  result = api::toMStringArray(value.stringArray());
  return MStatus::kSuccess;
}
int MPxCommand::currentIntResult(MStatus* status) {
  int result = 0;
  const MStatus code = getCurrentResult(result);
  setStatus(status, code.statusCode());
  return result;
}
double MPxCommand::currentDoubleResult(MStatus* status) {
  double result = 0;
  const MStatus code = getCurrentResult(result);
  setStatus(status, code.statusCode());
  return result;
}
MString MPxCommand::currentStringResult(MStatus* status) {
  MString result;
  const MStatus code = getCurrentResult(result);
  setStatus(status, code.statusCode());
  return result;
}
