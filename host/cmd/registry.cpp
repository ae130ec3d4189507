#include "host/cmd/registry.h"

#include <algorithm>
#include <cctype>

namespace host::cmd {

std::string Command::synopsis() const {
  if (const CommandSpec* spec = builtin()) return spec->syntax.synopsis(spec->name);
  std::string text = plugin()->synopsis ? plugin()->synopsis() : std::string{};
  return text.empty() ? fmt::format("\nSynopsis: {} (command of the plug-in {})\n", name(),
                                    plugin()->pluginName)
                      : text;
}

void Command::describe(std::string about,
                       const std::map<std::string, std::string, std::less<>>& flags) {
  auto* spec = std::get_if<CommandSpec>(&spec_);
  if (!spec) return;
  if (!about.empty()) spec->syntax.about(std::move(about));
  for (const auto& [flag, phrase] : flags) spec->syntax.describeFlag(flag, phrase);
}

namespace {

bool isWord(std::string_view name) {
  if (name.empty() || std::isdigit(static_cast<unsigned char>(name[0]))) return false;
  return std::all_of(name.begin(), name.end(), [](char c) {
    return std::isalnum(static_cast<unsigned char>(c)) || c == '_';
  });
}

}  // namespace

Result<void> CommandRegistry::insert(std::shared_ptr<Command> command) {
  const std::string& name = command->name();
  if (!isWord(name))
    return fail(ErrorKind::BadArgument, "'{}' can't be the name of a command.", name);
  if (!commands_.emplace(name, command).second)
    return fail("A command named '{}' exists already.", name);
  if (changed) changed();
  return {};
}

Result<void> CommandRegistry::add(CommandSpec spec) {
  return insert(std::make_shared<Command>(std::move(spec)));
}

Result<void> CommandRegistry::add(PluginCommandSpec spec) {
  return insert(std::make_shared<Command>(std::move(spec)));
}

Result<void> CommandRegistry::remove(std::string_view name) {
  const auto found = commands_.find(name);
  if (found == commands_.end())
    return fail(ErrorKind::NotFound, "There is no command named '{}'.", name);
  if (found->second->builtin())
    return fail("'{}' is a built-in command and can't be removed.", name);
  commands_.erase(found);
  if (changed) changed();
  return {};
}

std::shared_ptr<const Command> CommandRegistry::find(std::string_view name) const {
  const auto found = commands_.find(name);
  return found == commands_.end() ? nullptr : found->second;
}

Command* CommandRegistry::findBuiltin(std::string_view name) {
  const auto found = commands_.find(name);
  return found == commands_.end() || !found->second->builtin() ? nullptr : found->second.get();
}

std::vector<std::string> CommandRegistry::names() const {
  std::vector<std::string> names;
  names.reserve(commands_.size());
  for (const auto& [name, command] : commands_) names.push_back(name);
  std::sort(names.begin(), names.end());
  return names;
}

}  // namespace host::cmd
