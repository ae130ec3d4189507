#include <fmt/format.h>

#include <limits>

#include "host/mel/compiler.h"
#include "host/mel/operators.h"

namespace host::mel {

namespace {

constexpr Op genericOp(BinaryOp op) {
  return static_cast<Op>(static_cast<int>(Op::BinaryFirst) + static_cast<int>(op));
}

/// The array type of a literal as far as its literal elements tell: any string makes strings, else
/// one unknown element leaves it open (None).
Type literalType(const Node& literal) {
  bool isKnown = true;
  Type widest = Type::Int;
  for (const Node* child : literal.children) {
    switch (child->kind) {
      case NodeKind::StringLiteral:
        return Type::StringArray;
      case NodeKind::VectorLiteral:
        widest = Type::Vector;
        break;
      case NodeKind::FloatLiteral:
        if (widest == Type::Int) widest = Type::Float;
        break;
      case NodeKind::IntLiteral:
        break;
      default:
        isKnown = false;
    }
  }
  return isKnown ? arrayType(widest) : Type::None;
}

bool fitsImmediate(const Node& node) {
  return node.kind == NodeKind::IntLiteral && node.integer >= -32000 && node.integer <= 32000;
}

}  // namespace

Compiler::Operand Compiler::expression(const Node& node, const Operand* wanted) {
  if (hasFault_) return {};
  line_ = node.line;
  switch (node.kind) {
    case NodeKind::IntLiteral:
      return intConstant(node.integer);
    case NodeKind::FloatLiteral:
      return floatConstant(node.number);
    case NodeKind::StringLiteral: {
      const Operand text = destination(wanted, Type::String);
      emitWide(Op::LoadConstant, text.reg, textConstant(node.text));
      return text;
    }
    case NodeKind::VectorLiteral:
      return vectorLiteral(node, wanted);
    case NodeKind::MatrixLiteral:
      return matrixLiteral(node);
    case NodeKind::ArrayLiteral:
      return arrayLiteral(node, Type::None);
    case NodeKind::Variable: {
      const std::optional<Variable> variable = findVariable(node.text);
      return variable ? readVariable(*variable) : undeclared(node);
    }
    case NodeKind::Index:
      return index(node, wanted);
    case NodeKind::Component:
      return component(node, wanted);
    case NodeKind::Negate:
      return negate(node, wanted);
    case NodeKind::Not:
    case NodeKind::And:
    case NodeKind::Or:
      return truth(node);
    case NodeKind::Binary:
      return binaryChain(node, wanted);
    case NodeKind::Ternary:
      return ternary(node);
    case NodeKind::Assign:
      return assignment(node, false);
    case NodeKind::Step:
      return step(node, false);
    case NodeKind::Call:
      return call(node, wanted, false);
    case NodeKind::Cast:
      return cast(*node.children[0], node.type, wanted);
    default:
      return fault(node, "Syntax error: expected an expression.");
  }
}

/// Evaluates for the effect alone.
void Compiler::discard(const Node& node) {
  if (hasFault_) return;
  line_ = node.line;
  if (node.kind == NodeKind::Assign) return release(assignment(node, true));
  if (node.kind == NodeKind::Step) return release(step(node, true));
  if (node.kind == NodeKind::Call) return release(call(node, nullptr, true));
  release(expression(node));
}

/// The expression for a place of known type: literals take that type, the rest is converted by who
/// stores it.
Compiler::Operand Compiler::expressionAs(const Node& node, Type type, const Operand* wanted) {
  if (node.kind == NodeKind::IntLiteral && type == Type::Float) return floatConstant(node.integer);
  if (node.kind == NodeKind::ArrayLiteral && isArray(type)) {
    line_ = node.line;
    return arrayLiteral(node, type);
  }
  return expression(node, wanted);
}

/// The expression's value in a register of class "other", as calls and literals collect them.
void Compiler::expressionInto(const Node& node, std::uint16_t slot) {
  if (hasFault_) return;
  line_ = node.line;
  if (node.kind == NodeKind::Call) return callInto(node, slot);
  const Operand asText{slot, Type::String, false};
  const Operand value = expression(node, &asText);
  if (value.reg != slot) emit(Op::Move, slot, value.reg);
  release(value);
}

Compiler::Operand Compiler::asInt(Operand operand) {
  if (operand.type == Type::Int) return operand;
  const Operand converted = temporary(Type::Int);
  moveTo(converted, operand);
  release(operand);
  return converted;
}

Compiler::Operand Compiler::asFloat(Operand operand) {
  if (operand.type == Type::Float) return operand;
  const Operand converted = temporary(Type::Float);
  moveTo(converted, operand);
  release(operand);
  return converted;
}

Compiler::Operand Compiler::readVariable(const Variable& variable) {
  if (!variable.global) return {variable.reg, variable.type, false};
  const Operand value = temporary(variable.type);
  const Op op = variable.type == Type::Int     ? Op::GetGlobalInt
                : variable.type == Type::Float ? Op::GetGlobalFloat
                                               : Op::GetGlobal;
  emitWide(op, value.reg, globalIndex(variable.global));
  return value;
}

/// `a + b + c ...`: the left side of a long chain is walked in a loop, not by recursion.
Compiler::Operand Compiler::binaryChain(const Node& node, const Operand* wanted) {
  std::vector<const Node*> chain;
  const Node* first = &node;
  while (first->kind == NodeKind::Binary) {
    chain.push_back(first);
    first = first->children[0];
  }
  Operand left = expression(*first);
  for (std::size_t i = chain.size(); i-- > 0 && !hasFault_;)
    left = combine(chain[i]->op, left, *chain[i]->children[1], i == 0 ? wanted : nullptr);
  return left;
}

Compiler::Operand Compiler::combine(BinaryOp op, Operand left, const Node& right,
                                    const Operand* wanted) {
  if (hasFault_) return {};
  if (right.assigns && !left.isTemporary) left = copied(left);
  const bool isSum = op == BinaryOp::Add || op == BinaryOp::Subtract;
  if (isSum && left.type == Type::Int && fitsImmediate(right)) {
    const Operand sum = destination(wanted, Type::Int);
    const int addend = op == BinaryOp::Add ? right.integer : -right.integer;
    emit(Op::AddImmediate, sum.reg, left.reg,
         static_cast<std::uint16_t>(static_cast<std::int16_t>(addend)));
    release(left);
    return sum;
  }
  return apply(op, left, expressionAs(right, left.type == Type::Float ? Type::Float : Type::None),
               wanted);
}

Compiler::Operand Compiler::apply(BinaryOp op, Operand left, Operand right, const Operand* wanted) {
  if (hasFault_) return {};
  const bool areNumbers = isNumber(left.type) && isNumber(right.type);
  if (areNumbers && op != BinaryOp::Cross) {
    const bool areFloats = left.type == Type::Float || right.type == Type::Float;
    if (areFloats) {
      left = asFloat(left);
      right = asFloat(right);
    }
    const Operand result = applyNumbers(op, left, right, wanted);
    release(left);
    release(right);
    return result;
  }
  const Operand result = destination(wanted, binaryType(op, left.type, right.type));
  emit(genericOp(op), result.reg, left.reg, right.reg);
  release(left);
  release(right);
  return result;
}

Compiler::Operand Compiler::applyNumbers(BinaryOp op, const Operand& left, const Operand& right,
                                         const Operand* wanted) {
  const bool areFloats = left.type == Type::Float;
  const Operand result = destination(wanted, isComparison(op) ? Type::Int : left.type);
  const auto put = [&](Op ints, Op floats, const Operand& a, const Operand& b) {
    emit(areFloats ? floats : ints, result.reg, a.reg, b.reg);
    return result;
  };
  switch (op) {
    case BinaryOp::Add:
      return put(Op::AddInt, Op::AddFloat, left, right);
    case BinaryOp::Subtract:
      return put(Op::SubtractInt, Op::SubtractFloat, left, right);
    case BinaryOp::Multiply:
      return put(Op::MultiplyInt, Op::MultiplyFloat, left, right);
    case BinaryOp::Divide:
      return put(Op::DivideInt, Op::DivideFloat, left, right);
    case BinaryOp::Modulo:
      return put(Op::ModuloInt, Op::ModuloFloat, left, right);
    case BinaryOp::Less:
      return put(Op::LessInt, Op::LessFloat, left, right);
    case BinaryOp::LessEqual:
      return put(Op::LessEqualInt, Op::LessEqualFloat, left, right);
    case BinaryOp::Greater:
      return put(Op::LessInt, Op::LessFloat, right, left);
    case BinaryOp::GreaterEqual:
      return put(Op::LessEqualInt, Op::LessEqualFloat, right, left);
    case BinaryOp::Equal:
      return put(Op::EqualInt, Op::EqualFloat, left, right);
    default:
      return put(Op::NotEqualInt, Op::NotEqualFloat, left, right);
  }
}

Compiler::Operand Compiler::negate(const Node& node, const Operand* wanted) {
  const Operand operand = expression(*node.children[0]);
  const Operand result = destination(wanted, isArray(operand.type) ? Type::None : operand.type);
  const Op op = operand.type == Type::Int     ? Op::NegateInt
                : operand.type == Type::Float ? Op::NegateFloat
                                              : Op::Negate;
  emit(op, result.reg, operand.reg);
  release(operand);
  return result;
}

/// `!a`, `a && b`, `a || b` as the numbers 0 and 1. Never straight into a variable, which the
/// condition may read.
Compiler::Operand Compiler::truth(const Node& node) {
  const Operand result = temporary(Type::Int);
  emitWide(Op::LoadInt, result.reg, 0);
  std::vector<std::size_t> skips;
  jumpIf(node, false, skips);
  emitWide(Op::LoadInt, result.reg, 1);
  patch(skips, here());
  return result;
}

Compiler::Operand Compiler::ternary(const Node& node) {
  std::vector<std::size_t> skips;
  jumpIf(*node.children[0], false, skips);
  const Operand first = expression(*node.children[1]);
  // The common type is known after the second branch, so the first value waits in a register of its
  // own kind.
  const Operand kept = temporary(Type::None);
  emit(Op::Move, kept.reg, first.reg);
  release(first);
  const std::size_t end = emitWide(Op::Jump, 0, 0);
  patch(skips, here());
  const Operand second = expression(*node.children[2]);
  emit(Op::Move, kept.reg, second.reg);
  release(second);
  patch(end, here());
  if (first.type != second.type || !isNumber(first.type)) {
    const bool areNumbers = isNumber(first.type) && isNumber(second.type);
    const Type common = areNumbers                  ? Type::Float
                        : first.type == second.type ? first.type
                                                    : Type::None;
    if (common != Type::Float) return {kept.reg, common, kept.isTemporary};
    return asFloat(kept);
  }
  return first.type == Type::Int ? asInt(kept) : asFloat(kept);
}

Compiler::Operand Compiler::vectorLiteral(const Node& node, const Operand* wanted) {
  const std::uint16_t block = allocateBlock(3);
  const std::size_t count = node.children.size();
  for (std::size_t i = 0; i < 3; ++i) {
    const auto slot = static_cast<std::uint16_t>(block + i);
    if (i < count) {
      expressionInto(*node.children[i], slot);
    } else {
      emit(Op::Move, slot, floatConstant(0.0).reg);
    }
  }
  const Operand result = destination(wanted, Type::Vector);
  emit(Op::MakeVector, result.reg, block);
  releaseBlock(block, 3);
  return result;
}

Compiler::Operand Compiler::matrixLiteral(const Node& node) {
  const std::size_t count = node.children.size();
  const std::uint16_t block = allocateBlock(count);
  for (std::size_t i = 0; i < count && !hasFault_; ++i)
    expressionInto(*node.children[i], static_cast<std::uint16_t>(block + i));
  const Operand result = temporary(Type::Matrix);
  emit(Op::MakeMatrix, result.reg, block);
  const auto rows = static_cast<std::uint16_t>(node.integer);
  emit(Op::Target, rows, static_cast<std::uint16_t>(count / rows));
  releaseBlock(block, count);
  return result;
}

/// Long literals are collected in pieces, so that their length doesn't cost registers.
Compiler::Operand Compiler::arrayLiteral(const Node& node, Type hint) {
  constexpr std::size_t kPiece = 64;
  const std::size_t count = node.children.size();
  const Type type = hint == Type::None ? literalType(node) : hint;
  const Operand result{temporary(Type::None).reg, type, true};
  bool isFirst = true;
  for (std::size_t from = 0; (from < count || isFirst) && !hasFault_; from += kPiece) {
    const std::size_t length = std::min(kPiece, count - from);
    const std::uint16_t block = allocateBlock(length);
    for (std::size_t i = 0; i < length && !hasFault_; ++i)
      expressionInto(*node.children[from + i], static_cast<std::uint16_t>(block + i));
    emit(isFirst ? Op::MakeArray : Op::ExtendArray, result.reg, block,
         static_cast<std::uint16_t>(length));
    if (isFirst) emit(Op::Target, static_cast<std::uint16_t>(type));
    releaseBlock(block, length);
    isFirst = false;
  }
  return result;
}

Compiler::Operand Compiler::index(const Node& node, const Operand* wanted) {
  const std::optional<Element> place = element(node);
  if (!place) return {};
  const Operand value = loadElement(*place, wanted);
  releaseElement(*place);
  return value;
}

Compiler::Operand Compiler::component(const Node& node, const Operand* wanted) {
  const Operand base = expression(*node.children[0]);
  if (node.flag && base.type == Type::String) {
    static constexpr std::string_view kWords[] = {".x", ".y", ".z"};
    const Operand word = temporary(Type::String);
    emitWide(Op::LoadConstant, word.reg, textConstant(kWords[node.integer]));
    return apply(BinaryOp::Add, base, word, wanted);
  }
  const Operand result = destination(wanted, Type::Float);
  emit(Op::Component, result.reg, base.reg, static_cast<std::uint16_t>(node.integer));
  release(base);
  return result;
}

Compiler::Operand Compiler::cast(const Node& node, Type type, const Operand* wanted) {
  const Operand value = expressionAs(node, type, wanted);
  if (value.type == type) return value;
  const Operand result = temporary(type);
  moveTo(result, value);
  release(value);
  return result;
}

void Compiler::emitJumpIf(Op op, const Operand& a, std::uint16_t b, bool sense,
                          std::vector<std::size_t>& places) {
  std::vector<Instruction>& code = body_->function->code;
  const bool followsStep = body_->stepAt + 1 == code.size() && body_->stepAt != kNoStep;
  body_->stepAt = kNoStep;
  if (followsStep && op == Op::JumpLessInt && sense) {
    Instruction& step = code.back();
    if (step.op == Op::AddImmediate && step.a == a.reg && step.b == a.reg) {
      step = {Op::StepJumpLess, a.reg, b, step.c};
      places.push_back(emitTarget());
      return;
    }
  }
  emit(op, a.reg, b, sense);
  places.push_back(emitTarget());
}

void Compiler::jumpIfComparison(const Node& node, bool sense, std::vector<std::size_t>& places) {
  Operand left = expression(*node.children[0]);
  const Node& rightNode = *node.children[1];
  if (rightNode.assigns && !left.isTemporary) left = copied(left);
  Operand right = expressionAs(rightNode, left.type == Type::Float ? Type::Float : Type::None);
  if (hasFault_) return;
  if (!isNumber(left.type) || !isNumber(right.type)) {
    const Operand result = apply(node.op, left, right, nullptr);
    emitJumpIf(Op::JumpInt, result, 0, sense, places);
    release(result);
    return;
  }
  const bool areFloats = left.type == Type::Float || right.type == Type::Float;
  if (areFloats) {
    left = asFloat(left);
    right = asFloat(right);
  }
  const bool isSwapped = node.op == BinaryOp::Greater || node.op == BinaryOp::GreaterEqual;
  const bool isLess = node.op == BinaryOp::Less || node.op == BinaryOp::Greater;
  const bool isEquality = node.op == BinaryOp::Equal || node.op == BinaryOp::NotEqual;
  const Op op = isEquality ? (areFloats ? Op::JumpEqualFloat : Op::JumpEqualInt)
                : isLess   ? (areFloats ? Op::JumpLessFloat : Op::JumpLessInt)
                           : (areFloats ? Op::JumpLessEqualFloat : Op::JumpLessEqualInt);
  const bool asked = node.op == BinaryOp::NotEqual ? !sense : sense;
  emitJumpIf(op, isSwapped ? right : left, isSwapped ? left.reg : right.reg, asked, places);
  release(left);
  release(right);
}

void Compiler::jumpIf(const Node& node, bool sense, std::vector<std::size_t>& places) {
  if (hasFault_) return;
  if (node.kind == NodeKind::Not) return jumpIf(*node.children[0], !sense, places);
  if (node.kind == NodeKind::And || node.kind == NodeKind::Or) {
    // A long chain of the same operator leans to the left; its parts are tested in order.
    std::vector<const Node*> parts;
    const Node* first = &node;
    while (first->kind == node.kind) {
      parts.push_back(first->children[1]);
      first = first->children[0];
    }
    parts.push_back(first);
    const bool decides = node.kind == NodeKind::Or;  // one part with this truth settles the whole
    std::vector<std::size_t> settled;
    for (std::size_t i = parts.size(); i-- > 1;)
      jumpIf(*parts[i], decides, decides == sense ? places : settled);
    jumpIf(*parts[0], sense, places);
    patch(settled, here());
    return;
  }
  line_ = node.line;
  if (node.kind == NodeKind::Binary && isComparison(node.op)) {
    jumpIfComparison(node, sense, places);
    return;
  }
  const Operand value = expression(node);
  emitJumpIf(value.type == Type::Int ? Op::JumpInt : Op::JumpTest, value, 0, sense, places);
  release(value);
}

}  // namespace host::mel
