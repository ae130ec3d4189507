#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <variant>
#include <vector>

#include "host/base/result.h"
#include "host/cmd/parsed_args.h"
#include "host/cmd/plugin_command.h"
#include "host/cmd/syntax.h"
#include "host/mel/command_host.h"
#include "host/mel/value.h"
#include "host/scene/document.h"

namespace host::cmd {

class Session;

/// What a built-in command works on.
struct Context {
  Session& session;
  scene::Document& document;
};

using CommandFunction = std::function<Result<mel::Value>(Context&, const ParsedArgs&)>;

/// A built-in command. Its edits are recorded and undone by reverting them; when it fails, what it
/// had done is reverted. An undoable command that is not querying makes a step of undo even when it
/// changed nothing.
struct CommandSpec {
  std::string name;
  Syntax syntax;
  CommandFunction function;
  bool isUndoable = true;
};

/// A registered command, in the form in which the language holds on to it.
class Command final : public mel::CommandHandle {
 public:
  explicit Command(CommandSpec spec) : spec_(std::move(spec)) {}
  explicit Command(PluginCommandSpec spec) : spec_(std::move(spec)) {}
  [[nodiscard]] const CommandSpec* builtin() const { return std::get_if<CommandSpec>(&spec_); }
  [[nodiscard]] const PluginCommandSpec* plugin() const {
    return std::get_if<PluginCommandSpec>(&spec_);
  }
  [[nodiscard]] const std::string& name() const {
    return builtin() ? builtin()->name : plugin()->name;
  }
  [[nodiscard]] std::string synopsis() const;
  /// Texts for `help`: what a built-in command does, and flags (by their long names) that have no
  /// phrase of their own yet.
  void describe(std::string about, const std::map<std::string, std::string, std::less<>>& flags);

 private:
  std::variant<CommandSpec, PluginCommandSpec> spec_;
};

/// The commands by name.
class CommandRegistry {
 public:
  /// Fails when the name is taken or is not a word.
  Result<void> add(CommandSpec spec);
  Result<void> add(PluginCommandSpec spec);
  /// Takes a plug-in's command out; objects on the undo queue stay usable. Built-in commands can't
  /// be removed.
  Result<void> remove(std::string_view name);

  [[nodiscard]] std::shared_ptr<const Command> find(std::string_view name) const;
  /// The built-in command of that name, to be described; null when there is none.
  [[nodiscard]] Command* findBuiltin(std::string_view name);
  [[nodiscard]] std::vector<std::string> names() const;  ///< sorted
  /// Called after every change of the table.
  std::function<void()> changed;

 private:
  struct Hash {
    using is_transparent = void;
    std::size_t operator()(std::string_view s) const { return std::hash<std::string_view>{}(s); }
  };
  Result<void> insert(std::shared_ptr<Command> command);
  std::unordered_map<std::string, std::shared_ptr<Command>, Hash, std::equal_to<>> commands_;
};

}  // namespace host::cmd
