#include "host/cmd/syntax.h"

#include <algorithm>

#include "host/base/assert.h"

namespace host::cmd {

std::string_view argTypeHelpWord(ArgType type) {
  switch (type) {
    case ArgType::Bool:
      return "on|off";
    case ArgType::Int:
      return "Int";
    case ArgType::Unsigned:
      return "UnsignedInt";
    case ArgType::Double:
      return "Float";
    case ArgType::Distance:
      return "Length";
    case ArgType::Angle:
      return "Angle";
    case ArgType::Time:
      return "Time";
    case ArgType::String:
      return "String";
    case ArgType::Name:
      return "Name";
    case ArgType::Script:
      return "Script";
    case ArgType::Any:
      return "Value";
  }
  return "";
}

Syntax& Syntax::flag(std::string shortName, std::string longName, std::vector<ArgType> args,
                     std::uint8_t modes) {
  HOST_ASSERT(!find(shortName) && !find(longName), "give each flag of a command names of its own");
  FlagSpec spec;
  spec.shortName = std::move(shortName);
  spec.longName = std::move(longName);
  spec.args = std::move(args);
  spec.modes = modes;
  flags_.push_back(std::move(spec));
  return *this;
}

Syntax& Syntax::multiUse() {
  flags_.back().isMultiUse = true;
  return *this;
}

Syntax& Syntax::queryArgs(QueryArgs how) {
  flags_.back().queryArgs = how;
  return *this;
}

Syntax& Syntax::optionalArgs() {
  flags_.back().hasOptionalArgs = true;
  return *this;
}

Syntax& Syntax::help(std::string phrase) {
  flags_.back().help = std::move(phrase);
  return *this;
}

Syntax& Syntax::about(std::string sentence) {
  about_ = std::move(sentence);
  return *this;
}

void Syntax::describeFlag(std::string_view longName, const std::string& phrase) {
  for (FlagSpec& flag : flags_)
    if (flag.longName == longName && flag.help.empty()) flag.help = phrase;
}

Syntax& Syntax::editable() {
  isEditable_ = true;
  return *this;
}

Syntax& Syntax::queryable() {
  isQueryable_ = true;
  return *this;
}

Syntax& Syntax::strings(int minimum, int maximum) {
  objects_ = {ObjectsSpec::Kind::Strings, minimum, maximum, false};
  return *this;
}

Syntax& Syntax::objects(int minimum, int maximum, bool useSelectionAsDefault) {
  objects_ = {ObjectsSpec::Kind::List, minimum, maximum, useSelectionAsDefault};
  return *this;
}

const FlagSpec* Syntax::find(std::string_view name) const {
  for (const FlagSpec& spec : flags_)
    if (spec.isNamed(name)) return &spec;
  return nullptr;
}

std::string Syntax::synopsis(std::string_view commandName) const {
  std::string text = "\nSynopsis: " + std::string(commandName);
  if (!flags_.empty() || isEditable_ || isQueryable_) text += " [flags]";
  if (objects_.kind != ObjectsSpec::Kind::None) {
    const std::string_view word = objects_.kind == ObjectsSpec::Kind::List ? "Name" : "String";
    const int listed = std::max(1, objects_.minimum);
    for (int i = 0; i < listed; ++i) {
      const bool isLast = i + 1 == listed;
      const bool isRequired = i < objects_.minimum;
      const std::string_view more =
          isLast && (objects_.maximum < 0 || objects_.maximum > listed) ? "..." : "";
      text += isRequired ? fmt::format(" {}{}", word, more) : fmt::format(" [{}{}]", word, more);
    }
  }
  text += "\n";
  if (!about_.empty()) text += about_ + "\n";
  if (flags_.empty() && !isEditable_ && !isQueryable_) return text;
  text += "Flags:\n";
  if (isEditable_) text += "   -e -edit\n";
  if (isQueryable_) text += "   -q -query\n";
  std::vector<const FlagSpec*> sorted;
  for (const FlagSpec& spec : flags_) sorted.push_back(&spec);
  std::sort(sorted.begin(), sorted.end(),
            [](const FlagSpec* a, const FlagSpec* b) { return a->shortName < b->shortName; });
  std::size_t width = 0;
  for (const FlagSpec* spec : sorted) width = std::max(width, spec->longName.size());
  for (const FlagSpec* spec : sorted) {
    std::string args;
    for (const ArgType type : spec->args) args += fmt::format(" {}", argTypeHelpWord(type));
    std::string line =
        fmt::format("{:>4} -{:<{}} {}", "-" + spec->shortName, spec->longName, width, args);
    if (spec->isMultiUse) line += " (multi-use)";
    if (spec->queryArgs == QueryArgs::Full) line += " (Query Arg Mandatory)";
    if (spec->queryArgs == QueryArgs::Optional) line += " (Query Arg Optional)";
    line.erase(line.find_last_not_of(' ') + 1);
    if (!spec->help.empty()) line += "  : " + spec->help;
    text += line + "\n";
  }
  return text;
}

}  // namespace host::cmd
