#include <maya/MDoubleArray.h>
#include <maya/MIntArray.h>
#include <maya/MPxContextCommand.h>

#include "host/api/command/args.h"
#include "host/api/tool/context_rep.h"

using namespace host;
using api::Access;
using api::ContextCommandRep;
using api::setStatus;

namespace {

MStatus assign(MPxContextCommand& command, mel::Value value) {
  Access::writable<ContextCommandRep>(command).result = std::move(value);
  return MStatus::kSuccess;
}

}  // namespace

MPxContextCommand::MPxContextCommand() = default;
MPxContextCommand::~MPxContextCommand() = default;

MStatus MPxContextCommand::doEditFlags() {
  return MStatus::kSuccess;
}
MStatus MPxContextCommand::doQueryFlags() {
  return MStatus::kSuccess;
}
MPxContext* MPxContextCommand::makeObj() {
  return nullptr;
}
MStatus MPxContextCommand::appendSyntax() {
  return MStatus::kSuccess;
}

MStatus MPxContextCommand::setResult(bool result) {
  return assign(*this, mel::Value(result));
}
MStatus MPxContextCommand::setResult(int result) {
  return assign(*this, mel::Value(result));
}
MStatus MPxContextCommand::setResult(double result) {
  return assign(*this, mel::Value(result));
}
MStatus MPxContextCommand::setResult(const MString& result) {
  return assign(*this, mel::Value(api::toStd(result)));
}
MStatus MPxContextCommand::setResult(const MIntArray& result) {
  return assign(*this, mel::Value(mel::IntArray(result.begin(), result.end())));
}
MStatus MPxContextCommand::setResult(const MDoubleArray& result) {
  return assign(*this, mel::Value(mel::FloatArray(result.begin(), result.end())));
}
MStatus MPxContextCommand::setResult(const MStringArray& result) {
  mel::StringArray texts;
  for (unsigned int i = 0; i < result.length(); ++i) texts.push_back(api::toStd(result[i]));
  return assign(*this, mel::Value(std::move(texts)));
}

MArgParser MPxContextCommand::parser(MStatus* status) const {
  const auto* rep = Access::rep<ContextCommandRep>(*this);
  if (rep) return {rep->syntax, rep->words, status};
  setStatus(status, MStatus::kFailure);
  return {MSyntax(), MArgList()};
}

MSyntax MPxContextCommand::syntax(MStatus* status) const {
  const auto* rep = Access::rep<ContextCommandRep>(*this);
  setStatus(status, rep ? MStatus::kSuccess : MStatus::kFailure);
  return rep ? rep->syntax : MSyntax();
}
