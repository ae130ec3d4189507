#include "host/mel/interpreter.h"

#include "host/mel/engine.h"

namespace host::mel {

Interpreter::Interpreter(CommandHost& host) : engine_(std::make_unique<Engine>(host)) {}
Interpreter::~Interpreter() = default;

Result<Value> Interpreter::execute(std::string_view source, const SourceName& name) {
  return engine_->execute(source, name.file);
}

Result<Value> Interpreter::sourceFile(const std::string& path) {
  return engine_->sourceFile(path);
}

bool Interpreter::hasProcedure(std::string_view name) const {
  const Symbol* symbol = engine_->findSymbol(name);
  return symbol && symbol->procedure;
}

Result<Value> Interpreter::callProcedure(std::string_view name, std::span<const Value> arguments) {
  return engine_->call(name, arguments);
}

void Interpreter::interrupt() noexcept {
  engine_->machine().interrupt();
}
bool Interpreter::isInterrupted() const noexcept {
  return engine_->machine().isInterrupted();
}
bool Interpreter::isRunning() const noexcept {
  return engine_->machine().isRunning();
}

const std::vector<std::string>& Interpreter::scriptPath() const {
  return engine_->scriptPath();
}
void Interpreter::setScriptPath(std::vector<std::string> folders) {
  engine_->scriptPath() = std::move(folders);
}
std::string Interpreter::findScript(std::string_view name) const {
  return engine_->findScript(name);
}

std::optional<Value> Interpreter::global(std::string_view name) const {
  const GlobalVariable* variable = engine_->findGlobal(name);
  return variable ? std::optional<Value>(variable->value) : std::nullopt;
}

Result<void> Interpreter::setGlobal(std::string_view name, const Value& value) {
  return engine_->setGlobal(name, value);
}

std::vector<std::string> Interpreter::complete(std::string_view prefix) const {
  return engine_->complete(prefix);
}
std::string Interpreter::whatIs(std::string_view name) const {
  return engine_->whatIs(name);
}

}  // namespace host::mel
