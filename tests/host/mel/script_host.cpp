#include "tests/host/mel/script_host.h"

namespace host::mel::test {

namespace {

struct Command : CommandHandle {
  using Body = Result<void> (*)(ScriptHost&, std::span<const Value>, Value&);
  Command(std::string_view commandName, Body commandBody) : name(commandName), body(commandBody) {}
  std::string_view name;
  Body body;
};

/// Gives its arguments back as `type:text` words.
Result<void> echo(ScriptHost&, std::span<const Value> arguments, Value& result) {
  std::string text;
  for (const Value& argument : arguments) {
    if (!text.empty()) text += ' ';
    text += std::string(typeName(argument.type())) + ":" + argument.resultText();
  }
  result = Value(text);
  return {};
}

Result<void> list(ScriptHost&, std::span<const Value> arguments, Value& result) {
  StringArray texts;
  for (const Value& argument : arguments)
    for (std::string& text : argument.toTexts()) texts.push_back(std::move(text));
  result = Value(std::move(texts));
  return {};
}

Result<void> number(ScriptHost&, std::span<const Value> arguments, Value& result) {
  result = arguments.empty() ? Value(1.5) : arguments[0];
  return {};
}

Result<void> breaks(ScriptHost&, std::span<const Value>, Value&) {
  return fail("No object matches name: nothing");
}
Result<void> nothing(ScriptHost&, std::span<const Value>, Value&) {
  return {};
}

Result<void> reenter(ScriptHost& host, std::span<const Value> arguments, Value& result) {
  Result<Value> value = host.interpreter.execute(*arguments[0].toText());
  if (!value) return failWith(value.error());
  result = std::move(*value);
  return {};
}

Result<void> interrupt(ScriptHost& host, std::span<const Value>, Value&) {
  host.interpreter.interrupt();
  return {};
}

const Command kCommands[] = {{"echo", echo},          {"list", list},       {"number", number},
                             {"breaks", breaks},      {"nothing", nothing}, {"reenter", reenter},
                             {"interrupt", interrupt}};
const Command kLate{"late", echo};

}  // namespace

const CommandHandle* ScriptHost::findCommand(std::string_view name) {
  if (name == "late" && hasLateCommand) return &kLate;
  for (const Command& command : kCommands)
    if (command.name == name) return &command;
  return nullptr;
}

Result<void> ScriptHost::invoke(const CommandHandle& command, std::span<const Value> arguments,
                                Value& result) {
  return static_cast<const Command&>(command).body(*this, arguments, result);
}

void ScriptHost::completeCommand(std::string_view prefix, std::vector<std::string>& names) {
  for (const Command& command : kCommands)
    if (command.name.starts_with(prefix)) names.emplace_back(command.name);
}

std::string ScriptHost::printed() const {
  std::string text;
  for (const Event& event : events)
    if (event.kind == MessageKind::Print) text += event.text;
  return text;
}

}  // namespace host::mel::test
