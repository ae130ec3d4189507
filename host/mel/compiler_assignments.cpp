#include <fmt/format.h>

#include "host/mel/compiler.h"
#include "host/mel/operators.h"

namespace host::mel {

/// A value in a temporary of its own, safe from later assignments to the variable it came from.
Compiler::Operand Compiler::copied(const Operand& value) {
  if (value.isTemporary || hasFault_) return value;
  const Operand copy = temporary(value.type);
  const Op op = value.type == Type::Int     ? Op::MoveInt
                : value.type == Type::Float ? Op::MoveFloat
                                            : Op::Move;
  emit(op, copy.reg, value.reg);
  return copy;
}

/// Brings a value to a register of the target's type. Arrays are copied unless the value is a
/// temporary.
void Compiler::moveTo(const Operand& target, const Operand& value) {
  if (target.reg == value.reg || hasFault_) return;
  if (target.type == value.type && isNumber(value.type)) {
    emit(value.type == Type::Int ? Op::MoveInt : Op::MoveFloat, target.reg, value.reg);
  } else if (target.type == Type::Float && value.type == Type::Int) {
    emit(Op::IntToFloat, target.reg, value.reg);
  } else if (target.type == Type::Int && value.type == Type::Float) {
    emit(Op::FloatToInt, target.reg, value.reg);
  } else {
    emit(value.isTemporary ? Op::ConvertMove : Op::Convert, target.reg, value.reg,
         static_cast<std::uint16_t>(target.type));
  }
}

void Compiler::store(const Variable& variable, const Operand& value) {
  if (hasFault_) return;
  if (!variable.global) {
    if (variable.type == Type::Matrix) {
      emit(Op::AssignMatrix, variable.reg, value.reg);
    } else if (variable.type == Type::None) {
      emit(Op::AssignDynamic, variable.reg, value.reg, value.isTemporary);
    } else {
      moveTo({variable.reg, variable.type, false}, value);
    }
    return;
  }
  const std::uint32_t global = globalIndex(variable.global);
  if (variable.type == value.type && value.type == Type::Int) {
    emitWide(Op::SetGlobalInt, value.reg, global);
  } else if (variable.type == value.type && value.type == Type::Float) {
    emitWide(Op::SetGlobalFloat, value.reg, global);
  } else {
    const bool mayShare = !value.isTemporary && !isNumber(value.type) && value.type != Type::String;
    const Operand own = mayShare ? temporary(Type::None) : value;
    if (mayShare) emit(Op::Convert, own.reg, value.reg, static_cast<std::uint16_t>(Type::None));
    emitWide(Op::SetGlobal, own.reg, global);
    if (mayShare) release(own);
  }
}

Compiler::Operand Compiler::assignment(const Node& node, bool isDiscarded) {
  return node.children[0]->kind == NodeKind::Variable ? assignVariable(node, isDiscarded)
                                                      : assignElement(node, isDiscarded);
}

Compiler::Operand Compiler::assignVariable(const Node& node, bool isDiscarded) {
  const Node& target = *node.children[0];
  const Node& source = *node.children[1];
  std::optional<Variable> variable = findVariable(target.text);
  if (!variable) {
    if (node.op != BinaryOp::None) return undeclared(target);
    const Operand value = expression(source);
    if (hasFault_) return {};
    bool isNew = false;
    variable = findVariable(target.text);
    if (!variable) {
      variable = declareVariable(target, value.type, false, isNew);
      if (isNew && !variable->global && value.type == Type::None)
        emit(Op::Default, variable->reg, 0, static_cast<std::uint16_t>(Type::None));
    }
    // An implicit matrix takes the size of its first value.
    if (isNew && !variable->global && value.type == Type::Matrix) {
      emit(Op::Convert, variable->reg, value.reg, static_cast<std::uint16_t>(Type::Matrix));
    } else {
      store(*variable, value);
    }
    release(value);
    return isDiscarded ? Operand{} : readVariable(*variable);
  }
  const Operand place{variable->reg, variable->type, false};
  const Operand* wanted = variable->global ? nullptr : &place;
  const bool isAppend = node.op == BinaryOp::Add && variable->type == Type::String;
  Operand value;
  if (isAppend) {
    value = expression(source);
    if (hasFault_) return {};
    if (variable->global) {
      emitWide(Op::AppendGlobal, value.reg, globalIndex(variable->global));
    } else {
      emit(Op::Append, variable->reg, value.reg);
    }
  } else {
    value = node.op == BinaryOp::None ? expressionAs(source, variable->type, wanted)
                                      : combine(node.op, readVariable(*variable), source, wanted);
    line_ = node.line;
    if (variable->global || value.reg != variable->reg) store(*variable, value);
  }
  release(value);
  return isDiscarded ? Operand{} : readVariable(*variable);
}

/// The parts of `$a[i]` or `$m[i][j]`, evaluated once.
std::optional<Compiler::Element> Compiler::element(const Node& node) {
  Element result;
  result.base = expression(*node.children[0]);
  if (hasFault_) return std::nullopt;
  const bool isScalar = result.base.type == Type::Int || result.base.type == Type::Float ||
                        result.base.type == Type::String || result.base.type == Type::Vector;
  if (isScalar) {
    fault(node, fmt::format("Data of type {} is not an array.", typeName(result.base.type)));
    return std::nullopt;
  }
  result.isCell = node.children.size() == 3;
  result.row = asInt(expression(*node.children[1]));
  if (result.isCell) {
    if (node.children[2]->assigns) result.row = copied(result.row);
    result.column = asInt(expression(*node.children[2]));
  }
  if (hasFault_) return std::nullopt;
  result.type = result.isCell               ? Type::Float
                : isArray(result.base.type) ? elementType(result.base.type)
                                            : Type::None;
  return result;
}

Compiler::Operand Compiler::loadElement(const Element& element, const Operand* wanted) {
  const Operand value = destination(wanted, element.type);
  if (element.isCell) {
    emit(Op::IndexMatrix, value.reg, element.base.reg, element.row.reg);
    emit(Op::Target, element.column.reg);
    return value;
  }
  const Op op = element.type == Type::Int     ? Op::IndexInt
                : element.type == Type::Float ? Op::IndexFloat
                                              : Op::Index;
  emit(op, value.reg, element.base.reg, element.row.reg);
  return value;
}

void Compiler::storeElement(const Element& element, const Operand& value) {
  if (element.isCell) {
    emit(Op::SetIndexMatrix, element.base.reg, element.row.reg, element.column.reg);
    emit(Op::Target, value.reg);
    return;
  }
  const bool isTyped = element.type == value.type;
  const Op op = isTyped && value.type == Type::Int     ? Op::SetIndexInt
                : isTyped && value.type == Type::Float ? Op::SetIndexFloat
                                                       : Op::SetIndex;
  emit(op, element.base.reg, element.row.reg, value.reg);
}

void Compiler::releaseElement(const Element& element) {
  if (element.isCell) release(element.column);
  release(element.row);
  release(element.base);
}

Compiler::Operand Compiler::assignElement(const Node& node, bool isDiscarded) {
  const Node& target = *node.children[0];
  if (target.children[0]->kind != NodeKind::Variable)
    return fault(target, "Syntax error: expected a variable before the subscript.");
  const bool isDeclared = findVariable(target.children[0]->text).has_value();
  if (!isDeclared) {
    const Node& source = *node.children[1];
    const Operand probe =
        node.op == BinaryOp::None && target.children.size() == 2 ? expression(source) : Operand{};
    const Type type = arrayType(probe.type);
    if (type == Type::None) return undeclared(*target.children[0]);
    bool isNew = false;
    const Variable variable = declareVariable(*target.children[0], type, false, isNew);
    if (!variable.global) emit(Op::Default, variable.reg, 0, static_cast<std::uint16_t>(type));
    const Operand own = copied(probe);
    const std::optional<Element> place = element(target);
    if (!place) return {};
    storeElement(*place, own);
    releaseElement(*place);
    if (!isDiscarded) return own;
    release(own);
    return {};
  }
  std::optional<Element> place = element(target);
  if (!place) return {};
  if (node.children[1]->assigns) {
    place->row = copied(place->row);
    if (place->isCell) place->column = copied(place->column);
  }
  Operand value = node.op == BinaryOp::None
                      ? expressionAs(*node.children[1], place->type)
                      : combine(node.op, loadElement(*place, nullptr), *node.children[1], nullptr);
  if (hasFault_) return {};
  line_ = node.line;
  if (isNumber(place->type) && isNumber(value.type) && place->type != value.type)
    value = place->type == Type::Int ? asInt(value) : asFloat(value);
  storeElement(*place, value);
  releaseElement(*place);
  if (!isDiscarded) return value;
  release(value);
  return {};
}

Compiler::Operand Compiler::step(const Node& node, bool isDiscarded) {
  const Node& target = *node.children[0];
  if (target.kind == NodeKind::Variable) {
    const std::optional<Variable> variable = findVariable(target.text);
    if (!variable) return undeclared(target);
    return stepVariable(node, *variable, isDiscarded);
  }
  if (target.children[0]->kind != NodeKind::Variable)
    return fault(target, "Syntax error: expected a variable before the subscript.");
  const std::optional<Element> place = element(target);
  if (!place) return {};
  const Operand before = loadElement(*place, nullptr);
  const Operand one = intConstant(node.integer);
  const Operand after = apply(BinaryOp::Add, {before.reg, before.type, false}, one, nullptr);
  storeElement(*place, after);
  releaseElement(*place);
  const bool wantsBefore = !isDiscarded && !node.flag;
  release(wantsBefore ? after : before);
  if (!isDiscarded) return wantsBefore ? before : after;
  release(after);
  return {};
}

Compiler::Operand Compiler::stepVariable(const Node& node, const Variable& variable,
                                         bool isDiscarded) {
  const bool canStep =
      isNumber(variable.type) || variable.type == Type::None || variable.type == Type::Vector;
  if (!canStep)
    return fault(node, fmt::format("Illegal operation \"{}\" on data of type {}.",
                                   node.integer > 0 ? "++" : "--", typeName(variable.type)));
  Operand current = readVariable(variable);
  const bool wantsBefore = !isDiscarded && !node.flag;
  const Operand before = wantsBefore ? copied(current) : current;
  const Operand readable{before.reg, before.type, false};
  const Operand place{variable.reg, variable.type, false};
  const Operand* wanted = variable.global ? nullptr : &place;
  Operand after;
  if (variable.type == Type::Int) {
    after = destination(wanted, Type::Int);
    emit(Op::AddImmediate, after.reg, readable.reg,
         static_cast<std::uint16_t>(static_cast<std::int16_t>(node.integer)));
  } else {
    after = apply(BinaryOp::Add, readable, intConstant(node.integer), wanted);
  }
  if (variable.global || after.reg != variable.reg) store(variable, after);
  if (wantsBefore) {
    release(after);
    return before;
  }
  release(after);
  if (before.isTemporary) release(before);
  return isDiscarded ? Operand{} : readVariable(variable);
}

}  // namespace host::mel
