#include <fmt/format.h>

#include "host/mel/compiler.h"
#include "host/mel/engine.h"

namespace host::mel {

namespace {

bool mentions(const Node& node, std::string_view variable) {
  if (node.kind == NodeKind::Variable && node.text == variable) return true;
  for (const Node* child : node.children)
    if (child && mentions(*child, variable)) return true;
  return false;
}

}  // namespace

void Compiler::statements(std::span<Node* const> nodes) {
  for (const Node* node : nodes) {
    if (hasFault_) return;
    statement(*node);
  }
}

void Compiler::statement(const Node& node) {
  line_ = node.line;
  switch (node.kind) {
    case NodeKind::Block:
      return blockStatement(node);
    case NodeKind::Expression:
      return discard(*node.children[0]);
    case NodeKind::Declare:
      return declaration(node);
    case NodeKind::If:
      return ifStatement(node);
    case NodeKind::While:
    case NodeKind::DoWhile:
    case NodeKind::For:
    case NodeKind::ForIn:
      return loopStatement(node);
    case NodeKind::Switch:
      return switchStatement(node);
    case NodeKind::Break:
    case NodeKind::Continue:
      return jumpStatement(node);
    case NodeKind::Return:
      return returnStatement(node);
    case NodeKind::Procedure:
      return procedure(node);
    default:
      return;
  }
}

/// The last statement of a text, whose value is the text's result.
Compiler::Operand Compiler::resultStatement(const Node& node) {
  line_ = node.line;
  if (node.kind == NodeKind::Expression) return expression(*node.children[0]);
  statement(node);
  const bool hasValue =
      node.kind == NodeKind::Declare && !hasFault_ && node.children.back()->children[0];
  if (!hasValue) return {kNoRegister, Type::None, false};
  return readVariable(*findVariable(node.children.back()->text));
}

void Compiler::blockStatement(const Node& node) {
  if (!node.flag) return statements(node.children);
  const bool wasSkippable = std::exchange(body_->isSkippable, false);
  openScope();
  statements(node.children);
  closeScope();
  body_->isSkippable = wasSkippable;
}

/// A statement that may not run although what follows it does.
void Compiler::branch(const Node& node) {
  const bool wasSkippable = std::exchange(body_->isSkippable, true);
  statement(node);
  body_->isSkippable = wasSkippable;
}

void Compiler::declaration(const Node& node) {
  for (const Node* declarator : node.children) {
    if (hasFault_) return;
    declareOne(node, *declarator);
  }
}

void Compiler::declareOne(const Node& declaration, const Node& node) {
  line_ = node.line;
  const Type type = node.flag ? arrayType(node.type) : node.type;
  const Node* initialiser = node.children[0];
  const bool isConditional = initialiser && declaration.flag && body_->isProcedure;
  Operand value;
  bool isNew = false;
  // `int $x = $x + 1` with no $x around begins with the type's first value.
  if (initialiser && !findVariable(node.text) && mentions(*initialiser, node.text)) {
    const Variable variable = declareVariable(node, type, declaration.flag, isNew);
    if (isNew && !variable.global)
      emit(Op::Default, variable.reg, 0, static_cast<std::uint16_t>(type));
  }
  // The initialiser may use an outer variable of the same name, so it is compiled first unless code
  // must guard it.
  if (initialiser && !isConditional) value = expressionAs(*initialiser, type);
  const Variable variable = declareVariable(node, type, declaration.flag, isNew);
  if (hasFault_) return;
  const bool hasSize = node.children.size() > 1 && node.children[1];
  if (hasSize && isNew) declareSized(variable, node);
  if (isNew && !hasSize && !variable.global && (!initialiser || type == Type::Matrix))
    emit(Op::Default, variable.reg, 0, static_cast<std::uint16_t>(type));
  if (!initialiser) return;
  if (!declaration.flag || !body_->isProcedure) {
    if (variable.global) {  // so that a procedure's initialiser of the same variable stays without
                            // effect
      emitWide(Op::InitGlobal, 0, globalIndex(variable.global));
      patch(emitTarget(), here());
    }
    store(variable, value);
    release(value);
    return;
  }
  emitWide(Op::InitGlobal, 0, globalIndex(variable.global));
  const std::size_t skip = emitTarget();
  value = expressionAs(*initialiser, type);
  store(variable, value);
  release(value);
  patch(skip, here());
}

/// `int $a[5]`, `matrix $m[4][4]`.
void Compiler::declareSized(const Variable& variable, const Node& node) {
  const Operand target =
      variable.global ? temporary(Type::Matrix) : Operand{variable.reg, variable.type, false};
  const Operand first = asInt(expression(*node.children[1]));
  if (variable.type == Type::Matrix) {
    const bool hasBoth = node.children.size() > 2 && node.children[2];
    const Operand second = hasBoth ? asInt(expression(*node.children[2])) : intConstant(1);
    emit(Op::DeclareMatrix, target.reg, first.reg, second.reg);
    release(second);
  } else {
    emit(Op::DeclareArray, target.reg, first.reg, static_cast<std::uint16_t>(variable.type));
  }
  release(first);
  if (!variable.global) return;
  emitWide(Op::SetGlobal, target.reg, globalIndex(variable.global));
  release(target);
}

void Compiler::ifStatement(const Node& node) {
  std::vector<std::size_t> ends;
  std::size_t i = 0;
  for (; i + 1 < node.children.size() && !hasFault_; i += 2) {
    std::vector<std::size_t> skips;
    line_ = node.children[i]->line;
    jumpIf(*node.children[i], false, skips);
    branch(*node.children[i + 1]);
    const bool isLast = i + 2 >= node.children.size();
    if (!isLast) ends.push_back(emitWide(Op::Jump, 0, 0));
    patch(skips, here());
  }
  if (i < node.children.size() && !hasFault_) branch(*node.children[i]);
  patch(ends, here());
}

void Compiler::loopStatement(const Node& node) {
  const bool isCaching = beginCachedGlobals(node);
  switch (node.kind) {
    case NodeKind::While:
      whileStatement(node);
      break;
    case NodeKind::DoWhile:
      doStatement(node);
      break;
    case NodeKind::For:
      forStatement(node);
      break;
    default:
      forInStatement(node);
  }
  if (isCaching) endCachedGlobals();
}

/// Loops test at their end: one jump a turn.
void Compiler::whileStatement(const Node& node) {
  const std::size_t entry = emitWide(Op::Jump, 0, 0);
  const std::size_t top = here();
  body_->loops.emplace_back();
  branch(*node.children[1]);
  const Loop loop = std::move(body_->loops.back());
  body_->loops.pop_back();
  patch(entry, here());
  patch(loop.continues, here());
  std::vector<std::size_t> repeats;
  line_ = node.line;
  jumpIf(*node.children[0], true, repeats);
  patch(repeats, top);
  patch(loop.breaks, here());
}

void Compiler::doStatement(const Node& node) {
  const std::size_t top = here();
  body_->loops.emplace_back();
  branch(*node.children[1]);
  const Loop loop = std::move(body_->loops.back());
  body_->loops.pop_back();
  patch(loop.continues, here());
  std::vector<std::size_t> repeats;
  jumpIf(*node.children[0], true, repeats);
  patch(repeats, top);
  patch(loop.breaks, here());
}

/// The condition is compiled twice, before the loop and behind the step, so that step and test can
/// be one instruction.
void Compiler::forStatement(const Node& node) {
  statement(*node.children[0]);
  const Node* condition = node.children[1];
  std::vector<std::size_t> exits;
  if (condition) jumpIf(*condition, false, exits);
  const std::size_t top = here();
  body_->loops.emplace_back();
  branch(*node.children[3]);
  const Loop loop = std::move(body_->loops.back());
  body_->loops.pop_back();
  patch(loop.continues, here());
  const std::size_t stepBegin = here();
  if (!hasFault_) branch(*node.children[2]);
  if (here() > stepBegin) body_->stepAt = here() - 1;
  line_ = node.line;
  std::vector<std::size_t> repeats;
  if (condition && !hasFault_) {
    jumpIf(*condition, true, repeats);
  } else {
    repeats.push_back(emitWide(Op::Jump, 0, 0));
  }
  body_->stepAt = kNoStep;
  patch(repeats, top);
  patch(exits, here());
  patch(loop.breaks, here());
}

void Compiler::forInStatement(const Node& node) {
  const Node& target = *node.children[0];
  const Operand source = expression(*node.children[1]);
  if (hasFault_) return;
  // The loop walks a list of its own: what the body does to the variable doesn't disturb it.
  const Operand list = temporary(Type::None);
  emit(source.isTemporary ? Op::ConvertMove : Op::Convert, list.reg, source.reg,
       static_cast<std::uint16_t>(Type::None));
  release(source);
  const Operand position = temporary(Type::Int);
  emitWide(Op::LoadInt, position.reg, 0);

  const Type found = isArray(source.type) ? elementType(source.type) : Type::None;
  std::optional<Variable> variable;
  if (target.kind == NodeKind::Variable) variable = findVariable(target.text);
  if (!variable) {
    bool isNew = false;
    const Type type = target.kind == NodeKind::Declarator ? target.type : found;
    variable = declareVariable(target, type, false, isNew);
    if (isNew && !variable->global)
      emit(Op::Default, variable->reg, 0, static_cast<std::uint16_t>(type));
  }
  if (hasFault_) return;
  const std::size_t entry = emitWide(Op::Jump, 0, 0);
  const std::size_t top = here();
  const Operand element = temporary(Type::None);
  store(*variable, element);
  body_->loops.emplace_back();
  branch(*node.children[2]);
  const Loop loop = std::move(body_->loops.back());
  body_->loops.pop_back();
  patch(entry, here());
  patch(loop.continues, here());
  line_ = node.line;
  emit(Op::NextElement, element.reg, list.reg, position.reg);
  const std::size_t exit = emitTarget();
  patch(emitWide(Op::Jump, 0, 0), top);
  patch(exit, here());
  patch(loop.breaks, here());
  release(element);
  release(position);
  release(list);
}

void Compiler::switchStatement(const Node& node) {
  const Operand subject = copied(expression(*node.children[0]));
  const std::span<Node* const> items = node.children.subspan(1);
  std::vector<std::pair<std::size_t, std::vector<std::size_t>>> cases;
  for (std::size_t i = 0; i < items.size() && !hasFault_; ++i) {
    if (items[i]->kind != NodeKind::Case) continue;
    line_ = items[i]->line;
    const Operand equal = combine(BinaryOp::Equal, {subject.reg, subject.type, false},
                                  *items[i]->children[0], nullptr);
    std::vector<std::size_t> hits;
    emitJumpIf(Op::JumpInt, equal, 0, true, hits);
    release(equal);
    cases.emplace_back(i, std::move(hits));
  }
  release(subject);
  std::size_t toDefault = emitWide(Op::Jump, 0, 0);
  body_->loops.emplace_back().isSwitch = true;
  body_->switchScopes.push_back(body_->scopes.size());
  openScope();
  bool hasDefault = false;
  std::size_t nextCase = 0;
  for (std::size_t i = 0; i < items.size() && !hasFault_; ++i) {
    if (items[i]->kind == NodeKind::Default) {
      patch(toDefault, here());
      hasDefault = true;
    } else if (items[i]->kind == NodeKind::Case) {
      patch(cases[nextCase++].second, here());
    } else {
      branch(*items[i]);
    }
  }
  closeScope();
  body_->switchScopes.pop_back();
  patch(body_->loops.back().breaks, here());
  body_->loops.pop_back();
  if (!hasDefault) patch(toDefault, here());
}

/// `break` leaves the nearest loop or switch, `continue` goes on with the nearest loop.
void Compiler::jumpStatement(const Node& node) {
  const bool isBreak = node.kind == NodeKind::Break;
  for (auto loop = body_->loops.rbegin(); loop != body_->loops.rend(); ++loop) {
    if (!isBreak && loop->isSwitch) continue;
    (isBreak ? loop->breaks : loop->continues).push_back(emitWide(Op::Jump, 0, 0));
    return;
  }
  fault(node, fmt::format("Illegal \"{}\" encountered outside of a looping structure.",
                          isBreak ? "break" : "continue"));
}

void Compiler::returnStatement(const Node& node) {
  const Function& function = *body_->function;
  if (node.children.empty()) {
    if (function.returnType != Type::None)
      fault(node, fmt::format("Procedure \"{}\" must return a value of type {}.", function.name,
                              typeName(function.returnType)));
    writeBackGlobals();
    emit(Op::ReturnNone);
    return;
  }
  if (body_->isProcedure && function.returnType == Type::None) {
    fault(node, fmt::format("Procedure \"{}\" has no return type, so it cannot return a value.",
                            function.name));
    return;
  }
  const Operand value = expressionAs(*node.children[0], function.returnType);
  writeBackGlobals();
  if (value.type == function.returnType || function.returnType == Type::None) {
    emit(Op::Return, value.reg);
  } else {
    const Operand converted = temporary(function.returnType);
    moveTo(converted, value);
    emit(Op::Return, converted.reg);
    release(converted);
  }
  release(value);
}

}  // namespace host::mel
