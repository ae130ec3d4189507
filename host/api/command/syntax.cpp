#include <maya/MSyntax.h>

#include "host/api/command/args.h"

namespace host::api {
namespace {

std::string bareName(const char* name) {
  const std::string_view text = name ? name : "";
  return std::string(!text.empty() && text.front() == '-' ? text.substr(1) : text);
}

}  // namespace

const SyntaxRep::Flag* SyntaxRep::find(std::string_view name) const {
  if (!name.empty() && name.front() == '-') name.remove_prefix(1);
  for (const Flag& flag : flags)
    if (flag.shortName == name || flag.longName == name) return &flag;
  return nullptr;
}

/// The representation for writing. It is not detached from copies: a context command adds its flags
/// to a copy of its syntax and means the original.
static SyntaxRep& shared(MSyntax& syntax) {
  Handle& handle = Access::handle(syntax);
  if (!handle) handle = Handle(new SyntaxRep());
  return *static_cast<SyntaxRep*>(handle.get());
}

const SyntaxRep& syntaxOf(const MSyntax& syntax) {
  static const SyntaxRep empty;
  const auto* rep = Access::rep<SyntaxRep>(syntax);
  return rep ? *rep : empty;
}

std::string synopsisOf(const std::string& command, const MSyntax& syntax) {
  static const char* const kWords[] = {
      "", "", "on|off", "Int", "Float", "String", "UnsignedInt", "Length", "Angle", "Time", "Name"};
  const SyntaxRep& rep = syntaxOf(syntax);
  std::string text = "Synopsis: " + command + (rep.flags.empty() ? "" : " [flags]");
  for (const MSyntax::MArgType type : rep.arguments) text += std::string(" ") + kWords[type];
  if (rep.objectFormat != MSyntax::kNone)
    text += rep.objectFormat == MSyntax::kStringObjects ? " [String...]" : " [Name...]";
  text += '\n';
  if (!rep.flags.empty()) text += "Flags:\n";
  if (rep.canEdit) text += "   -e -edit\n";
  if (rep.canQuery) text += "   -q -query\n";
  for (const SyntaxRep::Flag& flag : rep.flags) {
    text += "  -" + flag.shortName + " -" + flag.longName;
    for (const MSyntax::MArgType type : flag.arguments) text += std::string(" ") + kWords[type];
    text += flag.isMultiUse ? " (multi-use)\n" : "\n";
  }
  return text;
}

}  // namespace host::api

using host::api::syntaxOf;
using host::api::SyntaxRep;

MStatus MSyntax::addFlag(const char* shortName, const char* longName, MArgType argType1,
                         MArgType argType2, MArgType argType3, MArgType argType4, MArgType argType5,
                         MArgType argType6) {
  SyntaxRep::Flag flag;
  flag.shortName = host::api::bareName(shortName);
  flag.longName = host::api::bareName(longName);
  if (flag.shortName.empty() && flag.longName.empty()) return MStatus::kInvalidParameter;
  SyntaxRep& rep = host::api::shared(*this);
  for (const std::string& name : {flag.shortName, flag.longName})
    if (!name.empty() && rep.find(name)) return MStatus::kInvalidParameter;
  for (const MArgType type : {argType1, argType2, argType3, argType4, argType5, argType6}) {
    if (type == kNoArg) break;
    flag.arguments.push_back(type);
  }
  rep.flags.push_back(std::move(flag));
  return MStatus::kSuccess;
}

MStatus MSyntax::addFlag(const MString& shortName, const MString& longName, MArgType argType1,
                         MArgType argType2, MArgType argType3, MArgType argType4, MArgType argType5,
                         MArgType argType6) {
  return addFlag(shortName.asChar(), longName.asChar(), argType1, argType2, argType3, argType4,
                 argType5, argType6);
}

MStatus MSyntax::makeFlagMultiUse(const char* flagName) {
  auto* flag =
      const_cast<SyntaxRep::Flag*>(host::api::shared(*this).find(flagName ? flagName : ""));
  if (!flag) return MStatus::kInvalidParameter;
  flag->isMultiUse = true;
  return MStatus::kSuccess;
}
MStatus MSyntax::makeFlagMultiUse(const MString& flagName) {
  return makeFlagMultiUse(flagName.asChar());
}

MStatus MSyntax::makeFlagQueryWithFullArgs(const char* flagName, bool argsAreOptional) {
  auto* flag =
      const_cast<SyntaxRep::Flag*>(host::api::shared(*this).find(flagName ? flagName : ""));
  if (!flag) return MStatus::kInvalidParameter;
  flag->takesArgumentsInQuery = true;
  flag->queryArgumentsAreOptional = argsAreOptional;
  return MStatus::kSuccess;
}
MStatus MSyntax::makeFlagQueryWithFullArgs(const MString& flagName, bool argsAreOptional) {
  return makeFlagQueryWithFullArgs(flagName.asChar(), argsAreOptional);
}

MStatus MSyntax::addArg(MArgType argType) {
  if (argType <= kNoArg || argType >= kLastArgType) return MStatus::kInvalidParameter;
  host::api::shared(*this).arguments.push_back(argType);
  return MStatus::kSuccess;
}

void MSyntax::useSelectionAsDefault(bool useSelection) {
  host::api::shared(*this).usesSelection = useSelection;
}

MStatus MSyntax::setObjectType(MObjectFormat objectFormat, unsigned int minimumObjects) {
  return setObjectType(objectFormat, minimumObjects, ~0u);
}
MStatus MSyntax::setObjectType(MObjectFormat objectFormat, unsigned int minimumObjects,
                               unsigned int maximumObjects) {
  if (objectFormat <= kInvalidObjectFormat || objectFormat >= kLastObjectFormat)
    return MStatus::kInvalidParameter;
  SyntaxRep& rep = host::api::shared(*this);
  rep.objectFormat = objectFormat;
  rep.minimumObjects = minimumObjects;
  rep.maximumObjects = maximumObjects;
  return MStatus::kSuccess;
}
void MSyntax::setMinObjects(unsigned int minimumObjects) {
  host::api::shared(*this).minimumObjects = minimumObjects;
}
void MSyntax::setMaxObjects(unsigned int maximumObjects) {
  host::api::shared(*this).maximumObjects = maximumObjects;
}
unsigned int MSyntax::minObjects() const {
  return syntaxOf(*this).minimumObjects;
}
unsigned int MSyntax::maxObjects() const {
  return syntaxOf(*this).maximumObjects;
}
bool MSyntax::canUseSelectionAsDefault() const {
  return syntaxOf(*this).usesSelection;
}
MSyntax::MObjectFormat MSyntax::objectFormat() const {
  return syntaxOf(*this).objectFormat;
}
void MSyntax::enableQuery(bool supportsQuery) {
  host::api::shared(*this).canQuery = supportsQuery;
}
void MSyntax::enableEdit(bool supportsEdit) {
  host::api::shared(*this).canEdit = supportsEdit;
}
bool MSyntax::isQueryEnabled() const {
  return syntaxOf(*this).canQuery;
}
bool MSyntax::isEditEnabled() const {
  return syntaxOf(*this).canEdit;
}
