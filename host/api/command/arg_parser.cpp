#include <maya/MArgDatabase.h>
#include <maya/MArgParser.h>

#include <algorithm>
#include <cstdlib>

#include "host/api/command/args.h"
#include "host/base/messages.h"

namespace host::api {
namespace {

const ParsedRep& parsedOf(const Handle& handle) {
  static const ParsedRep empty;
  const auto* rep = static_cast<const ParsedRep*>(handle.get());
  return rep ? *rep : empty;
}

const ParsedRep::Use* findUse(const ParsedRep& rep, const char* flag, unsigned int which = 0) {
  const SyntaxRep::Flag* wanted = rep.syntax.find(flag ? flag : "");
  for (const ParsedRep::Use& use : rep.uses)
    if (use.flag == wanted && wanted && which-- == 0) return &use;
  return nullptr;
}

const scene::Units& units() {
  return document().units();
}

/// The number in a word. Text that does not begin as one holds none, although scripts take it for
/// 0.
Result<double> numberIn(const mel::Value& word) {
  if (word.isString()) {
    char* end = nullptr;
    (void)std::strtod(word.string().c_str(), &end);
    if (end == word.string().c_str())
      return fail(ErrorKind::BadArgument, "'{}' is no number", word.string());
  }
  return word.toFloat();
}

MStatus read(const mel::Value& word, bool& result) {
  const auto value = word.toBool();
  if (value) result = *value;
  return toStatus(value, MStatus::kInvalidParameter);
}
MStatus read(const mel::Value& word, int& result) {
  const auto value = word.toInt();
  if (value) result = *value;
  return toStatus(value, MStatus::kInvalidParameter);
}
MStatus read(const mel::Value& word, unsigned int& result) {
  const auto value = word.toInt();
  if (value && *value < 0) return MStatus::kInvalidParameter;
  if (value) result = static_cast<unsigned int>(*value);
  return toStatus(value, MStatus::kInvalidParameter);
}
MStatus read(const mel::Value& word, double& result) {
  const auto value = numberIn(word);
  if (value) result = *value;
  return toStatus(value, MStatus::kInvalidParameter);
}
MStatus read(const mel::Value& word, MString& result) {
  const auto value = word.toText();
  if (value) result = toMString(*value);
  return toStatus(value, MStatus::kInvalidParameter);
}
MStatus read(const mel::Value& word, MDistance& result) {
  const auto value = numberIn(word);
  if (value) result = MDistance(units().toCentimeters(*value), MDistance::kCentimeters);
  return toStatus(value, MStatus::kInvalidParameter);
}
MStatus read(const mel::Value& word, MAngle& result) {
  const auto value = numberIn(word);
  if (value) result = MAngle(units().toRadians(*value), MAngle::kRadians);
  return toStatus(value, MStatus::kInvalidParameter);
}
MStatus read(const mel::Value& word, MTime& result) {
  const auto value = numberIn(word);
  if (value) result = MTime(*value, MTime::uiUnit());
  return toStatus(value, MStatus::kInvalidParameter);
}

template <class T>
MStatus readFlag(const Handle& handle, const char* flag, unsigned int index, T& result) {
  const ParsedRep& rep = parsedOf(handle);
  const ParsedRep::Use* use = findUse(rep, flag);
  if (!use || index >= use->argumentCount) return MStatus::kInvalidParameter;
  return read(rep.words[use->firstArgument + index], result);
}

template <class T>
MStatus readArgument(const Handle& handle, unsigned int index, T& result) {
  const ParsedRep& rep = parsedOf(handle);
  if (index >= rep.arguments.size()) return MStatus::kInvalidParameter;
  return read(rep.arguments[index], result);
}

void report(const ParsedRep& rep, MStatus* status) {
  if (rep.error.empty()) {
    setStatus(status, MStatus::kSuccess);
    return;
  }
  rememberError(Error{rep.error});
  postMessage(MessageKind::Error, rep.error);
  setStatus(status, MStatus::kFailure);
}

}  // namespace
}  // namespace host::api

using namespace host;
using api::parsedOf;
using api::readArgument;
using api::readFlag;
using api::setStatus;

MArgParser::MArgParser(const MSyntax& syntax, const MArgList& argList, MStatus* status)
    : handle_(api::parseWords(api::syntaxOf(syntax), api::wordsOf(argList))) {
  api::report(parsedOf(handle_), status);
}
MArgParser::~MArgParser() = default;

bool MArgParser::isFlagSet(const char* flag, MStatus* status) const {
  const auto& rep = parsedOf(handle_);
  setStatus(status,
            rep.syntax.find(flag ? flag : "") ? MStatus::kSuccess : MStatus::kInvalidParameter);
  return api::findUse(rep, flag) != nullptr;
}
bool MArgParser::isEdit(MStatus* status) const {
  setStatus(status, MStatus::kSuccess);
  return parsedOf(handle_).isEdit;
}
bool MArgParser::isQuery(MStatus* status) const {
  setStatus(status, MStatus::kSuccess);
  return parsedOf(handle_).isQuery;
}
unsigned int MArgParser::numberOfFlagsUsed() const {
  return static_cast<unsigned int>(parsedOf(handle_).uses.size());
}
unsigned int MArgParser::numberOfFlagUses(const char* flag) const {
  const auto& rep = parsedOf(handle_);
  const auto* wanted = rep.syntax.find(flag ? flag : "");
  return static_cast<unsigned int>(
      std::count_if(rep.uses.begin(), rep.uses.end(),
                    [wanted](const auto& use) { return wanted && use.flag == wanted; }));
}

