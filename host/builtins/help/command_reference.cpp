#include <fmt/format.h>

#include "host/builtins/help/command_examples.h"
#include "host/builtins/help/command_texts.h"
#include "host/modelling/declare/reference.h"

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

/// What the page says beside what the commands themselves know.
struct Sources {
  CommandExamples examples;
  std::set<std::string> read;  ///< empty: not looked for
};

std::string exampleOf(const Sources& sources, const std::string& command, const std::string& flag) {
  const auto own = sources.examples.find(command);
  if (own == sources.examples.end()) return {};
  const auto found = own->second.find(flag);
  return found == own->second.end() ? std::string() : "`" + cell(found->second) + "`";
}

/// The default and whether anybody asks for the flag.
std::pair<std::string, std::string> factsOf(const Sources& sources, const std::string& command,
                                            const cmd::FlagSpec& flag) {
  if (const auto facts = modelling::flagFacts(modelling::declarations(), command, flag.longName))
    return {facts->standard, facts->hasEffect ? "yes" : "recorded"};
  const bool isRead = sources.read.empty() || sources.read.contains(flag.longName) ||
                      sources.read.contains(flag.shortName);
  return {"", isRead || modelling::isDeclared(command) ? "yes" : "taken"};
}

void appendCommand(std::string& page, const cmd::CommandSpec& command, const Sources& sources) {
  page += fmt::format("\n### `{}`\n\n", command.name);
  const cmd::Syntax& syntax = command.syntax;
  if (!syntax.about().empty()) page += syntax.about() + "\n";
  page += fmt::format("Takes {}; {}{}{}.\n", objectsOf(syntax.objectsSpec()),
                      command.isUndoable ? "undoable" : "not undoable",
                      syntax.isQueryable() ? ", -query" : "", syntax.isEditable() ? ", -edit" : "");
  if (const std::string plain = exampleOf(sources, command.name, ""); !plain.empty())
    page += fmt::format("\nExample: {}\n", plain);
  if (syntax.flags().empty()) return;
  page +=
      "\n| flag | takes | default | modes | effect | meaning | example "
      "|\n|---|---|---|---|---|---|---|\n";
  for (const cmd::FlagSpec& flag : syntax.flags()) {
    std::string takes;
    for (const cmd::ArgType type : flag.args)
      takes += fmt::format("{}{}", takes.empty() ? "" : " ", cmd::argTypeHelpWord(type));
    if (flag.hasOptionalArgs) takes += ", or nothing";
    if (flag.isMultiUse) takes += takes.empty() ? "again and again" : ", again and again";
    const auto [standard, effect] = factsOf(sources, command.name, flag);
    page += fmt::format("| `-{} -{}` | {} | {} | {} | {} | {} | {} |\n", flag.longName,
                        flag.shortName, cell(takes), cell(standard), modesOf(syntax, flag), effect,
                        cell(flag.help), exampleOf(sources, command.name, flag.longName));
  }
}

}  // namespace

std::string commandReference(cmd::CommandRegistry& registry, const std::string& scripts,
                             const std::string& code) {
  const Sources sources{collectExamples(registry, scripts), wordsReadBySources(code)};
  std::string page =
      "# Commands\n\n"
      "Every built-in command with its flags, as `help` tells of them. Modes: C create, Q query, E "
      "edit. Effect: yes;\n`recorded` in the node, for files and scripts; `taken` for the sake of "
      "scripts, and nothing asks for it: what it asks for is done\nanyway, or has no counterpart "
      "here. Examples come out of the scripts that test the commands, so they have run. More on\n"
      "the modelling commands is in [modelling](../modelling.md). `docs/scripts/reference.sh` "
      "writes this page.\n";
  for (const std::string& name : registry.names()) {
    cmd::Command* const command = registry.findBuiltin(name);
    if (!command || command->name() != name) continue;
    describeFlags(*command);
    appendCommand(page, *command->builtin(), sources);
  }
  return page;
}

}  // namespace host::builtins
