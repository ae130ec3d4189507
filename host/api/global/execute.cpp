#include <maya/MCommandResult.h>
#include <maya/MDoubleArray.h>
#include <maya/MGlobal.h>
#include <maya/MIntArray.h>
#include <maya/MVector.h>
#include <maya/MVectorArray.h>

#include "host/api/core/access.h"
#include "host/base/messages.h"
#include "host/cmd/loop.h"
#include "host/cmd/session.h"

namespace host::api {
namespace {

struct CommandResultRep final : SharedRep {
  mel::Value value;
};

Result<mel::Value> run(const MString& command, bool display, bool undo) {
  if (display) postMessage(MessageKind::Info, command.asChar());
  auto result =
      cmd::currentSession().executeLine(command.asChar(), {.display = display, .undo = undo});
  if (!result) rememberError(result.error());
  return result;
}

MStatus convert(const mel::Value& value, int& result) {
  const auto number = value.toInt();
  if (number && !value.isNone()) result = *number;
  return number && !value.isNone() ? MStatus::kSuccess : MStatus::kFailure;
}
MStatus convert(const mel::Value& value, double& result) {
  const auto number = value.toFloat();
  if (number && !value.isNone()) result = *number;
  return number && !value.isNone() ? MStatus::kSuccess : MStatus::kFailure;
}
MStatus convert(const mel::Value& value, MString& result) {
  if (value.type() == mel::Type::StringArray && value.size() == 1) {
    result = toMString(value.stringArray().front());
    return MStatus::kSuccess;
  }
  const auto text = value.toText();
  if (!text || value.isNone()) return MStatus::kFailure;
  result = toMString(*text);
  return MStatus::kSuccess;
}
MStatus convert(const mel::Value& value, MIntArray& result) {
  result.clear();
  if (value.isInt())
    result.append(value.intValue());
  else if (value.type() == mel::Type::IntArray)
    result = MIntArray(value.intArray().data(), static_cast<unsigned int>(value.size()));
  else
    return value.isNone() ? MStatus::kSuccess : MStatus::kFailure;
  return MStatus::kSuccess;
}
MStatus convert(const mel::Value& value, MDoubleArray& result) {
  result.clear();
  if (value.isFloat() || value.isInt())
    result.append(value.toFloat().value_or(0));
  else if (value.type() == mel::Type::FloatArray)
    result = MDoubleArray(value.floatArray().data(), static_cast<unsigned int>(value.size()));
  else if (value.type() == mel::Type::IntArray)
    for (const int number : value.intArray()) result.append(number);
  else if (value.type() == mel::Type::Vector) {
    const mel::Vec3& vector = value.vector();
    for (const double part : {vector.x, vector.y, vector.z}) result.append(part);
  } else
    return value.isNone() ? MStatus::kSuccess : MStatus::kFailure;
  return MStatus::kSuccess;
}
MStatus convert(const mel::Value& value, MStringArray& result) {
  result = toMStringArray(value.toTexts());
  return MStatus::kSuccess;
}
MStatus convert(const mel::Value& value, MVector& result) {
  const auto vector = value.toVector();
  if (vector && !value.isNone()) result = MVector(vector->x, vector->y, vector->z);
  return vector && !value.isNone() ? MStatus::kSuccess : MStatus::kFailure;
}
MStatus convert(const mel::Value& value, MVectorArray& result) {
  result.clear();
  if (value.type() != mel::Type::VectorArray) return MStatus::kFailure;
  for (const mel::Vec3& vector : value.vectorArray())
    result.append(MVector(vector.x, vector.y, vector.z));
  return MStatus::kSuccess;
}

template <class T>
MStatus runInto(const MString& command, T& result, bool display, bool undo) {
  const auto value = run(command, display, undo);
  return value ? convert(*value, result) : MStatus(MStatus::kFailure);
}

mel::Value valueOf(const Handle& handle) {
  const auto* rep = static_cast<const CommandResultRep*>(handle.get());
  return rep ? rep->value : mel::Value();
}

MStatus refusePython() {
  postMessage(MessageKind::Error, "There is no Python interpreter in this host.");
  return MStatus::kFailure;
}

}  // namespace
}  // namespace host::api

using namespace host;
using api::runInto;
using api::setStatus;

