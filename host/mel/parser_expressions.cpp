#include <string>

#include "host/mel/parser.h"

namespace host::mel {

namespace {

struct BinaryEntry {
  std::string_view symbol;
  int precedence;
  NodeKind kind;
  BinaryOp op;
};

constexpr BinaryEntry kBinaries[] = {
    {"||", 1, NodeKind::Or, BinaryOp::None},
    {"&&", 2, NodeKind::And, BinaryOp::None},
    {"==", 3, NodeKind::Binary, BinaryOp::Equal},
    {"!=", 3, NodeKind::Binary, BinaryOp::NotEqual},
    {"<", 4, NodeKind::Binary, BinaryOp::Less},
    {"<=", 4, NodeKind::Binary, BinaryOp::LessEqual},
    {">", 4, NodeKind::Binary, BinaryOp::Greater},
    {">=", 4, NodeKind::Binary, BinaryOp::GreaterEqual},
    {"+", 5, NodeKind::Binary, BinaryOp::Add},
    {"-", 5, NodeKind::Binary, BinaryOp::Subtract},
    {"*", 6, NodeKind::Binary, BinaryOp::Multiply},
    {"/", 6, NodeKind::Binary, BinaryOp::Divide},
    {"%", 6, NodeKind::Binary, BinaryOp::Modulo},
    {"^", 6, NodeKind::Binary, BinaryOp::Cross},
};

const BinaryEntry* findBinary(const Token& token) {
  if (token.kind != TokenKind::Symbol) return nullptr;
  for (const BinaryEntry& entry : kBinaries)
    if (token.text == entry.symbol) return &entry;
  return nullptr;
}

std::optional<BinaryOp> assignmentOp(const Token& token) {
  if (token.kind != TokenKind::Symbol) return std::nullopt;
  if (token.text == "=") return BinaryOp::None;
  if (token.text == "+=") return BinaryOp::Add;
  if (token.text == "-=") return BinaryOp::Subtract;
  if (token.text == "*=") return BinaryOp::Multiply;
  if (token.text == "/=") return BinaryOp::Divide;
  if (token.text == "%=") return BinaryOp::Modulo;
  if (token.text == "^=") return BinaryOp::Cross;
  return std::nullopt;
}

bool isAssignable(const Node* node) {
  return node->kind == NodeKind::Variable || node->kind == NodeKind::Index;
}

std::optional<int> booleanWord(std::string_view word) {
  if (word == "true" || word == "yes" || word == "on") return 1;
  if (word == "false" || word == "no" || word == "off") return 0;
  return std::nullopt;
}

}  // namespace

Node* Parser::expression() {
  const Depth depth(*this);
  return depth ? assignment() : tooDeep();
}

Node* Parser::assignment() {
  Node* target = ternary();
  if (!target) return nullptr;
  const std::optional<BinaryOp> op = assignmentOp(token_);
  if (!op) return target;
  const Token at = token_;
  if (target->kind == NodeKind::Component)
    return faultAt(at.begin,
                   "Syntax error: a vector's component cannot be assigned; assign a whole vector.");
  if (!isAssignable(target))
    return faultAt(at.begin, "Syntax error: expected a variable on the left of \"" +
                                 std::string(at.text) + "\".");
  advance();
  Node* value = expression();
  if (!value) return nullptr;
  Node* node = make(NodeKind::Assign, at);
  node->op = *op;
  setChildren(node, {target, value});
  return node;
}

Node* Parser::ternary() {
  Node* condition = binary(1);
  if (!condition || !token_.is("?")) return condition;
  Node* node = make(NodeKind::Ternary, token_);
  advance();
  Node* first = expression();
  if (!first || !expect(":")) return nullptr;
  Node* second = expression();
  if (!second) return nullptr;
  setChildren(node, {condition, first, second});
  return node;
}

/// Precedence climbing; all binary operators associate to the left.
Node* Parser::binary(int minPrecedence) {
  Node* left = unary();
  while (left) {
    const BinaryEntry* entry = findBinary(token_);
    if (!entry || entry->precedence < minPrecedence) break;
    Node* node = make(entry->kind, token_);
    node->op = entry->op;
    advance();
    Node* right = binary(entry->precedence + 1);
    if (!right) return nullptr;
    setChildren(node, {left, right});
    left = node;
  }
  return left;
}

Node* Parser::unary() {
  const Token at = token_;
  if (!at.is("-") && !at.is("!") && !at.is("+") && !at.is("++") && !at.is("--")) return postfix();
  const Depth depth(*this);
  if (!depth) return tooDeep();
  advance();
  Node* operand = unary();
  if (!operand || at.is("+")) return operand;
  if (at.is("-") && operand->kind == NodeKind::IntLiteral) {
    operand->integer = static_cast<std::int32_t>(0u - static_cast<std::uint32_t>(operand->integer));
    return operand;
  }
  if (at.is("-") && operand->kind == NodeKind::FloatLiteral) {
    operand->number = -operand->number;
    return operand;
  }
  if (at.text.size() == 2) {
    if (!isAssignable(operand))
      return faultAt(at.begin,
                     "Syntax error: expected a variable after \"" + std::string(at.text) + "\".");
    Node* node = make(NodeKind::Step, at);
    node->integer = at.is("++") ? 1 : -1;
    node->flag = true;
    setChildren(node, {operand});
    return node;
  }
  Node* node = make(at.is("-") ? NodeKind::Negate : NodeKind::Not, at);
  setChildren(node, {operand});
  return node;
}

Node* Parser::postfix() {
  Node* base = primary();
  return base ? suffixes(base) : nullptr;
}

/// Subscripts, components and a trailing ++ or --.
Node* Parser::suffixes(Node* base) {
  while (base) {
    if (token_.is("[")) {
      base = subscript(base);
    } else if (token_.is(".")) {
      const char name = lexer_.at(0);
      Node* node = make(NodeKind::Component, token_);
      advance();
      if (token_.kind != TokenKind::Identifier || token_.text.size() != 1 || name < 'x' ||
          name > 'z')
        return fault("x, y or z");
      advance();
      node->integer = name - 'x';
      setChildren(node, {base});
      base = node;
    } else if ((token_.is("++") || token_.is("--")) && isAssignable(base)) {
      Node* node = make(NodeKind::Step, token_);
      node->integer = token_.is("++") ? 1 : -1;
      setChildren(node, {base});
      advance();
      return node;
    } else {
      break;
    }
  }
  return base;
}

/// `[i]` or, for a matrix, `[i][j]`.
Node* Parser::subscript(Node* base) {
  Node* node = make(NodeKind::Index, token_);
  std::vector<Node*> children{base};
  while (token_.is("[")) {
    if (children.size() == 3) return fault("at most two subscripts");
    const bool wasInBackquotes = std::exchange(isInBackquotes_, false);
    advance();
    Node* index = expression();
    isInBackquotes_ = wasInBackquotes;
    if (!index || !expect("]")) return nullptr;
    children.push_back(index);
  }
  setChildren(node, children);
  return node;
}

Node* Parser::number() {
  Node* node =
      make(token_.kind == TokenKind::Int ? NodeKind::IntLiteral : NodeKind::FloatLiteral, token_);
  node->integer = token_.integer;
  node->number = token_.number;
  advance();
  return node;
}

Node* Parser::primary() {
  switch (token_.kind) {
    case TokenKind::Int:
    case TokenKind::Float:
      return number();
    case TokenKind::String: {
      Node* node = make(NodeKind::StringLiteral, token_);
      node->text = token_.text;
      advance();
      return node;
    }
    case TokenKind::Variable: {
      Node* node = make(NodeKind::Variable, token_);
      node->text = token_.text;
      advance();
      return node;
    }
    case TokenKind::Identifier:
      return identifierExpression();
    default:
      break;
  }
  if (token_.is("(")) return parenthesised();
  if (token_.is("<<")) return vectorLiteral();
  if (token_.is("{")) return arrayLiteral();
  if (token_.is("`") && !isInBackquotes_) return backquoted();
  return fault("an expression");
}

/// A boolean word or a call `name(arguments)`, which also covers the casts `int(x)`, `string(x)`.
Node* Parser::identifierExpression() {
  const Token name = token_;
  advance();
  if (token_.is("(")) {
    std::vector<Node*> arguments;
    if (!argumentList(arguments)) return nullptr;
    Node* node = make(NodeKind::Call, name);
    node->text = name.text;
    setChildren(node, arguments);
    return node;
  }
  const std::optional<int> boolean = booleanWord(name.text);
  if (!boolean) return fault("\"(\" after \"" + std::string(name.text) + "\"");
  Node* node = make(NodeKind::IntLiteral, name);
  node->integer = *boolean;
  return node;
}

/// Parses `(a, b, ...)` and leaves the token after it current.
bool Parser::argumentList(std::vector<Node*>& arguments) {
  const Depth depth(*this);
  if (!depth) return tooDeep() != nullptr;
  const bool wasInBackquotes = std::exchange(isInBackquotes_, false);
  advance();
  if (!token_.is(")")) {
    do {
      Node* argument = expression();
      if (!argument) return false;
      arguments.push_back(argument);
    } while (accept(","));
  }
  isInBackquotes_ = wasInBackquotes;
  return expect(")");
}

/// `(expression)` or the cast `(type)operand`.
Node* Parser::parenthesised() {
  const Depth depth(*this);
  if (!depth) return tooDeep();
  const Token at = token_;
  const bool wasInBackquotes = std::exchange(isInBackquotes_, false);
  advance();
  const std::optional<Type> type = typeKeyword();
  if (type && lexer_.peek() == ')') {
    advance();
    advance();
    isInBackquotes_ = wasInBackquotes;
    Node* operand = unary();
    if (!operand) return nullptr;
    Node* node = make(NodeKind::Cast, at);
    node->type = *type;
    setChildren(node, {operand});
    return node;
  }
  Node* inner = expression();
  isInBackquotes_ = wasInBackquotes;
  if (!inner || !expect(")")) return nullptr;
  return inner;
}

/// `<<x, y, z>>`, or a matrix with rows separated by semicolons.
Node* Parser::vectorLiteral() {
  const Depth depth(*this);
  if (!depth) return tooDeep();
  Node* node = make(NodeKind::VectorLiteral, token_);
  const bool wasInBackquotes = std::exchange(isInBackquotes_, false);
  advance();
  std::vector<Node*> cells;
  std::size_t columns = 0;
  int rows = 1;
  while (true) {
    Node* cell = ternary();
    if (!cell) return nullptr;
    cells.push_back(cell);
    if (accept(",")) continue;
    if (rows == 1) columns = cells.size();
    if (cells.size() != columns * static_cast<std::size_t>(rows))
      return faultAt(token_.begin, "Syntax error: the rows of a matrix must have the same length.");
    if (!accept(";")) break;
    ++rows;
  }
  isInBackquotes_ = wasInBackquotes;
  if (!expect(">>")) return nullptr;
  if (rows > 1 || cells.size() > 3) {
    node->kind = NodeKind::MatrixLiteral;
    node->integer = rows;
  }
  setChildren(node, cells);
  return node;
}

Node* Parser::arrayLiteral() {
  const Depth depth(*this);
  if (!depth) return tooDeep();
  Node* node = make(NodeKind::ArrayLiteral, token_);
  const bool wasInBackquotes = std::exchange(isInBackquotes_, false);
  advance();
  std::vector<Node*> elements;
  while (!token_.is("}")) {
    Node* element = ternary();
    if (!element) return nullptr;
    elements.push_back(element);
    if (!accept(",")) break;
  }
  isInBackquotes_ = wasInBackquotes;
  if (!expect("}")) return nullptr;
  setChildren(node, elements);
  return node;
}

Node* Parser::backquoted() {
  const Depth depth(*this);
  if (!depth) return tooDeep();
  advance();
  if (token_.kind != TokenKind::Identifier) return fault("a command after `");
  isInBackquotes_ = true;
  Node* call = command(true);
  isInBackquotes_ = false;
  if (!call || !expect("`")) return nullptr;
  return call;
}

}  // namespace host::mel
