#include <fmt/format.h>

#include "host/builtins/help/command_texts.h"

namespace host::builtins {

namespace {

/// In a table's cell: bars would end it.
std::string cell(std::string text) {
  for (std::size_t at = text.find('|'); at != std::string::npos; at = text.find('|', at + 2))
    text.insert(at, 1, '\\');
  return text;
}

std::string modesOf(const cmd::Syntax& syntax, const cmd::FlagSpec& flag) {
  std::string modes;
  if ((flag.modes & cmd::kCreate) != 0) modes += 'C';
  if ((flag.modes & cmd::kQuery) != 0 && syntax.isQueryable()) modes += 'Q';
  if ((flag.modes & cmd::kEdit) != 0 && syntax.isEditable()) modes += 'E';
  return modes;
}

std::string objectsOf(const cmd::ObjectsSpec& objects) {
  if (objects.kind == cmd::ObjectsSpec::Kind::None) return "nothing after the flags";
  const bool areNames = objects.kind == cmd::ObjectsSpec::Kind::List;
  std::string text = areNames ? "names" : "words";
  if (objects.maximum >= 0 && objects.maximum == objects.minimum)
    text = fmt::format("{} {}", objects.minimum, text);
  else if (objects.maximum >= 0)
    text = fmt::format("{} to {} {}", objects.minimum, objects.maximum, text);
  else if (objects.minimum > 0)
    text = fmt::format("{} or more {}", objects.minimum, text);
  if (objects.useSelectionAsDefault) text += ", else what is selected";
  return text;
}

void appendCommand(std::string& page, const cmd::CommandSpec& command) {
  page += fmt::format("\n### `{}`\n\n", command.name);
  const cmd::Syntax& syntax = command.syntax;
  if (!syntax.about().empty()) page += syntax.about() + "\n";
  page += fmt::format("Takes {}; {}{}{}.\n", objectsOf(syntax.objectsSpec()),
                      command.isUndoable ? "undoable" : "not undoable",
                      syntax.isQueryable() ? ", -query" : "", syntax.isEditable() ? ", -edit" : "");
  if (syntax.flags().empty()) return;
  page += "\n| flag | takes | modes | |\n|---|---|---|---|\n";
  for (const cmd::FlagSpec& flag : syntax.flags()) {
    std::string takes;
    for (const cmd::ArgType type : flag.args)
      takes += fmt::format("{}{}", takes.empty() ? "" : " ", cmd::argTypeHelpWord(type));
    if (flag.hasOptionalArgs) takes += ", or nothing";
    if (flag.isMultiUse) takes += takes.empty() ? "again and again" : ", again and again";
    page += fmt::format("| `-{} -{}` | {} | {} | {} |\n", flag.longName, flag.shortName,
                        cell(takes), modesOf(syntax, flag), cell(flag.help));
  }
}

}  // namespace

std::string commandReference(cmd::CommandRegistry& registry) {
  std::string page =
      "# Commands\n\n"
      "Every built-in command with its flags, as `help` tells of them. Modes: C create, Q query, E "
      "edit. The modelling\ncommands have their defaults and what has no effect in "
      "[modelling](../modelling.md). `docs/scripts/reference.sh` writes\nthis page.\n";
  for (const std::string& name : registry.names()) {
    cmd::Command* const command = registry.findBuiltin(name);
    if (!command || command->name() != name) continue;
    describeFlags(*command);
    appendCommand(page, *command->builtin());
  }
  return page;
}

}  // namespace host::builtins
