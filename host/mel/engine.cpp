#include "host/mel/engine.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "host/mel/builtins.h"
#include "host/mel/compiler.h"
#include "host/mel/parser.h"
#include "host/mel/suggestion.h"

namespace host::mel {

namespace {

std::string placeText(const std::string& file, const Diagnostic& diagnostic) {
  const std::string column = diagnostic.column > 0 ? fmt::format(".{}", diagnostic.column) : "";
  if (file.empty()) return fmt::format("Line {}{}: {}", diagnostic.line, column, diagnostic.text);
  return fmt::format("file: {} line {}{}: {}", file, diagnostic.line, column, diagnostic.text);
}

std::string_view withoutSigil(std::string_view name) {
  return name.starts_with('$') ? name.substr(1) : name;
}

Result<std::string> readFile(const std::string& path) {
  std::ifstream stream(path, std::ios::binary);
  std::ostringstream text;
  if (stream) text << stream.rdbuf();
  if (!stream || stream.bad()) return fail("Cannot read the file \"{}\".", path);
  return std::move(text).str();
}

bool isRegularFile(const std::filesystem::path& path) {
  std::error_code ignored;
  return std::filesystem::is_regular_file(path, ignored);
}

}  // namespace

Engine::Engine(CommandHost& host, std::size_t stackValues)
    : host_(host), machine_(*this, stackValues) {}

Result<std::shared_ptr<const Function>> Engine::compile(std::string_view source,
                                                        const std::string& file) {
  Arena arena;
  Parser parser(source, arena);
  const Node* root = parser.parse();
  Diagnostic diagnostic = parser.diagnostic();
  if (root) {
    Compiler compiler(*this, file);
    if (std::shared_ptr<const Function> function = compiler.compile(*root)) return function;
    diagnostic = compiler.diagnostic();
  }
  std::string message = placeText(file, diagnostic);
  machine_.markPlaced(message);
  return tl::unexpected<Error>(Error{std::move(message)});
}

Result<Value> Engine::run(const Function& function) {
  for (const ProcedureDefinition& definition : function.procedures)
    if (definition.isHoisted) define(*definition.symbol, definition.function);
  Value result;
  const Result<void> done = machine_.run(function, {}, result);
  if (!machine_.isRunning()) retired_.clear();
  if (!done) return failWith(done.error());
  return result;
}

Result<Value> Engine::execute(std::string_view source, const std::string& file) {
  const bool isCached = file.empty() && source.size() <= kLongestCachedText;
  if (isCached) {
    const auto known = cache_.find(source);
    if (known != cache_.end()) {
      const std::shared_ptr<const Function> held = known->second;
      return run(*held);
    }
  }
  Result<std::shared_ptr<const Function>> function = compile(source, file);
  if (!function) return failWith(std::move(function).error());
  if (isCached) {
    if (cache_.size() >= kMaxCachedTexts) cache_.clear();
    cache_.emplace(source, *function);
  }
  return run(**function);
}

Result<Value> Engine::sourceFile(const std::string& path) {
  const std::string found = findScript(path);
  if (found.empty())
    return fail(ErrorKind::NotFound, "Cannot find file \"{}\" for source statement.", path);
  const Result<std::string> text = readFile(found);
  if (!text) return failWith(text.error());
  return execute(*text, found);
}

Result<Value> Engine::call(std::string_view name, std::span<const Value> arguments) {
  Symbol& target = symbol(name);
  Function function;
  const std::size_t count = arguments.size();
  function.registers.resize(count + 1);
  for (std::size_t i = 0; i < count; ++i) {
    const Type type = arguments[i].type();
    function.parameters.push_back(type);
    if (type == Type::Int) function.registers[i] = Value(0);
    if (type == Type::Float) function.registers[i] = Value(0.0);
  }
  const Builtin* builtin = target.procedure ? nullptr : findBuiltin(name);
  const auto result = static_cast<std::uint16_t>(count);
  const auto passed = static_cast<std::uint16_t>(count);
  if (builtin) {
    const int given = static_cast<int>(count);
    if (given < builtin->minArguments ||
        (builtin->maxArguments >= 0 && given > builtin->maxArguments))
      return fail(
          "Invalid call to \"{}\".  Check number and types of arguments expected by the procedure.",
          name);
    function.builtins.push_back(builtin);
  } else {
    function.symbols.push_back(&target);
  }
  function.code = {{builtin ? Op::CallBuiltin : Op::CallSymbol, result, 0, passed},
                   {Op::Target},
                   {Op::Return, result}};
  function.lines.assign(function.code.size(), 1);
  Value value;
  const Result<void> done = machine_.run(function, arguments, value);
  if (!machine_.isRunning()) retired_.clear();
  if (!done) return failWith(done.error());
  return value;
}

std::vector<std::string> Engine::scriptFolders() const {
  std::vector<std::string> folders = scriptPath_;
  if (const char* variable = std::getenv("MAYA_SCRIPT_PATH")) {
    std::istringstream list{std::string(variable)};
    for (std::string folder; std::getline(list, folder, ':');)
      if (!folder.empty()) folders.push_back(folder);
  }
  return folders;
}

std::string Engine::findScript(std::string_view name) const {
  if (name.empty()) return {};
  const std::filesystem::path plain{std::string(name)};
  const std::filesystem::path suffixed{std::string(name) + ".mel"};
  // A bare name never means the working folder: whoever put a file there need not be trusted.
  std::vector<std::filesystem::path> folders;
  if (plain.has_parent_path()) folders.emplace_back();
  const std::string& current = machine_.currentFile();
  if (!current.empty()) folders.push_back(std::filesystem::path(current).parent_path());
  for (const std::string& folder : scriptFolders()) folders.emplace_back(folder);
  for (const std::filesystem::path& folder : folders) {
    if (isRegularFile(folder / plain)) return (folder / plain).string();
    if (isRegularFile(folder / suffixed)) return (folder / suffixed).string();
    if (plain.is_absolute()) break;
  }
  return {};
}

Symbol& Engine::symbol(std::string_view name) {
  const auto known = symbols_.find(name);
  if (known != symbols_.end()) return *known->second;
  auto created = std::make_unique<Symbol>();
  created->name = std::string(name);
  return *symbols_.emplace(std::string(name), std::move(created)).first->second;
}

const Symbol* Engine::findSymbol(std::string_view name) const {
  const auto known = symbols_.find(name);
  return known == symbols_.end() ? nullptr : known->second.get();
}

void Engine::define(Symbol& symbol, std::shared_ptr<const Function> function) {
  if (symbol.procedure == function) return;
  if (symbol.procedure) {
    retired_.push_back(std::move(symbol.procedure));
  } else if (findBuiltin(symbol.name)) {
    cache_.clear();  // texts compiled so far call the language's function of that name
  }
  symbol.procedure = std::move(function);
}

const CommandHandle* Engine::commandOf(Symbol& symbol) {
  const std::uint32_t generation = host_.generation();
  if (symbol.commandGeneration != generation) {
    symbol.command = host_.findCommand(symbol.name);
    symbol.commandGeneration = generation;
  }
  return symbol.command;
}

Result<bool> Engine::loadProcedure(Symbol& symbol) {
  const std::string fileName = symbol.name + ".mel";
  for (const std::string& folder : scriptFolders()) {
    const std::string path = (std::filesystem::path(folder) / fileName).string();
    if (!isRegularFile(path)) continue;
    const Result<Value> sourced = sourceFile(path);
    if (!sourced) return failWith(sourced.error());
    return symbol.procedure != nullptr;
  }
  return false;
}

GlobalVariable* Engine::findGlobal(std::string_view name) const {
  const auto known = globals_.find(withoutSigil(name));
  return known == globals_.end() ? nullptr : known->second.get();
}

GlobalVariable& Engine::makeGlobal(std::string_view name, Type type) {
  auto created = std::make_unique<GlobalVariable>();
  created->name = std::string(withoutSigil(name));
  created->type = type;
  created->value = Value::defaultOf(type);
  GlobalVariable& variable = *created;
  globals_.insert_or_assign(variable.name, std::move(created));
  return variable;
}

void Engine::removeGlobal(std::string_view name) {
  const auto known = globals_.find(name);
  if (known != globals_.end()) globals_.erase(known);
}

std::vector<std::string> Engine::globalNames() const {
  std::vector<std::string> names;
  for (const auto& [name, variable] : globals_) names.push_back("$" + name);
  std::ranges::sort(names);
  return names;
}

Result<void> Engine::setGlobal(std::string_view name, const Value& value) {
  GlobalVariable* variable = findGlobal(name);
  if (!variable) variable = &makeGlobal(name, value.type());
  if (variable->type == Type::None) variable->type = value.type();
  Result<Value> converted = value.convertedTo(variable->type);
  if (!converted) return failWith(std::move(converted).error());
  variable->value = std::move(*converted);
  return {};
}

std::vector<std::string> Engine::complete(std::string_view prefix) const {
  std::vector<std::string> names;
  if (prefix.starts_with('$')) {
    for (std::string& name : globalNames())
      if (name.starts_with(prefix)) names.push_back(std::move(name));
    return names;
  }
  for (const auto& [name, symbol] : symbols_)
    if (symbol->procedure && name.starts_with(prefix)) names.push_back(name);
  for (const std::string_view name : builtinNames())
    if (name.starts_with(prefix)) names.emplace_back(name);
  host_.completeCommand(prefix, names);
  std::ranges::sort(names);
  names.erase(std::unique(names.begin(), names.end()), names.end());
  return names;
}

std::string Engine::suggestion(std::string_view name) const {
  NearestName nearest(name);
  for (const auto& [each, symbol] : symbols_)
    if (symbol->procedure) nearest.offer(each);
  for (const std::string_view each : builtinNames()) nearest.offer(each);
  std::vector<std::string> commands;
  host_.completeCommand("", commands);
  for (const std::string& each : commands) nearest.offer(each);
  if (nearest.found().empty()) return {};
  return fmt::format(" Did you mean \"{}\"?", nearest.found());
}

bool Engine::exists(std::string_view name) {
  Symbol& target = symbol(name);
  return target.procedure || findBuiltin(name) || commandOf(target) ||
         !findScript(std::string(name) + ".mel").empty();
}

std::string Engine::whatIs(std::string_view name) {
  if (name.starts_with('$')) {
    const GlobalVariable* variable = findGlobal(name);
    return variable ? fmt::format("{} variable", typeName(variable->type)) : "Unknown";
  }
  Symbol& target = symbol(name);
  if (target.procedure) {
    if (target.procedure->file.empty()) return "Mel procedure entered interactively.";
    return "Mel procedure found in: " + target.procedure->file;
  }
  if (findBuiltin(name)) return "Command";
  if (const CommandHandle* command = commandOf(target)) return host_.describe(*command);
  const std::string script = findScript(std::string(name) + ".mel");
  return script.empty() ? "Unknown" : "Script found in: " + script;
}

}  // namespace host::mel