#define HOST_ARG_READERS(Type)                                                                    \
  MStatus MArgParser::getFlagArgument(const char* flag, unsigned int index, Type& result) const { \
    return readFlag(handle_, flag, index, result);                                                \
  }
HOST_ARG_READERS(bool)
HOST_ARG_READERS(int)
HOST_ARG_READERS(double)
HOST_ARG_READERS(MString)
HOST_ARG_READERS(unsigned int)
HOST_ARG_READERS(MDistance)
HOST_ARG_READERS(MAngle)
HOST_ARG_READERS(MTime)
#undef HOST_ARG_READERS

#define HOST_ARG_VALUES(Suffix, Type)                                                          \
  Type MArgParser::flagArgument##Suffix(const char* flag, unsigned int index, MStatus* status) \
      const {                                                                                  \
    Type result{};                                                                             \
    const MStatus code = getFlagArgument(flag, index, result);                                 \
    setStatus(status, code.statusCode());                                                      \
    return result;                                                                             \
  }                                                                                            \
  Type MArgParser::commandArgument##Suffix(unsigned int index, MStatus* status) const {        \
    Type result{};                                                                             \
    const MStatus code = getCommandArgument(index, result);                                    \
    setStatus(status, code.statusCode());                                                      \
    return result;                                                                             \
  }                                                                                            \
  MStatus MArgParser::getCommandArgument(unsigned int index, Type& result) const {             \
    return readArgument(handle_, index, result);                                               \
  }
HOST_ARG_VALUES(Bool, bool)
HOST_ARG_VALUES(Int, int)
HOST_ARG_VALUES(Double, double)
HOST_ARG_VALUES(String, MString)
HOST_ARG_VALUES(MDistance, MDistance)
HOST_ARG_VALUES(MAngle, MAngle)
HOST_ARG_VALUES(MTime, MTime)
#undef HOST_ARG_VALUES

MStatus MArgParser::getFlagArgumentPosition(const char* flag, unsigned int flagIndex,
                                            unsigned int& argListIndex) const {
  const auto* use = api::findUse(parsedOf(handle_), flag, flagIndex);
  if (!use) return MStatus::kInvalidParameter;
  argListIndex = static_cast<unsigned int>(use->firstArgument);
  return MStatus::kSuccess;
}

MStatus MArgParser::getFlagArgumentList(const char* flag, unsigned int flagIndex,
                                        MArgList& args) const {
  const auto& rep = parsedOf(handle_);
  const auto* use = api::findUse(rep, flag, flagIndex);
  if (!use) return MStatus::kInvalidParameter;
  const auto first = rep.words.begin() + static_cast<std::ptrdiff_t>(use->firstArgument);
  args = api::wrap(
      std::vector<mel::Value>(first, first + static_cast<std::ptrdiff_t>(use->argumentCount)));
  return MStatus::kSuccess;
}

MStatus MArgParser::getObjects(MStringArray& objects) const {
  const auto& rep = parsedOf(handle_);
  const bool takesSelection = rep.objects.empty() && rep.syntax.usesSelection;
  objects = api::toMStringArray(takesSelection ? api::document().selection().names() : rep.objects);
  return MStatus::kSuccess;
}

MArgDatabase::MArgDatabase(const MSyntax& syntax, const MArgList& argList, MStatus* status) {
  auto* rep = api::parseWords(api::syntaxOf(syntax), api::wordsOf(argList));
  handle_ = api::Handle(rep);
  if (rep->error.empty() && rep->syntax.objectFormat == MSyntax::kSelectionList) {
    if (rep->objects.empty() && rep->syntax.usesSelection) {
      rep->selection = api::document().selection();
    } else if (auto found = api::document().resolveAll(rep->objects)) {
      rep->selection = std::move(*found);
    } else {
      rep->error = found.error().message;
    }
    if (rep->error.empty() && rep->selection.length() < rep->syntax.minimumObjects)
      rep->error = "Not enough objects or values.";
  }
  api::report(*rep, status);
}
MArgDatabase::~MArgDatabase() = default;

namespace {
MStatus resolveWord(const mel::Value& word, MSelectionList& result) {
  const auto text = word.toText();
  if (!text) return MStatus::kInvalidParameter;
  auto found = api::document().resolve(*text);
  if (!found || found->isEmpty()) return MStatus::kInvalidParameter;
  result = api::wrap(std::move(*found));
  return MStatus::kSuccess;
}
}  // namespace

MStatus MArgDatabase::getFlagArgument(const char* flag, unsigned int index,
                                      MSelectionList& result) const {
  const auto& rep = parsedOf(handle_);
  const auto* use = api::findUse(rep, flag);
  if (!use || index >= use->argumentCount) return MStatus::kInvalidParameter;
  return resolveWord(rep.words[use->firstArgument + index], result);
}

MStatus MArgDatabase::getCommandArgument(unsigned int index, MSelectionList& result) const {
  const auto& rep = parsedOf(handle_);
  if (index >= rep.arguments.size()) return MStatus::kInvalidParameter;
  return resolveWord(rep.arguments[index], result);
}

MStatus MArgDatabase::getObjects(MSelectionList& result) const {
  result = api::wrap(parsedOf(handle_).selection);
  return MStatus::kSuccess;
}
