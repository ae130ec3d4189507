#include <fmt/format.h>

#include <string>

#include "host/mel/parser.h"

namespace host::mel {

Parser::Parser(std::string_view source, Arena& arena) : lexer_(source, arena), arena_(arena) {}

Node* Parser::parse() {
  advance();
  Node* root = make(NodeKind::Block, token_);
  std::vector<Node*> statements;
  while (token_.kind != TokenKind::End) {
    Node* node = statement();
    if (!node) return nullptr;
    if (node->kind != NodeKind::Empty) statements.push_back(node);
  }
  setChildren(root, statements);
  return root;
}

bool Parser::accept(std::string_view symbol) {
  if (!token_.is(symbol)) return false;
  advance();
  return true;
}

bool Parser::expect(std::string_view symbol) {
  if (accept(symbol)) return true;
  if (symbol == ";" && token_.kind == TokenKind::End) return true;
  fault(fmt::format("\"{}\"", symbol));
  return false;
}

std::string Parser::describe(const Token& token) const {
  constexpr std::size_t kLongest = 30;
  if (token.kind == TokenKind::End) return "the end of the text";
  if (token.kind == TokenKind::Bad) return std::string(token.text);
  const std::string text(token.text.substr(0, kLongest));
  if (token.kind == TokenKind::Variable) return "\"$" + text + "\"";
  if (token.kind == TokenKind::String) return "the string \"" + text + "\"";
  return "\"" + text + "\"";
}

Node* Parser::fault(std::string_view expected) {
  // The text may end far below the line that lacks something.
  const bool isAtEnd = token_.kind == TokenKind::End;
  return faultAt(
      isAtEnd ? previous_ : token_.begin,
      fmt::format("Syntax error: expected {} but found {}.", expected, describe(token_)));
}

Node* Parser::faultAt(const Position& where, std::string text) {
  if (!hasFault_) {
    diagnostic_ = {where.line, where.column(), std::move(text)};
    faultIsAtEnd_ =
        token_.kind == TokenKind::End || token_.text == kOpenString || token_.text == kOpenComment;
  }
  hasFault_ = true;
  return nullptr;
}

Node* Parser::tooDeep() {
  return faultAt(token_.begin,
                 fmt::format("Syntax error: nested deeper than {} levels.", kMaxDepth));
}

Node* Parser::make(NodeKind kind, const Token& at) {
  Node* node = arena_.make<Node>();
  node->kind = kind;
  node->line = at.begin.line;
  node->column = at.begin.column();
  return node;
}

void Parser::setChildren(Node* node, std::span<Node* const> children) {
  node->children = arena_.copy(children);
  node->assigns = node->kind == NodeKind::Assign || node->kind == NodeKind::Step;
  for (const Node* child : children) node->assigns = node->assigns || (child && child->assigns);
}

void Parser::setChildren(Node* node, std::initializer_list<Node*> children) {
  setChildren(node, std::span<Node* const>(children.begin(), children.size()));
}

std::optional<Type> Parser::typeKeyword() const {
  if (token_.kind != TokenKind::Identifier) return std::nullopt;
  if (token_.text == "int") return Type::Int;
  if (token_.text == "float") return Type::Float;
  if (token_.text == "string") return Type::String;
  if (token_.text == "vector") return Type::Vector;
  if (token_.text == "matrix") return Type::Matrix;
  return std::nullopt;
}

Node* Parser::nestedStatement() {
  const Depth depth(*this);
  return depth ? statement() : tooDeep();
}

Node* Parser::statement() {
  if (token_.is("{")) return block();
  if (token_.is(";")) {
    Node* node = make(NodeKind::Empty, token_);
    advance();
    return node;
  }
  if (token_.kind == TokenKind::Identifier) return keywordStatement(token_.text);
  return expressionStatement();
}

Node* Parser::keywordStatement(std::string_view word) {
  if (typeKeyword() && lexer_.peek() == '$') return declaration(false);
  if (typeKeyword() && lexer_.peek() == ';') {  // a declaration of nothing
    Node* node = make(NodeKind::Empty, token_);
    advance();
    advance();
    return node;
  }
  if (word == "if") return ifStatement();
  if (word == "for") return forStatement();
  if (word == "while") return whileStatement();
  if (word == "do") return doStatement();
  if (word == "switch") return switchStatement();
  if (word == "return") return returnStatement();
  if (word == "break") return jump(NodeKind::Break);
  if (word == "continue") return jump(NodeKind::Continue);
  if (word == "proc") return procedure(false);
  if (word == "else" || word == "case" || word == "default" || word == "in")
    return fault("a statement");
  if (word != "global") return commandStatement();
  advance();
  if (token_.kind == TokenKind::Identifier && token_.text == "proc") return procedure(true);
  if (!typeKeyword()) return fault("proc or a type after \"global\"");
  return declaration(true);
}

Node* Parser::block() {
  const Depth depth(*this);
  if (!depth) return tooDeep();
  Node* node = make(NodeKind::Block, token_);
  node->flag = true;
  advance();
  std::vector<Node*> statements;
  while (!token_.is("}")) {
    if (token_.kind == TokenKind::End)
      return fault(fmt::format("\"}}\" for the \"{{\" of line {}", node->line));
    Node* child = nestedStatement();
    if (!child) return nullptr;
    if (child->kind != NodeKind::Empty) statements.push_back(child);
  }
  advance();
  setChildren(node, statements);
  return node;
}

Node* Parser::expressionStatement() {
  Node* node = make(NodeKind::Expression, token_);
  Node* value = expression();
  if (!value || !expect(";")) return nullptr;
  if (value->kind == NodeKind::Call) value->flag = true;
  setChildren(node, {value});
  return node;
}

Node* Parser::commandStatement() {
  Node* node = make(NodeKind::Expression, token_);
  Node* call = command(false);
  if (!call || !expect(";")) return nullptr;
  setChildren(node, {call});
  return node;
}

/// `int $a, $b[] = {...}, $c[5];` with the type as current token.
Node* Parser::declaration(bool isGlobal) {
  Node* node = make(NodeKind::Declare, token_);
  node->flag = isGlobal;
  node->type = *typeKeyword();
  advance();
  const bool isTypedArray = token_.is("[");
  if (isTypedArray) {
    advance();
    if (!expect("]")) return nullptr;
  }
  std::vector<Node*> declarators;
  do {
    Node* child = declarator(node->type, false);
    if (!child) return nullptr;
    child->flag = child->flag || isTypedArray;
    declarators.push_back(child);
  } while (accept(","));
  setChildren(node, declarators);
  return expect(";") ? node : nullptr;
}

Node* Parser::declarator(Type element, bool isParameter) {
  if (token_.kind != TokenKind::Variable) return fault("a variable name");
  Node* node = make(NodeKind::Declarator, token_);
  node->text = token_.text;
  node->type = element;
  advance();
  std::vector<Node*> children{nullptr};
  const std::size_t maxDimensions = element == Type::Matrix ? 2 : 1;
  while (token_.is("[")) {
    if (children.size() > maxDimensions) return fault("one pair of brackets");
    node->flag = element != Type::Matrix;
    advance();
    Node* dimension = nullptr;
    if (!token_.is("]")) {
      dimension = expression();
      if (!dimension) return nullptr;
    }
    if (!expect("]")) return nullptr;
    children.push_back(dimension);
  }
  if (!isParameter && accept("=")) {
    children[0] = expression();
    if (!children[0]) return nullptr;
  }
  setChildren(node, children);
  return node;
}

Node* Parser::procedure(bool isGlobal) {
  Node* node = make(NodeKind::Procedure, token_);
  node->flag = isGlobal;
  advance();
  if (const std::optional<Type> type = typeKeyword(); type && lexer_.peek() != '(') {
    node->type = *type;
    advance();
    for (bool isFirst = true; token_.is("["); isFirst = false) {
      advance();
      if (token_.kind == TokenKind::Int && *type == Type::Matrix) advance();
      if (!expect("]")) return nullptr;
      if (isFirst && *type != Type::Matrix) node->type = arrayType(*type);
    }
  }
  if (token_.kind != TokenKind::Identifier) return fault("the procedure's name");
  node->text = token_.text;
  advance();
  if (!expect("(")) return nullptr;
  std::vector<Node*> children;
  if (!token_.is(")")) {
    do {
      const std::optional<Type> type = typeKeyword();
      if (!type) return fault("a parameter's type");
      advance();
      Node* parameter = declarator(*type, true);
      if (!parameter) return nullptr;
      children.push_back(parameter);
    } while (accept(","));
  }
  if (!expect(")")) return nullptr;
  if (!token_.is("{")) return fault("\"{\"");
  Node* body = block();
  if (!body) return nullptr;
  children.push_back(body);
  setChildren(node, children);
  return node;
}

/// A chain of `else if` is parsed in a loop, so its length is not a depth.
Node* Parser::ifStatement() {
  Node* node = make(NodeKind::If, token_);
  std::vector<Node*> children;
  while (true) {
    advance();
    if (!expect("(")) return nullptr;
    Node* condition = expression();
    if (!condition || !expect(")")) return nullptr;
    Node* branch = nestedStatement();
    if (!branch) return nullptr;
    children.push_back(condition);
    children.push_back(branch);
    if (token_.kind != TokenKind::Identifier || token_.text != "else") break;
    advance();
    if (token_.kind == TokenKind::Identifier && token_.text == "if") continue;
    Node* last = nestedStatement();
    if (!last) return nullptr;
    children.push_back(last);
    break;
  }
  setChildren(node, children);
  return node;
}

Node* Parser::whileStatement() {
  Node* node = make(NodeKind::While, token_);
  advance();
  if (!expect("(")) return nullptr;
  Node* condition = expression();
  if (!condition || !expect(")")) return nullptr;
  Node* body = nestedStatement();
  if (!body) return nullptr;
  setChildren(node, {condition, body});
  return node;
}

Node* Parser::doStatement() {
  Node* node = make(NodeKind::DoWhile, token_);
  advance();
  Node* body = nestedStatement();
  if (!body) return nullptr;
  if (token_.kind != TokenKind::Identifier || token_.text != "while") return fault("\"while\"");
  advance();
  if (!expect("(")) return nullptr;
  Node* condition = expression();
  if (!condition || !expect(")") || !expect(";")) return nullptr;
  setChildren(node, {condition, body});
  return node;
}

/// The comma-separated expressions of a loop's head, as a Block.
Node* Parser::forHeaderPart(std::string_view terminator) {
  Node* node = make(NodeKind::Block, token_);
  std::vector<Node*> children;
  if (!token_.is(terminator)) {
    do {
      Node* statement = make(NodeKind::Expression, token_);
      Node* value = expression();
      if (!value) return nullptr;
      setChildren(statement, {value});
      children.push_back(statement);
    } while (accept(","));
  }
  setChildren(node, children);
  return expect(terminator) ? node : nullptr;
}

Node* Parser::forStatement() {
  const Token keyword = token_;
  advance();
  if (!expect("(")) return nullptr;
  const Token first = token_;
  const bool isTyped = typeKeyword() && lexer_.peek() == '$';
  if (isTyped) advance();
  const bool isNamed = token_.kind == TokenKind::Variable;
  if (isNamed) advance();
  const bool isForIn = isNamed && token_.kind == TokenKind::Identifier && token_.text == "in";
  lexer_.rewind(first.begin);
  advance();
  if (isForIn) return forInStatement(keyword);
  Node* init = isTyped ? declaration(false) : forHeaderPart(";");
  if (!init) return nullptr;
  Node* condition = nullptr;
  if (!token_.is(";")) {
    condition = expression();
    if (!condition) return nullptr;
  }
  if (!expect(";")) return nullptr;
  Node* step = forHeaderPart(")");
  if (!step) return nullptr;
  Node* body = nestedStatement();
  if (!body) return nullptr;
  Node* node = make(NodeKind::For, keyword);
  setChildren(node, {init, condition, step, body});
  return node;
}

Node* Parser::forInStatement(const Token& keyword) {
  const std::optional<Type> type = typeKeyword();
  if (type) advance();
  Node* target = make(type ? NodeKind::Declarator : NodeKind::Variable, token_);
  target->text = token_.text;
  target->type = type.value_or(Type::None);
  if (type) setChildren(target, {nullptr});
  advance();
  advance();
  Node* list = expression();
  if (!list || !expect(")")) return nullptr;
  Node* body = nestedStatement();
  if (!body) return nullptr;
  Node* node = make(NodeKind::ForIn, keyword);
  setChildren(node, {target, list, body});
  return node;
}

Node* Parser::switchStatement() {
  Node* node = make(NodeKind::Switch, token_);
  advance();
  if (!expect("(")) return nullptr;
  Node* subject = expression();
  if (!subject || !expect(")") || !expect("{")) return nullptr;
  std::vector<Node*> children{subject};
  while (!token_.is("}")) {
    if (token_.kind == TokenKind::End)
      return fault(fmt::format("\"}}\" for the switch of line {}", node->line));
    const bool isLabel =
        token_.kind == TokenKind::Identifier && (token_.text == "case" || token_.text == "default");
    Node* child = isLabel ? caseLabel() : nestedStatement();
    if (!child) return nullptr;
    if (children.size() == 1 && !isLabel && child->kind != NodeKind::Empty)
      return faultAt({0, child->line, 0},
                     "Syntax error: expected \"case\" or \"default\" first in a switch.");
    if (child->kind != NodeKind::Empty) children.push_back(child);
  }
  advance();
  setChildren(node, children);
  return node;
}

Node* Parser::caseLabel() {
  const bool isDefault = token_.text == "default";
  Node* node = make(isDefault ? NodeKind::Default : NodeKind::Case, token_);
  advance();
  if (!isDefault) {
    Node* value = binary(1);
    if (!value) return nullptr;
    setChildren(node, {value});
  }
  return expect(":") ? node : nullptr;
}

Node* Parser::jump(NodeKind kind) {
  Node* node = make(kind, token_);
  advance();
  return expect(";") ? node : nullptr;
}

Node* Parser::returnStatement() {
  Node* node = make(NodeKind::Return, token_);
  advance();
  if (!token_.is(";") && token_.kind != TokenKind::End) {
    Node* value = expression();
    if (!value) return nullptr;
    setChildren(node, {value});
  }
  return expect(";") ? node : nullptr;
}

}  // namespace host::mel
