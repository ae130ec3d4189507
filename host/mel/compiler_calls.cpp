#include <fmt/format.h>

#include "host/mel/builtins.h"
#include "host/mel/compiler.h"
#include "host/mel/engine.h"

namespace host::mel {

namespace {

std::optional<Type> castType(std::string_view name) {
  if (name == "int") return Type::Int;
  if (name == "float") return Type::Float;
  if (name == "string") return Type::String;
  if (name == "vector") return Type::Vector;
  return std::nullopt;
}

}  // namespace

/// The text's own local procedures come first, then what the name means globally when the call
/// runs.
Symbol& Compiler::resolve(std::string_view name) {
  const auto local = localProcedures_.find(name);
  return local != localProcedures_.end() ? *local->second : engine_.symbol(name);
}

/// The language's function of that name, unless a procedure has taken the name.
const Builtin* Compiler::builtinFor(std::string_view name) const {
  if (localProcedures_.contains(name) || globalProcedures_.contains(name)) return nullptr;
  const Symbol* symbol = engine_.findSymbol(name);
  if (symbol && symbol->procedure) return nullptr;
  return findBuiltin(name);
}

/// Collects the arguments in consecutive registers.
std::uint16_t Compiler::arguments(const Node& node) {
  const std::size_t count = node.children.size();
  const std::uint16_t base = allocateBlock(count);
  for (std::size_t i = 0; i < count && !hasFault_; ++i)
    expressionInto(*node.children[i], static_cast<std::uint16_t>(base + i));
  return base;
}

void Compiler::emitCall(const Node& node, const Builtin* builtin, std::uint16_t result) {
  const std::size_t count = node.children.size();
  const std::uint16_t base = arguments(node);
  line_ = node.line;
  emit(builtin ? Op::CallBuiltin : Op::CallSymbol, result, base, static_cast<std::uint16_t>(count));
  Function& function = *body_->function;
  const void* key = builtin ? static_cast<const void*>(builtin) : &resolve(node.text);
  const std::size_t next = builtin ? function.builtins.size() : function.symbols.size();
  const auto [entry, isNew] = body_->references.emplace(key, static_cast<std::uint32_t>(next));
  if (isNew && builtin) function.builtins.push_back(builtin);
  if (isNew && !builtin) function.symbols.push_back(&resolve(node.text));
  emitWide(Op::Target, 0, entry->second);
  releaseBlock(base, count);
}

/// A call whose result goes to a register of class "other".
void Compiler::callInto(const Node& node, std::uint16_t slot) {
  const bool isPlain = node.text != "catch" && node.text != "catchQuiet" && node.text != "size" &&
                       !castType(node.text) && findFloatFunction(node.text) < 0;
  if (isPlain) return emitCall(node, builtinFor(node.text), slot);
  const Operand value = call(node, nullptr, false);
  if (!hasFault_) emit(Op::Move, slot, value.reg);
  release(value);
}

Compiler::Operand Compiler::call(const Node& node, const Operand* wanted, bool isDiscarded) {
  const std::size_t count = node.children.size();
  if (node.text == "catch" || node.text == "catchQuiet") return catchCall(node);
  if (const std::optional<Type> type = castType(node.text); type && count == 1)
    return cast(*node.children[0], *type, wanted);
  const Builtin* builtin = builtinFor(node.text);
  if (builtin && count == 1 && node.text == "size") return sizeCall(node, wanted);
  const int floatFunction = builtin && count == 1 ? findFloatFunction(node.text) : -1;
  if (floatFunction >= 0) {
    const Operand argument = expressionAs(*node.children[0], Type::Float);
    if (isNumber(argument.type)) {
      const Operand number = asFloat(argument);
      const Operand result = destination(wanted, Type::Float);
      emit(Op::FloatFunction, result.reg, number.reg, static_cast<std::uint16_t>(floatFunction));
      release(number);
      return result;
    }
    const Operand converted = temporary(Type::Float);
    moveTo(converted, argument);
    release(argument);
    emit(Op::FloatFunction, converted.reg, converted.reg,
         static_cast<std::uint16_t>(floatFunction));
    return converted;
  }
  if (isDiscarded) {
    emitCall(node, builtin, kNoRegister);
    return {};
  }
  // A function's fixed result type allows typed registers; a procedure or command may be redefined
  // with another one.
  const Type type = builtin ? builtin->result : Type::None;
  const Operand result = destination(wanted, type);
  emitCall(node, builtin, result.reg);
  return result;
}

Compiler::Operand Compiler::sizeCall(const Node& node, const Operand* wanted) {
  const Operand subject = expression(*node.children[0]);
  const Operand result = destination(wanted, Type::Int);
  emit(Op::Size, result.reg, subject.reg);
  release(subject);
  return result;
}

/// `catch(expression)`: 1 if it failed, else 0.
Compiler::Operand Compiler::catchCall(const Node& node) {
  if (node.children.size() != 1)
    return fault(node, fmt::format("Invalid call to \"{}\".  Check number and types of arguments "
                                   "expected by the procedure.",
                                   node.text));
  const Operand failed = temporary(Type::Int);
  emit(Op::TryBegin, failed.reg, 0, node.text == "catchQuiet");
  const std::size_t handler = emitTarget();
  discard(*node.children[0]);
  emit(Op::TryEnd);
  emitWide(Op::LoadInt, failed.reg, 0);
  patch(handler, here());
  return failed;
}

}  // namespace host::mel