MStatus MGlobal::executeCommand(const MString& command, bool displayEnabled, bool undoEnabled) {
  return api::run(command, displayEnabled, undoEnabled) ? MStatus::kSuccess : MStatus::kFailure;
}
MStatus MGlobal::executeCommand(const MString& command, MCommandResult& result, bool displayEnabled,
                                bool undoEnabled) {
  const auto value = api::run(command, displayEnabled, undoEnabled);
  if (!value) return MStatus::kFailure;
  auto* rep = new api::CommandResultRep;
  rep->value = value->clone();
  api::Access::handle(result) = api::Handle(rep);
  return MStatus::kSuccess;
}
#define HOST_EXECUTE(Type)                                                                   \
  MStatus MGlobal::executeCommand(const MString& command, Type& result, bool displayEnabled, \
                                  bool undoEnabled) {                                        \
    return runInto(command, result, displayEnabled, undoEnabled);                            \
  }
HOST_EXECUTE(int)
HOST_EXECUTE(double)
HOST_EXECUTE(MString)
HOST_EXECUTE(MIntArray)
HOST_EXECUTE(MDoubleArray)
HOST_EXECUTE(MStringArray)
HOST_EXECUTE(MVector)
HOST_EXECUTE(MVectorArray)
#undef HOST_EXECUTE

MString MGlobal::executeCommandStringResult(const MString& command, bool displayEnabled,
                                            bool undoEnabled, MStatus* status) {
  MString result;
  const MStatus code = runInto(command, result, displayEnabled, undoEnabled);
  setStatus(status, code.statusCode());
  return result;
}

MStatus MGlobal::executeCommandOnIdle(const MString& command, bool) {
  cmd::currentSession().loop().defer(command.asChar());
  return MStatus::kSuccess;
}

MStatus MGlobal::sourceFile(const MString& fileName) {
  const auto done = cmd::currentSession().interpreter().sourceFile(fileName.asChar());
  if (!done) postMessage(MessageKind::Error, done.error().message);
  return api::toStatus(done);
}

MStatus MGlobal::executePythonCommand(const MString&, bool, bool) {
  return api::refusePython();
}
MStatus MGlobal::executePythonCommand(const MString&, int&, bool, bool) {
  return api::refusePython();
}
MStatus MGlobal::executePythonCommand(const MString&, double&, bool, bool) {
  return api::refusePython();
}
MStatus MGlobal::executePythonCommand(const MString&, MString&, bool, bool) {
  return api::refusePython();
}
MStatus MGlobal::executePythonCommandOnIdle(const MString&, bool) {
  return api::refusePython();
}

MCommandResult::MCommandResult(MStatus* status) {
  setStatus(status, MStatus::kSuccess);
}

MCommandResult::Type MCommandResult::resultType(MStatus* status) const {
  setStatus(status, MStatus::kSuccess);
  switch (api::valueOf(handle_).type()) {
    case mel::Type::Int:
      return kInt;
    case mel::Type::Float:
      return kDouble;
    case mel::Type::String:
      return kString;
    case mel::Type::Vector:
      return kVector;
    case mel::Type::Matrix:
      return kMatrix;
    case mel::Type::IntArray:
      return kIntArray;
    case mel::Type::FloatArray:
      return kDoubleArray;
    case mel::Type::StringArray:
      return kStringArray;
    case mel::Type::VectorArray:
      return kVectorArray;
    default:
      return kInvalid;
  }
}
MString MCommandResult::stringResult(MStatus* status) const {
  MString text;
  const MStatus code = getResult(text);
  setStatus(status, code.statusCode());
  return text;
}
#define HOST_RESULT(Type)                                 \
  MStatus MCommandResult::getResult(Type& result) const { \
    return api::convert(api::valueOf(handle_), result);   \
  }
HOST_RESULT(int)
HOST_RESULT(MIntArray)
HOST_RESULT(double)
HOST_RESULT(MDoubleArray)
HOST_RESULT(MString)
HOST_RESULT(MStringArray)
HOST_RESULT(MVector)
HOST_RESULT(MVectorArray)
#undef HOST_RESULT
MStatus MCommandResult::getResult(MDoubleArray& result, int& numRows, int& numColumns) const {
  const mel::Value value = api::valueOf(handle_);
  if (value.type() != mel::Type::Matrix) return MStatus::kFailure;
  numRows = value.matrix().rows;
  numColumns = value.matrix().columns;
  result = MDoubleArray(value.matrix().cells.data(),
                        static_cast<unsigned int>(value.matrix().cells.size()));
  return MStatus::kSuccess;
}
