#include "host/mel/compiler.h"

#include <fmt/format.h>

#include <bit>

#include "host/mel/engine.h"

namespace host::mel {

Compiler::Compiler(Engine& engine, const std::string& file) : engine_(engine), file_(file) {}

std::shared_ptr<const Function> Compiler::compile(const Node& root) {
  Body body;
  body.function = std::make_shared<Function>();
  body.function->file = file_;
  body.function->locals = locals_;
  body_ = &body;
  declareProcedures(root);
  beginBody();
  const std::size_t count = root.children.size();
  if (count > 1) statements(root.children.first(count - 1));
  if (count > 0 && !hasFault_) {
    const Operand result = resultStatement(*root.children[count - 1]);
    if (result.reg != kNoRegister) emit(Op::Return, result.reg);
  }
  if (!hasFault_) return finish();
  for (const std::string& name : createdGlobals_) engine_.removeGlobal(name);
  return nullptr;
}

/// Calls may stand before the definition, so the text's own procedures are known from the start.
void Compiler::declareProcedures(const Node& root) {
  for (const Node* node : root.children) {
    if (node->kind != NodeKind::Procedure) continue;
    if (node->flag) {
      globalProcedures_.insert(node->text);
    } else if (!localProcedures_.contains(node->text)) {
      localProcedures_.emplace(node->text, &makeLocalSymbol(node->text));
    }
  }
}

Symbol& Compiler::makeLocalSymbol(std::string_view name) {
  locals_->push_back({std::string(name), nullptr, nullptr, 0});
  return locals_->back();
}

void Compiler::beginBody() {
  emitWide(Op::Jump, 0, 1);
  openScope();
}

/// Variables whose declaration may be jumped over get their first value before everything else.
std::shared_ptr<Function> Compiler::finish() {
  emit(Op::ReturnNone);
  if (!body_->skippable.empty()) patch(0, here());
  for (const Variable& variable : body_->skippable)
    emit(Op::Default, variable.reg, 0, static_cast<std::uint16_t>(variable.type));
  if (!body_->skippable.empty()) emitWide(Op::Jump, 0, 1);
  return std::move(body_->function);
}

void Compiler::procedure(const Node& node) {
  Body body;
  body.function = std::make_shared<Function>();
  body.function->name = std::string(node.text);
  body.function->file = file_;
  body.function->returnType = node.type;
  if (node.flag) body.function->locals = locals_;
  body.isProcedure = true;
  Body* outer = std::exchange(body_, &body);
  beginBody();
  for (const Node* parameter : node.children.first(node.children.size() - 1)) {
    const Type type = parameter->flag ? arrayType(parameter->type) : parameter->type;
    body.function->parameters.push_back(type);
    const Variable variable{nullptr, newRegister(type), type};
    if (!body.scopes.back().emplace(parameter->text, variable).second)
      fault(*parameter, fmt::format("The parameter \"${}\" is listed twice.", parameter->text));
  }
  statements(node.children.back()->children);
  std::shared_ptr<Function> function = finish();
  body_ = outer;
  if (hasFault_) return;

  const bool isTopLevel = isGlobalScope();
  const auto local = localProcedures_.find(node.text);
  const bool isLocal = !node.flag && local != localProcedures_.end();
  Symbol& symbol = isLocal     ? *local->second
                   : node.flag ? engine_.symbol(node.text)
                               : makeLocalSymbol(node.text);
  if (!node.flag && !isLocal) localProcedures_.emplace(node.text, &symbol);
  bool isFirst = true;
  for (const ProcedureDefinition& earlier : body_->function->procedures)
    isFirst = isFirst && earlier.symbol != &symbol;
  const bool isHoisted = isTopLevel && isFirst;
  body_->function->procedures.push_back({&symbol, std::move(function), isHoisted});
  const auto index = static_cast<std::uint32_t>(body_->function->procedures.size() - 1);
  if (!isHoisted) emitWide(Op::DefineProcedure, 0, index);
}

std::size_t Compiler::emit(Op op, std::uint16_t a, std::uint16_t b, std::uint16_t c) {
  body_->function->code.push_back({op, a, b, c});
  body_->function->lines.push_back(line_);
  return here() - 1;
}

std::size_t Compiler::emitWide(Op op, std::uint16_t a, std::uint32_t wide) {
  const std::size_t at = emit(op, a);
  body_->function->code[at].setWide(wide);
  return at;
}

void Compiler::patch(std::size_t at, std::size_t target) {
  body_->function->code[at].setWide(static_cast<std::uint32_t>(target));
}

void Compiler::patch(const std::vector<std::size_t>& places, std::size_t target) {
  for (const std::size_t place : places) patch(place, target);
}

std::uint16_t Compiler::newRegister(Type type) {
  std::vector<Value>& registers = body_->function->registers;
  if (registers.size() >= kMaxRegisters) {
    Node at;
    at.line = line_;
    fault(at, "The text has too many variables or arguments in one place.");
    return 0;
  }
  registers.push_back(type == Type::Int ? Value(0) : type == Type::Float ? Value(0.0) : Value());
  return static_cast<std::uint16_t>(registers.size() - 1);
}

Compiler::Operand Compiler::temporary(Type type) {
  std::vector<std::uint16_t>& free = type == Type::Int     ? body_->freeInts
                                     : type == Type::Float ? body_->freeFloats
                                                           : body_->freeOthers;
  if (free.empty()) return {newRegister(type), type, true};
  const std::uint16_t reg = free.back();
  free.pop_back();
  return {reg, type, true};
}

/// The wanted register if its type fits, else a temporary.
Compiler::Operand Compiler::destination(const Operand* wanted, Type type) {
  const bool isDirect =
      type == Type::Int || type == Type::Float || type == Type::String || type == Type::Vector;
  if (wanted && isDirect && wanted->type == type) return *wanted;
  return temporary(type);
}

void Compiler::release(const Operand& operand) {
  if (!operand.isTemporary) return;
  std::vector<std::uint16_t>& free = operand.type == Type::Int     ? body_->freeInts
                                     : operand.type == Type::Float ? body_->freeFloats
                                                                   : body_->freeOthers;
  free.push_back(operand.reg);
}

std::uint16_t Compiler::allocateBlock(std::size_t count) {
  if (count == 0) return 0;
  std::vector<std::uint16_t>& free = body_->freeBlocks[count];
  if (!free.empty()) {
    const std::uint16_t base = free.back();
    free.pop_back();
    return base;
  }
  const std::uint16_t base = newRegister(Type::None);
  for (std::size_t i = 1; i < count; ++i) newRegister(Type::None);
  return base;
}

void Compiler::releaseBlock(std::uint16_t base, std::size_t count) {
  if (count > 0) body_->freeBlocks[count].push_back(base);
}

/// Constants have registers of their own, filled on entry; only beyond a bound are they loaded
/// where they are used.
Compiler::Operand Compiler::intConstant(std::int32_t value) {
  const auto known = body_->intRegisters.find(value);
  if (known != body_->intRegisters.end()) return {known->second, Type::Int, false};
  if (body_->intRegisters.size() >= kMaxPinnedConstants) {
    const Operand loaded = temporary(Type::Int);
    emitWide(Op::LoadInt, loaded.reg, static_cast<std::uint32_t>(value));
    return loaded;
  }
  const std::uint16_t reg = newRegister(Type::Int);
  body_->function->registers[reg] = Value(value);
  body_->intRegisters.emplace(value, reg);
  return {reg, Type::Int, false};
}

Compiler::Operand Compiler::floatConstant(double value) {
  const auto bits = std::bit_cast<std::uint64_t>(value);
  const auto known = body_->floatRegisters.find(bits);
  if (known != body_->floatRegisters.end()) return {known->second, Type::Float, false};
  if (body_->floatRegisters.size() >= kMaxPinnedConstants) {
    const Operand loaded = temporary(Type::Float);
    body_->function->constants.push_back(Value(value));
    emitWide(Op::LoadConstant, loaded.reg,
             static_cast<std::uint32_t>(body_->function->constants.size() - 1));
    return loaded;
  }
  const std::uint16_t reg = newRegister(Type::Float);
  body_->function->registers[reg] = Value(value);
  body_->floatRegisters.emplace(bits, reg);
  return {reg, Type::Float, false};
}

std::uint32_t Compiler::textConstant(std::string_view text) {
  const auto [entry, isNew] =
      body_->texts.emplace(text, static_cast<std::uint32_t>(body_->function->constants.size()));
  if (isNew) body_->function->constants.push_back(Value(text));
  return entry->second;
}

std::uint32_t Compiler::globalIndex(GlobalVariable* variable) {
  std::vector<GlobalVariable*>& globals = body_->function->globals;
  const auto [entry, isNew] =
      body_->references.emplace(variable, static_cast<std::uint32_t>(globals.size()));
  if (isNew) globals.push_back(variable);
  return entry->second;
}

std::optional<Compiler::Variable> Compiler::findVariable(std::string_view name) {
  for (auto scope = body_->scopes.rbegin(); scope != body_->scopes.rend(); ++scope) {
    const auto found = scope->find(name);
    if (found != scope->end())
      return found->second.global ? cachedVariable(found->second.global) : found->second;
  }
  if (body_->isProcedure) return std::nullopt;
  GlobalVariable* global = engine_.findGlobal(name);
  if (!global) return std::nullopt;
  return cachedVariable(global);
}

/// Where a new variable lives: in the innermost braces, but one that an assignment makes outlives
/// the switch that it stands in.
std::size_t Compiler::scopeFor(const Node& node) const {
  std::size_t scope = body_->scopes.size() - 1;
  if (node.kind != NodeKind::Variable) return scope;
  const std::vector<std::size_t>& switches = body_->switchScopes;
  for (auto it = switches.rbegin(); it != switches.rend() && *it == scope; ++it) --scope;
  return scope;
}

/// Declares in the innermost scope; outside of procedures and braces that is a global variable.
Compiler::Variable Compiler::declareVariable(const Node& node, Type type, bool isGlobal,
                                             bool& isNew) {
  isNew = false;
  const std::size_t depth = scopeFor(node);
  Scope& scope = body_->scopes[depth];
  const auto known = scope.find(node.text);
  const bool isRedeclared = known != scope.end();
  if (isRedeclared && !isGlobal) {
    if (known->second.type != type)
      fault(node, fmt::format("Invalid redeclaration of variable \"${}\" as a different type.",
                              node.text));
    return known->second;
  }
  if (!isGlobal && (body_->isProcedure || depth > 0)) {
    const Variable variable{nullptr, newRegister(type), type};
    scope.emplace(node.text, variable);
    // An assignment that declares may stand in an expression that ends early.
    const bool maySkip = body_->isSkippable || node.kind == NodeKind::Variable;
    if (maySkip && !isNumber(type)) body_->skippable.push_back(variable);
    isNew = true;
    return variable;
  }
  GlobalVariable* global = engine_.findGlobal(node.text);
  // A parameter gives way to the global variable of its name.
  const bool isParameter = body_->isProcedure && depth == 0 && isRedeclared &&
                           !known->second.global && known->second.type == type &&
                           known->second.reg < body_->function->parameters.size();
  const bool isLocalAlready = isRedeclared && !known->second.global && !isParameter;
  if ((global && global->type != type && global->type != Type::None) || isLocalAlready) {
    fault(node,
          fmt::format("Invalid redeclaration of variable \"${}\" as a different type.", node.text));
    return {global, 0, type};
  }
  if (!global) {
    global = &engine_.makeGlobal(node.text, type);
    createdGlobals_.emplace_back(node.text);
    isNew = true;
  }
  if (global->type == Type::None && type != Type::None) {
    Result<Value> converted = global->value.convertedTo(type);
    global->value = converted ? std::move(*converted) : Value::defaultOf(type);
    global->type = type;
  }
  scope.insert_or_assign(node.text, Variable{global, 0, type});
  if (isNew && body_->cached) cacheGlobal(global, false);
  return cachedVariable(global);
}

Compiler::Operand Compiler::fault(const Node& at, std::string text) {
  if (!hasFault_) diagnostic_ = {at.line, at.column, std::move(text)};
  hasFault_ = true;
  return {0, Type::None, false};
}

Compiler::Operand Compiler::undeclared(const Node& at) {
  return fault(at, fmt::format("\"${}\" is an undeclared variable.", at.text));
}

}  // namespace host::mel
